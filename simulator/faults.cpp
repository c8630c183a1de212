#include "faults.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <ctime>

#include <fnmatch.h>
#include <unistd.h>

#include "text_file.h"

namespace sim {

namespace {

Fault readFault(const std::string& directory) {
    Fault fault;
    fault.command = readLine(directory + "command");
    if (const auto times = parseNumber(readLine(directory + "times")))
        fault.times = static_cast<unsigned>(*times);
    fault.delay = std::strtod(readLine(directory + "delay").c_str(), nullptr);
    fault.hang = readFile(directory + "hang").has_value();
    if (const auto status = parseNumber(readLine(directory + "status")))
        fault.status = static_cast<int>(*status);
    fault.out = readFile(directory + "stdout").value_or("");
    fault.err = readFile(directory + "stderr").value_or("");
    return fault;
}

void wait(double seconds) {
    timespec rest{};
    rest.tv_sec = static_cast<time_t>(seconds);
    rest.tv_nsec = static_cast<long>((seconds - static_cast<double>(rest.tv_sec)) * 1e9);
    while (::nanosleep(&rest, &rest) != 0 && errno == EINTR) {
    }
}

} // namespace

void addFault(World& world, unsigned number, const Fault& fault) {
    const std::string directory = world.path("faults/" + std::to_string(number) + "/");
    makeDirectory(world.path("faults"));
    makeDirectory(directory);
    writeFile(directory + "command", fault.command + "\n");
    if (fault.times)
        writeFile(directory + "times", std::to_string(*fault.times) + "\n");
    if (fault.delay > 0)
        writeFile(directory + "delay", std::to_string(fault.delay) + "\n");
    if (fault.hang)
        writeFile(directory + "hang", "");
    if (fault.status)
        writeFile(directory + "status", std::to_string(*fault.status) + "\n");
    writeFile(directory + "stdout", fault.out);
    writeFile(directory + "stderr", fault.err);
}

std::optional<Fault> takeFault(World& world, const std::string& commandLine) {
    const auto numbers = listDirectory(world.path("faults"));
    if (numbers.empty())
        return std::nullopt;
    const UniqueFd lock = world.lockForChanges();
    for (const std::string& number : numbers) {
        const std::string directory = world.path("faults/" + number + "/");
        const Fault fault = readFault(directory);
        if (::fnmatch(fault.command.c_str(), commandLine.c_str(), 0) != 0 || fault.times == 0U)
            continue;
        if (fault.times)
            writeFile(directory + "times", std::to_string(*fault.times - 1) + "\n");
        return fault;
    }
    return std::nullopt;
}

std::optional<int> suffer(const World& world, const Fault& fault) {
    wait(fault.delay);
    while (fault.hang && ::access(world.path("lock").c_str(), F_OK) == 0)
        wait(0.5);
    if (fault.status) {
        std::fwrite(fault.out.data(), 1, fault.out.size(), stdout);
        std::fwrite(fault.err.data(), 1, fault.err.size(), stderr);
    }
    return fault.status;
}

} // namespace sim
