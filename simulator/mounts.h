// File systems that are mounted, as far as it shows: the device is in use, and the tables of mounts have
// a line more. Nothing is at the mount point but what the machine has there.
//
//   block/dm-0/mounted                  the mount point, while there is one
//   proc/self/{mountinfo,mounts}        the lines of the world; the interposer adds them to the machine's
#pragma once

#include <string>

#include "world.h"

namespace sim {

/// The directory that the mapping is mounted on; empty: none.
std::string mountPoint(const World& world, const Mapping& mapping);

void mount(World& world, const Mapping& mapping, const std::string& directory);
void unmount(World& world, const Mapping& mapping);

} // namespace sim
