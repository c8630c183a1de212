// simctl: what happens to hardware, for worlds only. Paths fail, go and come back; a mapping is held open.
#include <algorithm>

#include "hardware.h"
#include "tools.h"

namespace sim {

namespace {

constexpr int Failed = 1;

constexpr char Usage[] =
    "Changes the hardware of a simulated world.\n"
    "Usage:\n"
    "  simctl path DISK|all offline   the disk is there and does not answer\n"
    "  simctl path DISK|all lost      the disk is gone\n"
    "  simctl path DISK|all running   the disk is there and answers\n"
    "  simctl hold MAPPING            the mapping is in use, by nobody that can be ended\n"
    "  simctl release MAPPING\n";

int refuse(const std::string& reason) {
    err("simctl: %s\n", reason.c_str());
    return Failed;
}

} // namespace

int simctl(World& world, const Arguments& arguments) {
    const std::string verb = arguments.empty() ? "" : arguments[0];
    const UniqueFd lock = world.lockForChanges();
    if ((verb == "hold" || verb == "release") && arguments.size() == 2) {
        const auto mapping = world.mapping(arguments[1]);
        if (!mapping)
            return refuse("there is no mapping " + arguments[1] + "; see dmsetup ls");
        world.setHeld(*mapping, verb == "hold");
        return 0;
    }
    if (verb != "path" || arguments.size() != 3 || !isPathState(arguments[2])) {
        err("%s", Usage);
        return Failed;
    }
    std::vector<std::string> disks = allPaths(world);
    if (arguments[1] != "all") {
        if (std::find(disks.begin(), disks.end(), arguments[1]) == disks.end())
            return refuse("there is no path " + arguments[1] + "; see multipath -ll");
        disks = {arguments[1]};
    }
    for (const std::string& disk : disks)
        setPathState(world, disk, arguments[2]);
    return 0;
}

} // namespace sim
