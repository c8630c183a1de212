/* What show tells of a device. */
#ifndef DEVICE_H
#define DEVICE_H

#include <optional>
#include <string>
#include <vector>

#include "DeviceName.h"

/** A map, one of its paths or one of its partitions; what is unknown of it is empty. */
struct Device {
    enum class Type { map, path, partition };

    Type type = Type::map;
    std::string name; ///< Raw: it may hold any byte.
    std::optional<Node> number;
    std::optional<unsigned long long> size; ///< Bytes.
    std::string state;                      ///< One of the words that the help of the column STATE lists.
    std::string node;                       ///< Its path.
    std::optional<unsigned> openCount;
    std::optional<unsigned> partition;         ///< Its number in the partition table.
    std::optional<unsigned long long> start;   ///< Of a partition, in sectors.
    std::optional<unsigned long long> sectors; ///< Of a partition.
    std::optional<bool> queues;                ///< Of a map: whether I/O waits while it has no path.
    std::vector<Device> children;
};

#endif
