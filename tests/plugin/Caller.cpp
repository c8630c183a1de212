#include "Caller.h"

#include <cstring>
#include <dlfcn.h>
#include <map>
#include <stdexcept>

#include "NrMPIO.h"

namespace {

constexpr char untouched = '\xA5';
constexpr int untouchedInt = 0x5A5A5A5A;

/** Memory of the caller with a margin on both sides that nobody may touch. */
class Memory {
public:
    explicit Memory(std::size_t size) : bytes(margin + size + margin, untouched) {}

    char* data() { return bytes.data() + margin; }

    bool writtenOutside() const {
        const std::string side(margin, untouched);
        return bytes.compare(0, margin, side) != 0 || bytes.compare(bytes.size() - margin, margin, side) != 0;
    }
    bool written() const { return bytes.find_first_not_of(untouched) != std::string::npos; }

private:
    static constexpr std::size_t margin = 64;
    std::string bytes;
};

/** A text in 1024 bytes, and what stands after its NUL. */
std::string describeText(const char* buffer) {
    const std::string whole(buffer, 1024);
    const auto end = whole.find('\0');
    if (end == std::string::npos)
        return "not terminated";
    const std::string rest = whole.substr(end + 1);
    const bool padded = rest.find_first_not_of('\0') == std::string::npos;
    const bool left = rest.find_first_not_of(untouched) == std::string::npos;
    return '"' + world::escape(whole.substr(0, end)) + '"' +
           (rest.empty() || left ? ""
            : padded             ? " padded"
                                 : " then something else");
}

std::string describeRecord(const char* bytes) {
    NrPartInfo record;
    std::memcpy(static_cast<void*>(&record), bytes, sizeof record);
    return describeText(record.devName) + ", slice " + std::to_string(record.sliceMinor) + ", " +
           std::to_string(record.start) + '+' + std::to_string(record.size) + " x " +
           std::to_string(record.sectorSize) + ", " + std::to_string(record.devMajor) + ':' +
           std::to_string(record.devMinor);
}

/** The arguments of one call, in the order in which their changes are told. */
class Arguments {
public:
    explicit Arguments(const world::Lines& words) {
        for (std::size_t i = 1; i < words.size(); ++i) {
            const auto equals = words[i].find('=');
            if (equals == std::string::npos)
                deviceName = words[i];
            else
                options[words[i].substr(0, equals)] = words[i].substr(equals + 1);
        }
        countBefore = number("count");
        count = countBefore;
        // Two entries more than the plug-in was told of.
        for (int i = 0; i < std::max(count, 0) + 2; ++i) {
            paths.emplace_back(1024);
            pathPointers.push_back(paths.back().data());
        }
        records = Memory(pathPointers.size() * sizeof(NrPartInfo));
    }
    Arguments(const Arguments&) = delete;
    Arguments& operator=(const Arguments&) = delete;

    int number(const char* name) const {
        const auto option = options.find(name);
        return option == options.end() || option->second == "null" ? 0 : std::stoi(option->second);
    }
    template <typename Type>
    Type* orNull(const char* name, Type* pointer) const {
        const auto option = options.find(name);
        return option != options.end() && option->second == "null" ? nullptr : pointer;
    }

    void* hostContext() { return &deviceName; }
    const char* device() const { return deviceName.c_str(); }
    int* errCodePointer() { return orNull("errCode", &errCode); }
    char* errBufPointer() { return orNull("errBuf", errBuf.data()); }
    int* countPointer() { return orNull("count", &count); }
    char* parentPathPointer() { return orNull("parentPath", parentPath.data()); }
    char** devices() { return pathPointers.data(); }
    NrPartInfo* parts() { return reinterpret_cast<NrPartInfo*>(records.data()); }

