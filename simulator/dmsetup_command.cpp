#include "dmsetup_command.h"

#include <algorithm>

namespace sim::dm {

namespace {

constexpr int Failed = 1;

unsigned numberOption(const Options& options, const char* name) {
    const auto found = options.values.find(name);
    const auto value = found != options.values.end() ? parseNumber(found->second) : std::nullopt;
    if (!value || *value > 0xfffff)
        throw NotSimulated(std::string("a device named without a proper --") + name);
    return static_cast<unsigned>(*value);
}

/// The name of a device given as a path. A node outside /dev/mapper counts when the device has one there.
std::optional<std::string> nameOfPath(const World& world, const std::string& path) {
    const auto number = world.deviceOfNode(path);
    const auto mapping =
        number && number->major == DeviceMapperMajor ? world.mapping(number->minor) : std::nullopt;
    const auto node = mapping ? world.deviceOfNode("/dev/mapper/" + nodeName(mapping->name)) : std::nullopt;
    if (node && *node == *number)
        return mapping->name;
    err("Device %s not found\n",
        world.exists(path) ? path.substr(path.rfind('/') + 1).c_str() : path.c_str());
    return std::nullopt;
}

bool isSelected(const Options& options, const Mapping& mapping) {
    if (!options.has("target"))
        return true;
    const std::string& type = options.values.at("target");
    return std::any_of(mapping.table.begin(), mapping.table.end(),
                       [&](const Target& target) { return target.type == type; });
}

} // namespace

void requireOnly(const Options& options, std::initializer_list<const char*> known) {
    for (const auto& [name, value] : options.values)
        if (std::find(known.begin(), known.end(), name) == known.end())
            throw NotSimulated("option --" + name + " of " + options.command);
}

bool namesOneDevice(const Options& options) {
    return options.has("major") || options.has("minor") || !options.operands.empty();
}

std::optional<Wanted> wantedDevice(const World& world, const Options& options) {
    if (options.has("major") || options.has("minor")) {
        const DeviceNumber number{numberOption(options, "major"), numberOption(options, "minor")};
        if (number.major != 0)
            return Wanted{"", number};
        err("Missing major number for persistent device.\nCouldn't create ioctl argument.\n");
        return std::nullopt;
    }
    const std::string& operand = options.operands.front();
    if (operand.find('/') == std::string::npos)
        return Wanted{operand, std::nullopt};
    const auto name = nameOfPath(world, operand);
    return name ? std::optional<Wanted>(Wanted{*name, std::nullopt}) : std::nullopt;
}

std::optional<Mapping> find(const World& world, const Wanted& wanted) {
    if (!wanted.number)
        return world.mapping(wanted.name);
    return wanted.number->major == DeviceMapperMajor ? world.mapping(wanted.number->minor) : std::nullopt;
}

std::vector<Mapping> listed(const World& world, const Options& options) {
    std::vector<Mapping> mappings = world.mappings();
    if (mappings.empty())
        out("No devices found\n");
    const auto unselected = std::remove_if(mappings.begin(), mappings.end(), [&](const Mapping& mapping) {
        return !isSelected(options, mapping);
    });
    if (unselected == mappings.begin() && unselected != mappings.end())
        throw NotSimulated("a listing from which --target leaves nothing");
    mappings.erase(unselected, mappings.end());
    return mappings;
}

int commandFailed() {
    err("Command failed.\n");
    return Failed;
}

int ioctlFailed(const std::string& command, const Wanted& wanted, const char* error) {
    err("device-mapper: %s ioctl on %s failed: %s\n", command.c_str(), wanted.text().c_str(), error);
    return commandFailed();
}

} // namespace sim::dm
