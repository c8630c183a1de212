#include "World.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <list>
#include <map>
#include <optional>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include "CLogWriterInterface.h"
#include "EvDebug.h"
#include "NrProcess.h"
#include "getPartitions.h"

namespace {

struct Script {
    world::Lines lines;
    world::Lines transcript;
    bool departed = false; // from here on nothing happens as the script says
    std::optional<world::Fault> fault;
    std::map<std::string, world::Lines> answers; // by question, where there is a fault
    std::string level;                           // "@5" once the debug level was read for the next command
    std::vector<EvDebug*> logs;                  // made and not ended
    std::size_t fresh = 0;                       // how many of them, the latest, no call has followed yet
};

thread_local Script* script = nullptr;
thread_local std::chrono::seconds now(3600);
const char* watchedLibrary = nullptr;
world::ModuleStrings* watched = nullptr;

/** A call as the transcript has it, and the line that stands in the script for it. */
std::pair<std::string, std::string> lines(const std::string& call) {
    std::string line;
    for (std::size_t depth = script->logs.size(); depth > 0; --depth)
        line += depth > script->fresh ? "  " : "";
    for (std::size_t log = 0; log < script->fresh; ++log)
        line += "- ";
    const std::size_t index = script->transcript.size();
    return {line + call, index < script->lines.size() ? script->lines[index] : ""};
}

/** What a call asks, however it is indented and traced. */
std::string question(const std::string& call) {
    const auto start = std::min(call.find_first_not_of(" -"), call.size());
    std::string text = call.substr(start, call.find(" (holds ") - start);
    if (text.rfind("run ", 0) == 0)
        text.erase(4, text.find(' ', 4) - 3);
    return text;
}

/** The words of the answer where one call of the script has a fault; none for a call that fails. */
std::optional<world::Lines> faultyAnswer(const std::string& call) {
    const world::Fault& fault = *script->fault;
    const std::size_t line = script->transcript.size();
    script->transcript.push_back(question(call));
    const std::string& asked = script->transcript.back();
    if (line == fault.line)
        return fault.answer;
    if (line > fault.line && fault.lasting && asked == script->transcript[fault.line])
        return fault.answer;
    const auto known = script->answers.find(asked);
    if (known != script->answers.end())
        return known->second;
    if (!fault.othersSucceed)
        return std::nullopt;
    return asked.rfind("stat ", 0) == 0 ? world::Lines{"block", "9:1"} : world::Lines{"0"};
}

/** The words of the script's answer to a call; none when the script says something else. */
std::optional<world::Lines> answer(const std::string& call) {
    if (script->fault) {
        script->fresh = 0;
        return faultyAnswer(call);
    }
    const auto [happened, scripted] = lines(call);
    const auto arrow = scripted.find(" -> ");
    script->departed = script->departed || scripted.substr(0, arrow) != happened;
    script->transcript.push_back(script->departed ? happened : scripted);
    script->fresh = 0;
    if (script->departed)
        return std::nullopt;
    return arrow == std::string::npos ? world::Lines() : world::words(scripted.substr(arrow + 4));
}

template <typename Function>
Function* next(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

/** An errno that the test does not disturb: it is set by a call that fails, and only there. */
class ErrnoKeeper {
public:
    ErrnoKeeper() : value(errno) {}
    ~ErrnoKeeper() { errno = value; }
    void fail(const std::string& number) { value = std::stoi(number); }

private:
    int value;
};

int statNode(const char* path, struct stat* info) {
    if (!script)
        return fstatat(AT_FDCWD, path, info, 0);
    ErrnoKeeper keeper;
    const auto words = answer(std::string("stat ") + world::escape(path));
    if (!words || words->size() != 2 || words->front() == "errno") {
        keeper.fail(words && words->size() == 2 ? words->back() : "5");
        return -1;
    }
    std::memset(info, 0, sizeof *info);
    info->st_dev = makedev(77, 77);
    info->st_mode = S_IFBLK | 0660;
    if (words->front() == "mode")
        info->st_mode = static_cast<mode_t>(std::stoul(words->back(), nullptr, 8));
    else
        info->st_rdev =
            makedev(static_cast<unsigned>(std::stoul(words->back())),
                    static_cast<unsigned>(std::stoul(words->back().substr(words->back().find(':') + 1))));
    return 0;
}

/** A stream over a text, with a file descriptor beneath it. */
FILE* fileOf(const std::string& text) {
    const int descriptor = memfd_create("text", MFD_CLOEXEC);
    if (write(descriptor, text.data(), text.size()) != static_cast<ssize_t>(text.size()))
        std::abort();
    lseek(descriptor, 0, SEEK_SET);
    return fdopen(descriptor, "r");
}

class LogWriter : public CLogWriterInterface {
public:
    int getDebugLevel() override {
        const auto [call, scripted] = lines("run ");
        const auto end = scripted.find(' ', call.size());
        const auto at = std::min(scripted.find('@'), end);
        const bool run = scripted.compare(0, call.size(), call) == 0 && at != end;
        script->level += run ? scripted.substr(at, end - at) : "@0";
        return std::stoi(script->level.substr(1));
    }
};

} // namespace

namespace world {

void play(const Lines& lines) {
    script = new Script;
    script->lines = lines;
}

void play(const Lines& lines, const Fault& fault) {
    script = new Script;
    script->fault = fault;
    for (const std::string& line : lines)
        if (const auto arrow = line.find(" -> "); arrow != std::string::npos)
            script->answers[question(line.substr(0, arrow))] = words(line.substr(arrow + 4));
}

Lines finish() {
    if (!script->logs.empty())
        answer("log never ended");
    const Lines transcript = script->transcript;
    delete script;
    script = nullptr;
    return transcript;
}

void setLogWriter(bool present) {
    g_ptrLogWriter = present ? boost::shared_ptr<CLogWriterInterface>(new LogWriter) : nullptr;
}

void watch(const char* library, ModuleStrings* strings) {
    watchedLibrary = library;
    watched = strings;
}

std::string escape(const std::string& text) {
    std::string escaped;
    for (const char c : text) {
        const auto special = std::string_view("\n\t\r\0\\", 5).find(c);
        if (special == std::string_view::npos)
            escaped += c;
        else
            (escaped += '\\') += "ntr0\\"[special];
    }
    return escaped;
}

Lines words(const std::string& line) {
    Lines found;
    bool quoted = false;
    bool inWord = false;
    for (std::size_t i = 0; i < line.size(); ++i) {
        const bool quote = line[i] == '"';
        if (quote || (!quoted && line[i] == ' ')) {
            quoted = quote && !quoted;
            inWord = quoted;
            if (quoted)
                found.emplace_back();
            continue;
        }
        if (!inWord)
            found.emplace_back();
        inWord = true;
        if (quoted && line[i] == '\\') {
            const auto special = std::string_view("ntr0").find(line[++i]);
            found.back() += special == std::string_view::npos ? line[i] : "\n\t\r\0"[special];
        } else {
            found.back() += line[i];
        }
    }
    return found;
}

} // namespace world

// What the plug-in imports.

CLogWriterInterface::~CLogWriterInterface() = default;
boost::shared_ptr<CLogWriterInterface> g_ptrLogWriter;

int NrProcess::system(const char* command, std::string* out, std::string* err, int option, bool quiet) {
    const ErrnoKeeper keeper;
    std::string call = std::string("run ") + (quiet ? "quiet" : "traced") + script->level + ' ';
    script->level.clear();
    if (option != 0 || out == err)
        call += "(option " + std::to_string(option) + (out == err ? ", one string) " : ") ");
    const auto words = answer(call + world::escape(command));
    *out = words && words->size() > 1 ? (*words)[1] : "";
    *err = words && words->size() > 2 ? (*words)[2] : "";
    return words && !words->empty() ? std::stoi(words->front()) : 99;
}

EvDebug::EvDebug(EvDebugFileInstance* instance) {
    script->logs.push_back(this);
    ++script->fresh;
    if (instance)
        answer("log with a file of its own");
}

EvDebug::~EvDebug() {
    if (script->fresh > 0 || script->logs.back() != this)
        answer("log ended before its time");
    script->logs.pop_back();
}

void EvDebug::Debug(const char* functionName, const char* format, ...) {
    const ErrnoKeeper keeper;
    va_list values;
    va_start(values, format);
    char* text = nullptr;
    if (vasprintf(&text, format, values) < 0)
        std::abort();
    va_end(values);
    answer(std::string(script->logs.back() == this ? "log " : "log elsewhere ") + functionName + ' ' +
           world::escape(text));
    std::free(text);
}

int getPartitions(const char* device, std::list<slice>& slices) {
    const ErrnoKeeper keeper;
    std::string call = std::string("getPartitions ") + device;
    if (!slices.empty())
        call += " (holds " + std::to_string(slices.size()) + ")";
    slices.clear();
    const auto words = answer(call);
    if (!words || words->empty())
        return -99;
    for (std::size_t i = 1; i < words->size(); ++i) {
        const std::string& word = (*words)[i];
        const auto colon = word.find(':') + 1; // 0 where there is none
        slices.push_back({std::stoull(word.substr(colon)), std::stoull(word.substr(word.find('+') + 1)), 71,
                          72, colon ? std::stoi(word) : static_cast<int>(i)});
    }
    return std::stoi(words->front());
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
    if (!script || std::strcmp(path, "/proc/partitions") != 0)
        return next<FILE*(const char*, const char*)>("fopen64")(path, mode);
    ErrnoKeeper keeper;
    const auto words = answer("open /proc/partitions");
    if (words && words->size() == 1)
        return fileOf(words->front());
    keeper.fail(words && words->size() == 2 ? words->back() : "5");
    return nullptr;
}

unsigned sleep(unsigned seconds) {
    if (!script)
        return next<unsigned(unsigned)>("sleep")(seconds);
    const ErrnoKeeper keeper;
    const auto words = answer("sleep " + std::to_string(seconds));
    const unsigned left = words && !words->empty() ? static_cast<unsigned>(std::stoul(words->front())) : 0;
    now += std::chrono::seconds(seconds - left);
    return left;
}

/** That a variable of a library exists twice is what this file is for. */
const char* __asan_default_options() {
    return "detect_odr_violation=0";
}

/** Also called while the program and its libraries are being loaded, before anything is set up. */
__attribute__((no_sanitize("address", "thread", "undefined"))) int __cxa_atexit(void (*end)(void*),
                                                                                void* object, void* library) {
    using Register = int(void (*)(void*), void*, void*);
    static Register* registerNext = nullptr;
    if (!registerNext)
        registerNext = next<Register>("__cxa_atexit");
    Dl_info info;
    if (!watched || dladdr(library, &info) == 0 || std::strcmp(info.dli_fname, watchedLibrary) != 0)
        return registerNext(end, object, library);

    struct Destruction {
        void (*end)(void*);
        void* object;
        std::string text;
    };
    const std::string text = object ? *static_cast<std::string*>(object) : "(table)";
    watched->built.push_back(text);
    const auto destroy = [](void* pointer) {
        const auto* const destruction = static_cast<Destruction*>(pointer);
        if (watched)
            watched->destroyed.push_back(destruction->text);
        destruction->end(destruction->object);
        delete destruction;
    };
    return registerNext(destroy, new Destruction{end, object, text}, library);
}

} // extern "C"

/** A clock that only the scripted sleeps move. */
std::chrono::steady_clock::time_point std::chrono::steady_clock::now() noexcept {
    return time_point(::now);
}
