// The logical units that the world's paths lead to, and the maps that the multipath tool makes of them.
//
// A unit is a directory luns/N/ with alias, wwid, grouping, no_path and paths (kernel names, one a
// line); N gives the order. What a path's disk tells of itself stands with the disk.
#pragma once

#include <string>
#include <vector>

#include "world.h"

namespace sim {

struct LogicalUnit {
    std::string alias;
    std::string wwid;
    bool multibus = false;      // all paths in one group; otherwise each in a group of its own
    bool queueIfNoPath = false; // the configured policy
    std::vector<std::string> paths;
};

void addLogicalUnit(World& world, unsigned number, const LogicalUnit& unit);

/// In the order of their numbers.
std::vector<LogicalUnit> logicalUnits(const World& world);

/// The unit's map, under whatever name; nothing when there is none.
std::optional<Mapping> mapOf(const World& world, const LogicalUnit& unit);

/// The paths whose disks are there, in the unit's order.
std::vector<std::string> presentPaths(const World& world, const LogicalUnit& unit);

/// The map as the multipath tool configures it, with the paths that are there.
Multipath configuredMap(const World& world, const LogicalUnit& unit);

std::uint64_t sectorsOf(const World& world, const LogicalUnit& unit);

/// Creates the map. Without the daemon the tool does not leave a map queueing, and its second thoughts
/// count as an event; the daemon checks the paths at once.
Mapping createMap(World& world, const LogicalUnit& unit);

} // namespace sim
