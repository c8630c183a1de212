/* The machine that an input of the fuzzer describes, and the call that is made on it.
 *
 * The first line is the call: an entry point's letter, the entries in the arrays ("0" to "?", one
 * less than "0" for -1), the options, and the device, or MAJOR:MINOR. The options are the sum of
 * 1 (run kpartx), 2 (no errBuf), 4 (no errCode) and 8 (no count, no parent path), counted from "0".
 *
 * The answers follow in the order in which they are asked for, each begun by "~"; all that stands
 * behind belongs to it, line ends too:
 *
 *     ~0mpatha^warning   a command's status, output and, behind "^", standard error; the status is a
 *                        digit, any other character stands for its own code
 *     ~b253:4            stat: a block device; "f": a file; otherwise the errno
 *     ~2048+16 8+8       getPartitions: start and length of each slice; with "-", the negative errno
 *     ~   8   16  1 sdb  the text of /proc/partitions; "-": it cannot be opened
 *     ~7                 the seconds left when a signal ends a sleep
 *
 * Once the answers are used up, every command fails and no node or file exists.
 */
#ifndef MACHINE_H
#define MACHINE_H

#include <string>
#include <string_view>
#include <vector>

class Machine {
public:
    /** Answers what the plug-in asks from now on, until the object ends. */
    explicit Machine(std::string_view answers);
    ~Machine();

    Machine(const Machine&) = delete;
    Machine& operator=(const Machine&) = delete;

    /** The next answer; empty where none is left. */
    std::string take();

    std::vector<std::string> commands; /**< Those that were run. */
    int openLogs = 0;                  /**< Log objects made and not ended. */

private:
    std::string_view rest;
};

/** A violation of what the machine or a caller may rely on: says so and aborts. */
void require(bool holds, const char* what);

#endif
