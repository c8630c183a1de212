// dmsetup: table, status, info, deps, ls, message, create, remove, rename, version. See dmsetup(8).
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <map>

#include <unistd.h>

#include "daemon.h"
#include "logical_units.h"
#include "map_service.h"
#include "text_file.h"
#include "tools.h"

namespace sim {

namespace {

constexpr int Failed = 1;

/// A command line taken apart.
struct Options {
    std::string command;
    Arguments operands;
    std::map<std::string, std::string> values; // of options such as --target, by their long names
    bool has(const std::string& option) const { return values.count(option) != 0; }
};

struct OptionForm {
    const char* longName;
    char shortName;
    bool takesValue;
};

constexpr OptionForm OptionForms[] = {
    {"major", 'j', true},        {"minor", 'm', true},    {"columns", 'c', false},
    {"noheadings", '\0', false}, {"options", 'o', true},  {"target", '\0', true},
    {"table", '\0', true},       {"notable", 'n', false}, {"tree", '\0', false},
};

const OptionForm& optionForm(const std::string& argument) {
    for (const OptionForm& form : OptionForms)
        if (argument == std::string("--") + form.longName ||
            (form.shortName != '\0' && argument == std::string("-") + form.shortName))
            return form;
    throw NotSimulated("option " + argument);
}

Options parse(const Arguments& arguments) {
    Options options;
    for (size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (argument.size() < 2 || argument[0] != '-') {
            (options.command.empty() ? options.command : options.operands.emplace_back()) = argument;
            continue;
        }
        const OptionForm& form = optionForm(argument);
        if (form.takesValue && ++i == arguments.size())
            throw NotSimulated("option " + argument + " without a value");
        options.values[form.longName] = form.takesValue ? arguments[i] : "";
    }
    return options;
}

void requireOnly(const Options& options, std::initializer_list<const char*> known) {
    for (const auto& [name, value] : options.values)
        if (std::find(known.begin(), known.end(), name) == known.end())
            throw NotSimulated("option --" + name + " of " + options.command);
}

// ---- finding the device that a command is about

/// How a command names its device: by a name, or by numbers.
struct Wanted {
    std::string name;
    std::optional<DeviceNumber> number;

