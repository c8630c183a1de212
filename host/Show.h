/* All maps as a tree. */
#ifndef SHOW_H
#define SHOW_H

#include "Arguments.h"
#include "ExitStatus.h"
#include "Library.h"

/**
 * Prints every map with its paths and its partition mappings. What cannot be read is told, and the
 * rest printed all the same.
 */
ExitStatus show(const Library& library, const Arguments& arguments);

#endif
