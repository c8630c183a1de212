/* A picture of maps, for Graphviz. */
#ifndef DOT_H
#define DOT_H

#include <string>
#include <vector>

#include "Columns.h"
#include "Device.h"

/**
 * A directed graph in the language of dot(1), in UTF-8: from the disks over the maps to the
 * partitions, each labelled with the cells that are not empty.
 */
std::string dotGraph(const std::vector<Device>& maps, const std::vector<const ColumnInfo*>& columns,
                     bool bytes);

#endif
