// The table of a device-mapper device: what it maps to, segment by segment.
// The forms are those of `dmsetup table` and `dmsetup status`; see dmsetup(8) and the kernel's
// Documentation/admin-guide/device-mapper/{linear,dm-queue-length,switch}.rst.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "device_number.h"

namespace sim {

/// One segment; start and length in sectors of 512 bytes.
struct Target {
    std::uint64_t start = 0;
    std::uint64_t length = 0;
    std::string type;
    std::vector<std::string> arguments;

    /// As `dmsetup table` prints it, without the name and the line end. The kernel ends the arguments
    /// of a multipath target, and an empty argument list, with a blank.
    std::string text() const;
};

using Table = std::vector<Target>;

/// Reads a table of one target a line. Nothing when a line is none.
std::optional<Table> parseTable(const std::string& text);

std::string tableText(const Table& table);

/// The size of a device with this table, in sectors.
std::uint64_t sectorsOf(const Table& table);

/// The devices that the table maps to, each once, in the order in which the table names them.
std::vector<DeviceNumber> devicesOf(const Table& table);

Target linearTarget(std::uint64_t start, std::uint64_t length, DeviceNumber device, std::uint64_t offset);

/// A path as its map sees it, which can differ from what the path's disk says.
struct PathState {
    bool failed = false;
    unsigned failures = 0;
};
/// A path that is not in it is active and never failed.
using PathStates = std::map<DeviceNumber, PathState>;

/// The arguments of a multipath target.
struct Multipath {
    bool queueIfNoPath = false;
    unsigned nextGroup = 1;
    std::vector<std::vector<DeviceNumber>> groups;

    static std::optional<Multipath> parse(const Target& target);
    /// As the kernel reports it.
    Target target(std::uint64_t length) const;
    /// As the multipath tool hands it to the kernel.
    std::string loadText(std::uint64_t length) const;
    /// As `dmsetup status` prints the arguments, with the group in use (0: none yet) marked "A".
    std::string statusText(unsigned activeGroup, const PathStates& states) const;
};

/// The non-empty parts between separators.
std::vector<std::string> split(const std::string& text, const char* separators);
/// The words between white space.
std::vector<std::string> words(const std::string& text);
std::string joined(const std::vector<std::string>& words);

} // namespace sim
