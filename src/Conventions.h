/* What the entry points have in common: the guard, and how they report a failure. */
#ifndef CONVENTIONS_H
#define CONVENTIONS_H

#include <algorithm>
#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>

#include "NrMPIO.h"

static_assert(MAXMPIOPATHLEN == MAXMPIOERRORLEN, "copyText serves both kinds of caller buffer");

/** The guard at entry: true when the call must return at once for want of a place to report to. */
inline bool refused(int* errCode, const char* errBuf) {
    if (errCode && !errBuf)
        *errCode = -1;
    return !errCode || !errBuf;
}

/** Copies text, up to its first NUL or to one byte less than size, and fills the rest with NUL. */
inline void copyText(std::string_view text, char* buffer, std::size_t size = MAXMPIOPATHLEN) {
    const std::size_t length = strnlen(text.data(), std::min(text.size(), size - 1));
    std::memcpy(buffer, text.data(), length);
    std::memset(buffer + length, 0, size - length);
}

/** Copies the path of name in directory, which ends in "/", by the same rule. */
inline void copyPath(std::string_view directory, std::string_view name, char* buffer) {
    std::memcpy(buffer, directory.data(), directory.size());
    copyText(name, buffer + directory.size(), MAXMPIOPATHLEN - directory.size());
}

/** Reports a failed command and returns its code. */
inline int reportFailure(int code, const std::string& standardError, int* errCode, char* errBuf) {
    *errCode = code;
    copyText(standardError, errBuf);
    return code;
}

/** Reports a failure with a text of the plug-in's own, in each of the two places that is not null. */
__attribute__((format(printf, 4, 5))) inline void reportText(int code, int* errCode, char* errBuf,
                                                             const char* format, ...) {
    if (errCode)
        *errCode = code;
    if (!errBuf)
        return;
    va_list values;
    va_start(values, format);
    std::vsnprintf(errBuf, MAXMPIOERRORLEN, format, values);
    va_end(values);
}

/** Minus the absolute value, which, unlike the absolute value, every int has. */
inline int minusAbsolute(int code) {
    return code > 0 ? -code : code;
}

#endif
