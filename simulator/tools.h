// The simulated tools: one program under three names. Each prints what the real tool of
// multipath-tools 0.9.4 or dmsetup 1.02.185 prints, and refuses what is not simulated.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "world.h"

namespace sim {

/// The exit status of what is not simulated.
constexpr int NotSimulatedStatus = 70;

/// A tool was asked for something that the simulator does not know; what() says for what.
class NotSimulated : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

using Arguments = std::vector<std::string>;

// Each runs one command line, without the tool's name, and returns the exit status.
int dmsetup(World& world, const Arguments& arguments);
int multipath(World& world, const Arguments& arguments);
int kpartx(World& world, const Arguments& arguments);
int simctl(World& world, const Arguments& arguments);

/// Where the world lets no tool do its work: prints what the tool then prints and returns its status.
std::optional<int> refusal(const World& world, const std::string& tool, const Arguments& arguments);

/// A line on standard error, led by the machine's uptime as every line of the multipath tool.
void log(const std::string& text);

/// Prints to standard output or standard error, formatted as by printf(3).
void out(const char* format, ...) __attribute__((format(printf, 1, 2)));
void err(const char* format, ...) __attribute__((format(printf, 1, 2)));

} // namespace sim
