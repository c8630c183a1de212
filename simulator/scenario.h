// A scenario: what a world holds when it begins. Read from TOML; docs/simulator.md describes the keys.
#pragma once

#include <cstdint>
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

    bool daemon = false;
    std::vector<Lun> luns;
    std::vector<Disk> disks;
    std::vector<Linear> linears;
    std::vector<Fault> faults;
};

/// Reads a scenario; `file` is how messages call it. Throws ScenarioError.
Scenario parseScenario(const std::string& text, const std::string& file);

} // namespace sim
