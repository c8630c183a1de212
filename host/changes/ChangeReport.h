/* What a changing command prints on standard output. */
#ifndef CHANGEREPORT_H
#define CHANGEREPORT_H

#include <optional>

#include "Arguments.h"

/** Prints each command line that was noted and not run, one a line. */
void printRehearsal();

/**
 * Prints what was done, from what came to the gate: with --json an object, with --dry-run the noted
 * command lines, otherwise nothing.
 *
 * @param device what it was done to; none for all maps.
 */
void reportChanges(const Arguments& arguments, const std::optional<DeviceName>& device);

#endif
