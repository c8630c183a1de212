/* The name of a device, fit to be passed to the library. */
#ifndef DEVICENAME_H
#define DEVICENAME_H

#include <optional>
#include <string>

/**
 * The path of a device's node, or a name that device-mapper knows.
 *
 * The library joins names into shell command lines as they are. A DeviceName therefore holds no
 * character that a shell or a tool reads as anything but a part of the name, and fits into the
 * library's buffers.
 */
class DeviceName {
public:
    /** @throw UsageError that says what is wrong with the name. */
    explicit DeviceName(const std::string& name);

    const std::string& text() const { return text_; }
    const char* c_str() const { return text_.c_str(); }

    /**
     * The node that the library understands best. A bare name is looked for in /dev/mapper and
     * /dev. A node of a device-mapper device that has another name, such as /dev/dm-0 or a link in
     * /dev/disk/by-id, becomes the one in /dev/mapper. What is not there stays the same name.
     *
     * @throw Failure for what is there but is no block device: the library looks at the number only.
     */
    DeviceName resolved() const;

private:
    std::string text_;
};

/** What a block device's node tells. */
struct Node {
    unsigned major;
    unsigned minor;

    /** None when there is no such block device. */
    static std::optional<Node> find(const DeviceName& device);
    static std::optional<Node> find(const std::string& path);

    friend bool operator==(Node one, Node other) {
        return one.major == other.major && one.minor == other.minor;
    }
};

#endif
