/* The plug-in: a multipath I/O vendor plug-in for Linux native device-mapper multipath.
 *
 * One translation unit, because the module strings are file-local and are built and destroyed in
 * the order in which they stand. include/NrMPIO.h says what each entry point promises.
 */
#include "NrMPIO.h"

#include <algorithm>
#include <chrono>
#include <fstream>
#include <list>
#include <unistd.h>

#include "Conventions.h"
#include "Dependencies.h"
#include "DeviceNode.h"
#include "Dmsetup.h"
#include "EvDebug.h"
#include "MPartIterator.h"
#include "MTokenizer.h"
#include "ModuleStrings.h"
#include "PartitionsTable.h"
#include "ToolRun.h"
#include "VersionStamp.h"
#include "getPartitions.h"

// A section that is not loaded: one line that tells which build a library file is.
__asm__(".pushsection NrVersion,\"\",@progbits\n"
        ".ascii \"" NR_VERSION_STAMP "\\n\"\n"
        ".popsection\n");

const char* _VendorName = "Norvane: Linux Native MPIO"; // NOLINT(bugprone-reserved-identifier)

/** The result of an entry point that was given a device which is no multipath device. */
constexpr int notMultipathDevice = -6;

// ---------------------------------------------------------------------------------------------
// Start-up
// ---------------------------------------------------------------------------------------------

const char* getVendorName() {
    return _VendorName;
}

const char* init(void*, int* errCode, char* errBuf) {
    if (refused(errCode, errBuf))
        return nullptr;
    return ToolRun().run(mpiolist_cmd, notQuiet) == 0 ? _VendorName : nullptr;
}

// ---------------------------------------------------------------------------------------------
// Multipath maps
// ---------------------------------------------------------------------------------------------

int getMPIODevices(void*, char** devices, int* count, int* errCode, char* errBuf) {
    if (refused(errCode, errBuf))
        return -1;
    ToolRun tool;
    if (const int code = tool.run(mpiolist_cmd, notQuiet))
        return minusAbsolute(reportFailure(code, tool.err, errCode, errBuf));

    const int capacity = *count;
    int copied = 0;
    const auto names = splitLines(tool.out);
    for (const std::string_view name : names)
        if (!name.empty() && copied < capacity)
            copyPath(mpiodprefx, name, devices[copied++]);

    *count = copied;
    const int lines = static_cast<int>(names.size());
    return lines <= capacity ? 0 : lines;
}

int isMPIODevice(void*, const char* device, int* errCode, char* errBuf) {
    static const char function[] = "isMPIODevice";
    if (refused(errCode, errBuf))
        return -1;
    EvDebug log(nullptr);
    const std::string command = tableCommand(device, log, function);
    const TargetPatterns patterns;
    ToolRun tool;
    if (tool.run(command, quietByDebugLevel()) != 0)
        return 0;
    if (patterns.isMultipath(tool.out))
        return 1;
    if (!patterns.isLinear(tool.out))
        return 0;

    const auto beneath = linearTargetDevice(tool.out);
    if (!beneath || tool.run(tableCommand(*beneath), quietByDebugLevel()) != 0)
        return 0;
    return patterns.isMultipath(tool.out) ? 1 : 0;
}

int refreshMPIO(void*, int* errCode, char* errBuf) {
    if (refused(errCode, errBuf))
        return -1;
    ToolRun tool;
    if (const int code = tool.run(mpiorefresh_cmd, notQuiet))
        return reportFailure(code, tool.err, errCode, errBuf);
    return 0;
}

// ---------------------------------------------------------------------------------------------
// Partition mappings
// ---------------------------------------------------------------------------------------------

/**
 * Tells whether device is a linear mapping on a device-mapper device. parentName receives that
 * device's name; it is written only when the answer is true. Every failure is a no.
 */
static bool isMPIOPartDevice(const char* device, std::string& parentName) {
    static const char function[] = "isMPIOPartDevice";
    EvDebug log(nullptr);
    const std::string command = tableCommand(device, log, function);
    const TargetPatterns patterns;
    const bool quiet = quietByDebugLevel();
    ToolRun tool;
    if (tool.run(command, quiet) != 0 || patterns.isMultipath(tool.out) || !patterns.isLinear(tool.out))
        return false;

    const auto beneath = linearTargetDevice(tool.out);
    if (!beneath || tool.run(nameCommand(beneath->option()), quiet) != 0)
        return false;
    parentName = tool.out.substr(0, tool.out.rfind('\n'));
    return true;
}

int isPartitionDevice(void*, const char* device, char* parentPath, int*, char*) {
    std::string parentName;
    if (!isMPIOPartDevice(device, parentName) || !parentPath || parentName.empty())
        return 0;
    const auto parent = findMappingNode(parentName);
    if (!parent)
        return 0;
    std::snprintf(parentPath, MAXMPIOPATHLEN, "%s", parent->path.c_str());
    return 1;
}

