#include "SizeText.h"

#include <array>
#include <fmt/format.h>

std::string sizeText(unsigned long long bytes) {
    constexpr std::array<char, 7> units = {'B', 'K', 'M', 'G', 'T', 'P', 'E'};
    auto size = static_cast<double>(bytes);
    std::size_t unit = 0;
    while (size >= 1024) {
        size /= 1024;
        ++unit;
    }
    std::string number = fmt::format("{:.1f}", size);
    if (number.substr(number.size() - 2) == ".0")
        number.resize(number.size() - 2);
    return number + units[unit];
}
