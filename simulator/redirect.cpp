#include "redirect.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace sim {

namespace {

/// Writes the absolute path without empty, "." and ".." parts. False when it does not fit.
bool normalize(const char* path, PathBuffer& plain) {
    size_t length = 0;
    while (*path != '\0') {
        path += std::strspn(path, "/");
        const size_t part = std::strcspn(path, "/");
        if (part == 2 && std::strncmp(path, "..", 2) == 0) {
            while (length > 0 && plain[--length] != '/') {
            }
        } else if (part > 0 && !(part == 1 && *path == '.')) {
            if (length + part + 2 > sizeof plain)
                return false;
            plain[length++] = '/';
            std::memcpy(plain + length, path, part);
            length += part;
        }
        path += part;
    }
    plain[length] = '\0';
    return true;
}

bool startsWith(const char* text, const char* prefix) {
    return std::strncmp(text, prefix, std::strlen(prefix)) == 0;
}

bool isOrIsBelow(const char* path, const char* directory) {
    const char rest = startsWith(path, directory) ? path[std::strlen(directory)] : '?';
    return rest == '\0' || rest == '/';
}

/// A path that ends so must be a directory.
bool endsInSlash(const char* path) {
    const size_t length = std::strlen(path);
    return path[length - 1] == '/' || (length > 1 && std::strcmp(path + length - 2, "/.") == 0);
}

bool belongsToWorlds(const char* path) {
    if (startsWith(path, "/sys/"))
        return isOrIsBelow(path, "/sys/block") || isOrIsBelow(path, "/sys/dev/block") ||
               isOrIsBelow(path, "/sys/class/block");
    if (!startsWith(path, "/dev/"))
        return isMountTable(path) || std::strcmp(path, "/proc/partitions") == 0 ||
               std::strcmp(path, "/proc/swaps") == 0;
    const char* name = path + std::strlen("/dev/");
    const char after = startsWith(name, "sd") || startsWith(name, "vd") ? name[2] : '\0';
    return isOrIsBelow(name, "mapper") || isOrIsBelow(name, "mpath") || (after >= 'a' && after <= 'z') ||
           (startsWith(name, "dm-") && name[3] >= '0' && name[3] <= '9');
}

} // namespace

const char* worldDirectory() {
    const char* world = std::getenv(WorldVariable);
    return world != nullptr && *world != '\0' ? world : nullptr;
}

bool redirect(const char* world, const char* path, PathBuffer& place) {
    PathBuffer plain;
    if (world == nullptr || path == nullptr || *path != '/' || !normalize(path, plain) ||
        !belongsToWorlds(plain))
        return false;
    const size_t root = std::strlen(world);
    const size_t rest = std::strlen(plain);
    if (root + rest + sizeof "/" > sizeof place)
        return false;
    std::memcpy(place, world, root);
    std::memcpy(place + root, plain, rest);
    std::strcpy(place + root + rest, endsInSlash(path) ? "/" : "");
    return true;
}

bool isMountTable(const char* path) {
    return std::strcmp(path, "/proc/mounts") == 0 || std::strcmp(path, "/proc/self/mounts") == 0 ||
           std::strcmp(path, "/proc/self/mountinfo") == 0;
}

Node readNode(const char* place) {
    Node node;
    char text[64];
    const long fd = ::syscall(SYS_openat, AT_FDCWD, place, O_RDONLY | O_CLOEXEC | O_NONBLOCK, 0);
    if (fd < 0)
        return node;
    const long length = ::syscall(SYS_read, fd, text, sizeof text - 1);
    ::syscall(SYS_close, fd);
    if (length <= 0)
        return node;
    text[length] = '\0';
    if (std::sscanf(text, "block %u:%u", &node.major, &node.minor) == 2)
        node.kind = NodeKind::block;
    else if (std::sscanf(text, "character %u:%u", &node.major, &node.minor) == 2)
        node.kind = NodeKind::character;
    return node;
}

} // namespace sim
