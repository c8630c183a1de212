/* Maps with their paths and partitions. */
#ifndef SHOW_H
#define SHOW_H

#include "Arguments.h"
#include "ExitStatus.h"
#include "Library.h"

/**
 * Prints maps with their paths and their partition mappings: those that the devices are or lie on,
 * or all. What cannot be found out is told, and the rest printed all the same.
 */
ExitStatus show(const Library& library, const Arguments& arguments);

#endif
