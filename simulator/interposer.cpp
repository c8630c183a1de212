// The file functions of the C library, replaced: a path that belongs to a world is looked up in the
// world that NRMPIO_SIM_WORLD names, every other path goes to the C library as it is.
//
// A device node of the world looks like a block device, and opening it opens the device's content.
// An open device-mapper node holds a shared lock (flock(2)) on the content for as long as any process
// has it open; that is how the tools know that a device is in use.
//
// Loaded into any program, so: C library only, no exceptions, no constructors.

#include "redirect.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/sysmacros.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "mount_table.h"
#include "next_function.h"
#include "open_device.h"

#define INTERPOSED extern "C" __attribute__((visibility("default")))

static_assert(sizeof(struct stat) == sizeof(struct stat64), "the plain and the 64-bit records must agree");

using sim::Next;

namespace {

constexpr unsigned DeviceMapperMajor = 253;

/// The place of a path: in the world, or the path itself.
class Place {
public:
    explicit Place(const char* path)
        : inWorld_(sim::redirect(sim::worldDirectory(), path, buffer_)), path_(path) {}

    bool inWorld() const { return inWorld_; }
    /// True when what is there can be a device of the world.
    bool mayBeDevice() const { return inWorld_ || sim::isDescriptor(path_); }
    const char* path() const { return inWorld_ ? buffer_ : path_; }

private:
    sim::PathBuffer buffer_;
    bool inWorld_;
    const char* path_;
};

class KeepErrno {
public:
    ~KeepErrno() { errno = saved_; }

private:
    int saved_ = errno;
};

// ---- what a node looks like

mode_t modeOf(const sim::Node& node) {
    return node.kind == sim::NodeKind::block ? S_IFBLK | 0660 : S_IFCHR | 0600;
}
unsigned groupOf(const sim::Node& node) {
    return node.kind == sim::NodeKind::block ? 6 : 0; // disk, root
}

template <typename Stat>
void describe(const sim::Node& node, Stat& status) {
    status.st_mode = modeOf(node);
    status.st_rdev = makedev(node.major, node.minor);
    status.st_uid = 0;
    status.st_gid = groupOf(node);
    status.st_size = 0;
    status.st_blocks = 0;
}

void describe(const sim::Node& node, struct statx& status) {
    status.stx_mode = static_cast<decltype(status.stx_mode)>(modeOf(node));
    status.stx_rdev_major = node.major;
    status.stx_rdev_minor = node.minor;
    status.stx_uid = 0;
    status.stx_gid = groupOf(node);
    status.stx_size = 0;
    status.stx_blocks = 0;
}

template <typename Stat>
mode_t modeOf(const Stat& status) {
    return status.st_mode;
}
mode_t modeOf(const struct statx& status) {
    return status.stx_mode;
}

template <typename Stat>
void belongToRoot(Stat& status) {
    status.st_uid = status.st_gid = 0;
}
void belongToRoot(struct statx& status) {
    status.stx_uid = status.stx_gid = 0;
}

/// Turns the status of a node's text file, or of a device's content that is open, into that of the node.
/// Passes the result through.
template <typename Stat>
int asNode(int result, const Place& place, Stat* status) {
    if (result != 0 || !place.mayBeDevice())
        return result;
    if (place.inWorld() && S_ISLNK(modeOf(*status)))
        belongToRoot(*status); // whoever runs the world
    if (!S_ISREG(modeOf(*status)))
        return result;
    const KeepErrno keep;
    const sim::Node node = place.inWorld() ? sim::readNode(place.path()) : sim::openNode(place.path());
    if (node.kind != sim::NodeKind::none)
        describe(node, *status);
    return result;
}

// ---- opening a node

long rawOpen(const char* path, int flags, mode_t mode) {
    return syscall(SYS_openat, AT_FDCWD, path, flags, mode);
}

/// True when the open file is still the content of a device at `content`.
bool isStill(int fd, const char* content) {
    struct stat mine;
    struct stat current;
    return syscall(SYS_newfstatat, fd, "", &mine, AT_EMPTY_PATH) == 0 &&
           syscall(SYS_newfstatat, AT_FDCWD, content, &current, 0) == 0 && mine.st_ino == current.st_ino &&
           mine.st_dev == current.st_dev;
}

int failWith(int error) {
    errno = error;
    return -1;
}

/// True when the caller is one that must not open devices, by the world or for this process only.
bool isUnprivileged() {
    sim::PathBuffer mark;
    std::snprintf(mark, sizeof mark, "%s/unprivileged", sim::worldDirectory());
    return getenv("NRMPIO_SIM_UNPRIVILEGED") != nullptr || syscall(SYS_faccessat, AT_FDCWD, mark, F_OK) == 0;
}

int openDevice(const sim::Node& node, int flags) {
    if (isUnprivileged())
        return failWith(EACCES);
    sim::PathBuffer content;
    const int length = std::snprintf(content, sizeof content, "%s/sys/dev/block/%u:%u/image",
                                     sim::worldDirectory(), node.major, node.minor);
    if (node.kind != sim::NodeKind::block || length >= static_cast<int>(sizeof content))
        return failWith(ENXIO);
    const int fileOnly = O_CREAT | O_EXCL | O_TRUNC | O_NOFOLLOW | O_DIRECT;
    const int fd = static_cast<int>(rawOpen(content, flags & ~fileOnly, 0));
    if (fd < 0)
        return errno == ENOENT || errno == ENOTDIR ? failWith(ENXIO) : -1;
    if (node.major != DeviceMapperMajor)
        return fd;
    while (flock(fd, LOCK_SH) != 0 && errno == EINTR) {
    }
    if (!isStill(fd, content)) {
        syscall(SYS_close, fd);
        return failWith(ENXIO);
    }
    return fd;
}

/// True when opening with these flags means the file at the place and not what it stands for.
bool meansTheFile(const char* place, int flags) {
    if ((flags & (O_PATH | O_DIRECTORY)) != 0)
        return true;
    char target[1];
    return (flags & O_NOFOLLOW) != 0 && syscall(SYS_readlinkat, AT_FDCWD, place, target, sizeof target) >= 0;
}

int openInWorld(const char* place, int flags, mode_t mode) {
    if (!meansTheFile(place, flags)) {
        if (const char* path = place + std::strlen(sim::worldDirectory()); sim::isMountTable(path))
            return sim::openMountTable(path, place, flags);
        const int saved = errno;
        const sim::Node node = sim::readNode(place);
        errno = saved;
        if (node.kind != sim::NodeKind::none)
            return openDevice(node, flags);
    }
    return static_cast<int>(rawOpen(place, flags, mode));
}

/// The flags of open(2) for a mode of fopen(3), or -1.
int flagsOf(const char* mode) {
    int flags = std::strchr(mode, '+') != nullptr ? O_RDWR : *mode == 'r' ? O_RDONLY : O_WRONLY;
    if (*mode == 'w')
        flags |= O_CREAT | O_TRUNC;
    else if (*mode == 'a')
        flags |= O_CREAT | O_APPEND;
    else if (*mode != 'r')
        return -1;
    flags |= std::strchr(mode, 'x') != nullptr ? O_EXCL : 0;
    flags |= std::strchr(mode, 'e') != nullptr ? O_CLOEXEC : 0;
    return flags;
}

FILE* openStreamInWorld(const char* place, const char* mode) {
    const int flags = flagsOf(mode);
    const int fd = flags < 0 ? failWith(EINVAL) : openInWorld(place, flags, 0666);
    if (fd < 0)
        return nullptr;
    FILE* stream = fdopen(fd, mode);
    if (stream == nullptr)
        close(fd);
    return stream;
}

bool needsMode(int flags) {
    return (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
}

mode_t modeArgument(int flags, va_list arguments) {
    return needsMode(flags) ? static_cast<mode_t>(va_arg(arguments, unsigned)) : 0;
}

} // namespace

// ---- stat

#define STAT_FUNCTION(name, record)                                                                          \
    static Next<int(const char*, record*)> next_##name{#name};                                               \
    INTERPOSED int name(const char* path, record* status) noexcept {                                         \
        const Place place(path);                                                                             \
        return asNode(next_##name(place.path(), status), place, status);                                     \
    }

STAT_FUNCTION(stat, struct stat)
STAT_FUNCTION(stat64, struct stat64)
STAT_FUNCTION(lstat, struct stat)
STAT_FUNCTION(lstat64, struct stat64)

#define FSTATAT_FUNCTION(name, record)                                                                       \
    static Next<int(int, const char*, record*, int)> next_##name{#name};                                     \
    INTERPOSED int name(int directory, const char* path, record* status, int flags) noexcept {               \
        const Place place(path);                                                                             \
        return asNode(next_##name(directory, place.path(), status, flags), place, status);                   \
    }

FSTATAT_FUNCTION(fstatat, struct stat)
FSTATAT_FUNCTION(fstatat64, struct stat64)

static Next<int(int, const char*, int, unsigned, struct statx*)> next_statx{"statx"};
INTERPOSED int statx(int directory, const char* path, int flags, unsigned mask,
                     struct statx* status) noexcept {
    const Place place(path);
    // The type decides whether it is a node, asked for or not.
    const unsigned wanted = place.mayBeDevice() ? mask | STATX_TYPE : mask;
    return asNode(next_statx(directory, place.path(), flags, wanted, status), place, status);
}

// Programs linked before glibc 2.33 call these; the first argument is the record's version.

#define XSTAT_FUNCTION(name, record, current)                                                                \
    INTERPOSED int name(int, const char* path, record* status) noexcept {                                    \
        return current(path, status);                                                                        \
    }

XSTAT_FUNCTION(__xstat, struct stat, stat)
XSTAT_FUNCTION(__xstat64, struct stat64, stat64)
XSTAT_FUNCTION(__lxstat, struct stat, lstat)
XSTAT_FUNCTION(__lxstat64, struct stat64, lstat64)

INTERPOSED int __fxstatat(int, int directory, const char* path, struct stat* status, int flags) noexcept {
    return fstatat(directory, path, status, flags);
}
INTERPOSED int __fxstatat64(int, int directory, const char* path, struct stat64* status, int flags) noexcept {
    return fstatat64(directory, path, status, flags);
}

// ---- open

#define OPEN_FUNCTION(name)                                                                                  \
    static Next<int(const char*, int, mode_t)> next_##name{#name};                                           \
    INTERPOSED int name(const char* path, int flags, ...) {                                                  \
        va_list arguments;                                                                                   \
        va_start(arguments, flags);                                                                          \
        const mode_t mode = modeArgument(flags, arguments);                                                  \
        va_end(arguments);                                                                                   \
        const Place place(path);                                                                             \
        return place.inWorld() ? openInWorld(place.path(), flags, mode) : next_##name(path, flags, mode);    \
    }

OPEN_FUNCTION(open)
OPEN_FUNCTION(open64)

#define OPENAT_FUNCTION(name)                                                                                \
    static Next<int(int, const char*, int, mode_t)> next_##name{#name};                                      \
    INTERPOSED int name(int directory, const char* path, int flags, ...) {                                   \
        va_list arguments;                                                                                   \
        va_start(arguments, flags);                                                                          \
        const mode_t mode = modeArgument(flags, arguments);                                                  \
        va_end(arguments);                                                                                   \
        const Place place(path);                                                                             \
        return place.inWorld() ? openInWorld(place.path(), flags, mode)                                      \
                               : next_##name(directory, path, flags, mode);                                  \
    }

OPENAT_FUNCTION(openat)
OPENAT_FUNCTION(openat64)

// What programs built with _FORTIFY_SOURCE call when there is no mode.

INTERPOSED int __open_2(const char* path, int flags) {
    return open(path, flags);
}
INTERPOSED int __open64_2(const char* path, int flags) {
    return open64(path, flags);
}
INTERPOSED int __openat_2(int directory, const char* path, int flags) {
    return openat(directory, path, flags);
}
INTERPOSED int __openat64_2(int directory, const char* path, int flags) {
    return openat64(directory, path, flags);
}

INTERPOSED int creat(const char* path, mode_t mode) {
    return open(path, O_WRONLY | O_CREAT | O_TRUNC, mode);
}
INTERPOSED int creat64(const char* path, mode_t mode) {
    return open64(path, O_WRONLY | O_CREAT | O_TRUNC, mode);
}

#define FOPEN_FUNCTION(name)                                                                                 \
    static Next<FILE*(const char*, const char*)> next_##name{#name};                                         \
    INTERPOSED FILE* name(const char* path, const char* mode) {                                              \
        const Place place(path);                                                                             \
        return place.inWorld() ? openStreamInWorld(place.path(), mode) : next_##name(path, mode);            \
    }

FOPEN_FUNCTION(fopen)
FOPEN_FUNCTION(fopen64)

static Next<DIR*(const char*)> next_opendir{"opendir"};
INTERPOSED DIR* opendir(const char* path) {
    const Place place(path);
    return next_opendir(place.path());
}

#define SCANDIR_FUNCTION(name, entry)                                                                        \
    using Filter_##name = int (*)(const entry*);                                                             \
    using Order_##name = int (*)(const entry**, const entry**);                                              \
    static Next<int(const char*, entry***, Filter_##name, Order_##name)> next_##name{#name};                 \
    INTERPOSED int name(const char* path, entry*** list, Filter_##name filter, Order_##name order) {         \
        const Place place(path);                                                                             \
        return next_##name(place.path(), list, filter, order);                                               \
    }

SCANDIR_FUNCTION(scandir, struct dirent)
SCANDIR_FUNCTION(scandir64, struct dirent64)

// ---- the rest of what a shell does with a node: test it, read a link, take it away, link it again

static Next<int(const char*, int)> next_access{"access"};
INTERPOSED int access(const char* path, int mode) noexcept {
    const Place place(path);
    return next_access(place.path(), mode);
}

static Next<int(int, const char*, int, int)> next_faccessat{"faccessat"};
INTERPOSED int faccessat(int directory, const char* path, int mode, int flags) noexcept {
    const Place place(path);
    return next_faccessat(directory, place.path(), mode, flags);
}

/// True when the path is that of a descriptor on a device of the world. The link then says, in `result`
/// bytes of the target, what it would say on a machine with the device.
static bool readDescriptor(const char* path, char* target, size_t size, ssize_t& result) {
    const KeepErrno keep;
    sim::PathBuffer name;
    if (!sim::isDescriptor(path) || !sim::findOpenDevice(path, name))
        return false;
    sim::PathBuffer node;
    const int length = std::snprintf(node, sizeof node, "/dev/%s", name);
    result = static_cast<ssize_t>(static_cast<size_t>(length) < size ? static_cast<size_t>(length) : size);
    std::memcpy(target, node, static_cast<size_t>(result));
    return true;
}

static Next<ssize_t(const char*, char*, size_t)> next_readlink{"readlink"};
INTERPOSED ssize_t readlink(const char* path, char* target, size_t size) noexcept {
    const Place place(path);
    ssize_t result = 0;
    return readDescriptor(path, target, size, result) ? result : next_readlink(place.path(), target, size);
}

static Next<ssize_t(int, const char*, char*, size_t)> next_readlinkat{"readlinkat"};
INTERPOSED ssize_t readlinkat(int directory, const char* path, char* target, size_t size) noexcept {
    const Place place(path);
    ssize_t result = 0;
    return readDescriptor(path, target, size, result)
               ? result
               : next_readlinkat(directory, place.path(), target, size);
}

// ls looks for access control lists before it shows a file.

static Next<ssize_t(const char*, const char*, void*, size_t)> next_getxattr{"getxattr"};
INTERPOSED ssize_t getxattr(const char* path, const char* name, void* value, size_t size) noexcept {
    const Place place(path);
    return next_getxattr(place.path(), name, value, size);
}

static Next<ssize_t(const char*, const char*, void*, size_t)> next_lgetxattr{"lgetxattr"};
INTERPOSED ssize_t lgetxattr(const char* path, const char* name, void* value, size_t size) noexcept {
    const Place place(path);
    return next_lgetxattr(place.path(), name, value, size);
}

static Next<int(const char*)> next_unlink{"unlink"};
INTERPOSED int unlink(const char* path) noexcept {
    const Place place(path);
    return next_unlink(place.path());
}

static Next<int(int, const char*, int)> next_unlinkat{"unlinkat"};
INTERPOSED int unlinkat(int directory, const char* path, int flags) noexcept {
    const Place place(path);
    return next_unlinkat(directory, place.path(), flags);
}

static Next<int(const char*, const char*)> next_symlink{"symlink"};
INTERPOSED int symlink(const char* target, const char* path) noexcept {
    const Place place(path);
    return next_symlink(target, place.path());
}

static Next<int(const char*, int, const char*)> next_symlinkat{"symlinkat"};
INTERPOSED int symlinkat(const char* target, int directory, const char* path) noexcept {
    const Place place(path);
    return next_symlinkat(target, directory, place.path());
}
