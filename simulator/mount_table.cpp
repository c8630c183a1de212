#include "mount_table.h"

#include <cstdio>
#include <cstdlib>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "redirect.h"

namespace sim {

namespace {

bool worldHas(unsigned major, unsigned minor) {
    PathBuffer place;
    std::snprintf(place, sizeof place, "%s/sys/dev/block/%u:%u", worldDirectory(), major, minor);
    return syscall(SYS_faccessat, AT_FDCWD, place, F_OK) == 0;
}

/// A line of the machine; in mountinfo it begins "36 35 98:0 /".
void addMachineLine(int table, const char* line) {
    unsigned id = 0;
    unsigned parent = 0;
    unsigned major = 0;
    unsigned minor = 0;
    int end = 0;
    const bool numbered = std::sscanf(line, "%u %u %u:%u%n", &id, &parent, &major, &minor, &end) == 4;
    if (numbered && worldHas(major, minor))
        dprintf(table, "%u %u 0:%u%s", id, parent, minor, line + end);
    else
        dprintf(table, "%s", line);
}

void addWorldLine(int table, const char* line) {
    dprintf(table, "%s", line);
}

void addLines(int table, const char* path, void (*add)(int, const char*)) {
    const int fd = static_cast<int>(syscall(SYS_openat, AT_FDCWD, path, O_RDONLY | O_CLOEXEC, 0));
    FILE* stream = fd >= 0 ? fdopen(fd, "r") : nullptr;
    if (stream == nullptr)
        return;
    char* line = nullptr;
    size_t room = 0;
    while (getline(&line, &room, stream) > 0)
        add(table, line);
    std::free(line); // NOLINT(cppcoreguidelines-no-malloc): getline made it
    std::fclose(stream);
}

} // namespace

int openMountTable(const char* machines, const char* place, int flags) {
    const int table = memfd_create("mounts", (flags & O_CLOEXEC) != 0 ? MFD_CLOEXEC : 0);
    if (table < 0)
        return -1;
    addLines(table, machines, addMachineLine);
    addLines(table, place, addWorldLine);
    lseek(table, 0, SEEK_SET);
    return table;
}

} // namespace sim
