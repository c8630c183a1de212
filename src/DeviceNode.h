/* Device nodes and the numbers that they stand for. */
#ifndef DEVICENODE_H
#define DEVICENODE_H

#include <cerrno>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <sys/sysmacros.h>

#include "ModuleStrings.h"

struct DeviceNumber {
    int major;
    int minor;

    /** The number as dmsetup(8) takes it: "-j 253 -m 0". */
    std::string option() const { return "-j " + std::to_string(major) + " -m " + std::to_string(minor); }
};

/** What stat(2) says of a path at this moment, links followed. */
class DeviceNode {
public:
    explicit DeviceNode(const char* path) : info(), statResult(stat(path, &info)), statErrno(errno) {}

    bool exists() const { return statResult == 0; }
    bool isBlockDevice() const { return exists() && S_ISBLK(info.st_mode); }

    /** The device that the node stands for; 0:0 for a node that does not exist or is no device. */
    DeviceNumber number() const {
        return {static_cast<int>(major(info.st_rdev)), static_cast<int>(minor(info.st_rdev))};
    }

    int result() const { return statResult; }
    /** File type and permission bits; 0 for a node that does not exist. */
    unsigned mode() const { return info.st_mode; }
    /** The value of errno after the query. */
    int error() const { return statErrno; }

private:
    struct stat info;
    int statResult;
    int statErrno;
};

/** Where the node of a mapping was found. */
struct MappingNode {
    std::string path;
    DeviceNode node;
};

/** Looks for the node of a mapping, whatever its file type, in the directories of dm_prefixes. */
inline std::optional<MappingNode> findMappingNode(const std::string& name) {
    for (const std::string* prefix = dm_prefixes; !prefix->empty(); ++prefix) {
        std::string path = *prefix + name;
        const DeviceNode node(path.c_str());
        if (node.exists())
            return MappingNode{std::move(path), node};
    }
    return std::nullopt;
}

#endif
