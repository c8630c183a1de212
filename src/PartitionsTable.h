/* How a line of /proc/partitions is read: "   8       16  976762584 sdb"; see proc(5). */
#ifndef PARTITIONSTABLE_H
#define PARTITIONSTABLE_H

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <string>
#include <system_error>

#include "Decimal.h"
#include "DeviceNode.h"
#include "NrRegEx.h"

/** Finds the lines of one device number. */
class DiskPattern {
public:
    explicit DiskPattern(DeviceNumber wanted) : number(wanted) {}

    /**
     * Tells whether a line has the number and a SCSI disk's name. name receives that name; what it
     * holds otherwise has no meaning. The major number is the line's first run of digits, the minor
     * number stands one byte after it.
     */
    bool match(const std::string& line, std::string* name) const {
        std::string lineMajor;
        NrRegEx::Range range;
        return mayMatch(line) && disk.match(line, name, nullptr) && digits.match(line, &lineMajor, &range) &&
               unsignedDecimal(lineMajor.c_str()) == number.major &&
               unsignedDecimal(afterMajor(line, range.second)) == number.minor;
    }

private:
    /**
     * False only for a line that cannot match, and for nearly all of those. Without a search for each
     * line, a table of thousands of disks costs little more than reading it.
     */
    bool mayMatch(const std::string& line) const {
        const char* const end = line.data() + line.size();
        const char* text = std::find_if(line.data(), end, [](char c) { return c >= '0' && c <= '9'; });
        if (!mayBe(number.major, text, end))
            return false;
        text = std::find_if(text, end, [](char c) { return c != ' '; });
        return mayBe(number.minor, text, end);
    }

    /**
     * False only where another number begins at text, which is moved past it. What does not begin
     * with a digit, or is too large, may be any number.
     */
    static bool mayBe(int wanted, const char*& text, const char* end) {
        unsigned long value = 0;
        const auto read = std::from_chars(text, end, value);
        text = read.ptr;
        return read.ec != std::errc() || static_cast<int>(value) == wanted;
    }

    /** The text one byte after the major number, or the end of the line. */
    static const char* afterMajor(const std::string& line, std::size_t majorEnd) {
        return line.c_str() + std::min(majorEnd + 1, line.size());
    }

    DeviceNumber number;
    NrRegEx digits{"[0-9]+", REG_EXTENDED};
    NrRegEx disk{"sd[a-z]+", REG_EXTENDED};
};

#endif
