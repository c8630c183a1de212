/* The commands that change something. */
#ifndef CHANGES_H
#define CHANGES_H

#include "Arguments.h"
#include "ExitStatus.h"
#include "Library.h"

ExitStatus refresh(const Library& library, const Arguments& arguments);
ExitStatus failIfNoPath(const Library& library, const Arguments& arguments);
ExitStatus deletePartitions(const Library& library, const Arguments& arguments);
ExitStatus deleteDevice(const Library& library, const Arguments& arguments);

#endif
