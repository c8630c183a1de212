#include "NrProcess.h"

#include <atomic>
#include <csignal>
#include <new>
#include <string>

#include "CLogWriterInterface.h"
#include "CommandWatch.h"
#include "EvDebug.h"
#include "Log.h"
#include "ShellProcess.h"

namespace {

using std::chrono::milliseconds;

std::atomic<int> timeLimitMs{0};
std::atomic<CommandWatch*> commandWatch{nullptr};

/** How long a command may take to end after SIGTERM, and again after SIGKILL. */
constexpr milliseconds GracePeriod{2000};

using Result = CommandAnswer;

/** Adds what the runner itself has to say to the error text, as a line of its own. */
void complain(std::string& err, const std::string& message) {
    if (!err.empty() && err.back() != '\n')
        err += '\n';
    err += message + '\n';
}

/** TERM for the whole group, a grace period for all of it, then KILL. */
void endAtTimeLimit(ShellProcess& shell) {
    shell.signal(SIGTERM);
    const auto grace = Deadline::in(GracePeriod);
    while (!(shell.ended() && shell.silent()) && !grace.passed())
        shell.wait(grace);
    shell.signal(SIGKILL); // also for those who outlived the shell; not reaped yet, it keeps the group
    const auto last = Deadline::in(GracePeriod);
    while (!shell.ended() && !last.passed())
        shell.wait(last);
}

/** The status of a command that was told to end; reaps it if it has. */
int timeLimitResult(ShellProcess& shell, milliseconds limit) {
    const std::string reached = "time limit of " + std::to_string(limit.count()) + " ms reached";
    const bool gone = shell.ended();
    if (gone)
        shell.reap();
    complain(shell.err.text, gone ? reached + ": command killed"
                                  : reached + ": command cannot be killed and was left behind");
    return NrProcess::TimeLimitReached;
}

int ordinaryResult(ShellProcess& shell) {
    const auto status = shell.reap();
    if (!status)
        complain(shell.err.text, "exit status lost: the command's process was reaped elsewhere");
    return status.value_or(NrProcess::NoStatus);
}

Result run(const char* command) {
    const milliseconds limit(timeLimitMs.load());
    ShellProcess shell(command, dependableWatch());
    const auto deadline = Deadline::in(limit);
    while (!shell.ended() && !deadline.passed())
        shell.wait(deadline);

    const bool inTime = shell.ended();
    if (!inTime)
        endAtTimeLimit(shell);
    shell.out.finish();
    shell.err.finish();
    const int status = inTime ? ordinaryResult(shell) : timeLimitResult(shell, limit);
    return {status, std::move(shell.out.text), std::move(shell.err.text)};
}

Result failure(const char* reason) noexcept {
    Result result;
    result.status = NrProcess::NoStatus;
    try {
        complain(result.err, reason);
    } catch (const std::bad_alloc&) { // the status must do
    }
    return result;
}

/** What goes wrong is a result, too. */
template <class Action>
Result resultOf(Action action) {
    try {
        return action();
    } catch (const std::bad_alloc&) {
        return failure("out of memory");
    } catch (const std::exception& problem) {
        return failure(problem.what());
    } catch (...) {
        return failure("the host's watch failed");
    }
}

/** A command that could not be started has ended, too: the watch counts on that. */
Result runWatched(const char* command) {
    CommandWatch* watch = commandWatch;
    if (watch)
        if (auto answer = watch->before(command))
            return std::move(*answer);
    Result result = resultOf([command] { return run(command); });
    if (watch)
        watch->after(command, result.status);
    return result;
}

Result runOrFail(const char* command) {
    return resultOf([command] {
        reapLeftBehind();
        return command ? runWatched(command) : failure("no command given");
    });
}

void trace(const char* command, int status, Deadline::Clock::time_point started) noexcept {
    try {
        if (!g_ptrLogWriter || g_ptrLogWriter->getDebugLevel() < Log::CommandLevel)
            return;
        const auto elapsed = std::chrono::duration_cast<milliseconds>(Deadline::Clock::now() - started);
        EvDebug(nullptr).Debug("NrProcess::system", "status %d after %lld ms: %s", status,
                               static_cast<long long>(elapsed.count()), command);
    } catch (...) { // the log disturbs nobody
    }
}

} // namespace

int NrProcess::system(const char* command, std::string* out, std::string* err, int, bool quiet) {
    const auto started = Deadline::Clock::now();
    Result result = runOrFail(command);
    if (!quiet)
        trace(command ? command : "(null)", result.status, started);
    if (out)
        *out = std::move(result.out);
    if (err)
        *err = std::move(result.err);
    return result.status;
}

void NrProcess::setTimeLimit(int milliseconds) {
    timeLimitMs = milliseconds;
}

CommandWatch::~CommandWatch() = default;

void NrProcess::setWatch(CommandWatch* watch) {
    commandWatch = watch;
}

int NrProcess::signalAll(int number) {
    return ShellProcess::signalAll(number);
}
