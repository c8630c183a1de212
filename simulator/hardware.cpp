#include "hardware.h"

#include <algorithm>

#include "daemon.h"
#include "logical_units.h"
#include "map_service.h"
#include "text_file.h"

namespace sim {

namespace {

std::optional<Mapping> mapOn(const World& world, const std::string& disk) {
    for (const LogicalUnit& unit : logicalUnits(world))
        if (std::find(unit.paths.begin(), unit.paths.end(), disk) != unit.paths.end())
            return mapOf(world, unit);
    return std::nullopt;
}

} // namespace

std::vector<std::string> allPaths(const World& world) {
    std::vector<std::string> all;
    for (const LogicalUnit& unit : logicalUnits(world))
        all.insert(all.end(), unit.paths.begin(), unit.paths.end());
    return all;
}

bool isPathState(const std::string& state) {
    return state == "running" || state == "offline" || state == "lost";
}

void setPathState(World& world, const std::string& disk, const std::string& state) {
    const auto map = mapOn(world, disk); // sought first: a lost disk no longer leads to it
    if (state == "lost") {
        world.detachDisk(disk);
    } else {
        world.attachDisk(disk);
        writeFile(world.path("block/" + disk + "/device/state"), state + "\n");
    }
    if (map) {
        refreshService(world, *map);
        // What is read or written next finds out that no path answers.
        if (state == "offline" && service(world, *map) != Service::works)
            noteUse(world, *map);
    }
    letDaemonSeePath(world, disk);
}

} // namespace sim
