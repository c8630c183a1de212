/* What the entry points have in common: the guard, and how they report a failure. */
#ifndef CONVENTIONS_H
#define CONVENTIONS_H

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>

#include "NrMPIO.h"

static_assert(MAXMPIOPATHLEN == MAXMPIOERRORLEN, "copyText serves both kinds of caller buffer");

/** The guard at entry: true when the call must return at once for want of a place to report to. */
inline bool refused(int* errCode, const char* errBuf) {
    if (errCode && !errBuf)
        *errCode = -1;
    return !errCode || !errBuf;
}

/** Copies text, up to its first NUL or to 1023 bytes, and fills the rest of the 1024 with NUL. */
inline void copyText(const std::string& text, char* buffer) {
    std::strncpy(buffer, text.c_str(), MAXMPIOPATHLEN - 1);
    buffer[MAXMPIOPATHLEN - 1] = '\0';
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