    world::Lines changes() {
        world::Lines lines;
        if (errCode != untouchedInt)
            lines.push_back("errCode " + std::to_string(errCode));
        add(lines, "errBuf", errBuf, describeText(errBuf.data()));
        if (count != countBefore)
            lines.push_back("count " + std::to_string(count));
        for (std::size_t i = 0; i < paths.size(); ++i)
            add(lines, "devices[" + std::to_string(i) + ']', paths[i], describeText(paths[i].data()));
        add(lines, "parentPath", parentPath, describeText(parentPath.data()));
        const std::string blank(sizeof(NrPartInfo), untouched);
        for (std::size_t i = 0; i < paths.size(); ++i) {
            const char* record = records.data() + i * sizeof(NrPartInfo);
            if (blank.compare(0, blank.size(), record, blank.size()) != 0)
                lines.push_back("parts[" + std::to_string(i) + "] " + describeRecord(record));
        }
        if (records.writtenOutside())
            lines.push_back("parts written outside");
        return lines;
    }

private:
    static void add(world::Lines& lines, const std::string& name, const Memory& memory,
                    const std::string& text) {
        if (memory.written())
            lines.push_back(name + ' ' + (memory.writtenOutside() ? "written outside" : text));
    }

    std::string deviceName;
    std::map<std::string, std::string> options;
    int errCode = untouchedInt;
    Memory errBuf{1024};
    int count = 0;
    int countBefore = 0;
    std::vector<Memory> paths;
    std::vector<char*> pathPointers;
    Memory parentPath{1024};
    Memory records{0};
};

std::string text(const char* result) {
    return result ? '"' + std::string(result) + '"' : "null";
}
std::string text(const std::string& result) {
    return '"' + result + '"';
}
std::string text(int result) {
    return std::to_string(result);
}

/** Calls the entry point by its symbol, with the type that the header gives it. */
std::string result(const Plugin& plugin, const std::string& name, Arguments& a) {
    int* const errCode = a.errCodePointer();
    char* const errBuf = a.errBufPointer();
    const auto is = [&name](const char* entryPoint) { return name == entryPoint; };
#define RESULT_OF(entryPoint, symbolName, ...)                                                               \
    if (is(#entryPoint))                                                                                     \
    return text(plugin.symbol<decltype(entryPoint)>(symbolName)(__VA_ARGS__))

    RESULT_OF(getVendorName, "getVendorName");
    RESULT_OF(init, "init", a.hostContext(), errCode, errBuf);
    RESULT_OF(getMPIODevices, "getMPIODevices", a.hostContext(), a.devices(), a.countPointer(), errCode,
              errBuf);
    RESULT_OF(isMPIODevice, "isMPIODevice", a.hostContext(), a.device(), errCode, errBuf);
    RESULT_OF(getUnderlyingDevices, "getUnderlyingDevices", a.hostContext(), a.device(), a.devices(),
              a.countPointer(), errCode, errBuf);
    RESULT_OF(isPartitionDevice, "isPartitionDevice", a.hostContext(), a.device(), a.parentPathPointer(),
              errCode, errBuf);
    RESULT_OF(getPartitionDevices, "getPartitionDevices", a.hostContext(), a.device(), a.parts(),
              a.countPointer(), a.number("kpartx"), errCode, errBuf);
    RESULT_OF(refreshMPIO, "refreshMPIO", a.hostContext(), errCode, errBuf);
    RESULT_OF(setFailIfNoPathDevice, "setFailIfNoPathDevice", a.hostContext(), a.device(), errCode, errBuf);
    RESULT_OF(deleteMPIODevicePartitions, "_Z26deleteMPIODevicePartitionsPKcPiPc", a.device(), errCode,
              errBuf);
    RESULT_OF(deleteMPIODevice, "deleteMPIODevice", a.hostContext(), a.device(), errCode, errBuf);
    RESULT_OF(getScsiDevName, "_Z14getScsiDevNameii", a.number("major"), a.number("minor"));
#undef RESULT_OF
    throw std::logic_error("no entry point " + name);
}

} // namespace

Plugin::Plugin() : handle(dlopen(PLUGIN_FILE, RTLD_NOW | RTLD_LOCAL)) {
    if (!handle)
        throw std::runtime_error(dlerror());
    world::setLogWriter(true);
}

Plugin::~Plugin() {
    world::setLogWriter(false);
    dlclose(handle);
}

void* Plugin::address(const char* name) const {
    void* const found = dlsym(handle, name);
    if (!found)
        throw std::runtime_error(dlerror());
    return found;
}

world::Lines call(const Plugin& plugin, const std::string& line) {
    const auto words = world::words(line);
    Arguments arguments(words);
    world::Lines lines{"= " + result(plugin, words.front(), arguments)};
    for (const auto& change : arguments.changes())
        lines.push_back(change);
    return lines;
}
