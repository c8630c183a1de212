/* How the answer of `dmsetup deps` is read: "2 dependencies : (8, 80) (8, 48)"; see dmsetup(8). */
#ifndef DEPENDENCIES_H
#define DEPENDENCIES_H

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "Decimal.h"
#include "DeviceNode.h"
#include "NrRegEx.h"

/** One dependency of a listing. */
struct Dependency {
    DeviceNumber number;
    std::size_t end; /**< Offset of the byte after it. */
};

/** Finds the dependencies of a listing, one after the other. */
class DependencyPattern {
public:
    /**
     * The first dependency in listing at or after position, up to the next NUL.
     *
     * The pattern is only tried on the digits, blanks and digits around a comma: regexec(3) needs
     * time with the square of a run of digits that no comma follows, which would be hours for a
     * megabyte.
     */
    std::optional<Dependency> find(const std::string& listing, std::size_t position) const {
        static const char digits[] = "0123456789";
        for (;; ++position) {
            const auto comma = listing.find_first_of(std::string_view(",\0", 2), position);
            if (comma == std::string::npos || listing[comma] == '\0')
                return std::nullopt;
            const auto before = comma == 0 ? comma : listing.find_last_not_of(digits, comma - 1);
            const auto start = std::max(position, before == std::string::npos ? 0 : before + 1);
            const auto second = listing.find_first_not_of(' ', comma + 1);
            const auto end = second == std::string::npos ? second : listing.find_first_not_of(digits, second);
            std::string text;
            if (start < comma && pattern.match(listing.substr(start, end - start), &text, nullptr)) {
                const auto major = text.find_first_of("123456789");
                return Dependency{{major == std::string::npos ? 0 : unsignedDecimal(text.c_str() + major),
                                   unsignedDecimal(text.c_str() + text.find(',') + 1)},
                                  start + text.size()};
            }
            position = comma;
        }
    }

private:
    NrRegEx pattern{"([0-9]+,[ ]+[0-9]+)", REG_EXTENDED};
};

#endif
