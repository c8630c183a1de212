#include "DeviceName.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <string_view>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include "ExitStatus.h"

/** What device-mapper leaves unescaped in a node's name, without '#', which starts a shell's comment. */
static constexpr std::string_view plainCharacters = "abcdefghijklmnopqrstuvwxyz"
                                                    "ABCDEFGHIJKLMNOPQRSTUVWXYZ"
                                                    "0123456789+-.:=@_/";

DeviceName::DeviceName(const std::string& name) : text_(name) {
    if (name.empty())
        throw UsageError("the device name is empty");
    const auto odd = name.find_first_not_of(plainCharacters);
    if (odd != std::string::npos) {
        const auto byte = static_cast<unsigned char>(name[odd]);
        const bool visible = byte > 0x20 && byte < 0x7f;
        throw UsageError("a device name cannot contain " + (byte == ' ' ? "a blank"
                                                            : visible
                                                                ? std::string(1, name[odd])
                                                                : fmt::format("the byte 0x{:02x}", byte)));
    }
    if (name[0] == '-' || name.find("/-") != std::string::npos)
        throw UsageError(
            "no part of a device name can begin with -: the multipath tools would take it for an option");
}

DeviceName DeviceName::asPath() const {
    if (text_.find('/') != std::string::npos)
        return *this;
    DeviceName path("/dev/mapper/" + text_);
    return Node::find(path) ? path : *this;
}

std::optional<Node> Node::find(const DeviceName& device) {
    struct stat status {};
    if (stat(device.c_str(), &status) != 0)
        return std::nullopt;
    return Node{major(status.st_rdev), minor(status.st_rdev)};
}

std::optional<unsigned long long> deviceSize(const DeviceName& device) {
    const int descriptor = open(device.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor == -1)
        return std::nullopt;
    const off_t end = lseek(descriptor, 0, SEEK_END);
    close(descriptor);
    if (end < 0)
        return std::nullopt;
    return static_cast<unsigned long long>(end);
}