/** The last component of a path. */
static std::string stripDev(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
}

/** A record whose mapping has no block device node. */
struct AbsentNode {
    const char* devName;
    unsigned mode;
};

/** The first such record, which is also logged. Records without a mapping are passed over. */
static std::optional<AbsentNode> findAbsentNode(const NrPartInfo* records, int recordCount, EvDebug& log) {
    for (int i = 0; i < recordCount; ++i) {
        const char* devName = records[i].devName;
        if (devName[0] == '\0')
            continue;
        const DeviceNode node(devName);
        if (node.isBlockDevice())
            continue;
        log.Debug("getPartitionDevices",
                  "Partition device %s absent or not a block device.(rc %d,mode 0x%x), errno %d,  trigerring "
                  "refresh.",
                  devName, node.result(), node.mode(), node.error());
        return AbsentNode{devName, node.mode()};
    }
    return std::nullopt;
}

int getPartitionDevices(void*, const char* device, NrPartInfo* parts, int* count, int runKpartx, int* errCode,
                        char* errBuf) {
    constexpr int attempts = 5;
    EvDebug log(nullptr);
    const DeviceNumber number = DeviceNode(device).number();
    std::string parentName;
    if (isMPIOPartDevice(device, parentName)) {
        reportText(-1, errCode, errBuf, "GetPartitions called on partition device %s part of %s", device,
                   parentName.c_str());
        return -1;
    }
    if (isMPIODevice(nullptr, device, errCode, errBuf) == 0)
        return notMultipathDevice;

    const int capacity = count ? *count : 0;
    const auto answer = [count](int partitions) {
        if (count)
            *count = partitions;
    };
    std::list<slice> slices;
    for (int attempt = 1;; ++attempt) {
        if (runKpartx != 0)
            ToolRun().run(std::string("kpartx -a ") + device, notQuiet);
        const int found = getPartitions(device, slices);
        if (found < 0) {
            answer(0);
            reportText(found, errCode, errBuf, "Failed to get partitions from device %s", device);
            return found;
        }
        std::for_each(slices.begin(), slices.end(),
                      MPartIterator(device, number.major, number.minor, parts, capacity));
        const auto absent = findAbsentNode(parts, std::min(capacity, found), log);
        if (!absent) {
            answer(found);
            return found;
        }
        if (attempt == attempts) {
            answer(-1);
            reportText(-1, errCode, errBuf, "Partition device %s absent or not a block device.(mode 0x%x)",
                       absent->devName, absent->mode);
            return -1;
        }
        runKpartx = 1;
    }
}

// ---------------------------------------------------------------------------------------------
// Paths
// ---------------------------------------------------------------------------------------------

int getUnderlyingDevices(void*, const char* device, char** paths, int* count, int* errCode, char* errBuf) {
    if (refused(errCode, errBuf))
        return -1;
    const DependencyPattern dependencies;
    if (isMPIODevice(nullptr, device, errCode, errBuf) == 0)
        return notMultipathDevice;

    // The name that the name query prints keeps its line end; the shell takes it for the end of
    // the command.
    ToolRun tool;
    std::string mapName;
    if (!isMPIOPartDevice(device, mapName)) {
        const std::string command = nameCommand(device, DeviceNode(device));
        if (const int code = tool.run(command, quietByDebugLevel()))
            return minusAbsolute(reportFailure(code, tool.err, errCode, errBuf));
        mapName = tool.out;
    }
    if (const int code = tool.run(dmsetupdeps_cmd + mapName, notQuiet))
        return minusAbsolute(reportFailure(code, tool.err, errCode, errBuf));

    const int capacity = *count;
    int found = 0;
    int copied = 0;
    std::size_t position = 0;
    while (const auto dependency = dependencies.find(tool.out, position)) {
        const std::string disk = getScsiDevName(dependency->number.major, dependency->number.minor);
        if (!disk.empty() && copied < capacity)
            copyPath("/dev/", disk, paths[copied++]);
        ++found;
        position = dependency->end + 1;
    }
    *count = copied;
    return found > capacity ? found : 0;
}

std::string getScsiDevName(int major, int minor) {
    const DiskPattern disk({major, minor});
    std::ifstream partitions("/proc/partitions");
    std::string line;
    std::string name;
    while (std::getline(partitions, line))
        if (disk.match(line, &name))
            return name;
    return {};
}

