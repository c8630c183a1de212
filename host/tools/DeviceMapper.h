/* What device-mapper has at one moment, as dmsetup(8) tells it. */
#ifndef DEVICEMAPPER_H
#define DEVICEMAPPER_H

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "DeviceName.h"

/** One path of a map, as the status of a multipath target tells it; see the kernel's dm-mpath. */
struct PathState {
    Node disk;
    bool failed;
};

/** One device-mapper device. */
struct Mapping {
    std::string name; ///< Raw: its node's name may be escaped.
    Node number;
    unsigned openCount = 0;
    bool suspended = false;
    std::vector<std::string> table;  ///< A target each: "START LENGTH TYPE ARGUMENTS", in sectors.
    std::vector<std::string> status; ///< The same with the target's state instead of its arguments.

    bool isMap() const;
    /** Whether I/O waits for a path when none is left. */
    bool queuesWithoutPath() const;
    std::vector<PathState> paths() const;
    bool isLinearOn(Node device) const;
    /** Where it begins on the device below, in sectors, when it is a single linear target. */
    std::optional<unsigned long long> linearStart() const;
    /** Its size in sectors, as its table tells it. */
    unsigned long long sectors() const;
    /** The path of its node in /dev/mapper or else in /dev; empty when it has none. */
    std::string node() const;
};

/** A snapshot: three commands are run for all devices together, however many there are. */
class DeviceMapper {
public:
    /** @throw Failure when dmsetup cannot tell. */
    static DeviceMapper read();

    const std::vector<Mapping>& all() const { return mappings_; }
    /** Null when there is none. */
    const Mapping* find(Node number) const;
    const Mapping* find(const std::string& name) const;
    /** By its node's number or, without a node, by its name. */
    const Mapping* find(const DeviceName& device) const;
    /** What the first linear target lies on, as the library looks for it; null when that is no mapping. */
    const Mapping* beneath(const Mapping& mapping) const;
    /** The mapping itself when it is a map, the map beneath it, or null. */
    const Mapping* mapOf(const Mapping& mapping) const;
    /** What has a linear target on the device: its partition mappings, and others made by hand. */
    std::vector<const Mapping*> linearOn(Node device) const;

private:
    using Number = std::pair<unsigned, unsigned>;
    void index();

    std::vector<Mapping> mappings_;               ///< In byte order of the names.
    std::map<Number, std::size_t> byNumber_;      ///< Places in mappings_.
    std::multimap<Number, std::size_t> linearOn_; ///< The same by the devices that they lie on.
};

#endif
