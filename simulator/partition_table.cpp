#include "partition_table.h"

#include <algorithm>
#include <memory>

#include <blkid/blkid.h>
#include <fcntl.h>

#include "text_file.h"
#include "unique_fd.h"

namespace sim {

std::vector<Partition> readPartitionTable(const std::string& image) {
    std::vector<Partition> partitions;
    const UniqueFd fd(::open(image.c_str(), O_RDONLY | O_CLOEXEC));
    if (!fd.valid())
        throwErrno(image);
    const std::unique_ptr<blkid_struct_probe, void (*)(blkid_probe)> probe(blkid_new_probe(),
                                                                           &blkid_free_probe);
    if (!probe || blkid_probe_set_device(probe.get(), fd.get(), 0, 0) != 0)
        return partitions;
    blkid_partlist list = blkid_probe_get_partitions(probe.get());
    const int count = list != nullptr ? blkid_partlist_numof_partitions(list) : 0;
    unsigned extended = 0;
    for (int i = 0; i < count; ++i) {
        blkid_partition entry = blkid_partlist_get_partition(list, i);
        Partition partition;
        partition.number = static_cast<unsigned>(blkid_partition_get_partno(entry));
        partition.start = static_cast<std::uint64_t>(blkid_partition_get_start(entry));
        partition.length = static_cast<std::uint64_t>(blkid_partition_get_size(entry));
        partition.extended = blkid_partition_is_extended(entry) != 0;
        if (partition.extended)
            extended = partition.number;
        else if (blkid_partition_is_logical(entry))
            partition.container = extended;
        partitions.push_back(partition);
    }
    std::sort(partitions.begin(), partitions.end(),
              [](const Partition& a, const Partition& b) { return a.number < b.number; });
    return partitions;
}

} // namespace sim
