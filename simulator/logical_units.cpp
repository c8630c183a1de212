#include "logical_units.h"

#include <algorithm>

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

std::string groupFile(const World& world, const Mapping& map) {
    return world.path("block/" + map.kernelName() + "/dm/active_group");
}

} // namespace

void addLogicalUnit(World& world, unsigned number, const LogicalUnit& unit) {
    const std::string directory = unitPath(world, std::to_string(number));
    makeDirectory(directory);
    std::string paths;
    for (const std::string& path : unit.paths)
        paths += path + "\n";
    writeFile(directory + "/alias", unit.alias + "\n");
    writeFile(directory + "/wwid", unit.wwid + "\n");
    writeFile(directory + "/grouping", unit.multibus ? "multibus\n" : "failover\n");
    writeFile(directory + "/no_path", unit.queueIfNoPath ? "queue\n" : "fail\n");
    writeFile(directory + "/paths", paths);
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

bool isMapped(const World& world, const LogicalUnit& unit) {
    return std::any_of(unit.paths.begin(), unit.paths.end(),
                       [&](const std::string& path) { return !world.holders(path).empty(); });
}

Multipath configuredMap(const World& world, const LogicalUnit& unit) {
    Multipath map;
    map.queueIfNoPath = unit.queueIfNoPath;
    for (const std::string& path : unit.paths) {
        const auto number = parseDeviceNumber(world.attribute(path, "dev"));
        if (!number)
            throw WorldError(path + ": no such disk");
        if (map.groups.empty() || !unit.multibus)
            map.groups.emplace_back();
        map.groups.back().push_back(*number);
    }
    return map;
}

std::uint64_t sectorsOf(const World& world, const LogicalUnit& unit) {
    return parseNumber(world.attribute(unit.paths.front(), "size")).value_or(0);
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

void setQueueIfNoPath(World& world, const Mapping& map, bool queue) {
    auto arguments = Multipath::parse(map.table.front());
    if (!arguments)
        throw WorldError(map.name + ": not a multipath table");
    arguments->queueIfNoPath = queue;
    world.setTable(map, {arguments->target(map.table.front().length)});
}

bool daemonRuns(const World& world) {
    return readLine(world.path("daemon")) == "1";
}

unsigned activeGroup(const World& world, const Mapping& map) {
    return static_cast<unsigned>(parseNumber(readLine(groupFile(world, map))).value_or(0));
}

void noteUse(World& world, const Mapping& map) {
    if (map.isMultipathMap() && activeGroup(world, map) == 0)
        writeFile(groupFile(world, map), "1\n");
}

} // namespace sim
