// A multipath map as the multipath tool draws it, with its path groups and paths.
#pragma once

#include <string>
#include <vector>

#include "world.h"

namespace sim {

struct PathLine {
    std::string hctl;
    std::string name;
    std::string number;
    std::string kernelState;  // of the path in the map: active, undef
    std::string checkerState; // ready, undef
    std::string deviceState;  // running
};

struct PathGroup {
    std::string state; // active, enabled, undef
    unsigned priority = 1;
    std::vector<PathLine> paths;
};

struct Topology {
    std::string action; // "create: ", or nothing
    std::string alias;
    std::string wwid;
    std::string device; // dm-0, undef
    std::string product;
    std::uint64_t sectors = 0;
    bool queueIfNoPath = false;
    std::string access; // rw, undef
    std::vector<PathGroup> groups;

    std::string text() const;
};

/// A size in sectors as "64M", "1.5G".
std::string sizeText(std::uint64_t sectors);

} // namespace sim
