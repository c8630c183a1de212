/* One call of the plug-in, with tools that print anything: what a caller relies on must hold.
 *
 * libFuzzer, or the replay of the corpus, gives the input; Machine.h tells how it reads. What
 * include/NrMPIO.h promises is checked and ends the program where it is broken.
 */
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "Machine.h"
#include "NrMPIO.h"

namespace {

constexpr int unwritten = 0x5A5A5A5A;

/** A buffer that a caller hands over, with guard bytes around it. */
class Buffer {
public:
    explicit Buffer(std::size_t bytes) : size(bytes), memory(guard + bytes + guard, fill) {}

    char* data() { return memory.data() + guard; }
    const char* data() const { return memory.data() + guard; }
    bool untouched() const { return filled(0, memory.size()); }
    bool guarded() const { return filled(0, guard) && filled(guard + size, memory.size()); }
    bool isText() const { return guarded() && std::memchr(data(), '\0', size); }
    bool isPath() const { return isText() && std::strncmp(data(), "/dev/", 5) == 0; }

private:
    bool filled(std::size_t from, std::size_t to) const {
        return std::string_view(memory.data() + from, to - from).find_first_not_of(fill) ==
               std::string_view::npos;
    }

    static constexpr std::size_t guard = 64;
    static constexpr char fill = 0x5A;
    std::size_t size;
    std::vector<char> memory;
};

/** The arguments of a call, and what has become of them. */
struct Call {
    Call(char entries, char options, std::string_view name)
        : device(name.substr(0, name.find('\0'))), capacity(std::clamp(entries - '0', -1, 15)),
          runKpartx((options & 1) != 0), withErrBuf((options & 2) == 0), withErrCode((options & 4) == 0),
          withOptional((options & 8) == 0) {
        for (int i = 0; i < capacity; ++i)
            pointers.push_back(paths.emplace_back(MAXMPIOPATHLEN).data());
    }

    int* code() { return withErrCode ? &errCode : nullptr; }
    char* text() { return withErrBuf ? errBuf.data() : nullptr; }
    bool complete() const { return withErrCode && withErrBuf; }
    std::size_t room() const { return static_cast<std::size_t>(std::max(capacity, 0)); }

    bool silent() const { return errCode == unwritten && errBuf.untouched(); }
    bool reported(int expected) const { return expected != 0 && errCode == expected && errBuf.isText(); }
    bool pathsWritten(std::size_t entries) const {
        for (std::size_t i = 0; i < paths.size(); ++i)
            if (i < entries ? !paths[i].isPath() : !paths[i].untouched())
                return false;
        return true;
    }

    std::string device;
    int capacity;
    bool runKpartx;
    bool withErrBuf;
    bool withErrCode;
    bool withOptional; /**< A count and a parent path, where they may be null. */

