// dmsetup table, status, deps and ls. See dmsetup(8).
#include "dmsetup_command.h"

#include <algorithm>

#include "map_service.h"

namespace sim::dm {

namespace {

/// The lines of a report on one device, each with its line end.
using Report = std::vector<std::string> (*)(const World&, const Options&, const Mapping&);

std::vector<std::string> tableLines(const World&, const Options&, const Mapping& mapping) {
    std::vector<std::string> lines;
    for (const Target& target : mapping.table)
        lines.push_back(target.text() + "\n");
    return lines.empty() ? std::vector<std::string>{"\n"} : lines;
}

std::vector<std::string> statusLines(const World& world, const Options&, const Mapping& mapping) {
    std::vector<std::string> lines;
    for (Target target : mapping.table) {
        const auto map = Multipath::parse(target);
        target.arguments.clear();
        lines.push_back(
            target.text() +
            (map ? map->statusText(activeGroup(world, mapping), pathStates(world, mapping)) : "") + "\n");
    }
    return lines.empty() ? std::vector<std::string>{"\n"} : lines;
}

std::string dependencyText(const World& world, const std::string& form, DeviceNumber device) {
    if (form == "devno")
        return std::to_string(device.major) + ", " + std::to_string(device.minor);
    if (form != "devname" && form != "blkdevname")
        throw NotSimulated("deps -o " + form);
    if (const auto mapping = world.mapping(device.minor);
        form == "devname" && device.major == DeviceMapperMajor && mapping)
        return mapping->name;
    return world.kernelName(device).value_or(device.text());
}

std::vector<std::string> depsLines(const World& world, const Options& options, const Mapping& mapping) {
    const auto form = options.has("options") ? options.values.at("options") : "devno";
    auto devices = devicesOf(mapping.table);
    std::reverse(devices.begin(), devices.end()); // the kernel lists the last one first
    std::string line = std::to_string(devices.size()) + " dependencies\t:";
    for (const DeviceNumber device : devices)
        line += " (" + dependencyText(world, form, device) + ")";
    return {line + "\n"};
}

int report(const World& world, const Options& options, Report lines) {
    if (!namesOneDevice(options)) {
        for (const Mapping& mapping : listed(world, options))
            for (const std::string& line : lines(world, options, mapping))
                out("%s: %s", mapping.name.c_str(), line.c_str());
        return 0;
    }
    if (options.has("target"))
        throw NotSimulated("--target with a device");
    return onMapping(world, options, [&](const auto&, const Mapping& mapping) {
        for (const std::string& line : lines(world, options, mapping))
            out("%s", line.c_str());
        return 0;
    });
}

/// A device and what lies beneath it; `indent` is what the lines beneath begin with.
void printTree(const World& world, DeviceNumber device, const std::string& indent) {
    const auto mapping = device.major == DeviceMapperMajor ? world.mapping(device.minor) : std::nullopt;
    out("%s (%s)\n", mapping ? mapping->name.c_str() : "", device.text().c_str());
    auto devices = mapping ? devicesOf(mapping->table) : std::vector<DeviceNumber>{};
    std::reverse(devices.begin(), devices.end());
    for (const DeviceNumber below : devices) {
        const bool last = below == devices.back();
        out("%s%s", indent.c_str(), last ? "`-" : "|-");
        printTree(world, below, indent + (last ? "   " : "|  "));
    }
}

int tree(const World& world, const Options& options) {
    if (options.has("target"))
        throw NotSimulated("a tree of one target");
    for (const Mapping& mapping : listed(world, options))
        if (world.holders(mapping.kernelName()).empty())
            printTree(world, mapping.number(), " ");
    return 0;
}

} // namespace

int table(World& world, const Options& options) {
    requireOnly(options, {"major", "minor", "target"});
    return report(world, options, tableLines);
}

int status(World& world, const Options& options) {
    requireOnly(options, {"major", "minor", "target"});
    return report(world, options, statusLines);
}

int deps(World& world, const Options& options) {
    requireOnly(options, {"major", "minor", "options"});
    return report(world, options, depsLines);
}

int ls(World& world, const Options& options) {
    requireOnly(options, {"target", "tree"});
    if (!options.operands.empty())
        throw NotSimulated("ls with a device");
    if (options.has("tree"))
        return tree(world, options);
    const char* separator = options.has("target") ? ", " : ":";
    for (const Mapping& mapping : listed(world, options))
        out("%s\t(%u%s%u)\n", mapping.name.c_str(), DeviceMapperMajor, separator, mapping.minor);
    return 0;
}

} // namespace sim::dm
