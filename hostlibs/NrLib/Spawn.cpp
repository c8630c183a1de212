#include "Spawn.h"

#include <csignal>
#include <cstring>

#include <spawn.h>
#include <sys/syscall.h>

#include "ChildEnvironment.h"

namespace {

constexpr const char* Shell = "/bin/sh";

/**
 * The command line is $1 and never becomes a part of this text. The redirections are the inner
 * shell's only, so that what the outer one says stays out of the command's error text; signals sent
 * to the whole process group do not keep it from reporting.
 */
constexpr const char* ReportingScript =
    R"(trap : HUP INT QUIT TERM; (exec /bin/sh -c -- "$1" sh) >&3 2>&4 3>&- 4>&-; echo $?)";

void check(int error) {
    if (error != 0)
        throwErrno(error, "cannot start /bin/sh");
}

class Attributes {
public:
    Attributes() {
        check(posix_spawnattr_init(&attributes_));
        sigset_t none, all;
        sigemptyset(&none);
        std::memset(&all, 0xff, sizeof all); // sigfillset leaves out two signals of the C library
        posix_spawnattr_setsigmask(&attributes_, &none);
        posix_spawnattr_setsigdefault(&attributes_, &all);
        posix_spawnattr_setpgroup(&attributes_, 0);
        posix_spawnattr_setflags(&attributes_,
                                 POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETPGROUP);
    }
    ~Attributes() { posix_spawnattr_destroy(&attributes_); }
    Attributes(const Attributes&) = delete;
    Attributes& operator=(const Attributes&) = delete;

    const posix_spawnattr_t* get() const { return &attributes_; }

private:
    posix_spawnattr_t attributes_;
};

class FileActions {
public:
    FileActions() {
        check(posix_spawn_file_actions_init(&actions_));
        checked(posix_spawn_file_actions_addopen(&actions_, 0, "/dev/null", O_RDONLY, 0));
    }
    ~FileActions() { posix_spawn_file_actions_destroy(&actions_); }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;

    void give(const Descriptor& from, int number) {
        checked(posix_spawn_file_actions_adddup2(&actions_, from.get(), number));
    }
    void closeFrom(int number) { checked(posix_spawn_file_actions_addclosefrom_np(&actions_, number)); }

    const posix_spawn_file_actions_t* get() const { return &actions_; }

private:
    void checked(int error) { check(error); }
    posix_spawn_file_actions_t actions_;
};

pid_t spawn(const FileActions& actions, const char* const* arguments) {
    const Attributes attributes;
    const ChildEnvironment environment;
    pid_t pid = -1;
    check(posix_spawn(&pid, Shell, actions.get(), attributes.get(), const_cast<char* const*>(arguments),
                      environment.get()));
    return pid;
}

} // namespace

pid_t spawnShell(const char* command, const Descriptor& out, const Descriptor& err) {
    FileActions actions;
    actions.give(out, 1);
    actions.give(err, 2);
    actions.closeFrom(3);
    const char* const arguments[] = {"sh", "-c", "--", command, nullptr};
    return spawn(actions, arguments);
}

pid_t spawnReportingShell(const char* command, const Descriptor& out, const Descriptor& err,
                          const Descriptor& report) {
    FileActions actions;
    actions.give(report, 1);
    actions.give(report, 2);
    actions.give(out, 3);
    actions.give(err, 4);
    actions.closeFrom(5);
    const char* const arguments[] = {"sh", "-c", "--", ReportingScript, "sh", command, nullptr};
    return spawn(actions, arguments);
}

Descriptor openProcess(pid_t pid) {
    return Descriptor(static_cast<int>(syscall(SYS_pidfd_open, pid, 0)));
}
