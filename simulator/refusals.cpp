// Machines on which the tools do not get far: no device-mapper in the kernel, or an unprivileged caller.
#include <cstdlib>

#include <unistd.h>

#include "text_file.h"
#include "tools.h"

namespace sim {

namespace {

constexpr int Failed = 1;
constexpr char Version[] =
    "Incompatible libdevmapper 1.02.185 (2022-05-18) and kernel driver (unknown version).\n";

bool isThere(const World& world, const char* mark) {
    return ::access(world.path(mark).c_str(), F_OK) == 0;
}

std::string lastOf(const Arguments& arguments) {
    return arguments.empty() ? "" : arguments.back();
}

std::optional<int> withoutDeviceMapper(const std::string& tool, const Arguments& arguments) {
    if (tool == "dmsetup" && !arguments.empty() && arguments[0] == "version")
        out("Library version:   1.02.185 (2022-05-18)\n");
    err("/dev/mapper/control: open failed: No such device\n"
        "Failure to communicate with kernel device-mapper driver.\n"
        "Check that device-mapper is available in the kernel.\n%s",
        Version);
    if (tool == "dmsetup")
        err("Command failed.\n");
    else if (tool == "multipath")
        log("cannot get kernel dm version");
    else if (!arguments.empty() && arguments[0] == "-l")
        return std::nullopt; // needs the disk only
    else
        err("device mapper prerequisites not met\n");
    return Failed;
}

int withoutPrivilege(const std::string& tool, const Arguments& arguments) {
    if (tool == "multipath") {
        err("need to be root\n");
        return Failed;
    }
    err("/dev/mapper/control: open failed: Permission denied\n"
        "Failure to communicate with kernel device-mapper driver.\n%s",
        Version);
    if (tool == "dmsetup")
        err("Command failed.\n");
    else
        err("%s: Permission denied\n", lastOf(arguments).c_str());
    return Failed;
}

} // namespace

std::optional<int> refusal(const World& world, const std::string& tool, const Arguments& arguments) {
    if (tool == "simctl")
        return std::nullopt;
    if (std::getenv("NRMPIO_SIM_UNPRIVILEGED") != nullptr || isThere(world, "unprivileged"))
        return withoutPrivilege(tool, arguments);
    return isThere(world, "no_device_mapper") ? withoutDeviceMapper(tool, arguments) : std::nullopt;
}

} // namespace sim
