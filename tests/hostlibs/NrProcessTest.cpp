#include "NrProcess.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdarg>
#include <cstdlib>
#include <functional>
#include <new>
#include <optional>
#include <set>
#include <thread>

#include <boost/make_shared.hpp>
#include <gtest/gtest.h>

#include "CLogWriterInterface.h"
#include "CommandWatch.h"
#include "Log.h"
#include "TemporaryDirectory.h"

using namespace std::string_literals;
using Clock = std::chrono::steady_clock;

/** What goes wrong in the calling thread, where no machine can be made to have it. */
namespace fault {
thread_local int allocationsUntilFailure = -1; // never
thread_local bool shellIsMissing = false;
thread_local bool signalsGetLost = false; // as with a process in an uninterruptible sleep
thread_local bool processDescriptorsLack = false;
thread_local time_t dayTimeLeap = 0; // seconds that the time of day goes forward at each look
} // namespace fault

#pragma GCC visibility push(default)
extern "C" int posix_spawn(pid_t* pid, const char* path, const posix_spawn_file_actions_t* actions,
                           const posix_spawnattr_t* attributes, char* const* arguments,
                           char* const* environment) {
    static const auto real = reinterpret_cast<decltype(&posix_spawn)>(dlsym(RTLD_NEXT, "posix_spawn"));
    return real(pid, fault::shellIsMissing ? "/no/such/sh" : path, actions, attributes, arguments,
                environment);
}
extern "C" long syscall(long number, ...) noexcept {
    static const auto real = reinterpret_cast<decltype(&syscall)>(dlsym(RTLD_NEXT, "syscall"));
    va_list list;
    va_start(list, number);
    long arguments[6];
    for (long& argument : arguments)
        argument = va_arg(list, long);
    va_end(list);
    if (number == SYS_pidfd_open && fault::processDescriptorsLack) {
        errno = EMFILE;
        return -1;
    }
    return real(number, arguments[0], arguments[1], arguments[2], arguments[3], arguments[4], arguments[5]);
}
extern "C" int kill(pid_t pid, int number) noexcept {
    return fault::signalsGetLost ? 0 : static_cast<int>(syscall(SYS_kill, pid, number));
}
extern "C" int clock_gettime(clockid_t clock, timespec* time) noexcept {
    static std::atomic<time_t> leapt{0};
    const int result = static_cast<int>(syscall(SYS_clock_gettime, clock, time));
    if (clock == CLOCK_REALTIME)
        time->tv_sec += leapt += fault::dayTimeLeap;
    return result;
}
__attribute__((noinline)) void* operator new(size_t bytes) {
    void* memory = fault::allocationsUntilFailure-- == 0 ? nullptr : malloc(bytes);
    return memory ? memory : throw std::bad_alloc();
}
__attribute__((noinline)) void operator delete(void* memory) noexcept {
    free(memory);
}
__attribute__((noinline)) void operator delete(void* memory, size_t) noexcept {
    free(memory);
}
#pragma GCC visibility pop

