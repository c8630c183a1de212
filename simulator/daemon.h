// What the multipath daemon does in a world where it runs: no process does it, the tools do it in its
// place, at the moment when it shows.
//
//   daemon           "1": it runs
//   restore_after    seconds after which it restores a configured queueing policy; no file: never
//   due/0            when it does so for dm-0, in milliseconds of the monotonic clock
#pragma once

#include "world.h"

namespace sim {

bool daemonRuns(const World& world);

/// To be called when a map has been told to fail: the daemon will make it queue again if it is configured so.
void planRestoring(World& world, const Mapping& map);

/// Restores the policies that are due. Takes the lock itself, and only when there is something to do.
void restoreWhatIsDue(World& world);

/// To be called when a disk has gone, come back or changed its state. The daemon takes a lost path out of
/// its map, flushes a map without paths when nobody uses it, and reinstates a path that answers again.
void letDaemonSeePath(World& world, const std::string& disk);

} // namespace sim
