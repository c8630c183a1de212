#include "ShellProcess.h"

#include <poll.h>
#include <sys/ioctl.h>
#include <sys/wait.h>

#include <algorithm>
#include <atomic>
#include <cctype>
#include <csignal>
#include <mutex>
#include <set>
#include <vector>

#include "Spawn.h"

namespace {

/** Set when a status was taken away by somebody else's wait; nobody can know before. */
std::atomic<bool> statusWasTaken{false};

/** How often a process without a descriptor is looked at. */
constexpr std::chrono::milliseconds LookInterval{20};

std::mutex leftBehindMutex;
std::vector<pid_t>& leftBehind() {
    static auto* pids = new std::vector<pid_t>; // never destroyed: threads may outlive main
    return *pids;
}

/** Not reaped yet, so that their numbers still are their own. */
std::mutex livingMutex;
std::set<const ShellProcess*>& living() {
    static auto* processes = new std::set<const ShellProcess*>; // never destroyed, as above
    return *processes;
}

void forget(const ShellProcess* process) {
    const std::lock_guard lock(livingMutex);
    living().erase(process);
}

/** Waits for a child, by its process descriptor where there is one. None when there is no status. */
std::optional<int> waitStatus(const Descriptor& process, pid_t pid) {
    const idtype_t type = process.open() ? P_PIDFD : P_PID;
    const id_t id = static_cast<id_t>(process.open() ? process.get() : pid);
    siginfo_t info{};
    while (waitid(type, id, &info, WEXITED) != 0)
        if (errno != EINTR)
            return std::nullopt;
    return info.si_code == CLD_EXITED ? info.si_status : 128 + info.si_status;
}

/** Whether a child has ended, or is no child any more. */
bool hasEnded(pid_t pid) {
    siginfo_t info{};
    return waitid(P_PID, static_cast<id_t>(pid), &info, WEXITED | WNOHANG | WNOWAIT) != 0 || info.si_pid != 0;
}

/** Whether this kernel can wait for a process by its descriptor (Linux 5.4). */
bool processDescriptorsWork() {
    static const bool work = [] {
        const Descriptor self = openProcess(getpid());
        siginfo_t info{};
        return self.open() && waitid(P_PIDFD, static_cast<id_t>(self.get()), &info, WEXITED | WNOHANG) != 0 &&
               errno == ECHILD;
    }();
    return work;
}

} // namespace

void Stream::read() {
    char buffer[32768];
    const ssize_t got = ::read(end.get(), buffer, sizeof buffer);
    if (got > 0)
        text.append(buffer, static_cast<size_t>(got));
    else if (got == 0 || errno != EINTR)
        end.reset();
}

void Stream::finish() {
    int left = 0;
    if (!end.open() || ioctl(end.get(), FIONREAD, &left) != 0)
        left = 0;
    const size_t total = text.size() + static_cast<size_t>(left);
    while (end.open() && text.size() < total)
        read();
    end.reset();
}

Watch dependableWatch() {
    struct sigaction action {};
    sigset_t blocked;
    sigaction(SIGCHLD, nullptr, &action);
    pthread_sigmask(SIG_BLOCK, nullptr, &blocked);
    // Ignored: the kernel discards statuses. Handled or blocked: somebody may reap every child.
    const bool untouched =
        action.sa_handler == SIG_DFL && !(action.sa_flags & SA_NOCLDWAIT) && !sigismember(&blocked, SIGCHLD);
    return untouched && !statusWasTaken && processDescriptorsWork() ? Watch::Direct : Watch::Reported;
}

ShellProcess::ShellProcess(const char* command, Watch watch) : kind_(watch) {
    {
        const std::lock_guard lock(livingMutex);
        living().insert(this); // before it starts: without memory for this, nothing is started
    }
    try {
        start(command);
    } catch (...) {
        forget(this);
        throw;
    }
}

void ShellProcess::start(const char* command) {
    Pipe outPipe, errPipe;
    if (kind_ == Watch::Direct) {
        pid_ = spawnShell(command, outPipe.writeEnd, errPipe.writeEnd);
    } else {
        Pipe report;
        pid_ = spawnReportingShell(command, outPipe.writeEnd, errPipe.writeEnd, report.writeEnd);
        watch_.end = std::move(report.readEnd);
    }
    out.end = std::move(outPipe.readEnd);
    err.end = std::move(errPipe.readEnd);
    outPipe.writeEnd.reset();
    errPipe.writeEnd.reset();
    if (kind_ == Watch::Direct)
        watch_.end = openProcess(pid_);
}

ShellProcess::~ShellProcess() {
    if (reaped_)
        return;
    forget(this);
    signal(SIGKILL);
    try {
        const std::lock_guard lock(leftBehindMutex);
        leftBehind().push_back(pid_);
    } catch (...) { // no memory even for that: a zombie stays
    }
}

void ShellProcess::wait(const Deadline& deadline) {
    pollfd events[] = {
        {out.end.get(), POLLIN, 0}, {err.end.get(), POLLIN, 0}, {ended_ ? -1 : watch_.end.get(), POLLIN, 0}};
    const int timeout = unwatched() ? deadline.pollTimeout(LookInterval) : deadline.pollTimeout();
    const int ready = poll(events, 3, timeout);
    if (unwatched())
        ended_ = ended_ || hasEnded(pid_);
    if (ready <= 0)
        return; // the deadline, or a signal
    if (events[0].revents)
        out.read();
    if (events[1].revents)
        err.read();
    if (events[2].revents)
        noteEvent();
}

void ShellProcess::noteEvent() {
    if (kind_ == Watch::Reported)
        watch_.read();
    ended_ = kind_ == Watch::Direct || !watch_.end.open() || reportedStatus();
}

void ShellProcess::signal(int number) const {
    if (pid_ > 0)
        kill(-pid_, number);
}

int ShellProcess::signalAll(int number) {
    const std::lock_guard lock(livingMutex);
    for (const ShellProcess* process : living())
        process->signal(number);
    return static_cast<int>(living().size());
}

std::optional<int> ShellProcess::reap() {
    forget(this);
    reaped_ = true;
    if (kind_ == Watch::Direct) {
        const auto status = waitStatus(watch_.end, pid_);
        if (!status)
            statusWasTaken = true;
        return status;
    }
    watch_.finish();
    const auto shellStatus = waitStatus(Descriptor(), pid_);
    const auto status = reportedStatus();
    if (!status || *status < 128) // otherwise the shell's own text only names the signal
        err.text.append(watch_.text, 0,
                        status ? watch_.text.rfind('\n', watch_.text.size() - 2) + 1 : std::string::npos);
    return status ? status : shellStatus;
}

/** The status stands alone on the last line; before it stands what the reporting shell had to say. */
std::optional<int> ShellProcess::reportedStatus() const {
    const std::string& text = watch_.text;
    if (text.size() < 2 || text.back() != '\n')
        return std::nullopt;
    const size_t first = text.rfind('\n', text.size() - 2) + 1;
    if (!std::all_of(text.begin() + static_cast<std::ptrdiff_t>(first), text.end() - 1,
                     [](unsigned char c) { return isdigit(c); }))
        return std::nullopt;
    return std::stoi(text.substr(first, 4));
}

void reapLeftBehind() {
    const std::lock_guard lock(leftBehindMutex);
    auto& pids = leftBehind();
    const auto gone = [](pid_t pid) { return waitpid(pid, nullptr, WNOHANG) != 0; };
    pids.erase(std::remove_if(pids.begin(), pids.end(), gone), pids.end());
}
