/* The questions asked of dmsetup(8), and how its answers are read.
 *
 * `dmsetup table` prints a line for each target of a mapping: its start, its length in sectors, its
 * type and its arguments.
 */
#ifndef DMSETUP_H
#define DMSETUP_H

#include <optional>
#include <string>

#include "Decimal.h"
#include "DeviceNode.h"
#include "EvDebug.h"
#include "NrRegEx.h"

/** Recognises targets anywhere in a table. */
class TargetPatterns {
public:
    bool isMultipath(const std::string& table) const { return multipath.match(table, nullptr, nullptr); }
    bool isLinear(const std::string& table) const { return linear.match(table, nullptr, nullptr); }

private:
    NrRegEx multipath{"[0-9] [0-9]+ multipath", REG_EXTENDED};
    NrRegEx linear{"[0-9] [0-9]+ linear", REG_EXTENDED};
};

/**
 * The device beneath the first linear target: the major number stands between the last blank
 * before the table's first colon and that colon, the minor number after it. Nothing for a text
 * without such a colon or blank.
 */
inline std::optional<DeviceNumber> linearTargetDevice(const std::string& table) {
    const auto colon = table.find(':');
    if (colon == std::string::npos)
        return std::nullopt;
    const auto blank = table.rfind(' ', colon);
    if (blank == std::string::npos)
        return std::nullopt;
    return DeviceNumber{signedDecimal(table.c_str() + blank + 1), signedDecimal(table.c_str() + colon + 1)};
}

/** The command that prints a mapping's table. */
inline std::string tableCommand(DeviceNumber number) {
    return "dmsetup table " + number.option();
}

/**
 * The command that prints the table of a device: by its number or, where the node does not answer,
 * by the text that the caller gave, which is logged under functionName.
 */
inline std::string tableCommand(const char* device, EvDebug& log, const char* functionName) {
    const DeviceNode node(device);
    if (node.exists())
        return tableCommand(node.number());
    log.Debug(functionName, "Stat failed on %s, rc %d, will try dmsetup with device name", device,
              node.error());
    return std::string("dmsetup table ") + device;
}

/** The command that prints a mapping's name and a line end. */
inline std::string nameCommand(const std::string& device) {
    return "dmsetup info -c --noheadings -o name " + device;
}

/** The same, by number where the node answers. */
inline std::string nameCommand(const std::string& device, const DeviceNode& node) {
    return nameCommand(node.exists() ? node.number().option() : device);
}

/**
 * The command that prints the names of the linear mappings on a device, one a line, in table
 * order. The byte after the number keeps 253:40 out of a search for 253:4.
 */
inline std::string linearMappingsCommand(DeviceNumber number) {
    return dmsetuptbl_cmd + " | grep 'linear " + std::to_string(number.major) + ":" +
           std::to_string(number.minor) + "[^0-9]' | cut -d: -f1";
}

/** The command that has a map fail I/O while no path is left; see the kernel's dm-mpath. */
inline std::string failIfNoPathCommand(const std::string& device) {
    return "dmsetup message " + device + " 0 \"fail_if_no_path\"";
}

#endif
