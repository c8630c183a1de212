#include "Questions.h"

#include <algorithm>
#include <fmt/format.h>

#include "Diagnosis.h"
#include "Output.h"
#include "Table.h"

ExitStatus check(const Library& library, const Arguments&) {
    if (const auto vendor = library.init()) {
        printLine(*vendor);
        return ExitStatus::success;
    }
    // The listing is what init runs, and it tells the reason.
    library.maps();
    throw Failure(fmt::format("{} cannot use the multipath tools", library.vendorName()));
}

ExitStatus list(const Library& library, const Arguments&) {
    for (const std::string& map : library.maps())
        printLine(map);
    return ExitStatus::success;
}

ExitStatus isMultipath(const Library& library, const Arguments& arguments) {
    const bool yes = library.isMultipath(arguments.device());
    if (!yes)
        verifyNo(library, arguments.device());
    printLine(yes ? "yes" : "no");
    return yes ? ExitStatus::success : ExitStatus::no;
}

ExitStatus isPartition(const Library& library, const Arguments& arguments) {
    const auto parent = library.partitionParent(arguments.device());
    if (!parent) {
        verifyNo(library, arguments.device());
        // Of a map or a mapping on one, the paths tell whether dmsetup gives names.
        if (library.isMultipath(arguments.device()))
            library.paths(arguments.device());
    }
    printLine(parent ? *parent : "no");
    return parent ? ExitStatus::success : ExitStatus::no;
}

ExitStatus paths(const Library& library, const Arguments& arguments) {
    const auto paths = library.paths(arguments.device());
    if (!paths)
        throw notMultipath(library, arguments.device());
    for (const std::string& path : *paths)
        printLine(path);
    return ExitStatus::success;
}

ExitStatus partitions(const Library& library, const Arguments& arguments) {
    const auto partitions = library.partitions(arguments.device(), arguments.kpartx);
    if (!partitions)
        throw notMultipath(library, arguments.device());
    const auto unmapped = [](const NrPartInfo& partition) { return partition.devName[0] == '\0'; };
    // The library takes a failing dependency list for an empty one; that of the paths fails aloud.
    if (std::all_of(partitions->begin(), partitions->end(), unmapped))
        library.paths(arguments.device());
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

ExitStatus scsiName(const Library& library, const Arguments& arguments) {
    const std::string name = library.scsiName(arguments.major, arguments.minor);
    if (name.empty())
        throw Failure(fmt::format("no SCSI disk has the number {}:{}", arguments.major, arguments.minor));
    printLine(name);
    return ExitStatus::success;
}
