/* A world that answers at once, so that what is left is the plug-in's own time.
 *
 * The program that links it defines what the plug-in imports. Every path under /dev/mapper is a
 * block device; "/dev/mapper/p7" has the number 253:7, and one without a number in its name 253:0.
 */
#ifndef INSTANTWORLD_H
#define INSTANTWORLD_H

#include <list>
#include <string>
#include <vector>

#include "slice.h"

namespace instant {

/** What the commands print, what /proc/partitions holds, and the partition table. */
struct World {
    std::string maps;                /**< multipath -l */
    std::vector<std::string> tables; /**< dmsetup table -j 253 -m N, by N */
    std::string name;                /**< dmsetup info */
    std::string dependencies;        /**< dmsetup deps MAP */
    std::string dependents;          /**< dmsetup deps | grep: the names of the mappings on the map */
    std::string mappings;            /**< dmsetup table | grep: the same for a removal */
    std::string partitions;          /**< /proc/partitions */
    std::list<slice> slices;
};

/** From here on; the world must live as long as the calls are made. */
void enter(const World& world);

/** What the plug-in has asked for on this thread. */
long commandsRun();

/** Calls of malloc, calloc and realloc, operator new included, on this thread. */
long allocations();

} // namespace instant

#endif
