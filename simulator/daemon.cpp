#include "daemon.h"

#include <algorithm>
#include <ctime>

#include "logical_units.h"
#include "map_service.h"
#include "partition_mappings.h"
#include "text_file.h"

namespace sim {

namespace {

unsigned long long milliseconds() {
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<unsigned long long>(now.tv_sec) * 1000 +
           static_cast<unsigned long long>(now.tv_nsec / 1000000);
}

std::optional<LogicalUnit> unitOf(const World& world, const std::string& disk) {
    for (const LogicalUnit& unit : logicalUnits(world))
        if (std::find(unit.paths.begin(), unit.paths.end(), disk) != unit.paths.end())
            return unit;
    return std::nullopt;
}

/// Gives the map the paths that are there, all taken for good until they fail.
void reload(World& world, const Mapping& map, const LogicalUnit& unit) {
    Multipath wanted = configuredMap(world, unit);
    const auto old = Multipath::parse(map.table.front());
    wanted.queueIfNoPath = old && old->queueIfNoPath;
    world.setTable(map, {wanted.target(map.table.front().length)});
    for (const DeviceNumber path : devicesOf(map.table))
        setPathFailed(world, map, path, false);
    noteUse(world, *world.mapping(map.minor));
}

} // namespace

bool daemonRuns(const World& world) {
    return readLine(world.path("daemon")) == "1";
}

void planRestoring(World& world, const Mapping& map) {
    const auto seconds = parseNumber(readLine(world.path("restore_after")));
    if (!daemonRuns(world) || !seconds)
        return;
    for (const LogicalUnit& unit : logicalUnits(world))
        if (unit.queueIfNoPath && "mpath-" + unit.wwid == map.uuid) {
            makeDirectory(world.path("due"));
            writeFile(world.path("due/" + std::to_string(map.minor)),
                      std::to_string(milliseconds() + *seconds * 1000) + "\n");
        }
}

void restoreWhatIsDue(World& world) {
    const auto due = [&](const std::string& minor) {
        const auto time = parseNumber(readLine(world.path("due/" + minor)));
        return time && *time <= milliseconds();
    };
    const auto planned = listDirectory(world.path("due"));
    if (std::none_of(planned.begin(), planned.end(), due))
        return;
    const UniqueFd lock = world.lockForChanges();
    for (const std::string& minor : planned) {
        if (!due(minor))
            continue;
        removeFile(world.path("due/" + minor));
        const auto number = parseNumber(minor);
        const auto map = number ? world.mapping(static_cast<unsigned>(*number)) : std::nullopt;
        if (map && map->isMultipathMap())
            setQueueIfNoPath(world, *map, true);
    }
}

void letDaemonSeePath(World& world, const std::string& disk) {
    const auto unit = daemonRuns(world) ? unitOf(world, disk) : std::nullopt;
    if (!unit)
        return;
    const auto map = mapOf(world, *unit);
    const bool left = !presentPaths(world, *unit).empty();
    const auto number = diskNumber(disk);
    if (map && !left)
        removeWithPartitions(world, *map);
    else if (map && number && (!world.kernelName(*number) || answers(world, *number)))
        reload(world, *map, *unit);
    else if (!map && left)
        createMap(world, *unit);
}

} // namespace sim
