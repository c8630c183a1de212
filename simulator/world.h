// The state of a world, kept in a directory in the manner of sysfs:
//
//   block/sda/{dev,size,image,device/{hctl,vendor,model,state},holders/,slaves/}
//   block/dm-0/{dev,size,image,dm/{name,uuid,table,event,suspended,active_group},holders/,slaves/}
//   sys/block (block is a link to it), sys/class/block -> ../block
//   sys/dev/block/8:0 -> ../../block/sda
//   names/mpatha -> ../block/dm-0      mappings by name, as the kernel knows it
//   dev/, dev/mapper/                  nodes; see redirect.h
//   proc/{partitions,swaps,mounts,self/{mountinfo,mounts}}
//   images/, luns/, faults/, daemon    see the rooms that use them
//   lost/                              disks that are gone for now
//   lock
//
// A mapping is found by number or by name without looking at any other. Nodes are not needed to find
// a mapping: one without the other is a state that real machines are in, too.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "device_number.h"
#include "mapping_table.h"
#include "unique_fd.h"

namespace sim {

/// A device-mapper device.
struct Mapping {
    unsigned minor = 0;
    std::string name;
    std::string uuid;
    Table table;

    DeviceNumber number() const { return {DeviceMapperMajor, minor}; }
    std::string kernelName() const { return "dm-" + std::to_string(minor); }
    bool isMultipathMap() const;
};

/// Every function throws WorldError when the directory cannot be read or changed. The caller holds
/// a lock: one for reading around lookups, one for changes around changes.
class World {
public:
    explicit World(std::string directory) : directory_(std::move(directory)) {}

    /// False when the world has ended.
    bool isThere() const;

    /// Locks are held until the returned descriptor is closed, or the process ends.
    UniqueFd lockForReading() const;
    UniqueFd lockForChanges() const;

    /// The path of something in the world's directory.
    std::string path(const std::string& relative) const { return directory_ + "/" + relative; }
    /// A file of a device, for example ("sda", "device/vendor"), without its line end.
    std::string attribute(const std::string& kernelName, const std::string& file) const;
    std::string imageOf(const std::string& kernelName) const;

    // ---- devices

    std::optional<std::string> kernelName(DeviceNumber number) const;
    /// The device that a node stands for; nothing when the path is no device node of this world.
    std::optional<DeviceNumber> deviceOfNode(const std::string& path) const;
    bool exists(const std::string& path) const;
    /// The kernel names of the devices that use this one.
    std::vector<std::string> holders(const std::string& kernelName) const;

    /// Adds a disk, or a disk's partition, with a node. The image at the path becomes its content.
    void addDisk(const std::string& kernelName, DeviceNumber number, std::uint64_t sectors,
                 const std::string& image);

    /// A lost disk leaves nothing but its number in the tables of the maps on it. It waits in lost/.
    void detachDisk(const std::string& kernelName);
    /// Brings a lost disk back; no effect on one that is there.
    void attachDisk(const std::string& kernelName);

    // ---- mappings

    std::optional<Mapping> mapping(unsigned minor) const;
    std::optional<Mapping> mapping(const std::string& name) const;
    /// All mappings, in byte order of their names as the kernel knows them.
    std::vector<Mapping> mappings() const;

    /// True when a process has the device open. Needs the lock for changes.
    bool isOpen(const Mapping& mapping) const;
    /// True when a process has the device open, or another device uses it.
    bool inUse(const Mapping& mapping) const;
    /// How many times it is open; each device that uses it counts as one.
    unsigned openCount(const Mapping& mapping) const;

    /// Makes the mapping in use without any process that has it open.
    void setHeld(const Mapping& mapping, bool held);

    /// Adds a mapping under the lowest free minor number. It has a node when it has a table.
    Mapping addMapping(const std::string& name, const std::string& uuid, const Table& table);
    void setTable(const Mapping& mapping, const Table& table);
    void rename(const Mapping& mapping, const std::string& name);
    /// Makes /dev/mapper/NAME when nothing is there; whatever is there stays. A node that is kept away
    /// is not made.
    void ensureNode(const Mapping& mapping);
    void removeNode(const Mapping& mapping);
    void keepNodeAway(const Mapping& mapping);
    /// Puts a regular file in the place of the node.
    void putFileInPlaceOfNode(const Mapping& mapping);
    /// Removes the mapping and its nodes. False, with nothing changed, when it is in use.
    bool remove(const Mapping& mapping);

private:
    std::string blockPath(const std::string& kernelName) const { return path("block/" + kernelName); }
    std::string linkPath(const std::string& name) const;
    void publish(const std::string& draft, const std::string& kernelName, DeviceNumber number,
                 std::uint64_t sectors);
    void createContent(const std::string& image, const Table& table) const;
    void addPartitionsLine(const std::string& kernelName, DeviceNumber number, std::uint64_t sectors);
    void removePartitionsLine(const std::string& kernelName);
    /// How many times it is in use without a process that has it open.
    unsigned uses(const std::string& kernelName) const;

    std::string directory_;
    unsigned lowestFree_ = 0; // no free minor number lies below
};

/// The name of a mapping as the kernel knows it and as its node in /dev/mapper is called: characters that
/// libdevmapper does not let through stand as \xNN. What stands so already is left as it is.
std::string nodeName(const std::string& name);

} // namespace sim
