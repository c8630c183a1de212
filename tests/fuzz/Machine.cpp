#include "Machine.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <list>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include "CLogWriterInterface.h"
#include "EvDebug.h"
#include "NrProcess.h"
#include "getPartitions.h"

namespace {

thread_local Machine* machine = nullptr; // libFuzzer has a thread that sleeps
std::chrono::seconds now(3600);

/** The number that text begins with from an offset on; 0 where there is none. */
long long number(const std::string& text, std::size_t offset) {
    return offset < text.size() ? std::strtoll(text.c_str() + offset, nullptr, 10) : 0;
}

unsigned small(long long value, long long largest) {
    return static_cast<unsigned>(std::clamp(value, 0LL, largest));
}

int failWith(unsigned code) {
    errno = code == 0 ? ENOENT : static_cast<int>(code);
    return -1;
}

int statNode(const char* path, struct stat* info) {
    if (!machine)
        return fstatat(AT_FDCWD, path, info, 0);
    const std::string text = machine->take();
    const char kind = text.empty() ? '0' : text.front();
    if (kind != 'b' && kind != 'f')
        return failWith(small(number(text, 0), 133));
    std::memset(info, 0, sizeof *info);
    info->st_mode = kind == 'b' ? S_IFBLK | 0660 : S_IFREG | 0644;
    if (kind == 'b')
        info->st_rdev =
            makedev(small(number(text, 1), UINT_MAX), small(number(text, text.find(':') + 1), UINT_MAX));
    return 0;
}

/** A stream over a text, with a file descriptor beneath it. */
FILE* fileOf(const std::string& text) {
    const int descriptor = memfd_create("text", MFD_CLOEXEC);
    require(write(descriptor, text.data(), text.size()) == static_cast<ssize_t>(text.size()),
            "memory for a file");
    lseek(descriptor, 0, SEEK_SET);
    return fdopen(descriptor, "r");
}

class LogWriter : public CLogWriterInterface {
public:
    int getDebugLevel() override { return 6; }
};

} // namespace

void require(bool holds, const char* what) {
    if (holds)
        return;
    std::fprintf(stderr, "broken: %s\n", what);
    std::abort();
}

Machine::Machine(std::string_view answers) : rest(answers) {
    machine = this;
}

Machine::~Machine() {
    machine = nullptr;
}

std::string Machine::take() {
    const auto start = rest.find('~');
    if (start == std::string_view::npos)
        return {};
    rest.remove_prefix(start + 1);
    const auto end = std::min(rest.find('~'), rest.size());
    const std::string answer(rest.substr(0, end));
    rest.remove_prefix(end);
    return answer;
}

// What the plug-in imports.

CLogWriterInterface::~CLogWriterInterface() = default;
boost::shared_ptr<CLogWriterInterface> g_ptrLogWriter(new LogWriter);

int NrProcess::system(const char* command, std::string* out, std::string* err, int option, bool) {
    require(option == 0 && out != err, "the runner is called as it is meant to be");
    machine->commands.emplace_back(command);
    const std::string answer = machine->take();
    const auto mark = std::min(answer.find('^'), answer.size());
    out->assign(answer, std::min<std::size_t>(1, mark), mark - std::min<std::size_t>(1, mark));
    err->assign(answer, std::min(mark + 1, answer.size()));
    const char status = answer.empty() ? '1' : answer.front();
    return status >= '0' && status <= '9' ? status - '0' : static_cast<signed char>(status);
}

EvDebug::EvDebug(EvDebugFileInstance* instance) {
    require(!instance, "the log has no file of its own");
    ++machine->openLogs;
}

EvDebug::~EvDebug() {
    --machine->openLogs;
}

void EvDebug::Debug(const char*, const char* format, ...) {
    va_list values;
    va_start(values, format);
    char text[256];
    require(std::vsnprintf(text, sizeof text, format, values) >= 0, "a record can be formatted");
    va_end(values);
}

int getPartitions(const char*, std::list<slice>& slices) {
    const std::string answer = machine->take();
    slices.clear();
    if (answer.find('-') != std::string::npos)
        return static_cast<int>(std::clamp(number(answer, answer.find('-')), -4095LL, -1LL));
    for (std::size_t plus = 0; (plus = answer.find('+', plus + 1)) != std::string::npos;) {
        const auto start = answer.find_last_of(" +", plus - 1) + 1;
        slices.push_back({static_cast<uint64_t>(number(answer, start)),
                          static_cast<uint64_t>(number(answer, plus + 1)), 71, 72,
                          static_cast<int>(slices.size()) + 1});
    }
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

FILE* fopen(const char* path, const char* mode) {
    if (!machine || std::strcmp(path, "/proc/partitions") != 0)
        return reinterpret_cast<decltype(&fopen)>(dlsym(RTLD_NEXT, "fopen64"))(path, mode);
    const std::string text = machine->take();
    if (!text.empty() && text.front() != '-')
        return fileOf(text);
    errno = EACCES;
    return nullptr;
}

unsigned sleep(unsigned seconds) {
    if (!machine)
        return reinterpret_cast<decltype(&sleep)>(dlsym(RTLD_NEXT, "sleep"))(seconds);
    const unsigned left = small(number(machine->take(), 0), seconds);
    now += std::chrono::seconds(seconds - left);
    return left;
}

} // extern "C"

/** A clock that only the sleeps move. */
std::chrono::steady_clock::time_point std::chrono::steady_clock::now() noexcept {
    return time_point(::now);
}
