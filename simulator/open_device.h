// The devices that processes have open, told by what their descriptors link to in /proc. For the
// interposer; never calls an interposed function.
#pragma once

#include "redirect.h"

namespace sim {

/// True for the path of a descriptor, as /proc/self/fd/7 or /proc/4711/fd/7; see proc(5).
bool isDescriptor(const char* path);

/// Writes the kernel name ("dm-0") of the world's device that is open as the descriptor, of whatever
/// process. False when there is none, or when the caller may not know.
bool findOpenDevice(const char* descriptor, PathBuffer& kernelName);

/// The node of the device that is open as the descriptor. Kind none when there is none.
Node openNode(const char* descriptor);

} // namespace sim
