#include "InstantWorld.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include "CLogWriterInterface.h"
#include "EvDebug.h"
#include "NrProcess.h"
#include "getPartitions.h"

namespace {

const instant::World* current = nullptr;
int partitionsFile = -1;
thread_local long commandCount = 0;
thread_local long allocationCount = 0;

const std::string silence;

bool begins(const char* text, const char* beginning) {
    return std::strncmp(text, beginning, std::strlen(beginning)) == 0;
}

const std::string& answer(const char* command) {
    if (begins(command, "multipath "))
        return current->maps;
    if (begins(command, "dmsetup table -j 253 -m "))
        return current->tables.at(std::strtoul(command + 24, nullptr, 10));
    if (begins(command, "dmsetup info "))
        return current->name;
    if (begins(command, "dmsetup deps | "))
        return current->dependents;
    if (begins(command, "dmsetup deps "))
        return current->dependencies;
    if (begins(command, "dmsetup table | "))
        return current->mappings;
    return silence;
}

class SilentLog : public CLogWriterInterface {
public:
    int getDebugLevel() override { return 0; }
};

/** "/dev/mapper/p7" is 253:7. */
int statNode(const char* path, struct stat* info) {
    if (!begins(path, "/dev/mapper/")) {
        errno = ENOENT;
        return -1;
    }
    std::memset(info, 0, sizeof *info);
    info->st_mode = S_IFBLK | 0660;
    info->st_rdev = makedev(253, static_cast<unsigned>(std::atoi(path + std::strlen("/dev/mapper/p"))));
    return 0;
}

} // namespace

namespace instant {

void enter(const World& world) {
    if (partitionsFile >= 0)
        close(partitionsFile);
    partitionsFile = memfd_create("partitions", MFD_CLOEXEC);
    if (write(partitionsFile, world.partitions.data(), world.partitions.size()) !=
        static_cast<ssize_t>(world.partitions.size()))
        std::abort();
    current = &world;
}

long commandsRun() {
    return commandCount;
}

long allocations() {
    return allocationCount;
}

} // namespace instant

// What the plug-in imports.

CLogWriterInterface::~CLogWriterInterface() = default;
boost::shared_ptr<CLogWriterInterface> g_ptrLogWriter(new SilentLog);

int NrProcess::system(const char* command, std::string* out, std::string* err, int, bool) {
    ++commandCount;
    *out = answer(command);
    err->clear();
    return 0;
}

EvDebug::EvDebug(EvDebugFileInstance*) {}
EvDebug::~EvDebug() = default;
void EvDebug::Debug(const char*, const char*, ...) {}

int getPartitions(const char*, std::list<slice>& slices) {
    slices = current->slices;
    return static_cast<int>(slices.size());
}

extern "C" {

int stat(const char* path, struct stat* info) noexcept {
    return statNode(path, info);
}

/** The other name of stat: which one is imported depends on the width of file offsets. */
int narrowStat(const char* path, struct stat* info) __asm__("stat");
int narrowStat(const char* path, struct stat* info) {
    return statNode(path, info);
}

/** As streams call it, by the name fopen64: file offsets are wide here. */
FILE* fopen(const char* path, const char* mode) {
    static auto* const next =
        reinterpret_cast<FILE* (*)(const char*, const char*)>(dlsym(RTLD_NEXT, "fopen64"));
    if (std::strcmp(path, "/proc/partitions") != 0)
        return next(path, mode);
    char opened[32]; // anew each time, so with an offset of its own
    std::snprintf(opened, sizeof opened, "/proc/self/fd/%d", partitionsFile);
    return next(opened, mode);
}

void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);

void* malloc(std::size_t size) {
    ++allocationCount;
    return __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size) {
    ++allocationCount;
    return __libc_calloc(count, size);
}

void* realloc(void* memory, std::size_t size) {
    ++allocationCount;
    return __libc_realloc(memory, size);
}

} // extern "C"
