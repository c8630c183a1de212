#include "Output.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include "ExitStatus.h"
#include "Printable.h"
#include "StatusLine.h"

std::string oneLine(std::string_view text) {
    const auto end = text.find_last_not_of(" \t\r\n");
    text = text.substr(0, end == std::string_view::npos ? 0 : end + 1);
    std::string line;
    for (const char c : text)
        line += c == '\n' ? "; " : std::string(1, c);
    return printable(line, localeCharacterSet());
}

std::string escaped(std::string_view text) {
    std::string line;
    for (const char c : text)
        line += c == '\n' ? "\\n" : c == '\t' ? "\\t" : c == '\r' ? "\\r" : std::string(1, c);
    return printable(line, localeCharacterSet());
}

void tell(std::string_view sentence) {
    const std::string line = "nrmpio: " + oneLine(sentence) + "\n";
    StatusLine::writePast(line);
}

void print(std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
}

void printLine(std::string_view line) {
    print(std::string(line) + "\n");
}

void finishOutput() {
    errno = 0;
    if (std::fflush(stdout) != 0 || std::ferror(stdout))
        throw Failure(fmt::format("cannot write the output: {}",
                                  errno ? std::strerror(errno) : "it was not written whole"));
}

void reserveStandardDescriptors() {
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (fcntl(descriptor, F_GETFD) == -1)
            // The lowest free descriptor is this one: all below it are open.
            open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
}