namespace {

struct Outcome {
    int status;
    std::string out, err;
};

Outcome run(const std::string& command) {
    Outcome result{-1, "left from the command before", "left too"};
    result.status = NrProcess::system(command.c_str(), &result.out, &result.err, 0, true);
    return result;
}

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

size_t openDescriptors() {
    return static_cast<size_t>(std::distance(std::filesystem::directory_iterator("/proc/self/fd"),
                                             std::filesystem::directory_iterator()));
}

/** Absent, or dead and waiting for a process that does not care. */
bool isGone(int pid) {
    for (int tries = 0; tries < 100; ++tries) {
        const std::string stat = contentOf("/proc/" + std::to_string(pid) + "/stat");
        if (stat.empty() || stat.find(") Z ") != std::string::npos)
            return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return false;
}

/** Whether every child ends and is reaped, by this or a later call of the runner. */
bool childrenAreReaped() {
    siginfo_t info;
    for (int tries = 0; tries < 500; ++tries) {
        if (waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) != 0)
            return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        run("");
    }
    return false;
}

void ignore(int) {}

/** What a host may do with SIGCHLD. */
struct Host {
    const char* name;
    void (*handler)(int);
    int flags;
    bool blocked;
};

/** As many event loops do. */
void reapAll(int) {
    const int before = errno;
    while (waitpid(-1, nullptr, WNOHANG) > 0) {
    }
    errno = before;
}

const Host hosts[] = {{"Ordinary", SIG_DFL, 0, false},
                      {"IgnoresSigchld", SIG_IGN, 0, false},
                      {"WantsNoZombies", SIG_DFL, SA_NOCLDWAIT, false},
                      {"ReapsInHandler", reapAll, 0, false},
                      {"BlocksSigchld", SIG_DFL, 0, true}};

void PrintTo(const Host& host, std::ostream* stream) {
    *stream << host.name;
}

class OnHost : public testing::TestWithParam<Host> {
protected:
    OnHost() {
        struct sigaction action {};
        action.sa_handler = GetParam().handler;
        action.sa_flags = GetParam().flags;
        sigaction(SIGCHLD, &action, &actionBefore_);
        sigset_t set;
        sigemptyset(&set);
        if (GetParam().blocked)
            sigaddset(&set, SIGCHLD);
        pthread_sigmask(SIG_BLOCK, &set, &maskBefore_);
    }
    ~OnHost() override {
        NrProcess::setTimeLimit(0);
        sigaction(SIGCHLD, &actionBefore_, nullptr);
        pthread_sigmask(SIG_SETMASK, &maskBefore_, nullptr);
        EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "a child or a zombie is left";
        EXPECT_EQ(openDescriptors(), descriptorsBefore_);
    }

private:
    const size_t descriptorsBefore_ = openDescriptors();
    struct sigaction actionBefore_;
    sigset_t maskBefore_;
};

INSTANTIATE_TEST_SUITE_P(Runner, OnHost, testing::ValuesIn(hosts),
                         [](const auto& i) { return i.param.name; });

TEST_P(OnHost, GivesStatusAndTextsAsAPlainShellDoes) {
    const struct {
        std::string command;
        int status;
        std::string out, err;
    } cases[] = {
        {"", 0, "", ""},
        {"true\n", 0, "", ""},
        {"exit 3\n", 3, "", ""},
        {"exit 255", 255, "", ""},
        {"echo out; echo err >&2", 0, "out\n", "err\n"},
        {"printf 'a\\0\\377b'", 0, "a\0\377b"s, ""},
        {"printf x; printf y >&2; exit 1", 1, "x", "y"},
        {"echo a b | cut -d ' ' -f2", 0, "b\n", ""},
        {"false | true", 0, "", ""},
        {"echo 'it'\"'\"'s' \"$0 $#\"", 0, "it's sh 0\n", ""},
        {"exec sh -c 'exit 7'", 7, "", ""},
        {"set -e; false; echo no", 1, "", ""},
        {"trap 'echo bye' EXIT; exit 4", 4, "bye\n", ""},
        {"cat <<E\nbody", 0, "body", ""},
        {"echo 99 >&2; exit 1", 1, "", "99\n"},
        {"kill -KILL $$", 137, "", ""},
        {"ulimit -c 0; kill -SEGV $$", 139, "", ""},
        {"sh -c 'kill -TERM $$'; exit 9", 9, "", "Terminated\n"},
        {"kill -TERM 0", 143, "", ""},
        {"PATH=/usr/bin:/bin no-such-tool -l", 127, "", "sh: 1: no-such-tool: not found\n"},
        {"PATH=/usr/bin:/bin -l", 127, "", "sh: 1: -l: not found\n"},
        {"echo 'open", 2, "", "sh: 1: Syntax error: Unterminated quoted string\n"},
        {"echo a) ; (echo b", 2, "", "sh: 1: Syntax error: \")\" unexpected\n"},
    };
    for (const auto& c : cases) {
        const Outcome result = run(c.command);
        EXPECT_EQ(result.status, c.status) << c.command;
        EXPECT_EQ(result.out, c.out) << c.command;
        EXPECT_EQ(result.err, c.err) << c.command;
    }
}

TEST_P(OnHost, LargeOutputOnBothPipesAtOnceIsComplete) {
    const auto result =
        run("head -c 10485760 /dev/zero & head -c 10485760 /dev/zero | tr '\\0' '\\377' >&2; wait");
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(result.out == std::string(10485760, '\0'));
    EXPECT_TRUE(result.err == std::string(10485760, '\377'));
}

TEST_P(OnHost, BackgroundProcessThatHoldsThePipesDoesNotHoldTheCaller) {
    for (const bool lack : {false, true}) {
        fault::processDescriptorsLack = lack;
        const auto start = Clock::now();
        const auto silent = run("sleep 60 & echo $!; exit 5");
        EXPECT_EQ(silent.status, 5);
        EXPECT_EQ(run("sh -c 'while :; do echo flood; done' & exit 6").status, 6);
        EXPECT_LT(secondsSince(start), 20);
        fault::processDescriptorsLack = false;
        ASSERT_NE(silent.out, "");
        kill(std::stoi(silent.out), SIGKILL);
    }
}

TEST_P(OnHost, ClosedStandardDescriptorsDoNotMatter) {
    for (const std::vector<int>& closed : {std::vector{0}, {1}, {2}, {0, 1, 2}, {0, 1, 2, 3}}) {
        std::vector<int> kept;
        for (const int fd : closed) {
            kept.push_back(fcntl(fd, F_DUPFD_CLOEXEC, 100));
            close(fd);
        }
        const auto result = run("read line; echo out$line; echo err >&2; exit 8");
        for (size_t i = 0; i < closed.size(); ++i) {
            if (kept[i] >= 0)
                dup2(kept[i], closed[i]);
            close(kept[i]);
        }
        EXPECT_EQ(result.status, 8);
        EXPECT_EQ(result.out, "out\n");
        EXPECT_EQ(result.err, "err\n");
    }
}

TEST_P(OnHost, TimeLimitEndsTheCommandAndSaysSo) {
    const struct {
        const char* name;
        std::string command, out;
        double atMost; // seconds
    } cases[] = {
        {"obeys TERM", "echo first; sleep 60", "first\n", 1.9},
        {"turns TERM into success", "trap 'exit 0' TERM; sleep 60 & wait", "", 1.9},
        {"ignores TERM", "trap '' TERM; echo first; while :; do sleep 0.1; done", "first\n", 8},
        {"leaves a child that cleans up",
         "sh -c 'trap \"sleep 0.4; echo cleaned; exit\" TERM; while :; do sleep 0.1; done' & wait",
         "cleaned\n", 1.9},
        {"writes without end", "yes >/dev/stderr", "", 1.9},
    };
    NrProcess::setTimeLimit(300);
    for (const auto& c : cases) {
        const auto start = Clock::now();
        const auto result = run(c.command);
        EXPECT_LT(secondsSince(start), c.atMost) << c.name;
        EXPECT_EQ(result.status, NrProcess::TimeLimitReached) << c.name;
        EXPECT_EQ(result.out, c.out) << c.name;
        EXPECT_NE(result.err.rfind("time limit of 300 ms reached: command killed\n"), std::string::npos)
            << c.name;
    }
    NrProcess::setTimeLimit(60000);
    fault::dayTimeLeap = 3600;
    EXPECT_EQ(run("sleep 0.1; exit 3").status, 3) << "time is not monotonic";
    fault::dayTimeLeap = 0;
}

TEST_P(OnHost, TimeLimitReleasesTheCallerFromWhateverCannotBeEnded) {
    NrProcess::setTimeLimit(300);
    Outcome stubborn, escaped, immortal;
    const auto start = Clock::now();
    std::thread threads[] = {
        std::thread([&] { stubborn = run("sh -c 'trap \"\" TERM; echo $$; while :; do sleep 0.1; done'"); }),
        std::thread([&] { escaped = run("setsid sh -c 'echo $$; exec sleep 60'"); }), std::thread([&] {
            fault::signalsGetLost = true;
            immortal = run("echo $$; exec sleep 60");
        })};
    for (auto& thread : threads)
        thread.join();
    EXPECT_LT(secondsSince(start), 8);

    for (const Outcome* outcome : {&stubborn, &escaped, &immortal}) {
        EXPECT_EQ(outcome->status, NrProcess::TimeLimitReached);
        ASSERT_NE(outcome->out, "");
    }
    EXPECT_TRUE(isGone(std::stoi(stubborn.out)));
    kill(std::stoi(escaped.out), SIGKILL);
    EXPECT_EQ(immortal.err, "time limit of 300 ms reached: command cannot be killed and was left behind\n");
    EXPECT_EQ(kill(std::stoi(immortal.out), SIGKILL), 0);
    EXPECT_TRUE(childrenAreReaped());
}

/** Each allocation in turn is the one that fails. */
TEST_P(OnHost, LackOfMemoryIsANamedFailureAndKillsTheCommand) {
    const TemporaryDirectory directory;
    const std::string command =
        "head -c 100000 /dev/zero; sleep 0.5; echo finished >>" + directory.file("log");
    int failures = 0;
    for (int status = -1; status != 0; ++failures) {
        std::string out = "left", err = "left";
        fault::allocationsUntilFailure = failures;
        status = NrProcess::system(command.c_str(), &out, &err, 0, true);
        fault::allocationsUntilFailure = -1;
        EXPECT_EQ(out.size(), status == 0 ? 100000U : 0U);
        EXPECT_EQ(err, status == 0 ? "" : "out of memory\n");
        ASSERT_EQ(status, status == 0 ? 0 : NrProcess::NoStatus);
        EXPECT_TRUE(childrenAreReaped());
    }
    EXPECT_GE(failures, 6);
    EXPECT_EQ(linesOf(directory.file("log")).size(), 1U);
}

/** They would keep the command's pipes open in what the host starts meanwhile. */
TEST_P(OnHost, HostsOwnChildrenInheritNoDescriptorOfTheRunners) {
    constexpr int Most = 200;
    int taken[4]; // the low numbers, as in most hosts
    for (int& fd : taken)
        fd = dup(STDIN_FILENO);
    std::vector<int> free;
    for (int fd = 0; fd < Most; ++fd)
        if (fcntl(fd, F_GETFD) < 0)
            free.push_back(fd);
    std::atomic<bool> finished{false};
    std::thread runner([&] {
        run("sleep 0.2");
        finished = true;
    });
    std::set<int> closed, inherited;
    while (!finished)
        for (const int fd : free)
            if (const int flags = fcntl(fd, F_GETFD); flags >= 0)
                (flags & FD_CLOEXEC ? closed : inherited).insert(fd);
    runner.join();
    for (const int fd : taken)
        close(fd);
    EXPECT_GE(closed.size(), 3U);
    EXPECT_EQ(inherited, std::set<int>());
}

TEST_P(OnHost, CommandSeesNothingOfTheHostsState) {
    std::vector<int> opened;
    for (int i = 0; i < 500; ++i)
        opened.push_back(open("/dev/null", O_RDONLY));
    struct sigaction userBefore {};
    struct sigaction ignored {};
    ignored.sa_handler = SIG_IGN;
    sigaction(SIGUSR1, &ignored, &userBefore);
    sigset_t others, before, blocked, after;
    sigfillset(&others);
    sigdelset(&others, SIGCHLD); // the host has its own way with this one
    pthread_sigmask(SIG_BLOCK, &others, &before);
    pthread_sigmask(SIG_BLOCK, nullptr, &blocked);
    const int inputBefore = fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 3);
    opened.push_back(open("/dev/zero", O_RDONLY));
    dup2(opened.back(), STDIN_FILENO);
    const mode_t umaskBefore = umask(022);

