/* The command line of nrmpio. */
#ifndef COMMANDLINE_H
#define COMMANDLINE_H

#include "ExitStatus.h"

/** Does what the command line asks for. Whatever fails is told on standard error. */
ExitStatus runCommandLine(int argc, const char* const* argv);

#endif
