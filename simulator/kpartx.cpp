// kpartx: list, map and unmap the partitions of a disk or a map (-l, -a, -d). See kpartx(8).
#include <cstdio>

#include <unistd.h>

#include "logical_units.h"
#include "map_service.h"
#include "partition_mappings.h"
#include "text_file.h"
#include "tools.h"

namespace sim {

namespace {

constexpr int Failed = 1;

constexpr char Usage[] = "multipath-tools v0.9.4 (12/19, 2022)\n"
                         "Usage:\n"
                         "  kpartx [-a|-d|-u|-l] [-r] [-p] [-f] [-g] [-s|-n] [-v] wholedisk\n"
                         "\t-a add partition devmappings\n"
                         "\t-r devmappings will be readonly\n"
                         "\t-d del partition devmappings\n"
                         "\t-u update partition devmappings\n"
                         "\t-l list partitions devmappings that would be added by -a\n"
                         "\t-p set device name-partition number delimiter\n"
                         "\t-g force GUID partition table (GPT)\n"
                         "\t-f force devmap create\n"
                         "\t-v verbose\n"
                         "\t-n nosync mode. Return before the partitions are created\n"
                         "\t-s sync mode (Default). Don't return until the partitions are created\n";

struct Options {
    char action = '\0'; // a, d, l
    bool verbose = false;
    std::optional<std::string> delimiter;
    std::optional<std::string> device;
};

void parseSwitches(Options& options, const std::string& letters) {
    for (const char letter : letters) {
        if (letter == 'v')
            options.verbose = true;
        else if (letter == 'a' || letter == 'd' || letter == 'l')
            options.action = letter;
        else if (letter != 's') // what it does anyway
            throw NotSimulated(std::string("option -") + letter);
    }
}

Options parse(const Arguments& arguments) {
    Options options;
    for (size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (argument == "-p" && i + 1 < arguments.size())
            options.delimiter = arguments[++i];
        else if (argument.size() > 1 && argument[0] == '-')
            parseSwitches(options, argument.substr(1));
        else if (options.device)
            throw NotSimulated("more than one device");
        else
            options.device = argument;
    }
    return options;
}

std::string mappingName(const WholeDevice& whole, const Options& options, const Partition& partition) {
    return whole.name + options.delimiter.value_or(defaultDelimiter(whole.name)) +
           std::to_string(partition.number);
}

std::vector<Partition> partitionsOf(World& world, const WholeDevice& whole) {
    if (whole.number.major == DeviceMapperMajor)
        if (const auto map = world.mapping(whole.number.minor))
            noteUse(world, *map);
    return mappablePartitions(world, whole);
}

/// Lists the partitions; a logical one is shown, as by the real tool, relative to its extended
/// partition, which appears as "dm-" with its place in the list.
int list(World& world, const WholeDevice& whole, const Options& options) {
    const auto partitions = partitionsOf(world, whole);
    for (const Partition& partition : partitions) {
        const Partition* container = nullptr;
        unsigned place = 0;
        for (const Partition& other : partitions) {
            if (other.number == partition.container)
                container = &other;
            if (container == nullptr && other.container == 0)
                ++place;
        }
        const std::string device =
            container != nullptr ? "/dev/dm-" + std::to_string(place) : *options.device;
        const std::uint64_t start = partition.start - (container != nullptr ? container->start : 0);
        out("%s : 0 %llu %s %llu\n", mappingName(whole, options, partition).c_str(),
            static_cast<unsigned long long>(partition.length), device.c_str(),
            static_cast<unsigned long long>(start));
    }
    return 0;
}

/// Waits, without the lock, for as long as reads of the device wait.
Service serviceOnceDecided(const World& world, const WholeDevice& whole, UniqueFd& lock) {
    while (whole.number.major == DeviceMapperMajor) {
        const auto map = world.mapping(whole.number.minor);
        const Service now = map ? service(world, *map) : Service::fails;
        if (now != Service::waits)
            return now;
        lock = UniqueFd();
        ::usleep(50'000);
        if (!world.isThere())
            return now;
        lock = world.lockForChanges();
    }
    return Service::works;
}

int add(World& world, const WholeDevice& whole, const Options& options) {
    for (const Partition& partition : partitionsOf(world, whole)) {
        const Mapping mapping = mapPartition(world, whole, partition, mappingName(whole, options, partition));
        if (options.verbose)
            out("add map %s (%s): %s\n", mapping.name.c_str(), mapping.number().text().c_str(),
                mapping.table.front().text().c_str());
    }
    return 0;
}

/// Removes the partition mappings, whatever their names, up to the first that is in use.
int remove(World& world, const WholeDevice& whole, const Options& options) {
    for (const Mapping& mapping : partitionMappings(world, whole)) {
        if (!world.remove(mapping)) {
            if (options.verbose)
                throw NotSimulated("-d -v on a mapping in use");
            return Failed;
        }
        if (options.verbose)
            out("del devmap : %s\n", mapping.name.c_str());
    }
    return 0;
}

} // namespace

int kpartx(World& world, const Arguments& arguments) {
    const Options options = parse(arguments);
    if (arguments.empty()) {
        out("%s", Usage);
        return Failed;
    }
    if (options.action == '\0' || !options.device)
        throw NotSimulated("this form of kpartx");
    UniqueFd lock = world.lockForChanges();
    if (!world.exists(*options.device)) {
        out("failed to stat() %s\n", options.device->c_str());
        return Failed;
    }
    const auto number = world.deviceOfNode(*options.device);
    const auto whole = number ? wholeDevice(world, *number) : std::nullopt;
    if (!whole)
        throw NotSimulated("something that is no disk");
    if (options.action == 'd')
        return remove(world, *whole, options);
    switch (serviceOnceDecided(world, *whole, lock)) {
    case Service::works:
        break;
    case Service::fails:
        for (const unsigned sector : {0U, 1U, 1U, 29U, 0U, 0U, 0U}) // where partition tables are looked for
            err("read error, sector %u\n", sector);
        return 0;
    case Service::waits:
        return Failed; // the world has ended
    }
    if (options.action == 'l')
        return list(world, *whole, options);
    return add(world, *whole, options);
}

} // namespace sim
