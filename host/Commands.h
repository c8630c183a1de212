/* What nrmpio can do. */
#ifndef COMMANDS_H
#define COMMANDS_H

#include <vector>

#include "Arguments.h"
#include "ExitStatus.h"
#include "Library.h"

struct Command {
    enum class Operands { none, device, deviceNumber };

    const char* name;
    Operands operands;
    const char* summary;
    const char* details; ///< The rest of its help, the example included.
    /** Does it. @throw Failure */
    ExitStatus (*run)(const Library& library, const Arguments& arguments);
};

/** Every command, in the order of the help. */
extern const std::vector<Command> commands;

#endif
