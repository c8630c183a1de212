#include "open_device.h"

#include <cstdio>
#include <cstring>

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace sim {

namespace {

constexpr char Image[] = "/image";

} // namespace

bool isDescriptor(const char* path) {
    const char* number = path != nullptr ? std::strrchr(path, '/') : nullptr;
    if (number == nullptr || std::strncmp(path, "/proc/", 6) != 0 || number - path < 9)
        return false;
    return std::strncmp(number - 3, "/fd/", 4) == 0 && number[1] >= '0' && number[1] <= '9';
}

bool findOpenDevice(const char* descriptor, PathBuffer& kernelName) {
    const char* world = worldDirectory();
    if (world == nullptr)
        return false;
    PathBuffer begin;
    const int root = std::snprintf(begin, sizeof begin, "%s/sys/block/", world);
    PathBuffer target;
    const long length = syscall(SYS_readlinkat, AT_FDCWD, descriptor, target, sizeof target - 1);
    if (length <= root || root >= static_cast<int>(sizeof begin))
        return false;
    target[length] = '\0';
    char* end = std::strrchr(target, '/');
    if (std::strncmp(target, begin, static_cast<size_t>(root)) != 0 || std::strcmp(end, Image) != 0 ||
        end < target + root)
        return false;
    *end = '\0';
    std::strcpy(kernelName, target + root);
    return true;
}

Node openNode(const char* descriptor) {
    Node node;
    PathBuffer kernelName;
    if (!findOpenDevice(descriptor, kernelName))
        return node;
    PathBuffer place;
    const int length = std::snprintf(place, sizeof place, "%s/dev/%s", worldDirectory(), kernelName);
    return length < static_cast<int>(sizeof place) ? readNode(place) : node;
}

} // namespace sim
