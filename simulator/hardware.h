// What happens to the disks that are paths: they stop answering, go and come back.
#pragma once

#include "world.h"

namespace sim {

/// The disks that are paths, lost ones among them, in the order of the units.
std::vector<std::string> allPaths(const World& world);

bool isPathState(const std::string& state);

/// Brings a path into a state: "running"; "offline": there, but it does not answer; "lost": gone. What
/// lies on it finds out, and so does the daemon.
void setPathState(World& world, const std::string& disk, const std::string& state);

} // namespace sim
