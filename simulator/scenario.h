// A scenario: what a world holds when it begins. Read from TOML; docs/simulator.md describes the keys.
#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "faults.h"
#include "logical_units.h"

namespace sim {

/// A mistake in a scenario; what() is one sentence with file, line and key.
class ScenarioError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// What only shows when the world is made is reported with its origin: file, line and key.
struct Scenario {
    struct Lun {
        LogicalUnit unit;
        std::string vendor;
        std::string product;
        std::uint64_t sectors = 0;
        std::string table; // for sfdisk(8); empty: no partition table
        std::string tableOrigin;
        bool mapped = true;
        bool partitionsMapped = true;
    };
    struct Disk {
        std::string name;
        std::uint64_t sectors = 0;
        std::string table;
        std::string tableOrigin;
    };
    struct Linear {
        std::string name;
        std::string device; // the name of a disk or of a mapping
        std::string deviceOrigin;
        std::uint64_t start = 0;
        std::uint64_t length = 0;
    };

    /// Something wrong with one device.
    struct DeviceFault {
        std::string name; // of a mapping, or of a path when there is a state
        std::string origin;
        std::string node = "present"; // absent; late: there after kpartx -a; file: a regular file
        bool held = false;            // in use by nobody that can be ended
        std::string mounted;          // the mount point; empty: none
        std::string state = "running";
    };

    bool daemon = false;
    std::optional<unsigned> restoreAfter;  // seconds until the daemon restores a queueing policy
    bool deviceMapper = true;              // the kernel knows device-mapper
    bool privileged = true;                // the caller may use it
    std::vector<std::string> missingTools; // of multipath, dmsetup, kpartx
    bool udevPartitions = false;           // udev rules map the partitions of every new map
    std::vector<Lun> luns;
    std::vector<Disk> disks;
    std::vector<Linear> linears;
    std::vector<Fault> faults;
    std::vector<DeviceFault> deviceFaults;
};

/// Reads a scenario; `file` is how messages call it. Throws ScenarioError.
Scenario parseScenario(const std::string& text, const std::string& file);

} // namespace sim
