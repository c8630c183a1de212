// multipath: list maps (-l, -ll), create what is missing, flush (-f, -F). See multipath(8).
#include <cctype>
#include <cstdio>

#include "daemon.h"
#include "logical_units.h"
#include "map_service.h"
#include "multipath_topology.h"
#include "partition_mappings.h"
#include "text_file.h"
#include "tools.h"

namespace sim {

namespace {

constexpr int Failed = 1;

struct Options {
    int verbosity = 2;
    int listing = 0; // how many times -l was given
    bool dryRun = false;
    bool flush = false;
    bool flushAll = false;
    std::optional<std::string> device;
};

Options parse(const Arguments& arguments) {
    Options options;
    for (const std::string& argument : arguments) {
        if (argument == "-l" || argument == "-ll")
            options.listing += static_cast<int>(argument.size()) - 1;
        else if (argument == "-d")
            options.dryRun = true;
        else if (argument == "-f")
            options.flush = true;
        else if (argument == "-F")
            options.flushAll = true;
        else if (argument == "-v0" || argument == "-v1" || argument == "-v2")
            options.verbosity = argument[2] - '0';
        else if (argument[0] == '-')
            throw NotSimulated("option " + argument);
        else if (options.device)
            throw NotSimulated("more than one device");
        else
            options.device = argument;
    }
    return options;
}

void warnAboutDaemon(const World& world, const Options& options) {
    if (options.verbosity >= 2 && !daemonRuns(world))
        log("Warning: multipath devices exist, but multipathd service is not running");
}

// ---- listing

PathLine pathLine(const World& world, const std::string& disk) {
    PathLine line;
    line.hctl = world.attribute(disk, "device/hctl");
    line.name = disk;
    line.number = world.attribute(disk, "dev");
    line.kernelState = "undef";
    line.checkerState = "ready";
    line.deviceState = world.attribute(disk, "device/state");
    return line;
}

std::string product(const World& world, const std::string& disk) {
    return world.attribute(disk, "device/vendor") + "," + world.attribute(disk, "device/model");
}

/// The map as it is. Without `probe` the paths are not checked and their states not known.
Topology topology(const World& world, const Mapping& map, bool probe) {
    const auto arguments = Multipath::parse(map.table.front());
    if (!arguments)
        throw WorldError(map.name + ": not a multipath table");
    Topology result;
    result.alias = map.name;
    result.wwid = map.uuid.substr(std::string("mpath-").size());
    result.device = map.kernelName();
    result.sectors = sectorsOf(map.table);
    result.queueIfNoPath = arguments->queueIfNoPath;
    result.access = "rw";
    result.product = "##,##"; // unless a path tells
    const PathStates states = pathStates(world, map);
    unsigned place = 0;
    for (const auto& group : arguments->groups) {
        PathGroup& drawn = result.groups.emplace_back();
        drawn.state = ++place == activeGroup(world, map) ? "active" : "enabled";
        bool ready = false;
        for (const DeviceNumber number : group) {
            const auto disk = world.kernelName(number);
            if (!disk)
                continue;
            PathLine& line = drawn.paths.emplace_back(pathLine(world, *disk));
            const auto state = states.find(number);
            line.kernelState = state != states.end() && state->second.failed ? "failed" : "active";
            line.checkerState = !probe ? "undef" : answers(world, number) ? "ready" : "faulty";
            ready |= probe && answers(world, number);
            result.product = product(world, *disk);
        }
        drawn.priority = ready ? 1 : 0;
        if (drawn.paths.empty())
            result.groups.pop_back();
    }
    return result;
}

/// Complains of the paths whose disks are gone.
void logMissingPaths(const World& world, const Mapping& map) {
    const auto arguments = Multipath::parse(map.table.front());
    unsigned place = 0;
    for (const auto& group : arguments ? arguments->groups : decltype(arguments->groups){}) {
        bool empty = true;
        for (const DeviceNumber path : group) {
            if (world.kernelName(path)) {
                empty = false;
                continue;
            }
            log("get_udev_device: failed to look up " + path.text() + " with type 1");
            log(map.name + ": discarding non-existing path " + path.text());
        }
        if (empty)
            log(map.name + ": removing empty pathgroup " + std::to_string(place));
        else
            ++place;
    }
}

/// What a device argument of a listing leads to.
struct Search {
    std::optional<Mapping> map;
    bool known = true; // the argument is something that the tool can look for
};

Search searchNode(const World& world, const std::string& path) {
    const auto number = world.deviceOfNode(path);
    const auto disk = number ? world.kernelName(*number) : std::nullopt;
    if (!disk)
        throw NotSimulated("a path that is no device");
    const auto holders = world.holders(*disk);
    const auto wanted = number->major == DeviceMapperMajor ? number
                        : holders.empty()                  ? std::nullopt
                                          : parseDeviceNumber(world.attribute(holders.front(), "dev"));
    auto map = wanted ? world.mapping(wanted->minor) : std::nullopt;
    if (map && !map->isMultipathMap())
        map.reset();
    return {map, map.has_value()};
}

Search search(const World& world, const std::string& device) {
    if (device[0] == '/')
        return searchNode(world, device);
    if (const auto number = parseDeviceNumber(device)) {
        if (number->major != DeviceMapperMajor)
            throw NotSimulated("a path named by its numbers");
        return {std::nullopt, false};
    }
    const auto map = world.mapping(device);
    if (map ? !map->isMultipathMap() : !world.attribute(device, "dev").empty())
        throw NotSimulated("a name that is not that of a map");
    for (const LogicalUnit& unit : logicalUnits(world))
        if (device == unit.wwid)
            throw NotSimulated("a map named by its WWID");
    return {map, true};
}

int list(World& world, const Options& options) {
    std::vector<Mapping> maps;
    if (options.device) {
        const Search found = search(world, *options.device);
        if (!found.known)
            return Failed;
        if (found.map)
            maps.push_back(*found.map);
    } else {
        for (Mapping& mapping : world.mappings())
            if (mapping.isMultipathMap())
                maps.push_back(std::move(mapping));
    }
    if (maps.empty() || options.verbosity == 0)
        return 0;
    if (options.verbosity >= 2)
        for (Mapping& map : maps) {
            settle(world, map);
            map = world.mapping(map.minor).value_or(map);
            logMissingPaths(world, map);
        }
    warnAboutDaemon(world, options);
    for (const Mapping& map : maps)
        out("%s", options.verbosity == 1 ? (map.name + "\n").c_str()
                                         : topology(world, map, options.listing > 1).text().c_str());
    return 0;
}

// ---- creating

Topology plan(const World& world, const LogicalUnit& unit, const Multipath& map) {
    Topology result;
    result.action = "create: ";
    result.alias = unit.alias;
    result.wwid = unit.wwid;
    result.device = result.access = "undef";
    result.product = product(world, presentPaths(world, unit).front());
    result.sectors = sectorsOf(world, unit);
    result.queueIfNoPath = map.queueIfNoPath && daemonRuns(world);
    for (const auto& group : map.groups) {
        PathGroup& drawn = result.groups.emplace_back();
        drawn.state = "undef";
        for (const DeviceNumber number : group)
            drawn.paths.push_back(pathLine(world, world.kernelName(number).value_or("")));
    }
    return result;
}

void create(World& world, const Options& options, const LogicalUnit& unit) {
    if (world.mapping(unit.alias))
        throw NotSimulated("an alias that another mapping has");
    const Multipath map = configuredMap(world, unit);
    if (options.verbosity >= 2) {
        for (const std::string& path : presentPaths(world, unit))
            log(path + ": setting scsi timeouts is unsupported for protocol scsi:unspec");
        log(unit.alias + ": addmap [" + map.loadText(sectorsOf(world, unit)) + "]");
    }
    const Mapping created = createMap(world, unit);
    if (readFile(world.path("udev_partitions")))
        mapPartitions(world, created, "-part");
    if (options.verbosity >= 2)
        out("%s", plan(world, unit, map).text().c_str());
}

int createMissing(World& world, const Options& options) {
    if (options.device)
        throw NotSimulated("creating a single map");
    for (const LogicalUnit& unit : logicalUnits(world)) {
        if (const auto map = mapOf(world, unit)) {
            if (options.verbosity >= 2)
                logMissingPaths(world, *map);
            continue;
        }
        if (presentPaths(world, unit).empty())
            continue;
        if (options.dryRun || options.verbosity == 1)
            throw NotSimulated("creating a map with -d or -v1");
        create(world, options, unit);
    }
    if (!options.dryRun && !logicalUnits(world).empty())
        warnAboutDaemon(world, options);
    return 0;
}

// ---- flushing

int inUse(const Options& options, const Mapping& mapping) {
    if (options.verbosity == 1)
        throw NotSimulated("flushing a map in use with -v1");
    if (options.verbosity >= 2)
        log(mapping.name + ": map in use");
    return Failed;
}

int flushMap(World& world, const Options& options, const Mapping& map) {
    const auto used = removeWithPartitions(world, map);
    return used ? inUse(options, *used) : 0;
}

void logMissing(const std::string& name) {
    log("libdevmapper: ioctl/libdm-iface.c(1980): device-mapper: table ioctl on " + name +
        "  failed: No such device or address");
}

/// Flushes every map of the list that it makes first. What a flush took along is missed aloud, unless
/// the daemon does the work.
int flushAll(World& world, const Options& options) {
    if (options.verbosity != 2 || options.device)
        throw NotSimulated("this form of -F");
    for (const Mapping& listed : world.mappings()) {
        const auto mapping = world.mapping(listed.name);
        if (!mapping && !daemonRuns(world))
            logMissing(listed.name);
        if (mapping && mapping->isMultipathMap() && flushMap(world, options, *mapping) != 0)
            throw NotSimulated("-F with a map in use");
    }
    return 0;
}

int flush(World& world, const Options& options) {
    if (!options.device) {
        log("the -f option requires a map name to remove");
        return Failed;
    }
    std::string name = *options.device;
    if (name.find('/') != std::string::npos) {
        const auto number = world.deviceOfNode(name);
        const auto mapping =
            number && number->major == DeviceMapperMajor ? world.mapping(number->minor) : std::nullopt;
        if (name.rfind("/dev/mapper/", 0) != 0 || !mapping)
            throw NotSimulated("-f with a path other than that of a mapping");
        name = mapping->name;
    }
    const auto map = world.mapping(name);
    if (options.verbosity < 2 && !(map && map->isMultipathMap()))
        throw NotSimulated("-f on something else than a map, with less than -v2");
    if (!map)
        logMissing(name);
    if (!map || !map->isMultipathMap()) {
        log(name + " is not a multipath device");
        return Failed;
    }
    return flushMap(world, options, *map);
}

} // namespace

int multipath(World& world, const Arguments& arguments) {
    const Options options = parse(arguments);
    if (options.dryRun + options.flush + options.flushAll > 1 ||
        (options.listing > 0 && (options.flush || options.flushAll)))
        throw NotSimulated("several actions at once");
    const UniqueFd lock = world.lockForChanges();
    if (options.listing > 0)
        return list(world, options);
    if (options.flushAll)
        return flushAll(world, options);
    return options.flush ? flush(world, options) : createMissing(world, options);
}

} // namespace sim
