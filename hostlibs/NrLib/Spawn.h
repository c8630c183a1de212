/* Starting /bin/sh in surroundings that do not depend on the caller's. */
#ifndef SPAWN_H
#define SPAWN_H

#include <sys/types.h>

#include "Descriptor.h"

/**
 * Starts /bin/sh on a command line, as `sh -c` does. Standard input is /dev/null.
 *
 * @return The process, which leads a process group of its own.
 * Throws std::system_error.
 */
pid_t spawnShell(const char* command, const Descriptor& out, const Descriptor& err);

/**
 * The same under a second shell, which waits for the first and then writes its exit status, as a
 * decimal number on a line of its own, to report. What that second shell itself complains about
 * stands there before it.
 */
pid_t spawnReportingShell(const char* command, const Descriptor& out, const Descriptor& err,
                          const Descriptor& report);

/** A descriptor that becomes readable when the process has ended; see pidfd_open(2). */
Descriptor openProcess(pid_t pid);

#endif
