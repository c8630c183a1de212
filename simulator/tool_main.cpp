// multipath, dmsetup, kpartx and simctl: picks the tool by the name that it was started under.
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <ctime>

#include "daemon.h"
#include "faults.h"
#include "redirect.h"
#include "text_file.h"
#include "tools.h"

namespace sim {

void out(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    std::vfprintf(stdout, format, arguments);
    va_end(arguments);
}

void err(const char* format, ...) {
    std::fflush(stdout);
    va_list arguments;
    va_start(arguments, format);
    std::vfprintf(stderr, format, arguments);
    va_end(arguments);
}

void log(const std::string& text) {
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    err("%ld.%06ld | %s\n", static_cast<long>(now.tv_sec), now.tv_nsec / 1000, text.c_str());
}

namespace {

using Tool = int (*)(World&, const Arguments&);

Tool toolNamed(const std::string& name) {
    return name == "dmsetup"     ? dmsetup
           : name == "multipath" ? multipath
           : name == "kpartx"    ? kpartx
           : name == "simctl"    ? simctl
                                 : nullptr;
}

int run(const std::string& name, const Arguments& arguments) {
    const Tool tool = toolNamed(name);
    const char* directory = worldDirectory();
    if (tool == nullptr || directory == nullptr) {
        err("%s: a simulated tool; nrmpio-sim starts it as dmsetup, kpartx or multipath\n", name.c_str());
        return NotSimulatedStatus;
    }
    const std::string commandLine = joined([&] {
        Arguments all{name};
        all.insert(all.end(), arguments.begin(), arguments.end());
        return all;
    }());
    try {
        World world(directory);
        if (const auto fault = takeFault(world, commandLine))
            if (const auto status = suffer(world, *fault))
                return *status;
        if (const auto status = refusal(world, name, arguments))
            return *status;
        restoreWhatIsDue(world);
        return tool(world, arguments);
    } catch (const NotSimulated& reason) {
        err("not simulated: %s (%s)\n", commandLine.c_str(), reason.what());
    } catch (const WorldError& reason) {
        err("nrmpio-sim: %s\n", reason.what());
    }
    return NotSimulatedStatus;
}

} // namespace
} // namespace sim

int main(int count, char** values) {
    const char* slash = std::strrchr(values[0], '/');
    const std::string name = slash != nullptr ? slash + 1 : values[0];
    const int status = sim::run(name, {values + 1, values + count});
    return std::fflush(stdout) == 0 ? status : 1;
}