    const auto signals = run("exec grep -E '^Sig(Blk|Ign)' /proc/self/status");
    const auto descriptors = run("exec ls /proc/self/fd"); // the fourth is the listing's own
    const auto input = run("exec readlink /proc/self/fd/0");
    const auto group = run("cut -d ' ' -f5 /proc/$$/stat");

    EXPECT_EQ(umask(umaskBefore), 022U);
    dup2(inputBefore, STDIN_FILENO);
    close(inputBefore);
    pthread_sigmask(SIG_SETMASK, &before, &after);
    for (int signal = 1; signal < NSIG; ++signal)
        EXPECT_EQ(sigismember(&after, signal), sigismember(&blocked, signal)) << signal;
    sigaction(SIGUSR1, &userBefore, &ignored);
    EXPECT_EQ(ignored.sa_handler, SIG_IGN);
    for (const int fd : opened)
        close(fd);

    EXPECT_EQ(signals.out, "SigBlk:\t0000000000000000\nSigIgn:\t0000000000000000\n");
    EXPECT_EQ(descriptors.out, "0\n1\n2\n3\n");
    EXPECT_EQ(input.out, "/dev/null\n");
    ASSERT_NE(group.out, "");
    EXPECT_NE(std::stoi(group.out), getpgrp());
}

