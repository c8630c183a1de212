/* nrmpio: asks about multipath devices and manages them, by way of the plug-in. */
#include <clocale>
#include <csignal>

#include "CommandLine.h"
#include "Output.h"

int main(int argc, char** argv) {
    reserveStandardDescriptors();
    std::signal(SIGPIPE, SIG_DFL); // quiet when the reader of a pipe has enough
    std::setlocale(LC_CTYPE, "");
    return static_cast<int>(runCommandLine(argc, argv));
}
