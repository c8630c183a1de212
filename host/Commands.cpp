#include "Commands.h"

#include <algorithm>
#include <fmt/format.h>

#include "Diagnosis.h"
#include "Output.h"
#include "Show.h"
#include "Table.h"

static ExitStatus check(const Library& library, const Arguments&) {
    if (const auto vendor = library.init()) {
        printLine(*vendor);
        return ExitStatus::success;
    }
    // The listing is what init runs, and it tells the reason.
    library.maps();
    throw Failure(fmt::format("{} cannot use the multipath tools", library.vendorName()));
}

static ExitStatus list(const Library& library, const Arguments&) {
    for (const std::string& map : library.maps())
        printLine(map);
    return ExitStatus::success;
}

static ExitStatus show(const Library& library, const Arguments&) {
    return showMaps(library);
}

static ExitStatus isMultipath(const Library& library, const Arguments& arguments) {
    const bool yes = library.isMultipath(*arguments.device);
    if (!yes)
        verifyNo(library, *arguments.device);
    printLine(yes ? "yes" : "no");
    return yes ? ExitStatus::success : ExitStatus::no;
}

static ExitStatus isPartition(const Library& library, const Arguments& arguments) {
    const auto parent = library.partitionParent(*arguments.device);
    if (!parent) {
        verifyNo(library, *arguments.device);
        // Of a map or a mapping on one, the paths tell whether dmsetup gives names.
        if (library.isMultipath(*arguments.device))
            library.paths(*arguments.device);
    }
    printLine(parent ? *parent : "no");
    return parent ? ExitStatus::success : ExitStatus::no;
}

static ExitStatus paths(const Library& library, const Arguments& arguments) {
    const auto paths = library.paths(*arguments.device);
    if (!paths)
        throw notMultipath(library, *arguments.device);
    for (const std::string& path : *paths)
        printLine(path);
    return ExitStatus::success;
}

static ExitStatus partitions(const Library& library, const Arguments& arguments) {
    const auto partitions = library.partitions(*arguments.device, arguments.kpartx);
    if (!partitions)
        throw notMultipath(library, *arguments.device);
    const auto unmapped = [](const NrPartInfo& partition) { return partition.devName[0] == '\0'; };
    // The library takes a failing dependency list for an empty one; that of the paths fails aloud.
    if (std::all_of(partitions->begin(), partitions->end(), unmapped))
        library.paths(*arguments.device);
    using Look = Table::Look;
    Table table{{"NUMBER", Look::right},
                {"START", Look::right},
                {"SECTORS", Look::right},
                {"MAJ:MIN", Look::right},
                {"NODE", Look::left}};
    for (const NrPartInfo& partition : *partitions) {
        const std::string number = std::to_string(partition.sliceMinor);
        if (unmapped(partition)) // Nothing is known of it but the number.
            table.add({number, "-", "-", "-", "-"});
        else
            table.add({number, std::to_string(partition.start), std::to_string(partition.size),
                       fmt::format("{}:{}", partition.devMajor, partition.devMinor), partition.devName});
    }
    print(table.text());
    return ExitStatus::success;
}

static ExitStatus refresh(const Library& library, const Arguments&) {
    library.refresh();
    return ExitStatus::success;
}

// The library does not test what it changes: the linear mappings on any disk would go.

static ExitStatus failIfNoPath(const Library& library, const Arguments& arguments) {
    requireMultipath(library, *arguments.device);
    library.failIfNoPath(*arguments.device);
    return ExitStatus::success;
}

static ExitStatus deletePartitions(const Library& library, const Arguments& arguments) {
    requireMultipath(library, *arguments.device);
    library.deletePartitions(*arguments.device);
    return ExitStatus::success;
}

static ExitStatus deleteDevice(const Library& library, const Arguments& arguments) {
    requireMultipath(library, *arguments.device);
    library.deleteDevice(*arguments.device);
    return ExitStatus::success;
}

static ExitStatus scsiName(const Library& library, const Arguments& arguments) {
    const std::string name = library.scsiName(arguments.major, arguments.minor);
    if (name.empty())
        throw Failure(fmt::format("no SCSI disk has the number {}:{}", arguments.major, arguments.minor));
    printLine(name);
    return ExitStatus::success;
}

const std::vector<Command> commands = {
    {"check", Command::Operands::none, "Tell whether the multipath tools work here",
     "Prints the vendor name of the plug-in when they do.\n\n"
     "Example: nrmpio check",
     check},
    {"list", Command::Operands::none, "List the maps",
     "One device path a line.\n\n"
     "Example: nrmpio list",
     list},
    {"show", Command::Operands::none, "Show all maps with their paths and partitions as a tree",
     "What cannot be read is told on standard error, the rest is shown.\n\n"
     "Example: nrmpio show",
     show},
    {"is-multipath", Command::Operands::device, "Tell whether a device is a multipath device",
     "Prints yes or no. A partition mapping directly on a map counts as one, too.\n\n"
     "Example: nrmpio is-multipath /dev/mapper/mpatha && echo good",
     isMultipath},
    {"is-partition", Command::Operands::device, "Tell whether a device is a partition mapping",
     "Prints the device that it lies on, or no.\n\n"
     "Example: nrmpio is-partition /dev/mapper/mpatha1",
     isPartition},
    {"paths", Command::Operands::device, "List the SCSI disks that are a map's paths",
     "One device path a line.\n\n"
     "Example: nrmpio paths /dev/mapper/mpatha",
     paths},
    {"partitions", Command::Operands::device, "List a map's partitions and their mappings",
     "Start and length are in sectors of 512 bytes. Of a partition without a mapping\n"
     "only the number is told.\n\n"
     "Example: nrmpio partitions --kpartx /dev/mapper/mpatha",
     partitions},
    {"refresh", Command::Operands::none, "Create the maps that are missing and reload the others",
     "Example: nrmpio refresh", refresh},
    {"fail-if-no-path", Command::Operands::device, "Have a map fail I/O while it has no path, not queue it",
     "Example: nrmpio fail-if-no-path /dev/mapper/mpatha", failIfNoPath},
    {"delete-partitions", Command::Operands::device, "Remove the partition mappings of a map",
     "A mapping that is in use is tried again every 10 seconds, five times.\n\n"
     "Example: nrmpio delete-partitions /dev/mapper/mpatha",
     deletePartitions},
    {"delete", Command::Operands::device, "Remove a map with its partition mappings",
     "Of a partition mapping, the whole map is removed. A mapping that is in use is\n"
     "tried again every 10 seconds, five times.\n\n"
     "Example: nrmpio delete /dev/mapper/mpatha",
     deleteDevice},
    {"scsi-name", Command::Operands::deviceNumber, "Print the name of the SCSI disk with a device number",
     "A partition's number gives the name of its disk.\n\n"
     "Example: nrmpio scsi-name 8 16",
     scsiName},
};
