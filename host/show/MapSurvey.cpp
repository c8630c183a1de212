#include "MapSurvey.h"

#include <algorithm>
#include <fmt/format.h>

#include "Diagnosis.h"
#include "Printable.h"
#include "SysBlock.h"

namespace {

std::string lastComponent(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
}

/** None when the path cannot be passed to the library. */
std::optional<DeviceName> fitForLibrary(const std::string& path) {
    try {
        return DeviceName(path);
    } catch (const UsageError&) {
        return std::nullopt;
    }
}

std::optional<unsigned long long> bytes(std::optional<unsigned long long> sectors) {
    return sectors ? std::optional(*sectors * 512) : std::nullopt;
}

/** @param status null where device-mapper does not tell. */
std::string pathState(const SysBlock& disk, const PathState* status) {
    if (!disk.isThere())
        return "lost";
    if (!disk.mayWork())
        return disk.diskState();
    return !status ? "" : status->failed ? "failed" : "active";
}

/** A path whose state is unknown may be. */
bool isUsable(const Device& path) {
    return path.state.empty() || path.state == "active";
}

void describe(const Mapping& mapping, Device& device) {
    device.name = mapping.name;
    device.number = mapping.number;
    device.node = mapping.node();
    device.openCount = mapping.openCount;
    device.state = mapping.suspended ? "suspended" : "active";
    const auto sectors = SysBlock(mapping.number).sectors();
    device.size = bytes(sectors ? sectors : mapping.sectors());
    if (mapping.isMap())
        device.queues = mapping.queuesWithoutPath();
}

/** One map, on its way from nothing known to a report. */
class Inquiry {
public:
    Inquiry(const Library& library, const DeviceMapper* state, const Subject& subject)
        : library_(library), state_(state), mapping_(subject.mapping), device_(fitForLibrary(subject.path)) {
        if (mapping_)
            states_ = mapping_->paths();
        describeMap(subject.path);
    }

    MapReport report() {
        askForPaths();
        addOtherPaths();
        judgePaths();
        askForPartitions();
        addOtherMappings();
        return std::move(report_);
    }

private:
    void complain(std::string sentence) { report_.complaints.push_back(std::move(sentence)); }

    Device& addChild(Device::Type type) {
        Device& child = report_.map.children.emplace_back();
        child.type = type;
        return child;
    }

    bool hasChild(Node number) const {
        const auto& children = report_.map.children;
        return std::any_of(children.begin(), children.end(),
                           [number](const Device& child) { return child.number == number; });
    }

    void describeMap(const std::string& path) {
        Device& map = report_.map;
        if (mapping_)
            return describe(*mapping_, map);
        map.name = lastComponent(path);
        map.node = path;
        map.number = device_ ? Node::find(*device_) : std::nullopt;
        map.size = map.number ? bytes(SysBlock(*map.number).sectors()) : std::nullopt;
    }

    void askForPaths() {
        if (!device_)
            return;
        std::optional<std::vector<std::string>> disks;
        try {
            disks = library_.paths(*device_);
        } catch (const Failure& failure) {
            if (!mapping_)
                throw;
            return complain(failure.what());
        }
        if (!disks)
            throw notMultipath(library_, *device_);
        for (const std::string& disk : *disks)
            addPath(disk, Node::find(DeviceName(disk)));
    }

    void addPath(const std::string& node, std::optional<Node> number) {
        Device& path = addChild(Device::Type::path);
        path.name = lastComponent(node);
        path.node = node;
        path.number = number;
        if (!number)
            return;
        const auto status = std::find_if(states_.begin(), states_.end(),
                                         [&](const PathState& state) { return number == state.disk; });
        const SysBlock disk(*number);
        path.state = pathState(disk, status == states_.end() ? nullptr : &*status);
        path.size = bytes(disk.sectors());
    }

    /** Of the paths, the library tells only SCSI disks that are there. */
    void addOtherPaths() {
        for (const PathState& state : states_) {
            if (hasChild(state.disk))
                continue;
            const std::string name = SysBlock(state.disk).name();
            addPath(name.empty() ? "" : "/dev/" + name, state.disk);
            if (name.empty())
                report_.map.children.back().name = fmt::format("{}:{}", state.disk.major, state.disk.minor);
        }
    }

    bool hasUsablePath() const {
        const auto& paths = report_.map.children;
        return std::any_of(paths.begin(), paths.end(), isUsable);
    }

    void judgePaths() {
        if (mapping_ && !mapping_->suspended && !hasUsablePath())
            report_.map.state = mapping_->queuesWithoutPath() ? "queueing" : "failing";
    }

    /** Why the partition table is not read; empty when it is. */
    const char* obstacle() const {
        if (report_.map.node.empty())
            return "it has no node in /dev";
        if (!device_)
            return "its name cannot be passed on safely";
        if (mapping_ && mapping_->suspended)
            return "it is suspended";
        return hasUsablePath() ? "" : "it has no usable path";
    }

    void askForPartitions() {
        if (const std::string reason = obstacle(); !reason.empty())
            return complain(fmt::format("the partition table of {} is not read: {}",
                                        printable(report_.map.name, localeCharacterSet()), reason));
        try {
            if (const auto partitions = library_.partitions(*device_, false))
                for (const NrPartInfo& partition : *partitions)
                    addPartition(partition);
        } catch (const Failure& failure) {
            complain(failure.what());
        }
    }

    void addPartition(const NrPartInfo& record) {
        Device& partition = addChild(Device::Type::partition);
        partition.partition = record.sliceMinor;
        if (record.devName[0] == '\0') {
            partition.name = fmt::format("partition {}", record.sliceMinor);
            partition.state = "unmapped";
            return;
        }
        const Node number{record.devMajor, record.devMinor};
        partition.number = number;
        partition.start = record.start;
        partition.sectors = record.size;
        if (const Mapping* mapping = state_ ? state_->find(number) : nullptr)
            describe(*mapping, partition);
        partition.node = record.devName;
        partition.name = partition.name.empty() ? lastComponent(record.devName) : partition.name;
        partition.size = bytes(record.size);
    }

    /** What the partition table does not explain, or all where it is not read, by place on the map. */
    void addOtherMappings() {
        if (!mapping_)
            return;
        auto mappings = state_->linearOn(mapping_->number);
        std::stable_sort(mappings.begin(), mappings.end(), [](const Mapping* one, const Mapping* other) {
            return one->linearStart() < other->linearStart();
        });
        for (const Mapping* mapping : mappings) {
            if (hasChild(mapping->number))
                continue;
            Device& partition = addChild(Device::Type::partition);
            describe(*mapping, partition);
            partition.start = mapping->linearStart();
            partition.sectors = mapping->sectors();
        }
    }

    const Library& library_;
    const DeviceMapper* state_;
    const Mapping* mapping_;
    const std::optional<DeviceName> device_;
    std::vector<PathState> states_;
    MapReport report_;
};

} // namespace

MapReport MapSurvey::ask(const Subject& subject) const {
    return Inquiry(library_, state_, subject).report();
}
