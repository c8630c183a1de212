#include "Columns.h"

#include <algorithm>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <strings.h>

#include "ExitStatus.h"
#include "SizeText.h"

namespace {

using Look = Table::Look;
using Json = Table::Json;

template <class Number>
std::string decimal(const std::optional<Number>& number) {
    return number ? std::to_string(*number) : "";
}

std::string typeText(const Device& device, bool) {
    switch (device.type) {
    case Device::Type::map:
        return "map";
    case Device::Type::path:
        return "path";
    default:
        return "part";
    }
}

std::string numberText(const Device& device, bool) {
    return device.number ? fmt::format("{}:{}", device.number->major, device.number->minor) : "";
}

std::string sizeCell(const Device& device, bool bytes) {
    return !device.size ? "" : bytes ? std::to_string(*device.size) : sizeText(*device.size);
}

std::string queueText(const Device& device, bool) {
    return !device.queues ? "" : *device.queues ? "yes" : "no";
}

bool sameIgnoringCase(const std::string& one, const char* other) {
    return strcasecmp(one.c_str(), other) == 0;
}

const ColumnInfo& columnNamed(const std::string& name) {
    const auto& columns = showColumns();
    const auto found = std::find_if(columns.begin(), columns.end(), [&](const ColumnInfo& column) {
        return sameIgnoringCase(name, column.heading);
    });
    if (found != columns.end())
        return *found;
    std::vector<std::string> known;
    known.reserve(columns.size());
    for (const ColumnInfo& column : columns)
        known.emplace_back(column.heading);
    throw UsageError(fmt::format("there is no column {}; the columns are {}", name, fmt::join(known, ", ")));
}

} // namespace

Table::Color stateColor(const Device& device) {
    const std::string& state = device.state;
    if (state == "failed" || state == "lost" || state == "failing")
        return Table::Color::red;
    const bool well = state.empty() || state == "active" || state == "unmapped";
    return well ? Table::Color::none : Table::Color::yellow;
}

const std::vector<ColumnInfo>& showColumns() {
    static const std::vector<ColumnInfo> columns = {
        {"NAME", "the name of the map, disk or partition mapping", true, Look::tree, Json::text,
         [](const Device& device, bool) { return device.name; }},
        {"TYPE", "map, path or part", true, Look::left, Json::text, typeText},
        {"MAJ:MIN", "the device number", true, Look::right, Json::text, numberText},
        {"SIZE", "the size; with --bytes in bytes", true, Look::right, Json::text, sizeCell},
        {"STATE",
         "of a map: active, suspended, queueing or failing (no usable path: I/O waits or fails); of a path: "
         "active, failed, lost (gone from the system) or what the disk says, such as offline; of a "
         "partition: active, suspended or unmapped (no mapping with a node in /dev/mapper)",
         true, Look::left, Json::text, [](const Device& device, bool) { return device.state; }, stateColor},
        {"NODE", "the path of the device's node", true, Look::left, Json::text,
         [](const Device& device, bool) { return device.node; }},
        {"OPEN", "how often the map or mapping is open", false, Look::right, Json::number,
         [](const Device& device, bool) { return decimal(device.openCount); }},
        {"PARTN", "the number of the partition", false, Look::right, Json::number,
         [](const Device& device, bool) { return decimal(device.partition); }},
        {"START", "the start of the partition in sectors of 512 bytes", false, Look::right, Json::number,
         [](const Device& device, bool) { return decimal(device.start); }},
        {"SECTORS", "the length of the partition in sectors of 512 bytes", false, Look::right, Json::number,
         [](const Device& device, bool) { return decimal(device.sectors); }},
        {"QUEUE", "whether I/O to the map waits while no path is left: yes or no", false, Look::left,
         Json::truth, queueText},
    };
    return columns;
}

Table::Column ColumnInfo::column(bool bytes) const {
    return {heading, look, bytes && cell == sizeCell ? Json::number : json};
}

std::vector<const ColumnInfo*> chosenColumns(const std::vector<std::string>& names) {
    std::vector<const ColumnInfo*> chosen;
    for (const std::string& name : names) {
        const ColumnInfo& column = columnNamed(name);
        if (std::find(chosen.begin(), chosen.end(), &column) != chosen.end())
            throw UsageError(fmt::format("the column {} is chosen twice", column.heading));
        chosen.push_back(&column);
    }
    if (names.empty())
        for (const ColumnInfo& column : showColumns())
            if (column.usual)
                chosen.push_back(&column);
    return chosen;
}
