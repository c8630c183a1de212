// The tables of mounted file systems, /proc/self/mountinfo and /proc/self/mounts; see proc(5). For the
// interposer; never calls an interposed function.
#pragma once

namespace sim {

/// Opens what the machine's table says, and after it what the world's table at `place` says, to be read.
/// A device of the machine that has the number of one of the world's is shown without a number (major 0).
/// Returns a descriptor, with O_CLOEXEC if `flags` has it, or -1 with errno.
int openMountTable(const char* machines, const char* place, int flags);

} // namespace sim
