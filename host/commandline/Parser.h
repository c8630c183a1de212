/* The command line as text: what it may hold, and the help. */
#ifndef PARSER_H
#define PARSER_H

#include <optional>
#include <string>
#include <variant>

#include "Arguments.h"
#include "Commands.h"

/** What holds for every command. */
struct Settings {
    std::optional<std::string> plugin;
    bool trace = false;
    std::optional<std::string> log; ///< A file, "stderr" or "syslog".
    std::optional<int> debugLevel;
    int timeLimit = 0; ///< Of each command in milliseconds; 0: none.
};

struct Request {
    const Command* command = nullptr;
    Arguments arguments;
    Settings settings;
};

/** A text that was asked for instead: a help or the version. */
using Help = std::string;

/** @throw UsageError that says what is wrong and what to do. */
std::variant<Request, Help> parse(int argc, const char* const* argv);

#endif