TEST(Runner, EnvironmentIsTheHostsWithPathAndLocale) {
    const std::string standard = "/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin";
    const struct {
        std::optional<std::string> path;
        std::string expected;
    } cases[] = {
        {"/opt/x:/usr/bin:/bin", "/opt/x:/usr/bin:/bin:/usr/sbin:/sbin"},
        {"/sbin:/usr/bin:/bin", "/sbin:/usr/bin:/bin:/usr/sbin"},
        {"/usr/sbin2:/usr/bin:/x/sbin", "/usr/sbin2:/usr/bin:/x/sbin:/usr/sbin:/sbin"},
        {standard, standard},
        {"", standard},
        {std::nullopt, standard},
    };
    const std::string before = getenv("PATH");
    setenv("LC_ALL", "de_DE.UTF-8", 1);
    setenv("NRMPIO_TEST", "kept", 1);
    for (const auto& c : cases) {
        c.path ? setenv("PATH", c.path->c_str(), 1) : unsetenv("PATH");
        EXPECT_EQ(run("echo \"$PATH $LC_ALL $NRMPIO_TEST\"").out, c.expected + " C kept\n");
        EXPECT_EQ(getenv("PATH") ? std::optional<std::string>(getenv("PATH")) : std::nullopt, c.path);
    }
    EXPECT_STREQ(getenv("LC_ALL"), "de_DE.UTF-8");
    EXPECT_EQ(run("env | grep -c -e ^PATH= -e ^LC_ALL=").out, "2\n");
    unsetenv("LC_ALL");
    unsetenv("NRMPIO_TEST");
    setenv("PATH", before.c_str(), 1);
}

