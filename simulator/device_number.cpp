#include "device_number.h"

#include <charconv>

namespace sim {

std::optional<unsigned long long> parseNumber(std::string_view text) {
    unsigned long long value = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || stop != end)
        return std::nullopt;
    return value;
}

std::optional<DeviceNumber> parseDeviceNumber(std::string_view text) {
    const auto colon = text.find(':');
    if (colon == std::string::npos)
        return std::nullopt;
    const auto major = parseNumber(text.substr(0, colon));
    const auto minor = parseNumber(text.substr(colon + 1));
    if (!major || !minor || *major > 0xfff || *minor > 0xfffff)
        return std::nullopt;
    return DeviceNumber{static_cast<unsigned>(*major), static_cast<unsigned>(*minor)};
}

std::optional<DeviceNumber> diskNumber(std::string_view name) {
    const bool scsi = name.substr(0, 2) == "sd";
    if ((!scsi && name.substr(0, 2) != "vd") || name.size() < 3 || name.size() > 5)
        return std::nullopt;
    unsigned position = 0;
    for (const char letter : name.substr(2)) {
        if (letter < 'a' || letter > 'z')
            return std::nullopt;
        position = position * 26 + static_cast<unsigned>(letter - 'a') + 1;
    }
    --position;
    if (!scsi)
        return DeviceNumber{254, position * 16};
    const unsigned range = (position >> 4) & 15; // sixteen majors of sixteen disks, then around again
    const unsigned major = range == 0 ? 8 : range < 8 ? 64 + range : 120 + range;
    return DeviceNumber{major, ((position & 15) << 4) | (position & 0xfff00)};
}

std::string scsiDiskName(unsigned position) {
    std::string letters;
    for (unsigned rest = position + 1; rest > 0; rest = (rest - 1) / 26)
        letters.insert(letters.begin(), static_cast<char>('a' + (rest - 1) % 26));
    return "sd" + letters;
}

} // namespace sim
