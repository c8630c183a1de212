/* One /bin/sh process: started, heard, ended, reaped. */
#ifndef SHELLPROCESS_H
#define SHELLPROCESS_H

#include <sys/types.h>

#include <atomic>
#include <optional>
#include <string>

#include "Deadline.h"
#include "Descriptor.h"

/** The reading side of a pipe and what has come out of it. */
class Stream {
public:
    Descriptor end; /**< Closed when the last writer has closed its side. */
    std::string text;

    /** Takes in what a readable pipe holds, or its end. */
    void read();
    /** Takes in what the pipe holds now and closes it, however many writers go on writing. */
    void finish();
};

/**
 * How the end and the status of a command become known.
 *
 * Direct: the shell is a child like any other; waitid(2) tells. Reported: a second shell around
 * it writes the status into a pipe, which works even where the kernel or another thread throws the
 * statuses of children away.
 */
enum class Watch { Direct, Reported };

/** The kind of watch that the caller's treatment of SIGCHLD asks for. */
Watch dependableWatch();

class ShellProcess {
public:
    /** Starts the command. Throws std::system_error when it cannot be started. */
    ShellProcess(const char* command, Watch watch);
    /** Kills what still runs. */
    ~ShellProcess();
    ShellProcess(const ShellProcess&) = delete;
    ShellProcess& operator=(const ShellProcess&) = delete;

    Stream out, err;

    /** Waits for the next event and takes it in; returns without one at the deadline. */
    void wait(const Deadline& deadline);

    /** The command has ended; processes that it left in the background may live. */
    bool ended() const { return ended_; }
    /** Nobody is left who could write to standard output or standard error. */
    bool silent() const { return !out.end.open() && !err.end.open(); }

    /** Sends a signal to the command's process group. */
    void signal(int number) const;

    /** The same for all that have not been reaped yet. @return How many, those about to start included. */
    static int signalAll(int number);

    /**
     * Reaps a command that has ended. Adds the shell's own complaint, if it could not run the
     * command, to err.
     *
     * @return The exit status, 128 + n for signal n; none when the status was lost.
     */
    std::optional<int> reap();

private:
    void start(const char* command);
    void noteEvent();
    bool unwatched() const { return kind_ == Watch::Direct && !watch_.end.open(); }
    std::optional<int> reportedStatus() const;

    const Watch kind_;
    /** Reported: the status pipe. Direct: the process, readable when it has ended; or no descriptor
        was left for it, and the process is looked at from time to time. */
    Stream watch_;
    std::atomic<pid_t> pid_{-1}; ///< Read by signalAll, too.
    bool ended_ = false;
    bool reaped_ = false;
};

/** Reaps the commands that had to be left behind and have ended since. */
void reapLeftBehind();

#endif
