#include "StatusLine.h"

#include <algorithm>
#include <cstdio>
#include <mutex>
#include <sys/ioctl.h>
#include <unistd.h>

#include "CLogWriterInterface.h"

namespace {

std::mutex mutex;
std::string shown;
bool closed = false;

/** Of UTF-8: each byte that does not continue a character begins one. */
std::size_t columnsOf(const std::string& text) {
    return static_cast<std::size_t>(std::count_if(
        text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xc0U) != 0x80; }));
}

void write(std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stderr);
}

/** Blanks instead of an escape sequence: they work on every terminal. */
void replaceBy(const std::string& text) {
    if (text == shown)
        return;
    const std::size_t columns = columnsOf(shown);
    if (columns > columnsOf(text))
        write("\r" + std::string(columns, ' '));
    write("\r" + text);
    shown = text;
}

} // namespace

bool StatusLine::visible() {
    return isatty(STDERR_FILENO) == 1 && g_ptrLogWriter->getDebugLevel() == 0;
}

std::size_t StatusLine::width() {
    winsize size{};
    const bool known = ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 1;
    // A terminal would begin a new line after the last column.
    return (known ? size.ws_col : 80U) - 1;
}

void StatusLine::show(const std::string& text) {
    const std::lock_guard lock(mutex);
    if (!closed)
        replaceBy(text);
}

void StatusLine::writePast(std::string_view text) {
    const std::lock_guard lock(mutex);
    replaceBy("");
    write(text);
}

void StatusLine::close() {
    const std::lock_guard lock(mutex);
    replaceBy("");
    closed = true;
}
