// Partition mappings: the linear device-mapper devices that kpartx lays onto a disk or a map.
#pragma once

#include <string>
#include <vector>

#include "partition_table.h"
#include "world.h"

namespace sim {

/// What partition mappings lie on.
struct WholeDevice {
    std::string name; // of the mapping, or of the disk
    std::string kernelName;
    DeviceNumber number;
    std::string uuid; // what the uuids of its partition mappings end with
};

std::optional<WholeDevice> wholeDevice(const World& world, DeviceNumber number);

/// The partition mappings on the device, in byte order of their names.
std::vector<Mapping> partitionMappings(const World& world, const WholeDevice& whole);

/// Removes a map and the partition mappings on it. Nothing is removed when one of them is in use; that
/// one is the result.
std::optional<Mapping> removeWithPartitions(World& world, const Mapping& map);

/// The partitions as the mapper lays them out: an extended partition has 2 sectors.
std::vector<Partition> mappablePartitions(const World& world, const WholeDevice& whole);

/// Maps a partition under the given name, or makes the mapping that it has already fit: name, table
/// and node. Throws WorldError when the name belongs to another mapping.
Mapping mapPartition(World& world, const WholeDevice& whole, const Partition& partition,
                     const std::string& name);

/// Between a device's name and a partition's number: "p" after a digit, otherwise nothing.
std::string defaultDelimiter(const std::string& name);

/// Maps all partitions of a map, as the distribution's udev rules and people do.
void mapPartitions(World& world, const Mapping& map, const std::string& delimiter);

} // namespace sim
