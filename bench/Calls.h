/* The calls that are measured with a runner that answers at once. */
#ifndef CALLS_H
#define CALLS_H

#include <functional>
#include <string>
#include <vector>

#include "InstantWorld.h"

struct Call {
    std::string name;
    std::function<instant::World()> world;
    std::function<void()> run;
};

const std::vector<Call>& calls();

// Worlds of a wanted size.

/** Maps whose names have this many characters. */
instant::World mapsWorld(std::size_t maps, std::size_t nameLength);
/** A map with these partitions and other mappings on it. */
instant::World mappingsWorld(std::size_t partitions, std::size_t others);
/** A map whose paths are spread over a partitions table of this many disks. */
instant::World pathsWorld(std::size_t paths, std::size_t disks);

/** Lists the paths, or the partitions, of the map; throws when there are not as many. */
void callUnderlyingDevices(std::size_t paths);
void callPartitionDevices(std::size_t partitions);
void callMaps(std::size_t maps);

/** The line of /proc/partitions of a disk, numbered as the kernel numbers SCSI disks. */
std::string diskLine(std::size_t disk);

#endif
