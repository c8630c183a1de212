#include "child_process.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <ctime>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace sim {

namespace {

constexpr int EndingSignals[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT};

sigset_t endingSignals() {
    sigset_t signals;
    ::sigemptyset(&signals);
    for (const int signal : EndingSignals)
        ::sigaddset(&signals, signal);
    return signals;
}

std::vector<char*> pointers(const std::vector<std::string>& texts) {
    std::vector<char*> result;
    for (const std::string& text : texts)
        result.push_back(const_cast<char*>(text.c_str()));
    result.push_back(nullptr);
    return result;
}

/// The file that a command's name stands for, by the PATH of the child.
std::string programPath(const std::string& name, const std::vector<std::string>& environment) {
    if (name.find('/') != std::string::npos)
        return name;
    for (const std::string& variable : environment) {
        if (variable.rfind("PATH=", 0) != 0)
            continue;
        for (size_t start = 5; start <= variable.size();) {
            const size_t end = std::min(variable.find(':', start), variable.size());
            const std::string candidate = variable.substr(start, end - start) + "/" + name;
            if (::access(candidate.c_str(), X_OK) == 0)
                return candidate;
            start = end + 1;
        }
    }
    return name;
}

pid_t spawn(const std::vector<std::string>& command, const std::vector<std::string>& environment,
            std::string& error) {
    posix_spawnattr_t attributes;
    ::posix_spawnattr_init(&attributes);
    sigset_t none;
    ::sigemptyset(&none);
    ::posix_spawnattr_setsigmask(&attributes, &none);
    ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
    pid_t child = -1;
    const int failure = ::posix_spawn(&child, programPath(command.front(), environment).c_str(), nullptr,
                                      &attributes, pointers(command).data(), pointers(environment).data());
    ::posix_spawnattr_destroy(&attributes);
    if (failure == 0)
        return child;
    error = command.front() + ": " + std::strerror(failure);
    return -1;
}

/// A signal that the terminal sends reaches the child by itself, as both are in one process group.
bool isSentToUsOnly(const siginfo_t& info) {
    return info.si_code <= 0;
}

} // namespace

HeldSignals::HeldSignals() {
    // An ignored SIGCHLD would take the command's status from us, and nobody would wake us.
    std::signal(SIGCHLD, SIG_DFL);
    sigset_t held = endingSignals();
    ::sigaddset(&held, SIGCHLD);
    ::sigprocmask(SIG_BLOCK, &held, nullptr);
}

int HeldSignals::pending() const {
    sigset_t waiting;
    ::sigpending(&waiting);
    for (const int signal : EndingSignals)
        if (::sigismember(&waiting, signal) == 1)
            return signal;
    return 0;
}

int HeldSignals::run(const std::vector<std::string>& command, const std::vector<std::string>& environment,
                     std::string& error) const {
    const pid_t child = spawn(command, environment, error);
    if (child < 0)
        return 127;
    sigset_t awaited = endingSignals();
    ::sigaddset(&awaited, SIGCHLD);
    for (;;) {
        siginfo_t info{};
        const int signal = ::sigwaitinfo(&awaited, &info);
        int status = 0;
        if (signal == SIGCHLD && ::waitpid(child, &status, WNOHANG) == child)
            return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
        if (signal > 0 && signal != SIGCHLD && isSentToUsOnly(info))
            ::kill(child, signal);
    }
}

} // namespace sim
