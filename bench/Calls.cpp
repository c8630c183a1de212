#include "Calls.h"

#include <algorithm>
#include <cstdio>

#include "LoadedPlugin.h"

namespace {

constexpr char multipathTable[] =
    "0 131072 multipath 0 0 2 1 service-time 0 1 2 8:48 1 1 service-time 0 1 2 8:80 1 1 \n";
constexpr char map[] = "/dev/mapper/mpatha";
constexpr char partition[] = "/dev/mapper/p1";

/** Buffers as a host passes them. */
class Buffers {
public:
    explicit Buffers(std::size_t count) : memory(count * MAXMPIOPATHLEN) {
        for (std::size_t i = 0; i < count; ++i)
            pointers.push_back(memory.data() + i * MAXMPIOPATHLEN);
    }
    char** get() { return pointers.data(); }

private:
    std::vector<char> memory;
    std::vector<char*> pointers;
};

/** Made once for each size: a host's buffers are not the plug-in's own time. */
Buffers& buffersFor(std::size_t count) {
    static std::vector<std::pair<std::size_t, Buffers>> made;
    for (auto& [size, buffers] : made)
        if (size == count)
            return buffers;
    return made.emplace_back(count, Buffers(count)).second;
}

struct Failure {
    int code = 0;
    char text[MAXMPIOERRORLEN] = "";
};

void callIsMPIODevice(const char* device) {
    Failure failure;
    require(ENTRY_POINT(isMPIODevice)(nullptr, device, &failure.code, failure.text) == 1, "no map");
}

void callIsPartitionDevice() {
    char parent[MAXMPIOPATHLEN];
    require(ENTRY_POINT(isPartitionDevice)(nullptr, partition, parent, nullptr, nullptr) == 1,
            "no partition");
}

void callRemoval() {
    Failure failure;
    REMOVE_PARTITIONS(map, &failure.code, failure.text);
    require(failure.code == 0 && failure.text[0] == '\0', "the removal failed");
}

instant::World smallWorld() {
    return mappingsWorld(3, 0);
}

/** 0 to 25: "a" to "z", 26: "aa", as the kernel names disks. */
std::string letters(std::size_t disk) {
    std::string name;
    for (std::size_t rest = disk + 1; rest > 0; rest = (rest - 1) / 26)
        name += static_cast<char>('a' + (rest - 1) % 26);
    std::reverse(name.begin(), name.end());
    return name;
}

std::pair<unsigned, std::size_t> diskNumber(std::size_t disk) {
    constexpr unsigned majors[] = {8, 65, 66, 67, 68, 69, 70, 71, 128, 129, 130, 131, 132, 133, 134, 135};
    return {majors[disk / 16 % 16], disk % 16 * 16 + disk / 256 * 256};
}

} // namespace

std::string diskLine(std::size_t disk) {
    char line[64];
    const auto [major, minor] = diskNumber(disk);
    std::snprintf(line, sizeof line, "%4u  %7zu %10u sd%s", major, minor, 976762584U, letters(disk).c_str());
    return line;
}

instant::World mapsWorld(std::size_t maps, std::size_t nameLength) {
    instant::World world;
    for (std::size_t i = 0; i < maps; ++i) {
        const std::string number = std::to_string(i);
        world.maps += "mpath" + std::string(nameLength - 5 - number.size(), 'x') + number + '\n';
    }
    return world;
}

instant::World mappingsWorld(std::size_t partitions, std::size_t others) {
    instant::World world;
    world.name = "mpatha\n";
    world.tables = {multipathTable};
    for (std::size_t i = 1; i <= partitions + others; ++i) {
        // Scattered, as the mappings of a grown machine are.
        const std::size_t place = 2048 * (1 + i * 7919 % (partitions + others + 1));
        world.tables.push_back("0 2048 linear 253:0 " + std::to_string(place) + '\n');
        const std::string name = 'p' + std::to_string(i) + '\n';
        world.dependents += name;
        world.mappings += name;
        if (i <= partitions)
            world.slices.push_back({place, 2048, 0, 0, static_cast<int>(i)});
    }
    return world;
}

instant::World pathsWorld(std::size_t paths, std::size_t disks) {
    instant::World world = smallWorld();
    world.dependencies = std::to_string(paths) + " dependencies\t:";
    for (std::size_t i = 0; i < paths; ++i) {
        const auto [major, minor] = diskNumber((2 * i + 1) * disks / (2 * paths));
        world.dependencies += " (" + std::to_string(major) + ", " + std::to_string(minor) + ')';
    }
    world.dependencies += '\n';
    world.partitions = "major minor  #blocks  name\n\n";
    for (std::size_t i = 0; i < disks; ++i)
        world.partitions += diskLine(i) + '\n';
    return world;
}

void callMaps(std::size_t maps) {
    Failure failure;
    int count = static_cast<int>(maps) + 1;
    char** const devices = buffersFor(maps + 1).get();
    require(ENTRY_POINT(getMPIODevices)(nullptr, devices, &count, &failure.code, failure.text) == 0 &&
                count == static_cast<int>(maps),
            "maps are missing");
}

void callUnderlyingDevices(std::size_t paths) {
    Failure failure;
    int count = static_cast<int>(paths);
    require(ENTRY_POINT(getUnderlyingDevices)(nullptr, map, buffersFor(paths).get(), &count, &failure.code,
                                              failure.text) == 0 &&
                count == static_cast<int>(paths),
            "paths are missing");
}

void callPartitionDevices(std::size_t partitions) {
    static std::vector<NrPartInfo> records;
    records.resize(std::max(records.size(), partitions));
    Failure failure;
    int count = static_cast<int>(partitions);
    require(ENTRY_POINT(getPartitionDevices)(nullptr, map, records.data(), &count, 0, &failure.code,
                                             failure.text) == static_cast<int>(partitions) &&
                records[partitions - 1].devName[0] != '\0',
            "partitions are missing");
}

const std::vector<Call>& calls() {
    static const std::vector<Call> all = {
        {"isMPIODevice of a map", smallWorld, [] { callIsMPIODevice(map); }},
        {"isMPIODevice of a partition", smallWorld, [] { callIsMPIODevice(partition); }},
        {"isPartitionDevice", smallWorld, callIsPartitionDevice},
        {"getUnderlyingDevices, 64 paths among 10,000 disks", [] { return pathsWorld(64, 10000); },
         [] { callUnderlyingDevices(64); }},
        {"getPartitionDevices, 256 partitions and 4,096 other mappings",
         [] { return mappingsWorld(256, 4096); }, [] { callPartitionDevices(256); }},
        {"getMPIODevices, 10,000 names", [] { return mapsWorld(10000, 10); }, [] { callMaps(10000); }},
        {"deleteMPIODevicePartitions, 256 mappings", [] { return mappingsWorld(256, 0); }, callRemoval},
    };
    return all;
}
