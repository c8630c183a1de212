#include "Library.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <fmt/format.h>

#include "CommandGate.h"
#include "DeviceMapper.h"
#include "ExitStatus.h"

namespace {

/** Calls an entry point. @throw Failure when it came to a command that the gate refuses. */
template <class Result, class... Parameters, class... Arguments>
Result call(Result (*entry)(Parameters...), Arguments... arguments) {
    CommandGate::forgetRefusals();
    Result result = entry(arguments...);
    CommandGate::requireNoRefusal();
    return result;
}

/** The out-parameters errCode and errBuf of one call. */
struct Report {
    int code = 0;
    std::array<char, MAXMPIOERRORLEN> text{};

    Failure failure(const std::string& what) const {
        std::string sentence = what;
        if (code != 0)
            sentence += fmt::format(" (code {})", code);
        if (text[0] != '\0')
            sentence.append(": ").append(text.data(), strnlen(text.data(), text.size()));
        return Failure{sentence};
    }
};

/** An array of path buffers in the shape that the library fills. */
class PathArray {
public:
    explicit PathArray(std::size_t capacity) : buffers_(capacity), pointers_(capacity) {
        std::transform(buffers_.begin(), buffers_.end(), pointers_.begin(),
                       [](Buffer& buffer) { return buffer.data(); });
    }

    char** pointers() { return pointers_.data(); }

    std::vector<std::string> texts(int count) const { return {pointers_.begin(), pointers_.begin() + count}; }

private:
    using Buffer = std::array<char, MAXMPIOPATHLEN>;
    std::vector<Buffer> buffers_;
    std::vector<char*> pointers_;
};

/**
 * Offers a capacity until all fits. `call` takes the capacity and returns how much it needs, or
 * nothing larger than the capacity when it was enough.
 */
template <class Call>
void grow(int capacity, const char* what, Call call) {
    for (int attempt = 0; attempt < 8; ++attempt) {
        const int needed = call(capacity);
        if (needed <= capacity)
            return;
        capacity = needed;
    }
    throw Failure(fmt::format("{} changes faster than it can be read; try again", what));
}

/** What getMPIODevices and getUnderlyingDevices do alike: a positive result is the capacity they need. */
template <class Call>
int growPaths(int capacity, const char* what, std::vector<std::string>& found, Call call) {
    int result = 0;
    grow(capacity, what, [&](int entries) {
        PathArray array(static_cast<std::size_t>(entries));
        int count = entries;
        result = call(array.pointers(), &count);
        if (result == 0)
            found = array.texts(std::clamp(count, 0, entries));
        return result > 0 ? std::max(result, entries + 1) : 0;
    });
    return result;
}

} // namespace

std::string Library::vendorName() const {
    return plugin_.getVendorName();
}

std::optional<std::string> Library::init() const {
    Report report;
    const char* vendor = call(plugin_.init, nullptr, &report.code, report.text.data());
    if (!vendor)
        return std::nullopt;
    return vendor;
}

std::vector<std::string> Library::maps() const {
    Report report;
    std::vector<std::string> maps;
    const int result = growPaths(32, "the list of maps", maps, [&](char** devices, int* count) {
        report = {};
        return call(plugin_.getMPIODevices, nullptr, devices, count, &report.code, report.text.data());
    });
    if (result < 0)
        throw report.failure("the multipath tools cannot list the maps");
    return maps;
}

bool Library::isMultipath(const DeviceName& device) const {
    Report report;
    return call(plugin_.isMPIODevice, nullptr, device.c_str(), &report.code, report.text.data()) == 1;
}

std::optional<std::vector<std::string>> Library::paths(const DeviceName& device) const {
    Report report;
    std::vector<std::string> paths;
    const int result = growPaths(8, "the list of paths", paths, [&](char** disks, int* count) {
        report = {};
        return call(plugin_.getUnderlyingDevices, nullptr, device.c_str(), disks, count, &report.code,
                    report.text.data());
    });
    // A command that failed with status 6 gives the same result, but it leaves its status.
    if (result == notMultipath && report.code == 0)
        return std::nullopt;
    if (result < 0)
        throw report.failure(fmt::format("cannot list the paths of {}", device.text()));
    return paths;
}

std::optional<std::string> Library::partitionParent(const DeviceName& device) const {
    Report report;
    std::array<char, MAXMPIOPATHLEN> parent{};
    if (call(plugin_.isPartitionDevice, nullptr, device.c_str(), parent.data(), &report.code,
             report.text.data()) != 1)
        return std::nullopt;
    return parent.data();
}

std::optional<std::vector<NrPartInfo>> Library::partitions(const DeviceName& device, bool runKpartx) const {
    requireGated();
    Report report;
    std::vector<NrPartInfo> records;
    int result = 0;
    grow(16, "the partition table", [&](int capacity) {
        report = {};
        records.assign(static_cast<std::size_t>(capacity), NrPartInfo());
        int count = capacity;
        result = call(plugin_.getPartitionDevices, nullptr, device.c_str(), records.data(), &count, runKpartx,
                      &report.code, report.text.data());
        return result;
    });
    if (result == notMultipath && report.code == 0)
        return std::nullopt;
    if (result < 0) {
        // -1 may also stand for another failure than that of the errno 1.
        const std::string reason = result < -1 ? fmt::format(": {}", std::strerror(-result)) : "";
        throw report.failure(fmt::format("cannot list the partitions of {}{}", device.text(), reason));
    }
    records.resize(static_cast<std::size_t>(result));
    return records;
}

void Library::requireGated() const {
    if (!CommandGate::current().rehearses())
        return;
    std::call_once(gated_, [this] {
        const unsigned seen = CommandGate::seen();
        init();
        if (CommandGate::seen() == seen)
            throw Failure("this plug-in does not run its commands by way of nrmpio's process runner: a "
                          "rehearsal would change what it only should show");
    });
}

void Library::refresh() const {
    requireGated();
    Report report;
    if (call(plugin_.refreshMPIO, nullptr, &report.code, report.text.data()) != 0)
        throw report.failure("cannot refresh the maps");
}

void Library::failIfNoPath(const DeviceName& device) const {
    requireGated();
    Report report;
    if (call(plugin_.setFailIfNoPathDevice, nullptr, device.c_str(), &report.code, report.text.data()) != 0)
        throw report.failure(fmt::format("cannot switch {} to fail I/O without paths", device.text()));
}

void Library::deletePartitions(const DeviceName& device) const {
    requireGated();
    Report report;
    call(plugin_.deleteMPIODevicePartitions, device.c_str(), &report.code, report.text.data());
    if (CommandGate::current().rehearses())
        return;
    // A removal that succeeded when it was repeated leaves the text of its failure, and a listing
    // that fails in its pipeline leaves none: what is there now decides.
    const auto node = Node::find(device);
    if (report.code != 0 || (node && !DeviceMapper::read().linearOn(*node).empty()))
        throw report.failure(fmt::format("cannot remove all partition mappings of {}", device.text()));
}

void Library::deleteDevice(const DeviceName& device) const {
    requireGated();
    Report report;
    if (call(plugin_.deleteMPIODevice, nullptr, device.c_str(), &report.code, report.text.data()) != 0)
        throw report.failure(fmt::format("cannot delete {}", device.text()));
}

std::string Library::scsiName(int major, int minor) const {
    return call(plugin_.getScsiDevName, major, minor);
}
