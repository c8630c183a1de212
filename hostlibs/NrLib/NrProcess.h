/* The process runner: one shell command line, run to its end. */
#ifndef NRPROCESS_H
#define NRPROCESS_H

#include <string>

class CommandWatch;

class __attribute__((visibility("default"))) NrProcess {
public:
    /** Result of a command that was ended because it reached the time limit. */
    static constexpr int TimeLimitReached = 124;
    /** Result where nothing could be started or where the status was lost. */
    static constexpr int NoStatus = 127;

    /**
     * Runs one command line with /bin/sh and returns when it has finished.
     *
     * @param command NUL-terminated command line, read by the POSIX shell.
     * @param out     Receives all that the command wrote to standard output, and nothing else:
     *                what the string held before is replaced. Any bytes, any length. May be null.
     * @param err     The same for standard error. When nothing could be started, when the status
     *                was lost or the time limit was reached, a last line says so. May be null.
     * @param option  0 for ordinary behaviour; no other value has a meaning yet.
     * @param quiet   false: the command, its status and its duration are traced to the log.
     *
     * @return 0 when the command ran and exited with status 0; otherwise its exit status, 128 + n
     *         when signal n ended it, TimeLimitReached, or NoStatus. Success is never reported for
     *         a status that was not obtained.
     *
     * The calling thread waits; calls from several threads may overlap. The command has finished
     * when its shell has ended: what a process that it left in the background writes later is not
     * collected, and such a process finds its pipes closed.
     *
     * The command runs in a process group of its own, with standard input from /dev/null, no
     * descriptor but 0, 1 and 2, an empty signal mask and default dispositions. Its environment is
     * the caller's with LC_ALL=C and with /usr/sbin and /sbin at the end of PATH where they are
     * missing. The caller's own descriptors, signals and environment stay as they are.
     *
     * A status is obtained whatever the caller does with SIGCHLD. One case is left: a thread that
     * waits for any child while SIGCHLD is neither handled, blocked nor ignored can take the status
     * away. The first command that this happens to comes back with NoStatus; from then on commands
     * run under a shell that reports their status.
     *
     * Throws nothing. Without memory to go on, the command is killed and the result is NoStatus.
     */
    static int system(const char* command, std::string* out, std::string* err, int option, bool quiet);

    /**
     * Limits how long each command that is started from now on, by any thread, may run.
     *
     * @param milliseconds The limit; 0 or less for none, which is the default.
     *
     * At the limit the command's process group receives SIGTERM, and two seconds later, unless all
     * have gone before, SIGKILL. A command that cannot be killed is left behind after two more.
     */
    static void setTimeLimit(int milliseconds);

    /**
     * Has a watch look at each command from now on, of any thread; null, the default, for none.
     *
     * @param watch Stays the caller's, and must live until it is replaced and no command runs.
     */
    static void setWatch(CommandWatch* watch);

    /**
     * Sends a signal to the process groups of all commands that are running now: they are not in
     * the caller's, so what a terminal sends does not reach them.
     *
     * @return How many there were, those included that were about to start and did not receive it.
     * Not for use in a signal handler.
     */
    static int signalAll(int number);
};

#endif