    int errCode = unwritten;
    Buffer errBuf{MAXMPIOERRORLEN};
    int count = capacity;
    std::vector<Buffer> paths;
    std::vector<char*> pointers;
    Buffer parentPath{MAXMPIOPATHLEN};
    Buffer parts{room() * sizeof(NrPartInfo)};
};

/** A list of paths: as many as fit, or nothing and the status of the command that failed. */
void requireList(const Call& call, int result) {
    if (result < 0) {
        require(call.count == call.capacity && call.pathsWritten(0), "a failure leaves the list as it is");
        require(call.reported(call.errCode) && result == -std::abs(call.errCode), "a failure is reported");
        return;
    }
    require(call.silent(), "a success writes no error");
    require(result == 0 || result > call.capacity, "a positive result asks for more entries");
    require(call.count >= 0 && static_cast<std::size_t>(call.count) <= call.room(),
            "the count is within the capacity");
    require(call.pathsWritten(static_cast<std::size_t>(call.count)), "as many paths as the count says");
}

void checkInit(Call& call) {
    const char* const result = init(nullptr, call.code(), call.text());
    require(!result || result == _VendorName, "the vendor name or null");
    require(call.silent() || !call.complete(), "init reports nothing");
    require(call.complete() || !result, "the guard answers null");
}

void checkMaps(Call& call) {
    const int result = getMPIODevices(nullptr, call.pointers.data(), &call.count, call.code(), call.text());
    if (call.complete())
        requireList(call, result);
    else
        require(result == -1, "the guard");
}

void checkIsMultipath(Call& call) {
    const int result = isMPIODevice(nullptr, call.device.c_str(), call.code(), call.text());
    if (call.complete())
        require((result == 0 || result == 1) && call.silent(), "yes or no, and nothing written");
    else
        require(result == -1, "the guard");
}

void checkPaths(Call& call) {
    const int result = getUnderlyingDevices(nullptr, call.device.c_str(), call.pointers.data(), &call.count,
                                            call.code(), call.text());
    if (!call.complete())
        require(result == -1, "the guard");
    else if (result != -6 || !call.silent())
        requireList(call, result);
    else
        require(call.count == call.capacity && call.pathsWritten(0), "nothing is written for another device");
}

void checkIsPartition(Call& call) {
    char* const parent = call.withOptional ? call.parentPath.data() : nullptr;
    const int result = isPartitionDevice(nullptr, call.device.c_str(), parent, call.code(), call.text());
    require(call.silent(), "nothing is reported");
    require(result == 0 ? call.parentPath.untouched() : result == 1 && call.parentPath.isPath(),
            "a parent's path with a yes, nothing with a no");
}

void requireRecords(const Call& call, std::size_t partitions) {
    const std::size_t records = call.withOptional ? std::min(partitions, call.room()) : 0;
    require(call.parts.guarded(), "records within the array");
    for (std::size_t i = 0; i < records; ++i) {
        NrPartInfo record;
        std::memcpy(&record, call.parts.data() + i * sizeof record, sizeof record);
        require(std::memchr(record.devName, '\0', sizeof record.devName), "a name ends");
        require(record.sectorSize == (record.devName[0] ? 512 : 0), "a record without a mapping is empty");
        require(record.sliceMinor == static_cast<int>(i) + 1, "records in the order of the partition table");
    }
}

void checkPartitions(Call& call) {
    const int result = getPartitionDevices(
        nullptr, call.device.c_str(), reinterpret_cast<NrPartInfo*>(call.parts.data()),
        call.withOptional ? &call.count : nullptr, call.runKpartx ? 1 : 0, call.code(), call.text());
    if (result >= 0) {
        require(!call.withOptional || call.count == result, "the count is the result");
        requireRecords(call, static_cast<std::size_t>(result));
        require(call.silent() || !call.complete(), "a success writes no error");
        return;
    }
    require(call.parts.guarded(), "records within the array");
    if (result == -6 && call.silent())
        return;
    require(!call.withErrCode || call.errCode == result, "a failure has a code");
    require(!call.withErrBuf || call.errBuf.isText(), "a failure has a text");
}

void requireStatus(const Call& call, int result) {
    if (!call.complete())
        require(result == -1, "the guard");
    else
        require(result == 0 ? call.silent() : call.reported(result), "a status, and its report");
}

void checkRefresh(Call& call) {
    requireStatus(call, refreshMPIO(nullptr, call.code(), call.text()));
}

void checkPolicy(Call& call) {
    requireStatus(call, setFailIfNoPathDevice(nullptr, call.device.c_str(), call.code(), call.text()));
}

/** What a removal of mappings leaves behind. */
void requireRemoval(const Call& call) {
    require(call.errCode != unwritten, "a removal always writes the code");
    require(call.errBuf.isText() || (call.errCode == 0 && call.errBuf.untouched()), "a failure has a text");
}

void checkRemoval(Call& call) {
    const int result = deleteMPIODevicePartitions(call.device.c_str(), call.code(), call.text());
    require(result == (call.complete() ? 0 : -1), "0, or the guard");
    if (call.complete())
        requireRemoval(call);
}

void checkTeardown(Call& call) {
    const int result = deleteMPIODevice(nullptr, call.device.c_str(), call.code(), call.text());
    if (!call.complete())
        require(result == -1, "the guard");
    else if (result == 0)
        requireRemoval(call);
    else
        require(call.reported(result), "a failed flush is reported");
}

void checkDiskName(Call& call) {
    const char* const text = call.device.c_str();
    const char* const colon = std::strchr(text, ':');
    const std::string name = getScsiDevName(std::atoi(text), colon ? std::atoi(colon + 1) : 0);
    require(name.empty() || (name.size() > 2 && name.compare(0, 2, "sd") == 0 &&
                             name.find_first_not_of("abcdefghijklmnopqrstuvwxyz") == std::string::npos),
            "a disk's name");
}

struct EntryPoint {
    void (*check)(Call&);
    std::vector<std::string_view> changes; /**< How commands begin that it may run besides asking. */
    char letter;
    bool guarded;
};

const EntryPoint entryPoints[] = {
    {checkInit, {}, 'i', true},
    {checkMaps, {}, 'm', true},
    {checkIsMultipath, {}, 'q', true},
    {checkPaths, {}, 'u', true},
    {checkIsPartition, {}, 'p', false},
    {checkPartitions, {"kpartx -a "}, 'P', false},
    {checkRefresh, {"multipath"}, 'r', true},
    {checkPolicy, {"dmsetup message "}, 'f', true},
    {checkRemoval, {"dmsetup remove "}, 'D', true},
    {checkTeardown, {"dmsetup message ", "dmsetup remove ", "multipath -f "}, 'd', true},
    {checkDiskName, {}, 's', false},
};

bool startsWith(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

bool mayRun(const EntryPoint& entryPoint, std::string_view command) {
    constexpr std::array<std::string_view, 4> questions{"dmsetup table", "dmsetup info -c ", "dmsetup deps ",
                                                        "multipath -d "};
    const auto begins = [command](std::string_view start) { return startsWith(command, start); };
    return std::any_of(questions.begin(), questions.end(), begins) ||
           std::any_of(entryPoint.changes.begin(), entryPoint.changes.end(), begins);
}

void play(const EntryPoint& entryPoint, Call& call, std::string_view answers) {
    Machine machine(answers);
    entryPoint.check(call);
    require(machine.openLogs == 0, "every log object has ended");
    require(call.errBuf.guarded(), "nothing is written around errBuf");
    for (const std::string& command : machine.commands)
        require(mayRun(entryPoint, command), "an entry point runs its own commands only");
    if (!entryPoint.guarded || call.complete())
        return;
    require(machine.commands.empty() && call.errBuf.untouched(), "the guard runs and writes nothing");
    require(!call.withErrCode || call.errCode == -1, "the guard's code");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const std::string_view line = input.substr(0, input.find_first_of("\n~"));
    if (line.size() < 3)
        return 0;
    const auto entryPoint = std::find_if(std::begin(entryPoints), std::end(entryPoints),
                                         [line](const EntryPoint& known) { return known.letter == line[0]; });
    if (entryPoint == std::end(entryPoints))
        return 0;
    Call call(line[1], line[2], line.substr(3));
    play(*entryPoint, call, input.substr(line.size()));
    return 0;
}
