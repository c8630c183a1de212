// dmsetup message, suspend, resume, remove, create and rename. See dmsetup(8).
#include "dmsetup_command.h"

#include <algorithm>

#include "daemon.h"
#include "map_service.h"

namespace sim::dm {

namespace {

constexpr char InvalidArgument[] = "Invalid argument";
constexpr char Busy[] = "Device or resource busy";
constexpr size_t LongestName = 127; // as the kernel knows it

/// A name that no mapping has, as create and rename need one.
bool isNewName(const World& world, const std::string& name) {
    return name.find('/') == std::string::npos && nodeName(name).size() <= LongestName &&
           !world.mapping(name);
}

/// A message to a multipath target. False when the target does not understand it; see the kernel's
/// Documentation/admin-guide/device-mapper/ and dmsetup(8).
bool deliver(World& world, const Mapping& map, const std::string& text) {
    const std::vector<std::string> parts = words(text);
    const std::string verb = parts.empty() ? "" : parts.front();
    if (parts.size() == 1 && (verb == "queue_if_no_path" || verb == "fail_if_no_path")) {
        setQueueIfNoPath(world, map, verb == "queue_if_no_path");
        if (verb == "fail_if_no_path")
            planRestoring(world, map);
        return true;
    }
    if (verb == "disable_group" || verb == "enable_group" || verb == "switch_group")
        throw NotSimulated("messages about path groups");
    const auto path = parts.size() == 2 ? parseDeviceNumber(parts[1]) : std::nullopt;
    const auto paths = devicesOf(map.table);
    if ((verb != "fail_path" && verb != "reinstate_path") || !path ||
        std::find(paths.begin(), paths.end(), *path) == paths.end())
        return false;
    setPathFailed(world, map, *path, verb == "fail_path");
    return true;
}

/// Replaces a device's path by its numbers, as the kernel keeps a linear target.
Table loadable(const World& world, const std::string& text) {
    auto table = parseTable(text);
    if (!table || table->empty())
        throw NotSimulated("a table that does not parse");
    for (Target& target : *table) {
        if (target.type == "zero" && target.arguments.empty())
            continue;
        if (target.type != "linear" || target.arguments.size() != 2 || !parseNumber(target.arguments[1]))
            throw NotSimulated("targets other than linear and zero");
        std::string& device = target.arguments[0];
        const auto number = device[0] == '/' ? world.deviceOfNode(device) : parseDeviceNumber(device);
        if (!number || !world.kernelName(*number))
            throw NotSimulated("a table on a device that does not exist");
        device = number->text();
    }
    return *table;
}

} // namespace

int message(World& world, const Options& options) {
    requireOnly(options, {"major", "minor"});
    const size_t before = options.has("major") ? 0 : 1; // the device
    if (options.operands.size() != before + 2 || options.operands[before] != "0")
        throw NotSimulated("this form of message");
    const std::string text = options.operands[before + 1];
    return onMapping(world, options, [&](const auto& wanted, const Mapping& mapping) {
        const bool multipath = !mapping.table.empty() && mapping.table.front().type == "multipath";
        return multipath && deliver(world, mapping, text) ? 0
                                                          : ioctlFailed("message", wanted, InvalidArgument);
    });
}

int suspendOrResume(World& world, const Options& options) {
    requireOnly(options, {"major", "minor"});
    if (!namesOneDevice(options))
        throw NotSimulated(options.command + " without a device");
    return onMapping(world, options, [&](const auto&, const Mapping& mapping) {
        setSuspended(world, mapping, options.command == "suspend");
        return 0;
    });
}

int remove(World& world, const Options& options) {
    requireOnly(options, {"major", "minor"});
    if (!namesOneDevice(options)) {
        err("No device specified.\n");
        return commandFailed();
    }
    return onMapping(world, options, [&](const auto& wanted, const Mapping& mapping) {
        return world.remove(mapping) ? 0 : ioctlFailed("remove", wanted, Busy);
    });
}

int create(World& world, const Options& options) {
    requireOnly(options, {"table", "notable"});
    if (options.operands.size() != 1 || !isNewName(world, options.operands[0]))
        throw NotSimulated("create without a new name");
    Table table;
    if (!options.has("notable"))
        table = loadable(world, options.values.at("table"));
    world.addMapping(options.operands[0], "", table);
    for (const DeviceNumber device : devicesOf(table)) // udev looks for what is on the new device
        if (const auto below = device.major == DeviceMapperMajor ? world.mapping(device.minor) : std::nullopt)
            noteUse(world, *below);
    return 0;
}

int rename(World& world, const Options& options) {
    requireOnly(options, {});
    const auto mapping = options.operands.size() == 2 ? world.mapping(options.operands[0]) : std::nullopt;
    if (!mapping || !isNewName(world, options.operands[1]))
        throw NotSimulated("rename other than to a new name");
    world.rename(*mapping, options.operands[1]);
    return 0;
}

} // namespace sim::dm
