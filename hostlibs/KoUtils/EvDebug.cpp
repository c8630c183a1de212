#include "EvDebug.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <string>

#include "CLogWriterInterface.h"
#include "Log.h"
#include "LogDestination.h"

namespace {

/** Formats as vprintf does; false when that fails. */
bool format(std::string& text, const char* format, va_list arguments) {
    va_list again;
    va_copy(again, arguments);
    char shortText[512];
    const int length = vsnprintf(shortText, sizeof shortText, format, arguments);
    if (length >= 0 && length < static_cast<int>(sizeof shortText)) {
        text = shortText;
    } else if (length >= 0) {
        text.resize(static_cast<size_t>(length));
        vsnprintf(text.data(), text.size() + 1, format, again);
    }
    va_end(again);
    return length >= 0;
}

bool isControl(char c) {
    return static_cast<unsigned char>(c) < 0x20 || c == 0x7f;
}

std::string escaped(const std::string& text) {
    std::string result;
    result.reserve(text.size());
    for (const char c : text) {
        if (!isControl(c)) {
            result += c;
        } else if (c == '\n' || c == '\r' || c == '\t') {
            result += c == '\n' ? "\\n" : c == '\r' ? "\\r" : "\\t";
        } else {
            char code[8];
            snprintf(code, sizeof code, "\\x%02x", static_cast<unsigned>(c));
            result += code;
        }
    }
    return result;
}

bool recordsWanted() {
    return g_ptrLogWriter && g_ptrLogWriter->getDebugLevel() >= Log::RecordLevel;
}

} // namespace

EvDebug::EvDebug(EvDebugFileInstance*) {}

EvDebug::~EvDebug() = default;

void EvDebug::Debug(const char* functionName, const char* textFormat, ...) {
    const int callersErrno = errno;
    va_list arguments;
    va_start(arguments, textFormat);
    try {
        std::string text;
        if (textFormat && recordsWanted()) {
            errno = callersErrno; // for %m
            if (format(text, textFormat, arguments))
                writeRecord(escaped(functionName ? functionName : "?"), escaped(text));
        }
    } catch (...) { // no memory, or a writer that throws: the record is lost
    }
    va_end(arguments);
    errno = callersErrno;
}
