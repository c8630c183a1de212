#include "Commands.h"

#include "Changes.h"
#include "Questions.h"
#include "Show.h"

using Group = Command::Group;
using Operands = Command::Operands;

static constexpr unsigned change = Command::yes | Command::dryRun;

const std::vector<Command> commands = {
    {"show", Group::look, Operands::devices, Command::presentation,
     "Show maps with their paths and partitions as a tree",
     "Without a DEVICE all maps. What cannot be read is told on standard error, the rest\n"
     "is shown.\n\n"
     "Example: nrmpio show\n"
     "Example: nrmpio show --list --output NAME,SIZE,STATE mpatha",
     show},
    {"list", Group::look, Operands::none, Command::plain, "List the maps",
     "One device path a line.\n\n"
     "Example: nrmpio list",
     list},
    {"paths", Group::look, Operands::device, Command::plain, "List the SCSI disks that are a map's paths",
     "One device path a line.\n\n"
     "Example: nrmpio paths /dev/mapper/mpatha",
     paths},
    {"partitions", Group::look, Operands::device, Command::kpartx | change,
     "List a map's partitions and their mappings",
     "Start and length are in sectors of 512 bytes. Of a partition without a mapping\n"
     "only the number is told. The table of a map that is suspended or has no usable\n"
     "path is not read. Nothing is changed without --kpartx; --yes and --dry-run belong\n"
     "to it: kpartx renames mappings such as mpatha-part1, even those in use.\n\n"
     "Example: nrmpio partitions /dev/mapper/mpatha\n"
     "Example: nrmpio partitions --kpartx --dry-run /dev/mapper/mpatha",
     partitions},
    {"is-multipath", Group::look, Operands::device, Command::plain,
     "Tell whether a device is a multipath device",
     "Prints yes or no. A partition mapping directly on a map counts as one, too.\n\n"
     "Example: nrmpio is-multipath /dev/mapper/mpatha && echo good",
     isMultipath},
    {"is-partition", Group::look, Operands::device, Command::plain,
     "Tell whether a device is a partition mapping",
     "Prints the device that it lies on, or no.\n\n"
     "Example: nrmpio is-partition /dev/mapper/mpatha1",
     isPartition},
    {"scsi-name", Group::look, Operands::deviceNumber, Command::plain,
     "Print the name of the SCSI disk with a device number",
     "A partition's number gives the name of its disk.\n\n"
     "Example: nrmpio scsi-name 8 16",
     scsiName},
    {"check", Group::look, Operands::none, Command::plain, "Tell whether the multipath tools work here",
     "Prints the vendor name of the plug-in when they do, and the reason when not.\n\n"
     "Example: nrmpio check",
     check},
    {"refresh", Group::change, Operands::none, Command::dryRun,
     "Create the maps that are missing and reload the others", "Example: nrmpio refresh", refresh},
    {"fail-if-no-path", Group::change, Operands::device, change | Command::recheck,
     "Have a map fail I/O while it has no path, not queue it",
     "Warns when a multipath daemon takes it back.\n\n"
     "Example: nrmpio fail-if-no-path /dev/mapper/mpatha",
     failIfNoPath},
    {"delete-partitions", Group::change, Operands::device, change, "Remove the partition mappings of a map",
     "A mapping that is in use is tried again every 10 seconds, five times. While a\n"
     "mapping on the map is known to be no partition mapping, nothing is removed.\n\n"
     "Example: nrmpio delete-partitions --dry-run /dev/mapper/mpatha",
     deletePartitions},
    {"delete", Group::change, Operands::device, change, "Remove a map with its partition mappings",
     "Of a partition mapping, the whole map is removed. A mapping that is in use is\n"
     "tried again every 10 seconds, five times. While a mapping on the map is known\n"
     "to be no partition mapping, such as a logical volume, nothing is removed.\n\n"
     "Example: nrmpio delete --dry-run /dev/mapper/mpatha\n"
     "Example: nrmpio delete --yes /dev/mapper/mpatha",
     deleteDevice},
};
