#include "partition_mappings.h"

#include <algorithm>
#include <cctype>

#include "map_service.h"
#include "text_file.h"

namespace sim {

namespace {

/// True for "partN-UUID" with any number N.
bool isPartitionUuid(const std::string& uuid, const std::string& wholeUuid) {
    const auto digits = std::string("part").size();
    const auto dash = uuid.find_first_not_of("0123456789", digits);
    return uuid.rfind("part", 0) == 0 && dash != std::string::npos && dash > digits &&
           uuid.substr(dash) == "-" + wholeUuid;
}

} // namespace

std::optional<WholeDevice> wholeDevice(const World& world, DeviceNumber number) {
    const auto kernelName = world.kernelName(number);
    if (!kernelName)
        return std::nullopt;
    WholeDevice whole{*kernelName, *kernelName, number, "devnode_" + number.text() + "_Wh5pYvM"};
    if (number.major != DeviceMapperMajor)
        return whole;
    const auto mapping = world.mapping(number.minor);
    if (!mapping)
        return std::nullopt;
    whole.name = mapping->name;
    if (!mapping->uuid.empty())
        whole.uuid = mapping->uuid;
    return whole;
}

std::vector<Mapping> partitionMappings(const World& world, const WholeDevice& whole) {
    std::vector<Mapping> partitions;
    for (const std::string& holder : world.holders(whole.kernelName)) {
        const auto number = parseDeviceNumber(world.attribute(holder, "dev"));
        auto mapping = number ? world.mapping(number->minor) : std::nullopt;
        if (mapping && isPartitionUuid(mapping->uuid, whole.uuid))
            partitions.push_back(std::move(*mapping));
    }
    std::sort(partitions.begin(), partitions.end(),
              [](const Mapping& a, const Mapping& b) { return a.name < b.name; });
    return partitions;
}

std::optional<Mapping> removeWithPartitions(World& world, const Mapping& map) {
    const auto partitions = partitionMappings(world, *wholeDevice(world, map.number()));
    for (const Mapping& partition : partitions)
        if (world.inUse(partition))
            return partition;
    if (world.isOpen(map) || world.holders(map.kernelName()).size() > partitions.size())
        return map;
    for (const Mapping& partition : partitions)
        if (!world.remove(partition)) // opened meanwhile
            return partition;
    return world.remove(map) ? std::nullopt : std::optional<Mapping>(map);
}

std::vector<Partition> mappablePartitions(const World& world, const WholeDevice& whole) {
    std::vector<Partition> partitions = readPartitionTable(world.imageOf(whole.kernelName));
    for (Partition& partition : partitions)
        if (partition.extended)
            partition.length = 2;
    return partitions;
}

Mapping mapPartition(World& world, const WholeDevice& whole, const Partition& partition,
                     const std::string& name) {
    const std::string uuid = "part" + std::to_string(partition.number) + "-" + whole.uuid;
    const Table table{linearTarget(0, partition.length, whole.number, partition.start)};
    const auto present = partitionMappings(world, whole);
    const auto old = std::find_if(present.begin(), present.end(),
                                  [&](const Mapping& mapping) { return mapping.uuid == uuid; });
    const auto namesake = world.mapping(name);
    if (namesake && (old == present.end() || namesake->minor != old->minor))
        throw WorldError(name + ": the name belongs to another mapping");
    if (old == present.end())
        return world.addMapping(name, uuid, table);
    if (tableText(old->table) != tableText(table))
        throw WorldError(name + ": the partition has changed since it was mapped");
    if (old->name != name)
        world.rename(*old, name);
    const Mapping mapping{old->minor, name, uuid, table};
    world.ensureNode(mapping);
    return mapping;
}

void mapPartitions(World& world, const Mapping& map, const std::string& delimiter) {
    const auto whole = wholeDevice(world, map.number());
    for (const Partition& partition : mappablePartitions(world, *whole))
        mapPartition(world, *whole, partition, map.name + delimiter + std::to_string(partition.number));
    noteUse(world, map);
}

std::string defaultDelimiter(const std::string& name) {
    return !name.empty() && std::isdigit(static_cast<unsigned char>(name.back())) ? "p" : "";
}

} // namespace sim
