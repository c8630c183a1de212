/* The floor: the least that gets both outputs and the status of a shell command. It keeps none of
 * the runner's promises. */
#ifndef FLOOR_H
#define FLOOR_H

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

#include "Measure.h"

/** Takes in what is there; false at the end. */
inline bool take(int fd, std::string& text) {
    char buffer[32768];
    const ssize_t got = read(fd, buffer, sizeof buffer);
    if (got > 0)
        text.append(buffer, static_cast<std::size_t>(got));
    return got > 0;
}

/** A bare posix_spawn of /bin/sh -c, two pipes read to their end by poll, and waitpid. */
inline int runBare(const char* command, std::string& out, std::string& err) {
    int outPipe[2], errPipe[2];
    require(pipe2(outPipe, O_CLOEXEC) == 0 && pipe2(errPipe, O_CLOEXEC) == 0, "no pipe");
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, outPipe[1], 1);
    posix_spawn_file_actions_adddup2(&actions, errPipe[1], 2);
    const char* const arguments[] = {"sh", "-c", command, nullptr};
    pid_t pid = -1;
    require(posix_spawn(&pid, "/bin/sh", &actions, nullptr, const_cast<char* const*>(arguments), environ) ==
                0,
            "no process");
    posix_spawn_file_actions_destroy(&actions);
    close(outPipe[1]);
    close(errPipe[1]);
    pollfd events[] = {{outPipe[0], POLLIN, 0}, {errPipe[0], POLLIN, 0}};
    std::string* const texts[] = {&out, &err};
    while (events[0].fd >= 0 || events[1].fd >= 0) {
        poll(events, 2, -1);
        for (std::size_t i = 0; i < 2; ++i)
            if (events[i].revents && !take(events[i].fd, *texts[i]))
                events[i].fd = -1;
    }
    close(outPipe[0]);
    close(errPipe[0]);
    int status = 0;
    waitpid(pid, &status, 0);
    return status;
}

#endif
