// The commands of dmsetup and what they have in common: the options, and the device that a command is about.
#pragma once

#include <initializer_list>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tools.h"

namespace sim::dm {

/// A command line taken apart.
struct Options {
    std::string command;
    Arguments operands;
    std::map<std::string, std::string> values; // of options such as --target, by their long names
    bool has(const std::string& option) const { return values.count(option) != 0; }
};

/// Refuses options that the command is not known to take.
void requireOnly(const Options& options, std::initializer_list<const char*> known);

bool namesOneDevice(const Options& options);

/// How a command names its device: by a name, or by numbers.
struct Wanted {
    std::string name;
    std::optional<DeviceNumber> number;

    /// As the messages of a failed ioctl show it.
    std::string text() const { return number ? " (" + number->text() + ")" : name + " "; }
};

/// What the command line names; nothing, and the reason printed, when it can't be a device.
std::optional<Wanted> wantedDevice(const World& world, const Options& options);

std::optional<Mapping> find(const World& world, const Wanted& wanted);

/// The mappings that a listing is about. Prints the usual sentence when there is none at all.
std::vector<Mapping> listed(const World& world, const Options& options);

constexpr char NoSuchDevice[] = "No such device or address";

// Both print what dmsetup says in the end, and return its status.
int commandFailed();
int ioctlFailed(const std::string& command, const Wanted& wanted, const char* error);

/// Does something with the mapping that the command line names, or fails as the command's ioctl does.
template <typename Action>
int onMapping(const World& world, const Options& options, Action action) {
    const auto wanted = wantedDevice(world, options);
    if (!wanted)
        return commandFailed();
    const auto mapping = find(world, *wanted);
    return mapping ? action(*wanted, *mapping) : ioctlFailed(options.command, *wanted, NoSuchDevice);
}

// Each runs one command and returns the exit status.

int table(World& world, const Options& options);
int status(World& world, const Options& options);
int deps(World& world, const Options& options);
int ls(World& world, const Options& options);

int info(World& world, const Options& options);

int message(World& world, const Options& options);
int suspendOrResume(World& world, const Options& options);
int remove(World& world, const Options& options);
int create(World& world, const Options& options);
int rename(World& world, const Options& options);

} // namespace sim::dm
