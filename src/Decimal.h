/* Decimal numbers at the start of a text. Blanks before the digits are skipped and the first other
 * byte ends the number; without digits it is 0. One that is too large for the wide type becomes
 * that type's largest value before it is narrowed; see strtol(3). */
#ifndef DECIMAL_H
#define DECIMAL_H

#include <cstdint>
#include <cstdlib>

/** A device number's half in a mapping table: read as a long. */
inline int signedDecimal(const char* text) {
    return static_cast<int>(std::strtol(text, nullptr, 10));
}

/** A device number's half in a dependency list or in /proc/partitions: read as an unsigned long. */
inline int unsignedDecimal(const char* text) {
    return static_cast<int>(std::strtoul(text, nullptr, 10));
}

/** A number of sectors. */
inline std::uint64_t sectors(const char* text) {
    return std::strtoull(text, nullptr, 10);
}

#endif
