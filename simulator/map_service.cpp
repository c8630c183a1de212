#include "map_service.h"

#include <algorithm>

#include "text_file.h"

namespace sim {

namespace {

std::string file(const World& world, const Mapping& mapping, const std::string& name) {
    return world.path("block/" + mapping.kernelName() + "/" + name);
}

void writePathStates(const World& world, const Mapping& map, const PathStates& states) {
    std::string text;
    for (const auto& [path, state] : states)
        text += path.text() + (state.failed ? " F " : " A ") + std::to_string(state.failures) + "\n";
    writeFile(file(world, map, "dm/paths"), text);
}

void fail(PathState& state) {
    if (!state.failed)
        ++state.failures;
    state.failed = true;
}

Multipath arguments(const Mapping& map) {
    const auto parsed = Multipath::parse(map.table.front());
    if (!parsed)
        throw WorldError(map.name + ": not a multipath table");
    return *parsed;
}

void setActiveGroup(World& world, const Mapping& map, unsigned group) {
    writeFile(file(world, map, "dm/active_group"), std::to_string(group) + "\n");
    Multipath changed = arguments(map);
    changed.nextGroup = std::max(group, 1U);
    world.setTable(map, {changed.target(map.table.front().length)});
}

Service ownService(const World& world, const Mapping& mapping) {
    if (isSuspended(world, mapping))
        return Service::waits;
    if (!mapping.isMultipathMap())
        return Service::works;
    const PathStates states = pathStates(world, mapping);
    for (const DeviceNumber path : devicesOf(mapping.table)) {
        const auto known = states.find(path);
        if (!(known != states.end() && known->second.failed) && answers(world, path))
            return Service::works;
    }
    return arguments(mapping).queueIfNoPath ? Service::waits : Service::fails;
}

/// What the device is worth with what lies beneath it.
Service effectiveService(const World& world, const Mapping& mapping) {
    Service result = ownService(world, mapping);
    if (mapping.isMultipathMap())
        return result;
    for (const DeviceNumber device : devicesOf(mapping.table)) {
        const auto below = device.major == DeviceMapperMajor ? world.mapping(device.minor) : std::nullopt;
        if (result == Service::works && below)
            result = service(world, *below);
    }
    return result;
}

} // namespace

PathStates pathStates(const World& world, const Mapping& map) {
    PathStates states;
    for (const std::string& line : split(readFile(file(world, map, "dm/paths")).value_or(""), "\n")) {
        const auto fields = words(line);
        const auto path = fields.size() == 3 ? parseDeviceNumber(fields[0]) : std::nullopt;
        if (path)
            states[*path] = {fields[1] == "F", static_cast<unsigned>(parseNumber(fields[2]).value_or(0))};
    }
    return states;
}

void setPathFailed(World& world, const Mapping& map, DeviceNumber path, bool failed) {
    PathStates states = pathStates(world, map);
    if (failed)
        fail(states[path]);
    else
        states[path].failed = false;
    writePathStates(world, map, states);
    refreshService(world, map);
}

void setQueueIfNoPath(World& world, const Mapping& map, bool queue) {
    Multipath changed = arguments(map);
    changed.queueIfNoPath = queue;
    world.setTable(map, {changed.target(map.table.front().length)});
    refreshService(world, map);
}

bool isSuspended(const World& world, const Mapping& mapping) {
    return readLine(file(world, mapping, "dm/suspended")) == "1";
}

void setSuspended(World& world, const Mapping& mapping, bool suspended) {
    writeFile(file(world, mapping, "dm/suspended"), suspended ? "1\n" : "0\n");
    refreshService(world, mapping);
}

unsigned activeGroup(const World& world, const Mapping& map) {
    return static_cast<unsigned>(parseNumber(readLine(file(world, map, "dm/active_group"))).value_or(0));
}

void noteUse(World& world, const Mapping& map) {
    if (!map.isMultipathMap())
        return;
    const auto groups = arguments(map).groups;
    const unsigned current = activeGroup(world, map);
    std::vector<unsigned> order;
    if (current >= 1 && current <= groups.size())
        order.push_back(current);
    for (unsigned group = 1; group <= groups.size(); ++group)
        order.push_back(group);
    PathStates states = pathStates(world, map);
    unsigned chosen = 0;
    for (const unsigned group : order) {
        bool good = false;
        for (const DeviceNumber path : groups[group - 1]) {
            if (!answers(world, path))
                fail(states[path]);
            const auto known = states.find(path);
            good |= known == states.end() || !known->second.failed;
        }
        if (good && chosen == 0)
            chosen = group;
        if (good)
            break;
    }
    if (!states.empty())
        writePathStates(world, map, states);
    if (chosen != current)
        setActiveGroup(world, map, chosen);
    refreshService(world, map);
}

void settle(World& world, const Mapping& map) {
    const auto groups = arguments(map).groups;
    const unsigned current = activeGroup(world, map);
    if (current == 0 || current > groups.size())
        return;
    const PathStates states = pathStates(world, map);
    const auto failed = [&](DeviceNumber path) {
        const auto known = states.find(path);
        return known != states.end() && known->second.failed;
    };
    const auto& paths = groups[current - 1];
    if (std::all_of(paths.begin(), paths.end(), failed))
        noteUse(world, map);
}

bool answers(const World& world, DeviceNumber path) {
    const auto disk = world.kernelName(path);
    const std::string state = disk ? world.attribute(*disk, "device/state") : "";
    return disk && (state.empty() || state == "running");
}

Service service(const World& world, const Mapping& mapping) {
    const std::string text = readLine(file(world, mapping, "service"));
    return text == "wait" ? Service::waits : text == "error" ? Service::fails : Service::works;
}

void refreshService(World& world, const Mapping& mapping) {
    const auto current = world.mapping(mapping.minor);
    if (!current)
        return;
    const Service now = effectiveService(world, *current);
    if (now == service(world, *current))
        return;
    if (now == Service::works)
        removeFile(file(world, *current, "service"));
    else
        writeFile(file(world, *current, "service"), now == Service::waits ? "wait\n" : "error\n");
    for (const std::string& holder : world.holders(current->kernelName())) {
        const auto number = parseDeviceNumber(world.attribute(holder, "dev"));
        if (const auto above = number ? world.mapping(number->minor) : std::nullopt)
            refreshService(world, *above);
    }
}

} // namespace sim
