#include "Questions.h"

#include <algorithm>
#include <fmt/format.h>

#include "ChangeReport.h"
#include "CommandGate.h"
#include "Confirmation.h"
#include "DeviceMapper.h"
#include "Diagnosis.h"
#include "Json.h"
#include "NrProcess.h"
#include "Output.h"
#include "SysBlock.h"
#include "Table.h"

namespace {

/** Prints an answer, as JSON if that was asked for. */
void answer(const Arguments& arguments, const Json& document, std::string_view text) {
    if (arguments.json)
        printJson(document);
    else
        print(text);
}

std::string lines(const std::vector<std::string>& items) {
    std::string text;
    for (const std::string& item : items)
        text += item + "\n";
    return text;
}

bool isMapped(const NrPartInfo& partition) {
    return partition.devName[0] != '\0';
}

Json partitionAsJson(const NrPartInfo& partition) {
    Json json = {{"number", partition.sliceMinor},
                 {"start", nullptr},
                 {"sectors", nullptr},
                 {"major", nullptr},
                 {"minor", nullptr},
                 {"node", nullptr}};
    if (isMapped(partition)) {
        json["start"] = partition.start;
        json["sectors"] = partition.size;
        json["major"] = partition.devMajor;
        json["minor"] = partition.devMinor;
        json["node"] = partition.devName;
    }
    return json;
}

std::string partitionTable(const std::vector<NrPartInfo>& partitions) {
    using Look = Table::Look;
    Table table{{"NUMBER", Look::right},
                {"START", Look::right},
                {"SECTORS", Look::right},
                {"MAJ:MIN", Look::right},
                {"NODE", Look::left}};
    for (const NrPartInfo& partition : partitions) {
        const std::string number = std::to_string(partition.sliceMinor);
        if (isMapped(partition))
            table.add({number, std::to_string(partition.start), std::to_string(partition.size),
                       fmt::format("{}:{}", partition.devMajor, partition.devMinor), partition.devName});
        else // Nothing is known of it but the number.
            table.add({number, "-", "-", "-", "-"});
    }
    return table.text();
}

bool hasUsablePath(const Mapping& map) {
    const auto states = map.paths();
    return std::any_of(states.begin(), states.end(),
                       [](const PathState& path) { return !path.failed && SysBlock(path.disk).mayWork(); });
}

/** A read from such a map waits for ever, or fails: its partition table is better left alone. */
void requireReadable(const Mapping& map) {
    const char* reason = map.suspended         ? "is suspended"
                         : !hasUsablePath(map) ? "has no usable path"
                                               : nullptr;
    if (reason)
        throw Failure(fmt::format("the partition table of {} is not read: the map {}, so that the read could "
                                  "wait for ever; see nrmpio show",
                                  map.name, reason));
}

/** What a distribution's rules call "mpatha-part1", kpartx(8) calls "mpatha1", and "data1-part1" "data1p1".
 */
std::vector<std::string> renamedByKpartx(const DeviceMapper& state, const Mapping& map) {
    const std::string rulesName = map.name + "-part";
    const char last = map.name.empty() ? '\0' : map.name.back();
    const std::string kpartxName = map.name + (last >= '0' && last <= '9' ? "p" : "");
    std::vector<std::string> renamed;
    for (const Mapping* mapping : state.linearOn(map.number))
        if (mapping->name.rfind(rulesName, 0) == 0)
            renamed.push_back(fmt::format("{} to {}{}{}", mapping->name, kpartxName,
                                          mapping->name.substr(rulesName.size()),
                                          mapping->openCount == 0 ? "" : " (in use)"));
    return renamed;
}

/** Tells what kpartx will do, and asks where it would rename something. False: it is not wanted. */
bool mayRunKpartx(const DeviceMapper& state, const Mapping& map, const Arguments& arguments) {
    const auto renamed = renamedByKpartx(state, map);
    tell(fmt::format("kpartx -a creates the partition mappings of {} that are missing{}", map.name,
                     renamed.empty() ? "" : fmt::format(", and renames {}", fmt::join(renamed, ", "))));
    if (renamed.empty())
        return true;
    requireAnswerable(arguments);
    return confirmed(fmt::format("Rename mappings of map {}?", map.name), arguments);
}

/** The library takes a failure of kpartx for nothing. */
ExitStatus statusOfKpartx() {
    auto result = ExitStatus::success;
    for (const Change& change : CommandGate::current().changes()) {
        if (change.status.value_or(0) == 0)
            continue;
        tell(*change.status == NrProcess::NoStatus
                 ? missing("kpartx")
                 : fmt::format("{} failed (code {})", change.line, *change.status));
        result = ExitStatus::failure;
    }
    return result;
}

} // namespace