TEST_P(OnHost, IntervalTimerWithoutRestartLosesNothing) {
    struct sigaction action {
    }, actionBefore;
    action.sa_handler = ignore;
    sigaction(SIGALRM, &action, &actionBefore);
    const itimerval everyMillisecond{{0, 1000}, {0, 1000}};
    const itimerval off{};
    setitimer(ITIMER_REAL, &everyMillisecond, nullptr);
    for (int i = 0; i < 20; ++i) {
        const auto result = run("head -c 300000 /dev/zero; sleep 0.01; exit 3");
        EXPECT_EQ(result.status, 3);
        EXPECT_EQ(result.out.size(), 300000U);
    }
    setitimer(ITIMER_REAL, &off, nullptr);
    sigaction(SIGALRM, &actionBefore, nullptr);
}

TEST_P(OnHost, ManyThreadsDoNotDisturbEachOther) {
    std::vector<std::thread> threads;
    for (int t = 0; t < 32; ++t)
        threads.emplace_back([t] {
            for (int i = 0; i < 100; ++i) {
                const std::string text = std::to_string(t) + "." + std::to_string(i);
                // the fourth descriptor is the listing's own
                const auto result =
                    run("set -- /proc/$$/fd/*; echo " + text + " $#; exit " + std::to_string(t));
                EXPECT_EQ(result.status, t);
                EXPECT_EQ(result.out, text + " 4\n");
                EXPECT_EQ(result.err, "");
            }
        });
    for (auto& thread : threads)
        thread.join();
}

