/* The commands that answer and change nothing; show has a file of its own. */
#ifndef QUESTIONS_H
#define QUESTIONS_H

#include "Arguments.h"
#include "ExitStatus.h"
#include "Library.h"

ExitStatus check(const Library& library, const Arguments& arguments);
ExitStatus list(const Library& library, const Arguments& arguments);
ExitStatus isMultipath(const Library& library, const Arguments& arguments);
ExitStatus isPartition(const Library& library, const Arguments& arguments);
ExitStatus paths(const Library& library, const Arguments& arguments);
ExitStatus partitions(const Library& library, const Arguments& arguments);
ExitStatus scsiName(const Library& library, const Arguments& arguments);

#endif
