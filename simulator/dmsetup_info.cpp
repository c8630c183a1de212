// dmsetup info, in columns and long. See dmsetup(8).
#include "dmsetup_command.h"

#include <algorithm>

#include "map_service.h"

namespace sim::dm {

namespace {

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

} // namespace

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

} // namespace sim::dm
