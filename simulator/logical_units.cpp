#include "logical_units.h"

#include <algorithm>

#include "daemon.h"
#include "map_service.h"
#include "text_file.h"

namespace sim {

namespace {

std::string unitPath(const World& world, const std::string& number) {
    return world.path("luns/" + number);
}

LogicalUnit readUnit(const World& world, const std::string& number) {
    const std::string directory = unitPath(world, number) + "/";
    return {readLine(directory + "alias"), readLine(directory + "wwid"),
            readLine(directory + "grouping") == "multibus", readLine(directory + "no_path") == "queue",
            words(readFile(directory + "paths").value_or(""))};
}

} // namespace

void addLogicalUnit(World& world, unsigned number, const LogicalUnit& unit) {
    const std::string directory = unitPath(world, std::to_string(number));
    makeDirectory(directory);
    std::string paths;
    for (const std::string& path : unit.paths)
        paths += path + "\n";
    createFile(directory + "/alias", unit.alias + "\n");
    createFile(directory + "/wwid", unit.wwid + "\n");
    createFile(directory + "/grouping", unit.multibus ? "multibus\n" : "failover\n");
    createFile(directory + "/no_path", unit.queueIfNoPath ? "queue\n" : "fail\n");
    createFile(directory + "/paths", paths);
}

std::vector<LogicalUnit> logicalUnits(const World& world) {
    std::vector<std::string> numbers = listDirectory(world.path("luns"));
    std::sort(numbers.begin(), numbers.end(), [](const std::string& a, const std::string& b) {
        return a.size() != b.size() ? a.size() < b.size() : a < b;
    });
    std::vector<LogicalUnit> units;
    for (const std::string& number : numbers)
        units.push_back(readUnit(world, number));
    return units;
}

std::optional<Mapping> mapOf(const World& world, const LogicalUnit& unit) {
    auto named = world.mapping(unit.alias);
    if (named && named->uuid == "mpath-" + unit.wwid)
        return named;
    for (const std::string& path : unit.paths)
        for (const std::string& holder : world.holders(path))
            if (const auto number = parseDeviceNumber(world.attribute(holder, "dev")))
                return world.mapping(number->minor);
    return std::nullopt;
}

std::vector<std::string> presentPaths(const World& world, const LogicalUnit& unit) {
    std::vector<std::string> present;
    for (const std::string& path : unit.paths)
        if (!world.attribute(path, "dev").empty())
            present.push_back(path);
    return present;
}

Multipath configuredMap(const World& world, const LogicalUnit& unit) {
    Multipath map;
    map.queueIfNoPath = unit.queueIfNoPath;
    for (const std::string& path : presentPaths(world, unit)) {
        const auto number = parseDeviceNumber(world.attribute(path, "dev"));
        if (!number)
            throw WorldError(path + ": a disk without a number");
        if (map.groups.empty() || !unit.multibus)
            map.groups.emplace_back();
        map.groups.back().push_back(*number);
    }
    return map;
}

std::uint64_t sectorsOf(const World& world, const LogicalUnit& unit) {
    const auto present = presentPaths(world, unit);
    return present.empty() ? 0 : parseNumber(world.attribute(present.front(), "size")).value_or(0);
}

Mapping createMap(World& world, const LogicalUnit& unit) {
    const bool daemon = daemonRuns(world);
    Multipath map = configuredMap(world, unit);
    map.queueIfNoPath = map.queueIfNoPath && daemon;
    const Mapping created =
        world.addMapping(unit.alias, "mpath-" + unit.wwid, {map.target(sectorsOf(world, unit))});
    if (daemon)
        noteUse(world, created);
    else
        writeFile(world.path("block/" + created.kernelName() + "/dm/event"), "1\n");
    return created;
}

} // namespace sim
