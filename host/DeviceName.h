/* The name of a device, fit to be passed to the library. */
#ifndef DEVICENAME_H
#define DEVICENAME_H

#include <optional>
#include <string>

/**
 * The path of a device's node, or a name that device-mapper knows.
 *
 * The library joins names into shell command lines as they are. A DeviceName therefore holds no
 * character that a shell or a tool reads as anything but a part of the name.
 */
class DeviceName {
public:
    /** @throw UsageError that says what is wrong with the name. */
    explicit DeviceName(const std::string& name);

    const std::string& text() const { return text_; }
    const char* c_str() const { return text_.c_str(); }

    /** The node in /dev/mapper, for the bare name of a mapping that has one; otherwise the same name. */
    DeviceName asPath() const;

    /** The last component of the path. */
    std::string base() const { return text_.substr(text_.rfind('/') + 1); }

private:
    std::string text_;
};

/** What a device's node tells. */
struct Node {
    unsigned major;
    unsigned minor;

    /** None when there is no such file. */
    static std::optional<Node> find(const DeviceName& device);
};

/** The size of a device in bytes; none when it cannot be opened. */
std::optional<unsigned long long> deviceSize(const DeviceName& device);

#endif
