/* The world that the plug-in meets, played from a script.
 *
 * A program that links this file defines what the plug-in imports: the process runner, the debug
 * log, the log writer, the partition-table reader, stat, sleep, the steady clock and the opening of
 * /proc/partitions. Each call is one line of a transcript, in the order in which the calls come:
 *
 *     stat PATH -> block 253:0 | mode 0100644 | errno 2
 *     run quiet@5 COMMAND -> 0 "out" "err"  @: the debug level was read for it, and answered so;
 *     run traced COMMAND -> 1               traced: quiet was false. Out and err may be left out.
 *     log TAG TEXT
 *     getPartitions DEVICE -> 2 0+8 7:8+8   result and slices, NUMBER:START+SIZE; NUMBER may be
 *                                           left out; "(holds N)" follows a list not empty before
 *     open /proc/partitions -> "text" | errno 13
 *     sleep 10 -> 7                         seconds left when a signal ends it; may be left out
 *
 * What comes while a log object lives is indented by two, and the first of it begins with "- ".
 * What stands behind the arrow is the answer. A call that is not the next line of the script is
 * written down without an answer and fails, as do all that follow it.
 *
 * Each thread plays its own script.
 */
#ifndef WORLD_H
#define WORLD_H

#include <string>
#include <vector>

namespace world {

using Lines = std::vector<std::string>;

/** Answers from the script until finish(), which gives back what really happened. */
void play(const Lines& script);
Lines finish();

/** One call of a script, answered otherwise. */
struct Fault {
    std::size_t line;   /**< Of the script. */
    Lines answer;       /**< The words that stand behind the arrow instead. */
    bool lasting;       /**< From then on the same call is always answered so. */
    bool othersSucceed; /**< What calls that the script does not hold do: succeed without a word, or fail. */
};

/**
 * As above, but on from the fault the calls may come in any order: each is answered as in the line
 * of the script that asks the same. finish() gives the calls without blanks before them, and the
 * commands without how they were traced.
 */
void play(const Lines& script, const Fault& fault);

/**
 * Sets the log writer, or none. A library that has a log writer of its own puts it into the same
 * variable when it is loaded, and destroys what stands there when it is unloaded.
 */
void setLogWriter(bool present);

/** The strings that a library registers for destruction; "(table)" for what is no single object. */
struct ModuleStrings {
    Lines built;
    Lines destroyed;
};

/** Watches the library of that file name until it is told to watch null. */
void watch(const char* library, ModuleStrings* strings);

/** Line ends, tabs, carriage returns, NULs and backslashes as \n, \t, \r, \0 and \\. */
std::string escape(const std::string& text);

/** Words, and texts in double quotes, which may hold what escape() writes and \". */
Lines words(const std::string& line);

} // namespace world

#endif