TEST(Runner, StatusTakenByAnotherThreadIsNeverSuccess) {
    std::atomic<bool> stop{false};
    std::thread thief([&stop] {
        while (!stop)
            if (waitpid(-1, nullptr, 0) < 0)
                std::this_thread::yield();
    });
    int lost = 0;
    for (int i = 0; i < 100; ++i) {
        const auto result = run("exit " + std::to_string(i));
        if (result.status == i && result.err.empty())
            continue;
        ++lost;
        EXPECT_EQ(result.status, NrProcess::NoStatus) << i;
        EXPECT_NE(result.err.find("exit status lost"), std::string::npos) << i;
    }
    stop = true;
    thief.join();
    EXPECT_LE(lost, 1) << "once it is known, every status is right";
}

TEST(Runner, WhatCannotBeStartedIsAFailureWithItsReason) {
    const auto tooLong = run(std::string(1 << 20, ' '));
    EXPECT_EQ(tooLong.status, NrProcess::NoStatus);
    EXPECT_EQ(tooLong.out, "");
    EXPECT_EQ(tooLong.err, "cannot start /bin/sh: Argument list too long\n");

    fault::shellIsMissing = true;
    const auto noShell = run("true");
    fault::shellIsMissing = false;
    EXPECT_EQ(noShell.status, NrProcess::NoStatus);
    EXPECT_EQ(noShell.err, "cannot start /bin/sh: No such file or directory\n");

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) // they need memory themselves
    rlimit before;
    getrlimit(RLIMIT_AS, &before);
    const rlimit nothing{1, before.rlim_max};
    setrlimit(RLIMIT_AS, &nothing);
    const auto noMemory = run("true");
    setrlimit(RLIMIT_AS, &before);
    EXPECT_EQ(noMemory.status, NrProcess::NoStatus);
    EXPECT_EQ(noMemory.err, "cannot start /bin/sh: Cannot allocate memory\n");
#endif

    std::string err;
    EXPECT_EQ(NrProcess::system(nullptr, nullptr, &err, 0, false), NrProcess::NoStatus);
    EXPECT_EQ(err, "no command given\n");
    EXPECT_EQ(NrProcess::system("echo x; echo y >&2; exit 2", nullptr, nullptr, 0, true), 2);
}

/** The process descriptor included, each of the few that a call needs may be the one that fails. */
TEST_P(OnHost, TooFewDescriptorsAreANamedFailureOrDoNotMatter) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizer itself needs descriptors";
#endif
    std::vector<int> opened; // the shell itself needs a limit that is not all too low
    for (int i = 0; i < 16; ++i)
        opened.push_back(open("/dev/null", O_RDONLY));
    rlimit before;
    getrlimit(RLIMIT_NOFILE, &before);
    int failures = 0, successes = 0;
    for (rlim_t free = 0; free < 12; ++free) {
        const rlimit few{openDescriptors() - 1 + free, before.rlim_max};
        setrlimit(RLIMIT_NOFILE, &few);
        const auto result = run("echo out; exit 3");
        setrlimit(RLIMIT_NOFILE, &before);
        if (result.status == 3) {
            EXPECT_EQ(result.out, "out\n") << free;
            ++successes;
        } else {
            EXPECT_EQ(result.status, NrProcess::NoStatus) << free;
            EXPECT_NE(result.err.find("Too many open files"), std::string::npos) << result.err;
            ++failures;
        }
    }
    for (const int fd : opened)
        close(fd);
    EXPECT_GE(failures, 3);
    EXPECT_GE(successes, 4);
}

