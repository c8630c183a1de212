/* What nrmpio can do. */
#ifndef COMMANDS_H
#define COMMANDS_H

#include <vector>

#include "Arguments.h"
#include "ExitStatus.h"
#include "Library.h"

struct Command {
    enum class Group { look, change };
    enum class Operands { none, device, devices, deviceNumber };
    /** Bits: the options that it has besides --json, which every command has. */
    enum Options : unsigned { plain = 0, yes = 1, dryRun = 2, kpartx = 4, recheck = 8, presentation = 16 };

    const char* name;
    Group group;
    Operands operands;
    unsigned options;
    const char* summary;
    const char* details; ///< The rest of its help, the example included.
    /** Does it. @throw Failure */
    ExitStatus (*run)(const Library& library, const Arguments& arguments);
};

/** Every command, in the order of the help. */
extern const std::vector<Command> commands;

#endif
