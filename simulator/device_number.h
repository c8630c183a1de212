// Device numbers, and the numbers that the kernel gives to disks by their names.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace sim {

/// The major number of every device-mapper device in a world.
constexpr unsigned DeviceMapperMajor = 253;

struct DeviceNumber {
    unsigned major = 0;
    unsigned minor = 0;

    /// "253:0", as sysfs and dmsetup write it.
    std::string text() const { return std::to_string(major) + ":" + std::to_string(minor); }
};

inline bool operator<(DeviceNumber a, DeviceNumber b) {
    return a.major != b.major ? a.major < b.major : a.minor < b.minor;
}

inline bool operator==(DeviceNumber a, DeviceNumber b) {
    return a.major == b.major && a.minor == b.minor;
}

/// Reads "253:0"; nothing else may stand in the text.
std::optional<DeviceNumber> parseDeviceNumber(std::string_view text);

/// Reads a decimal number that is the whole text.
std::optional<unsigned long long> parseNumber(std::string_view text);

/// The numbers of the whole disk "sda", "sdaa" or "vda"; nothing for any other name.
/// See Documentation/admin-guide/devices.txt of the kernel.
std::optional<DeviceNumber> diskNumber(std::string_view name);

/// The name of the SCSI disk at a position: 0 is "sda", 26 is "sdaa".
std::string scsiDiskName(unsigned position);

} // namespace sim
