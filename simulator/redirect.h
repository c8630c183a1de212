// Which paths belong to a world, and how a node is kept in it. Shared by the interposer, which is
// loaded into any program, and the tools; it needs nothing but the C library and never calls an
// interposed function.
#pragma once

#include <climits>

namespace sim {

/// The environment variable that names the directory of the world; unset: no simulation.
constexpr char WorldVariable[] = "NRMPIO_SIM_WORLD";

using PathBuffer = char[PATH_MAX];

/// The directory of the world that this process lives in, or null.
const char* worldDirectory();

/// Writes the path's place in the world and returns true when the path is one that worlds define:
/// /dev/mapper, /dev/mpath and all below them, /dev/dm-*, /dev/sd*, /dev/vd*, /sys/block, /sys/dev/block,
/// /sys/class/block and all below them, /proc/partitions, /proc/swaps and the tables of mounts.
bool redirect(const char* world, const char* path, PathBuffer& place);

/// True for the tables that show the machine's mounts and those of the world; see mount_table.h.
bool isMountTable(const char* path);

enum class NodeKind { none, block, character };

/// A device node is kept as a small text file: "block 253:0".
struct Node {
    NodeKind kind = NodeKind::none;
    unsigned major = 0;
    unsigned minor = 0;
};

/// Reads the node at a place in the world, following links. Kind none when the file is no node.
Node readNode(const char* place);

} // namespace sim
