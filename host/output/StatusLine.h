/* A line on the terminal that is written anew and does not stay. */
#ifndef STATUSLINE_H
#define STATUSLINE_H

#include <cstddef>
#include <string>
#include <string_view>

/** The last line of the terminal on standard error. The process has one; any thread may use it. */
class StatusLine {
public:
    /** Whether one would be seen: standard error is a terminal, and nothing is logged. */
    static bool visible();
    /** The columns that a text may take. */
    static std::size_t width();

    /** Replaces what stands there; nothing when it is empty. The text is not wider than the line. */
    static void show(const std::string& text);
    /** Writes to standard error what shall stay, such as a message; the line makes way for it. */
    static void writePast(std::string_view text);
    /** Takes the line away for good, for the end of the process. */
    static void close();
};

#endif
