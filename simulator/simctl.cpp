// simctl: what happens to hardware and file systems, for worlds only. Paths fail, go and come back; a mapping
// is held open, or mounted.
#include <algorithm>

#include "hardware.h"
#include "mounts.h"
#include "tools.h"

namespace sim {

namespace {

constexpr int Failed = 1;

constexpr char Usage[] =
    "Changes the hardware of a simulated world, and what is mounted.\n"
    "Usage:\n"
    "  simctl path DISK|all offline   the disk is there and does not answer\n"
    "  simctl path DISK|all lost      the disk is gone\n"
    "  simctl path DISK|all running   the disk is there and answers\n"
    "  simctl hold MAPPING            the mapping is in use, by nobody that can be ended\n"
    "  simctl release MAPPING\n"
    "  simctl mount MAPPING DIRECTORY the mapping is in use, and a mount in /proc/self/mountinfo\n"
    "  simctl unmount MAPPING\n";

int refuse(const std::string& reason) {
    err("simctl: %s\n", reason.c_str());
    return Failed;
}

int changePaths(World& world, const std::string& name, const std::string& state) {
    std::vector<std::string> disks = allPaths(world);
    if (name != "all") {
        if (std::find(disks.begin(), disks.end(), name) == disks.end())
            return refuse("there is no path " + name + "; see multipath -ll");
        disks = {name};
    }
    for (const std::string& disk : disks)
        setPathState(world, disk, state);
    return 0;
}

int mountMapping(World& world, const Mapping& mapping, const std::string& directory) {
    if (const std::string old = mountPoint(world, mapping); !old.empty())
        return refuse(mapping.name + " is mounted on " + old + "; simctl unmount it first");
    if (directory[0] != '/')
        return refuse(directory + " is no path of a directory from \"/\" on");
    mount(world, mapping, directory);
    return 0;
}

int unmountMapping(World& world, const Mapping& mapping) {
    if (mountPoint(world, mapping).empty())
        return refuse(mapping.name + " is not mounted");
    unmount(world, mapping);
    return 0;
}

int setHeld(World& world, const Mapping& mapping, bool held) {
    world.setHeld(mapping, held);
    return 0;
}

} // namespace

int simctl(World& world, const Arguments& arguments) {
    const std::string verb = arguments.empty() ? "" : arguments[0];
    const UniqueFd lock = world.lockForChanges();
    if (verb == "path" && arguments.size() == 3 && isPathState(arguments[2]))
        return changePaths(world, arguments[1], arguments[2]);
    const bool isAboutUse = verb == "hold" || verb == "release" || verb == "unmount";
    if ((!isAboutUse || arguments.size() != 2) && (verb != "mount" || arguments.size() != 3)) {
        err("%s", Usage);
        return Failed;
    }
    const auto mapping = world.mapping(arguments[1]);
    if (!mapping)
        return refuse("there is no mapping " + arguments[1] + "; see dmsetup ls");
    if (verb == "mount")
        return mountMapping(world, *mapping, arguments[2]);
    return verb == "unmount" ? unmountMapping(world, *mapping) : setHeld(world, *mapping, verb == "hold");
}

} // namespace sim
