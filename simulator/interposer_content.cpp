// Reading and writing a device-mapper device: the C library's functions, replaced, so that the content
// fails or waits as the world says in block/dm-N/service. What stdio does inside the C library is not seen.

#include <cerrno>
#include <cstdio>
#include <ctime>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "next_function.h"
#include "open_device.h"

#define INTERPOSED extern "C" __attribute__((visibility("default")))

namespace {

/// The service file of the device that is open; false when it is none of the world's devices.
bool serviceFile(int fd, sim::PathBuffer& place) {
    const char* world = sim::worldDirectory();
    struct stat status;
    if (world == nullptr || syscall(SYS_fstat, fd, &status) != 0 || !S_ISREG(status.st_mode))
        return false;
    char descriptor[64];
    std::snprintf(descriptor, sizeof descriptor, "/proc/self/fd/%d", fd);
    sim::PathBuffer kernelName;
    return sim::findOpenDevice(descriptor, kernelName) &&
           std::snprintf(place, sizeof place, "%s/sys/block/%s/service", world, kernelName) <
               static_cast<int>(sizeof place);
}

/// Waits while the device waits. False, with errno EIO, when it fails.
bool mayProceed(int fd) {
    const int saved = errno;
    sim::PathBuffer place;
    bool proceed = true;
    if (serviceFile(fd, place))
        for (;;) {
            char state = '\0';
            const long service = syscall(SYS_openat, AT_FDCWD, place, O_RDONLY | O_CLOEXEC, 0);
            if (service >= 0) {
                syscall(SYS_read, service, &state, 1);
                syscall(SYS_close, service);
            }
            proceed = state != 'e';
            if (state != 'w')
                break;
            timespec pause{0, 20'000'000};
            nanosleep(&pause, nullptr);
        }
    errno = proceed ? saved : EIO;
    return proceed;
}

} // namespace

#define TRANSFER(name, parameters, arguments)                                                                \
    static sim::Next<ssize_t parameters> next_##name{#name};                                                 \
    INTERPOSED ssize_t name parameters {                                                                     \
        return mayProceed(fd) ? next_##name arguments : -1;                                                  \
    }

TRANSFER(read, (int fd, void* data, size_t size), (fd, data, size))
TRANSFER(pread, (int fd, void* data, size_t size, off_t at), (fd, data, size, at))
TRANSFER(pread64, (int fd, void* data, size_t size, off64_t at), (fd, data, size, at))
TRANSFER(write, (int fd, const void* data, size_t size), (fd, data, size))
TRANSFER(pwrite, (int fd, const void* data, size_t size, off_t at), (fd, data, size, at))
TRANSFER(pwrite64, (int fd, const void* data, size_t size, off64_t at), (fd, data, size, at))

// What programs built with _FORTIFY_SOURCE call; the last argument is the room that there is.
TRANSFER(__read_chk, (int fd, void* data, size_t size, size_t room), (fd, data, size, room))
TRANSFER(__pread_chk, (int fd, void* data, size_t size, off_t at, size_t room), (fd, data, size, at, room))
TRANSFER(__pread64_chk, (int fd, void* data, size_t size, off64_t at, size_t room),
         (fd, data, size, at, room))
