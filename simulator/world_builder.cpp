#include "world_builder.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include "hardware.h"
#include "image_file.h"
#include "map_service.h"
#include "mounts.h"
#include "partition_mappings.h"
#include "text_file.h"

namespace sim {

namespace {

class SpawnActions {
public:
    SpawnActions() { ::posix_spawn_file_actions_init(&actions_); }
    SpawnActions(const SpawnActions&) = delete;
    SpawnActions& operator=(const SpawnActions&) = delete;
    ~SpawnActions() { ::posix_spawn_file_actions_destroy(&actions_); }
    posix_spawn_file_actions_t* get() { return &actions_; }

private:
    posix_spawn_file_actions_t actions_{};
};

/// Where sfdisk is: distributions keep it where ordinary users do not look.
std::string sfdiskPath() {
    for (const char* path : {"/usr/sbin/sfdisk", "/sbin/sfdisk", "/usr/bin/sfdisk"})
        if (::access(path, X_OK) == 0)
            return path;
    throw WorldError("sfdisk is missing: install the package fdisk");
}

/// Runs sfdisk(8) with the script on the disk image that is open as `disk`. Returns what it complains of.
std::string runSfdisk(World& world, int disk, const std::string& script) {
    constexpr int DiskInChild = 3;
    const std::string input = world.path("sfdisk.in");
    const std::string errors = world.path("sfdisk.err");
    writeFile(input, script);

    SpawnActions actions;
    ::posix_spawn_file_actions_addopen(actions.get(), 0, input.c_str(), O_RDONLY, 0);
    ::posix_spawn_file_actions_addopen(actions.get(), 1, "/dev/null", O_WRONLY, 0);
    ::posix_spawn_file_actions_addopen(actions.get(), 2, errors.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    ::posix_spawn_file_actions_adddup2(actions.get(), disk, DiskInChild);
    // There is no kernel to tell about the partitions; sfdisk would wait for one.
    std::string words[] = {sfdiskPath(), "--quiet", "--no-reread", "--no-tell-kernel",
                           "/proc/self/fd/" + std::to_string(DiskInChild)};
    std::vector<char*> arguments;
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    char locale[] = "LC_ALL=C";
    char* environment[] = {locale, nullptr};
    pid_t child = 0;
    const int error =
        ::posix_spawn(&child, words[0].c_str(), actions.get(), nullptr, arguments.data(), environment);
    if (error != 0)
        throw WorldError(words[0] + ": " + std::strerror(error));
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    std::string complaint = status != 0 ? "sfdisk: " + readLine(errors) : "";
    std::replace(complaint.begin(), complaint.end(), '\n', ' ');
    removeFile(input);
    removeFile(errors);
    return complaint;
}

/// The partition table of a disk: a script for sfdisk(8), and where it comes from.
struct TableScript {
    std::string text;
    std::string origin;
};

/// Writes a partition table into the image. It is made in memory: sfdisk waits until what it writes
/// is on the disk, which can take longer than all the rest of making a world.
void partition(World& world, const std::string& image, std::uint64_t sectors, const TableScript& script) {
    const UniqueFd memory(::memfd_create("disk", MFD_CLOEXEC));
    // A number that the child has not, so that the child's copy is not marked to be closed.
    const UniqueFd disk(::fcntl(memory.get(), F_DUPFD_CLOEXEC, 10));
    if (!disk.valid() || ::ftruncate(disk.get(), static_cast<off_t>(sectors * SectorSize)) != 0)
        throwErrno("a disk in memory");
    if (const std::string complaint = runSfdisk(world, disk.get(), script.text); !complaint.empty())
        throw ScenarioError(script.origin + " is no table for this disk: " + complaint);
    copySectors("/proc/self/fd/" + std::to_string(disk.get()), 0, image, 0, sectors);
}

/// Makes an image, with a partition table where there is a script. The result is its path.
std::string makeImage(World& world, const std::string& name, std::uint64_t sectors,
                      const TableScript& script) {
    const std::string image = world.path("images/" + name);
    createImage(image, sectors);
    if (!script.text.empty())
        partition(world, image, sectors, script);
    return image;
}

void addPartition(World& world, const Scenario::Disk& disk, const Partition& partition) {
    constexpr unsigned MostPartitions = 15; // minor numbers between one disk and the next
    if (partition.number > MostPartitions)
        throw ScenarioError(disk.tableOrigin + " has more than 15 partitions.");
    const DeviceNumber whole = *diskNumber(disk.name);
    const std::string name = disk.name + std::to_string(partition.number);
    const std::uint64_t sectors = partition.extended ? 2 : partition.length;
    const std::string image = makeImage(world, name, sectors, {"", ""});
    copySectors(world.imageOf(disk.name), partition.start, image, 0, sectors);
    world.addDisk(name, {whole.major, whole.minor + partition.number}, sectors, image);
}

void addState(World& world, const std::string& disk) {
    makeDirectory(world.path("block/" + disk + "/device"));
    createFile(world.path("block/" + disk + "/device/state"), "running\n");
}

void addDisk(World& world, const Scenario::Disk& disk) {
    const std::string image = makeImage(world, disk.name, disk.sectors, {disk.table, disk.tableOrigin});
    world.addDisk(disk.name, *diskNumber(disk.name), disk.sectors, image);
    if (disk.name[0] == 's') // SCSI
        addState(world, disk.name);
    for (const Partition& partition : readPartitionTable(world.imageOf(disk.name)))
        addPartition(world, disk, partition);
}

/// Adds the disks that are the paths of a unit: path i of unit n is host i's LUN n.
void addPaths(World& world, unsigned number, const Scenario::Lun& lun) {
    const std::string image =
        makeImage(world, "lun" + std::to_string(number), lun.sectors, {lun.table, lun.tableOrigin});
    unsigned host = 0;
    for (const std::string& path : lun.unit.paths) {
        world.addDisk(path, *diskNumber(path), lun.sectors, image);
        addState(world, path);
        const std::string device = world.path("block/" + path + "/device");
        createFile(device + "/hctl", std::to_string(host++) + ":0:0:" + std::to_string(number) + "\n");
        createFile(device + "/vendor", lun.vendor + "\n");
        createFile(device + "/model", lun.product + "\n");
    }
    addLogicalUnit(world, number, lun.unit);
}

void addLinear(World& world, const Scenario::Linear& linear) {
    const auto mapping = world.mapping(linear.device);
    const auto device = mapping ? mapping->number() : diskNumber(linear.device);
    const auto below = device ? world.kernelName(*device) : std::nullopt;
    if (!below)
        throw ScenarioError(linear.deviceOrigin + " \"" + linear.device +
                            "\" must be a disk, or a mapping that is there before it.");
    if (linear.start + linear.length > parseNumber(world.attribute(*below, "size")).value_or(0))
        throw ScenarioError(linear.deviceOrigin + " \"" + linear.device + "\" ends before start + length.");
    world.addMapping(linear.name, "", {linearTarget(0, linear.length, *device, linear.start)});
}

void addDeviceFault(World& world, const Scenario::DeviceFault& fault) {
    const auto paths = allPaths(world);
    if (std::find(paths.begin(), paths.end(), fault.name) != paths.end()) {
        setPathState(world, fault.name, fault.state);
        return;
    }
    const auto mapping = world.mapping(fault.name);
    if (!mapping)
        throw ScenarioError(fault.origin + " \"" + fault.name +
                            "\" must be a path, or a mapping that is there.");
    world.setHeld(*mapping, fault.held);
    if (!fault.mounted.empty())
        mount(world, *mapping, fault.mounted);
    if (fault.node == "absent")
        world.keepNodeAway(*mapping);
    else if (fault.node == "late")
        world.removeNode(*mapping);
    else if (fault.node == "file")
        world.putFileInPlaceOfNode(*mapping);
}

void layOut(const World& world, const std::string& tool, const std::vector<std::string>& missing) {
    for (const char* directory : {"bin", "dev", "dev/mapper", "images", "luns", "names", "proc", "proc/self",
                                  "sys", "sys/class", "sys/dev", "sys/block", "sys/dev/block"})
        makeDirectory(world.path(directory));
    for (const char* name : {"multipath", "dmsetup", "kpartx", "simctl"})
        if (std::find(missing.begin(), missing.end(), name) == missing.end())
            makeLink(tool, world.path(std::string("bin/") + name));
    makeLink("sys/block", world.path("block"));
    makeLink("../block", world.path("sys/class/block"));
    writeFile(world.path("lock"), "");
    writeFile(world.path("dev/mapper/control"), "character 10:236\n");
    writeFile(world.path("proc/partitions"), "major minor  #blocks  name\n\n");
    writeFile(world.path("proc/swaps"), "Filename\t\t\t\tType\t\tSize\t\tUsed\t\tPriority\n");
    writeFile(world.path("proc/self/mountinfo"), "");
    writeFile(world.path("proc/self/mounts"), "");
    makeLink("self/mounts", world.path("proc/mounts"));
}

} // namespace

void buildWorld(const Scenario& scenario, const std::string& directory, const std::string& tool,
                const std::function<void()>& checkpoint) {
    World world(directory);
    layOut(world, tool, scenario.missingTools);
    writeFile(world.path("daemon"), scenario.daemon ? "1\n" : "0\n");
    if (scenario.restoreAfter)
        writeFile(world.path("restore_after"), std::to_string(*scenario.restoreAfter) + "\n");
    if (!scenario.deviceMapper)
        writeFile(world.path("no_device_mapper"), "");
    if (!scenario.privileged)
        writeFile(world.path("unprivileged"), "");
    if (scenario.udevPartitions)
        writeFile(world.path("udev_partitions"), "");
    for (const Scenario::Disk& disk : scenario.disks)
        addDisk(world, disk);
    unsigned number = 0;
    for (const Scenario::Lun& lun : scenario.luns) {
        checkpoint();
        addPaths(world, ++number, lun);
    }
    std::vector<Mapping> partitioned;
    for (const Scenario::Lun& lun : scenario.luns) {
        checkpoint();
        if (lun.mapped && scenario.deviceMapper) {
            const Mapping map = createMap(world, lun.unit);
            if (lun.partitionsMapped && !lun.table.empty())
                partitioned.push_back(map);
        }
    }
    for (const Mapping& map : partitioned)
        mapPartitions(world, map, scenario.udevPartitions ? "-part" : defaultDelimiter(map.name));
    for (const Scenario::Linear& linear : scenario.linears)
        addLinear(world, linear);
    for (const Scenario::DeviceFault& fault : scenario.deviceFaults)
        addDeviceFault(world, fault);
    number = 0;
    for (const Fault& fault : scenario.faults)
        addFault(world, ++number, fault);
}

} // namespace sim
