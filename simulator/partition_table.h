// The partition table of a disk image, read with libblkid.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace sim {

/// One entry of a partition table; start and length in sectors.
struct Partition {
    unsigned number = 0;
    std::uint64_t start = 0;
    std::uint64_t length = 0;
    bool extended = false;
    /// Logical: the number of the extended partition that it lies in, otherwise 0.
    unsigned container = 0;
};

/// The partitions in order of their numbers; none when there is no table.
std::vector<Partition> readPartitionTable(const std::string& image);

} // namespace sim