#if _GLIBCXX_USE_CXX11_ABI
/** The same under the name without the tag of today's string ABI, for hosts that know only types. */
NRMPIO_EXPORT std::string getScsiDevNameUntagged(int major, int minor) __asm__("_Z14getScsiDevNameii")
    __attribute__((alias("_Z14getScsiDevNameB5cxx11ii")));
#endif

// ---------------------------------------------------------------------------------------------
// Path policy and teardown
// ---------------------------------------------------------------------------------------------

int setFailIfNoPathDevice(void*, const char* device, int* errCode, char* errBuf) {
    if (refused(errCode, errBuf))
        return -1;
    ToolRun tool;
    if (const int code = tool.run(failIfNoPathCommand(device), notQuiet))
        return reportFailure(code, tool.err, errCode, errBuf);
    return 0;
}

/** Waits the whole time, also where signals interrupt sleep(3). */
static void waitSeconds(unsigned duration) {
    using namespace std::chrono;
    const auto end = steady_clock::now() + seconds(duration);
    for (auto left = static_cast<long>(duration); left > 0 && sleep(static_cast<unsigned>(left)) != 0;)
        left = static_cast<long>(ceil<seconds>(end - steady_clock::now()).count());
}

/**
 * Removes one mapping. A removal that fails is repeated as long as the mapping still exists, at
 * most five times; errBuf receives what the last failed one wrote to standard error.
 */
static void removeMapping(const std::string& name, ToolRun& tool, char* errBuf, EvDebug& log,
                          const char* function) {
    constexpr int retries = 5;
    const std::string removal = bounded(dmsetuprm_cmd + " " + name);
    const std::string existenceQuery = bounded(dmsetuptbl_cmd + " " + name);
    for (int retry = 0; tool.run(removal, notQuiet) != 0; ++retry) {
        log.Debug(function, "dmsetup remove failed on %s", name.c_str());
        log.Debug(function, "Error:%s", tool.err.c_str());
        copyText(tool.err, errBuf);
        if (retry == retries) {
            log.Debug(function, "No more retries for %s.", name.c_str());
            return;
        }
        if (const int code = tool.run(existenceQuery, notQuiet)) {
            log.Debug(function, "Error:rc:%d:%s", code, tool.err.c_str());
            return;
        }
        log.Debug(function, "Retrying dmsetup remove on %s in 10 sec.", name.c_str());
        waitSeconds(10);
    }
}

int deleteMPIODevicePartitions(const char* device, int* errCode, char* errBuf) {
    static const char function[] = "deleteMPIODevicePartitions";
    if (refused(errCode, errBuf))
        return -1;
    EvDebug log(nullptr);
    const DeviceNode node(device);
    if (!node.exists()) {
        reportText(node.error(), errCode, errBuf, "Failed to stat %s:%d", device, node.error());
        log.Debug(function, "Failed to stat %s:%d", device, node.error());
        return 0;
    }
    ToolRun tool;
    if (const int code = tool.run(linearMappingsCommand(node.number()), notQuiet)) {
        reportFailure(code, tool.err, errCode, errBuf);
        return 0;
    }
    for (const std::string& name : tokenize(tool.out, '\r', true))
        removeMapping(name, tool, errBuf, log, function);
    *errCode = 0;
    return 0;
}

/** The path of the multipath device to tear down: device itself, or its parent beside it. */
static std::string multipathPath(const std::string& device) {
    std::string parentName;
    if (!isMPIOPartDevice(device.c_str(), parentName))
        return device;
    const auto slash = device.rfind('/');
    const std::string directory = slash == std::string::npos ? mpiodprefx : device.substr(0, slash + 1);
    return directory + parentName;
}

int deleteMPIODevice(void*, const char* device, int* errCode, char* errBuf) {
    static const char function[] = "deleteMPIODevice";
    if (refused(errCode, errBuf))
        return -1;
    EvDebug log(nullptr);
    const std::string path = multipathPath(device);
    const DeviceNode node(path.c_str());
    ToolRun tool;
    if (!node.exists())
        log.Debug(function, "Failed to stat %s:%d", device, node.error());
    else if (const int code = tool.run(failIfNoPathCommand(node.number().option()), notQuiet))
        log.Debug(function, "Failed to mark %s faulty. %d:%s", path.c_str(), code, tool.err.c_str());

    if (const int code = deleteMPIODevicePartitions(path.c_str(), errCode, errBuf))
        return code;

    const std::string mapName = tool.run(nameCommand(path, node), notQuiet) == 0 ? tool.out : path;
    const int code = tool.run(mpioflush_cmd + stripDev(mapName), notQuiet);
    if (code != 0) {
        reportFailure(code, tool.err, errCode, errBuf);
        log.Debug(function, "Failed to flush %s. Error:rc:%d:%s", mapName.c_str(), code, tool.err.c_str());
    }
    return code;
}