ExitStatus check(const Library& library, const Arguments& arguments) {
    if (const auto vendor = library.init()) {
        answer(arguments, {{"vendor", *vendor}}, *vendor + "\n");
        return ExitStatus::success;
    }
    // The listing is what init runs, and it tells the reason.
    library.maps();
    throw Failure(fmt::format("{} cannot use the multipath tools", library.vendorName()));
}

ExitStatus list(const Library& library, const Arguments& arguments) {
    const auto listed = library.maps();
    const DeviceMapper state = readDeviceMapper(library);
    auto status = ExitStatus::success;
    std::vector<std::string> nodes;
    for (const std::string& path : listed) {
        const std::string name = path.substr(path.rfind('/') + 1);
        const Mapping* mapping = state.find(name);
        const bool isMap = mapping && mapping->isMap();
        const std::string node = isMap ? mapping->node() : "";
        if (!node.empty()) {
            nodes.push_back(node);
        } else {
            tell(isMap ? fmt::format("the map {} has no node in /dev", name) : notAMap(name));
            status = ExitStatus::failure;
        }
    }
    answer(arguments, {{"maps", nodes}}, lines(nodes));
    return status;
}

ExitStatus isMultipath(const Library& library, const Arguments& arguments) {
    const DeviceName& device = arguments.device();
    const bool yes = library.isMultipath(device);
    if (!yes)
        verifyNo(library, device);
    answer(arguments, {{"device", device.text()}, {"multipath", yes}}, yes ? "yes\n" : "no\n");
    return yes ? ExitStatus::success : ExitStatus::no;
}

ExitStatus isPartition(const Library& library, const Arguments& arguments) {
    const DeviceName& device = arguments.device();
    const auto parent = library.partitionParent(device);
    if (!parent)
        verifyNoPartition(library, device);
    answer(arguments,
           {{"device", device.text()},
            {"partition", parent.has_value()},
            {"parent", parent ? Json(*parent) : Json()}},
           parent.value_or("no") + "\n");
    return parent ? ExitStatus::success : ExitStatus::no;
}

ExitStatus paths(const Library& library, const Arguments& arguments) {
    const DeviceName& device = arguments.device();
    const auto paths = library.paths(device);
    if (!paths)
        throw notMultipath(library, device);
    answer(arguments, {{"device", device.text()}, {"paths", *paths}}, lines(*paths));
    return ExitStatus::success;
}

ExitStatus partitions(const Library& library, const Arguments& arguments) {
    const DeviceName& device = arguments.device();
    const DeviceMapper state = readDeviceMapper(library);
    const Mapping* mapping = state.find(device);
    if (mapping && mapping->isMap()) {
        requireReadable(*mapping);
        if (arguments.kpartx && !mayRunKpartx(state, *mapping, arguments))
            return ExitStatus::no;
    }
    const auto partitions = library.partitions(device, arguments.kpartx);
    if (!partitions)
        throw notMultipath(library, device);
    if (arguments.kpartx && arguments.dryRun) {
        reportChanges(arguments, device);
        return ExitStatus::success;
    }
    // The library takes a failing dependency list for an empty one; that of the paths fails aloud.
    if (std::none_of(partitions->begin(), partitions->end(), isMapped))
        library.paths(device);
    Json records = Json::array();
    std::transform(partitions->begin(), partitions->end(), std::back_inserter(records), partitionAsJson);
    answer(arguments, {{"device", device.text()}, {"partitions", records}}, partitionTable(*partitions));
    return statusOfKpartx();
}

ExitStatus scsiName(const Library& library, const Arguments& arguments) {
    const std::string name = library.scsiName(arguments.major, arguments.minor);
    if (name.empty())
        throw Failure(fmt::format("no SCSI disk has the number {}:{}", arguments.major, arguments.minor));
    answer(arguments, {{"major", arguments.major}, {"minor", arguments.minor}, {"name", name}}, name + "\n");
    return ExitStatus::success;
}
