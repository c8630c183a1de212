#include "mounts.h"

#include <cstdio>
#include <cstring>

#include "text_file.h"

namespace sim {

namespace {

constexpr unsigned FirstMountId = 1000000; // far from those of the machine

std::string mark(const World& world, const Mapping& mapping) {
    return world.path("block/" + mapping.kernelName() + "/mounted");
}

/// As the kernel shows a path in a table of mounts: blanks and the like stand as \040.
std::string escaped(const std::string& path) {
    std::string text;
    for (const char c : path) {
        char code[8];
        std::snprintf(code, sizeof code, "\\%03o", static_cast<unsigned char>(c));
        text += std::strchr(" \t\n\\#", c) != nullptr ? std::string(code) : std::string(1, c);
    }
    return text;
}

/// The formats are those of proc(5).
void writeMountTables(const World& world) {
    std::string numbered;
    std::string plain;
    for (const Mapping& mapping : world.mappings()) {
        const std::string directory = escaped(mountPoint(world, mapping));
        const std::string source = escaped("/dev/mapper/" + nodeName(mapping.name));
        if (directory.empty())
            continue;
        numbered += std::to_string(FirstMountId + mapping.minor) + " 1 " + mapping.number().text() + " / " +
                    directory + " rw,relatime - ext4 " + source + " rw\n";
        plain += source + " " + directory + " ext4 rw,relatime 0 0\n";
    }
    writeFile(world.path("proc/self/mountinfo"), numbered);
    writeFile(world.path("proc/self/mounts"), plain);
}

} // namespace

std::string mountPoint(const World& world, const Mapping& mapping) {
    return readLine(mark(world, mapping));
}

void mount(World& world, const Mapping& mapping, const std::string& directory) {
    writeFile(mark(world, mapping), directory + "\n");
    writeMountTables(world);
}

void unmount(World& world, const Mapping& mapping) {
    removeFile(mark(world, mapping));
    writeMountTables(world);
}

} // namespace sim