    /// As the messages of a failed ioctl show it.
    std::string text() const { return number ? " (" + number->text() + ")" : name + " "; }
};

int commandFailed() {
    err("Command failed.\n");
    return Failed;
}

int ioctlFailed(const std::string& command, const Wanted& wanted, const char* error) {
    err("device-mapper: %s ioctl on %s failed: %s\n", command.c_str(), wanted.text().c_str(), error);
    return commandFailed();
}

constexpr char NoSuchDevice[] = "No such device or address";
constexpr char InvalidArgument[] = "Invalid argument";
constexpr char Busy[] = "Device or resource busy";

bool namesOneDevice(const Options& options) {
    return options.has("major") || options.has("minor") || !options.operands.empty();
}

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

/// What the command line names; nothing, and the reason printed, when it can't be a device.
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

// ---- reports: table, status, deps

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

bool isSelected(const Options& options, const Mapping& mapping) {
    if (!options.has("target"))
        return true;
    const std::string& type = options.values.at("target");
    return std::any_of(mapping.table.begin(), mapping.table.end(),
                       [&](const Target& target) { return target.type == type; });
}

/// The mappings that a listing is about. Prints the usual sentence when there is none at all.
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

/// Does something with the mapping that the command line names, or fails as the command's ioctl does.
template <typename Action>
int onMapping(const World& world, const Options& options, Action action) {
    const auto wanted = wantedDevice(world, options);
    if (!wanted)
        return commandFailed();
    const auto mapping = find(world, *wanted);
    return mapping ? action(*wanted, *mapping) : ioctlFailed(options.command, *wanted, NoSuchDevice);
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

// ---- info

struct Column {
    const char* option;
    const char* heading;
    bool right;
    int width; // at least
};

constexpr Column Columns[] = {
    {"name", "Name", false, 16},  {"major", "Maj", true, 3},   {"minor", "Min", true, 3},
    {"attr", "Stat", false, 4},   {"open", "Open", true, 4},   {"segments", "Targ", true, 4},
    {"events", "Event", true, 6}, {"uuid", "UUID", false, 32}, {"subsystem", "Subsys", false, 6},
};

const Column& column(const std::string& option) {
    for (const Column& candidate : Columns)
        if (option == candidate.option)
            return candidate;
    throw NotSimulated("info column " + option);
}

std::string subsystem(const Mapping& mapping) {
    return mapping.uuid.substr(0, mapping.uuid.find('-'));
}

std::string field(const World& world, const Mapping& mapping, const std::string& option) {
    if (option == "name")
        return mapping.name;
    if (option == "uuid")
        return mapping.uuid;
    if (option == "major")
        return std::to_string(DeviceMapperMajor);
    if (option == "minor")
        return std::to_string(mapping.minor);
    if (option == "subsystem")
        return subsystem(mapping);
    if (option == "open")
        return std::to_string(world.openCount(mapping));
    if (option == "segments")
        return std::to_string(mapping.table.size());
    if (option == "events")
        return world.attribute(mapping.kernelName(), "dm/event");
    return std::string(mapping.table.empty() ? "-" : "L") + "-" + (isSuspended(world, mapping) ? "s" : "-") +
           "w";
}

using Row = std::vector<std::string>;

std::vector<size_t> widthsOf(const std::vector<Row>& rows, const Row& chosen) {
    std::vector<size_t> widths;
    for (size_t i = 0; i < chosen.size(); ++i) {
        widths.push_back(static_cast<size_t>(column(chosen[i]).width));
        for (const Row& row : rows)
            widths[i] = std::max(widths[i], row[i].size());
    }
    return widths;
}

void printRow(const Row& row, const Row& chosen, const std::vector<size_t>& widths, bool plain,
              bool heading) {
    for (size_t i = 0; i < row.size(); ++i) {
        if (i > 0)
            out("%s", plain ? ":" : " ");
        const std::string padding(plain ? 0 : widths[i] - row[i].size(), ' ');
        const bool right = column(chosen[i]).right && !heading;
        out("%s%s%s", right ? padding.c_str() : "", row[i].c_str(), right ? "" : padding.c_str());
    }
    out("\n");
}

void printColumns(const World& world, const Options& options, const std::vector<Mapping>& mappings) {
    const auto chosen = split(options.has("options") ? options.values.at("options")
                                                     : "name,major,minor,attr,open,segments,events,uuid",
                              ",");
    const bool plain = options.has("noheadings");
    std::vector<Row> rows;
    if (!plain) {
        rows.emplace_back();
        for (const std::string& option : chosen)
            rows.back().emplace_back(column(option).heading);
    }
    for (const Mapping& mapping : mappings) {
        rows.emplace_back();
        for (const std::string& option : chosen) {
            column(option);
            rows.back().push_back(field(world, mapping, option));
        }
    }
    const std::vector<size_t> widths = widthsOf(rows, chosen);
    for (const auto& row : rows)
        printRow(row, chosen, widths, plain, !plain && &row == &rows.front());
}

void printLong(const World& world, const Mapping& mapping) {
    out("Name:              %s\n", mapping.name.c_str());
    out("State:             %s\nRead Ahead:        256\n",
        isSuspended(world, mapping) ? "SUSPENDED" : "ACTIVE");
    out("Tables present:    %s\n", mapping.table.empty() ? "None" : "LIVE");
    out("Open count:        %u\n", world.openCount(mapping));
    out("Event number:      %s\n", world.attribute(mapping.kernelName(), "dm/event").c_str());
    out("Major, minor:      %u, %u\n", DeviceMapperMajor, mapping.minor);
    out("Number of targets: %zu\n", mapping.table.size());
    if (!mapping.uuid.empty())
        out("UUID: %s\n", mapping.uuid.c_str());
    out("\n");
}

int info(World& world, const Options& options) {
    requireOnly(options, {"major", "minor", "columns", "noheadings", "options"});
    const bool columns = options.has("columns");
    if (!columns && (options.has("options") || options.has("noheadings") || !namesOneDevice(options)))
        throw NotSimulated("this form of info");
    if (!namesOneDevice(options)) {
        const auto mappings = listed(world, options);
        if (!mappings.empty())
            printColumns(world, options, mappings);
        return 0;
    }
    const auto wanted = wantedDevice(world, options);
    if (!wanted)
        return commandFailed();
    const auto mapping = find(world, *wanted);
    if (!mapping) {
        err("Device does not exist.\n");
        return commandFailed();
    }
    if (columns)
        printColumns(world, options, {*mapping});
    else
        printLong(world, *mapping);
    return 0;
}

// ---- changes

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

std::string standardInput() {
    std::string text;
    char block[4096];
    for (ssize_t count; (count = ::read(STDIN_FILENO, block, sizeof block)) > 0;)
        text.append(block, static_cast<size_t>(count));
    return text;
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

int create(World& world, const Options& options) {
    requireOnly(options, {"table", "notable"});
    if (options.operands.size() != 1 || options.operands[0].find('/') != std::string::npos ||
        options.operands[0].size() > 127 || world.mapping(options.operands[0]))
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
    if (!mapping || options.operands[1].find('/') != std::string::npos || world.mapping(options.operands[1]))
        throw NotSimulated("rename other than to a new name");
    world.rename(*mapping, options.operands[1]);
    return 0;
}

int version(World&, const Options& options) {
    requireOnly(options, {});
    out("Library version:   1.02.185 (2022-05-18)\nDriver version:    4.47.0\n");
    return 0;
}

struct Command {
    const char* name;
    int (*run)(World&, const Options&);
    size_t operands; // at most
    bool changes;
};

constexpr Command Commands[] = {
    {"table", table, 1, false},
    {"status", status, 1, false},
    {"deps", deps, 1, false},
    {"ls", ls, 0, false},
    {"info", info, 1, false},
    {"version", version, 0, false},
    {"message", message, 3, true},
    {"remove", remove, 1, true},
    {"create", create, 1, true},
    {"rename", rename, 2, true},
    {"suspend", suspendOrResume, 1, true},
    {"resume", suspendOrResume, 1, true},
};

} // namespace

int dmsetup(World& world, const Arguments& arguments) {
    Options options = parse(arguments);
    // Read before the world is locked: what is piped in may come from another tool.
    if (options.command == "create" && !options.has("notable") && !options.has("table"))
        options.values["table"] = standardInput();
    for (const Command& command : Commands) {
        if (options.command != command.name)
            continue;
        if (options.operands.size() > command.operands)
            throw NotSimulated("more than one device");
        const UniqueFd lock = command.changes ? world.lockForChanges() : world.lockForReading();
        return command.run(world, options);
    }
    throw NotSimulated("this command of dmsetup");
}

} // namespace sim
