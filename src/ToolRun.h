/* Running the tools and reading their output as text. */
#ifndef TOOLRUN_H
#define TOOLRUN_H

#include <string>
#include <string_view>
#include <vector>

#include "CLogWriterInterface.h"
#include "NrProcess.h"

/** For commands that the runner may always trace. */
constexpr bool notQuiet = false;

/** For commands that the runner may trace only at a debug level above 5. */
inline bool quietByDebugLevel() {
    return g_ptrLogWriter->getDebugLevel() <= 5;
}

/** Runs commands one after the other and holds what the latest one printed. */
struct ToolRun {
    std::string out;
    std::string err;

    /** @return 0 for success; any other value is the command's failure. */
    int run(const std::string& command, bool quiet) {
        return NrProcess::system(command.c_str(), &out, &err, 0, quiet);
    }
};

/** Cuts a command line to what its 512-byte buffer holds. */
inline std::string bounded(std::string command) {
    constexpr std::size_t longest = 511;
    if (command.size() > longest)
        command.resize(longest);
    return command;
}

/** The texts between newlines; one more than there are newlines. They are parts of text. */
inline std::vector<std::string_view> splitLines(std::string_view text) {
    std::vector<std::string_view> lines;
    for (;;) {
        const auto newline = text.find('\n');
        lines.push_back(text.substr(0, newline));
        if (newline == std::string_view::npos)
            return lines;
        text.remove_prefix(newline + 1);
    }
}

#endif
