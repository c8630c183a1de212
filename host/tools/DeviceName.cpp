#include "DeviceName.h"

#include <climits>
#include <fcntl.h>
#include <fmt/format.h>
#include <fstream>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

#include "ExitStatus.h"
#include "NrMPIO.h"
#include "ToolCommand.h"

static std::string described(char character) {
    const auto byte = static_cast<unsigned char>(character);
    if (character == ' ')
        return "a blank";
    if (character == '\\')
        return "\\, which a shell reads differently";
    return byte > 0x20 && byte < 0x7f ? std::string(1, character) : fmt::format("the byte 0x{:02x}", byte);
}

DeviceName::DeviceName(const std::string& name) : text_(name) {
    if (name.empty())
        throw UsageError("the device name is empty");
    const auto odd = name.find_first_not_of(plainCharacters);
    if (odd != std::string::npos)
        throw UsageError("a device name cannot contain " + described(name[odd]));
    if (name[0] == '-' || name.find("/-") != std::string::npos)
        throw UsageError(
            "no part of a device name can begin with -: the multipath tools would take it for an option");
    if (name.size() >= MAXMPIOPATHLEN)
        throw UsageError(fmt::format("a device name cannot be longer than {} bytes", MAXMPIOPATHLEN - 1));
}

static bool isThere(const DeviceName& device) {
    return access(device.c_str(), F_OK) == 0;
}

/** The same device's node in /dev/mapper, if it has one. */
static std::optional<DeviceName> mapperNode(Node number) {
    // The kernel's name is escaped as that of the node: see libdevmapper(3) on name mangling.
    std::ifstream file(fmt::format("/sys/dev/block/{}:{}/dm/name", number.major, number.minor));
    std::string name;
    if (!std::getline(file, name))
        return std::nullopt;
    try {
        DeviceName path("/dev/mapper/" + name);
        if (Node::find(path) == number)
            return path;
    } catch (const UsageError&) {
        // The name that was given can be passed on, this one cannot.
    }
    return std::nullopt;
}

DeviceName DeviceName::resolved() const {
    if (text_.find('/') == std::string::npos && text_.size() < NAME_MAX)
        for (const char* directory : {"/dev/mapper/", "/dev/"})
            if (const DeviceName path(directory + text_); Node::find(path))
                return path.resolved();
    if (const auto number = Node::find(*this))
        return mapperNode(*number).value_or(*this);
    if (isThere(*this))
        throw Failure(fmt::format("{} is not a block device", text_));
    return *this;
}

std::optional<Node> Node::find(const std::string& path) {
    struct statx status {};
    // Whatever file it is, no server is asked about it: one that is gone would not answer.
    if (statx(AT_FDCWD, path.c_str(), AT_STATX_DONT_SYNC, STATX_TYPE, &status) != 0 ||
        !S_ISBLK(status.stx_mode))
        return std::nullopt;
    return Node{status.stx_rdev_major, status.stx_rdev_minor};
}

std::optional<Node> Node::find(const DeviceName& device) {
    return find(device.text());
}
