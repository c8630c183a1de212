/* What a change is about: a map, and what lies on it. */
#ifndef TARGET_H
#define TARGET_H

#include <string>
#include <vector>

#include "DeviceMapper.h"
#include "Library.h"

/** A map as it was when it was looked at. */
class Target {
public:
    /**
     * The map that a device is, or that a partition mapping lies on.
     * @throw Failure when the device is neither.
     */
    static Target find(const Library& library, const DeviceName& device);

    const Mapping& map() const { return *deviceMapper_.find(number_); }
    /** The map's own node, where it has one; otherwise the device as it was named. */
    const DeviceName& device() const { return device_; }
    /** What lies directly on the map; all of it goes when partition mappings are removed. */
    std::vector<const Mapping*> mappings() const { return deviceMapper_.linearOn(number_); }
    /** The names of these and, where it goes too, the map's. */
    std::vector<std::string> removable(bool wholeMap) const;
    const DeviceMapper& deviceMapper() const { return deviceMapper_; }
    /** The name of the partition mapping that was meant; empty when it was the map. */
    const std::string& partition() const { return partition_; }

    /** @throw Failure when a partition mapping was meant. */
    void requireMap() const;

    /**
     * @throw Failure when the library would take a mapping for another one, or for several, or would
     * remove what is known to be no partition mapping.
     */
    void requireRemovable() const;

    /** Looks again. @throw Failure when the map or what lies on it is not the same any more. */
    void requireUnchanged() const;

private:
    Target(DeviceMapper deviceMapper, Node number, DeviceName device, std::string partition);

    DeviceMapper deviceMapper_;
    Node number_;
    DeviceName device_;
    std::string partition_;
};

/** "mpatha1, mpatha2" */
std::string namesOf(const std::vector<const Mapping*>& mappings);

/** "mpatha (64M)" */
std::string nameAndSize(const Mapping& mapping);

#endif
