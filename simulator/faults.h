// Faults: command lines that do not do what they should.
//
// A fault is a directory faults/N/ with the files command (a shell pattern, fnmatch(3), for the whole
// command line with one blank between words), times (how often it still strikes; no file: always) and
// what happens: delay (seconds), hang, status with stdout and stderr.
#pragma once

#include <optional>
#include <string>

#include "world.h"

namespace sim {

struct Fault {
    std::string command;
    std::optional<unsigned> times;
    double delay = 0; // seconds
    bool hang = false;
    std::optional<int> status; // without it the command runs as usual after the delay
    std::string out;
    std::string err;
};

void addFault(World& world, unsigned number, const Fault& fault);

/// The first fault that strikes this command line now, counted.
std::optional<Fault> takeFault(World& world, const std::string& commandLine);

/// Lets a fault happen: waits, prints. The exit status, or nothing when the command is to run. What hangs
/// does so for as long as its world is there.
std::optional<int> suffer(const World& world, const Fault& fault);

} // namespace sim
