/* One POSIX extended regular expression, compiled for the life of the object. */
#ifndef NRREGEX_H
#define NRREGEX_H

#include <cstdint>
#include <regex.h>
#include <string>
#include <utility>

class NrRegEx {
public:
    using Range = std::pair<std::uint64_t, std::uint64_t>;

    /** Compiles pattern with the flags of regcomp(3). One that does not compile never matches. */
    NrRegEx(const char* pattern, int cflags)
        : expression(), compiled(regcomp(&expression, pattern, cflags) == 0) {}

    virtual ~NrRegEx() {
        if (compiled)
            regfree(&expression);
    }

    NrRegEx(const NrRegEx&) = delete;
    NrRegEx& operator=(const NrRegEx&) = delete;

    /**
     * Searches text, up to its first NUL, for the first match.
     *
     * @param matched Receives the matched text; may be null. Written only on a match.
     * @param range   Receives the offsets of the match's first byte and of the byte after its last
     *                one; may be null. Written only on a match.
     */
    bool match(const std::string& text, std::string* matched, Range* range) const {
        regmatch_t whole;
        if (!compiled || regexec(&expression, text.c_str(), 1, &whole, 0) != 0)
            return false;
        const auto start = static_cast<std::uint64_t>(whole.rm_so);
        const auto end = static_cast<std::uint64_t>(whole.rm_eo);
        if (matched)
            *matched = text.substr(start, end - start);
        if (range)
            *range = {start, end};
        return true;
    }

private:
    regex_t expression;
    bool compiled;
};

#endif