/** Answers "answer", throws at "throw", has all others run. */
struct Listener : CommandWatch {
    std::vector<std::string> heard;
    std::optional<CommandAnswer> before(const char* command) override {
        heard.push_back("before "s + command);
        if (command == "throw"s)
            throw 0;
        return command == "answer"s ? std::optional<CommandAnswer>({3, "out", "err"}) : std::nullopt;
    }
    void after(const char* command, int status) override {
        heard.push_back("after "s + command + " " + std::to_string(status));
    }
};

TEST(Runner, WatchSeesDecidesAndMayThrow) {
    Listener listener;
    NrProcess::setWatch(&listener);
    const auto ran = run("echo 1; exit 5"), answered = run("answer"), refused = run("throw");
    NrProcess::setWatch(nullptr);
    EXPECT_EQ(run("echo 2").out, "2\n");
    EXPECT_EQ(ran.status, 5);
    EXPECT_EQ(ran.out, "1\n");
    EXPECT_EQ(answered.status, 3);
    EXPECT_EQ(answered.out + answered.err, "outerr");
    EXPECT_EQ(refused.status, NrProcess::NoStatus);
    EXPECT_EQ(refused.err, "the host's watch failed\n");
    EXPECT_EQ(listener.heard, (std::vector<std::string>{"before echo 1; exit 5", "after echo 1; exit 5 5",
                                                        "before answer", "before throw"}));
}

TEST_P(OnHost, SignalForAllReachesWhatRunsAndNothingElse) {
    EXPECT_EQ(NrProcess::signalAll(SIGTERM), 0);
    const TemporaryDirectory directory;
    const std::string started = directory.file("started");
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&started] {
            // the shell waits for one that it does not replace itself with
            EXPECT_EQ(run("echo x >> " + started + "; sleep 60; true").status, 128 + SIGTERM);
        });
    for (int i = 0; linesOf(started).size() < 4 && i < 2000; ++i)
        usleep(5000);
    int living = 4;
    for (int i = 0; living != 0 && i < 2000; ++i) {
        living = NrProcess::signalAll(SIGTERM); // a command may run before its number is known
        usleep(5000);
    }
    EXPECT_EQ(living, 0);
    for (auto& thread : threads)
        thread.join();
}

struct FixedLevel : CLogWriterInterface {
    explicit FixedLevel(int l) : level(l) {}
    int getDebugLevel() override { return level; }
    int level;
};

TEST(Runner, TracesACommandThatIsNotQuietFromLevelThreeOn) {
    const struct {
        bool quiet;
        int level;
        size_t records;
    } cases[] = {{false, 9, 1}, {false, 3, 1}, {false, 2, 0}, {false, 0, 0}, {true, 9, 0}};
    const auto writer = g_ptrLogWriter;
    for (const auto& c : cases)
        for (const bool own : {false, true}) {
            const TemporaryDirectory directory;
            ASSERT_EQ(Log::toFile(directory.file("log")), 0);
            Log::setLevel(own ? 9 - c.level : c.level);
            if (own)
                g_ptrLogWriter = boost::make_shared<FixedLevel>(c.level);
            std::string err;
            NrProcess::system("echo '%s'\nsleep 0.05; exit 3\n", nullptr, &err, 0, c.quiet);
            g_ptrLogWriter = writer;
            Log::toStandardError();
            const auto lines = linesOf(directory.file("log"));
            ASSERT_EQ(lines.size(), c.records) << c.level << c.quiet << own;
            for (const auto& line : lines) {
                int duration = -1, length = 0; // milliseconds
                const size_t tag = line.find(" NrProcess::system: ");
                ASSERT_NE(tag, std::string::npos) << line;
                sscanf(&line[tag], " NrProcess::system: status 3 after %d ms: %n", &duration, &length);
                EXPECT_TRUE(duration >= 50 && duration < 5000) << line;
                EXPECT_EQ(line.substr(tag + static_cast<size_t>(length)),
                          "echo '%s'\\nsleep 0.05; exit 3\\n");
            }
        }
    Log::setLevel(Log::DefaultLevel);
}

} // namespace
