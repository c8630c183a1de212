#include "Commands.h"

#include "Changes.h"
#include "Questions.h"
#include "Show.h"

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
