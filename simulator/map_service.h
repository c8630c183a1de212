// Whether a multipath map can serve reads and writes: the state of its paths, the group in use, and
// what becomes of input and output when no path is left.
//
//   block/dm-0/dm/paths          "8:48 F 1": failed, and how often it failed; no line: active, never failed
//   block/dm-0/dm/active_group   the path group that served the last input or output
//   block/dm-0/dm/suspended      "1" while the device is suspended, otherwise "0"
//   block/dm-0/service           "wait" or "error"; no file: reads and writes work. The interposer obeys it.
#pragma once

#include "world.h"

namespace sim {

enum class Service { works, waits, fails };

PathStates pathStates(const World& world, const Mapping& map);

/// The messages "fail_path" and "reinstate_path".
void setPathFailed(World& world, const Mapping& map, DeviceNumber path, bool failed);
/// The messages "queue_if_no_path" and "fail_if_no_path".
void setQueueIfNoPath(World& world, const Mapping& map, bool queue);

bool isSuspended(const World& world, const Mapping& mapping);
void setSuspended(World& world, const Mapping& mapping, bool suspended);

/// The path group that served the map's last input or output; 0: none yet, or none that can.
unsigned activeGroup(const World& world, const Mapping& map);

/// Tells the world that the map's content is read: a path that does not answer fails, and the first
/// group with a good path takes over when the one in use has none. No effect on other mappings.
void noteUse(World& world, const Mapping& map);

/// To be called where a real machine has read the map since its paths changed, as it does on its own: a map
/// in use whose group has no good path left goes over to another.
void settle(World& world, const Mapping& map);

/// True when the path's disk is there and answers.
bool answers(const World& world, DeviceNumber path);

Service service(const World& world, const Mapping& mapping);
/// To be called after a change that can make a mapping, or what lies on it, work or not.
void refreshService(World& world, const Mapping& mapping);

} // namespace sim
