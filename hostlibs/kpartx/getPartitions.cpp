#include "getPartitions.h"

#include <blkid.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <memory>
#include <new>
#include <system_error>

namespace {

/** How much of an extended partition the partition mapper maps, in 512-byte sectors. */
constexpr uint64_t ExtendedSize = 2;

[[noreturn]] void fail(int error) {
    throw std::system_error(error, std::generic_category());
}

class OpenDevice {
public:
    explicit OpenDevice(const char* path) : fd_(open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {
        if (fd_ < 0)
            fail(errno);
    }
    ~OpenDevice() { close(fd_); }
    OpenDevice(const OpenDevice&) = delete;
    OpenDevice& operator=(const OpenDevice&) = delete;

    int fd() const { return fd_; }

    bool isImage() const {
        struct stat status;
        if (fstat(fd_, &status) != 0)
            fail(errno);
        if (!S_ISREG(status.st_mode) && !S_ISBLK(status.st_mode))
            fail(ENOTBLK);
        return S_ISREG(status.st_mode);
    }

    void checkReadable() const {
        char first;
        if (pread(fd_, &first, 1, 0) < 0)
            fail(errno);
    }

private:
    int fd_;
};

using Probe = std::unique_ptr<blkid_struct_probe, decltype(&blkid_free_probe)>;

/** @param sectorSize in bytes; 0 for what the device says. */
Probe makeProbe(const OpenDevice& device, unsigned sectorSize) {
    Probe probe(blkid_new_probe(), blkid_free_probe);
    if (!probe)
        throw std::bad_alloc();
    errno = 0;
    if (blkid_probe_set_device(probe.get(), device.fd(), 0, 0) != 0)
        fail(errno ? errno : EIO);
    if (sectorSize != 0)
        blkid_probe_set_sectorsize(probe.get(), sectorSize);
    blkid_probe_enable_superblocks(probe.get(), 0);
    blkid_probe_enable_partitions(probe.get(), 1);
    return probe;
}

/** The list belongs to the probe; null where there is no table. */
blkid_partlist readTable(blkid_probe probe) {
    errno = 0;
    const int found = blkid_do_fullprobe(probe);
    if (found < 0)
        fail(errno ? errno : EIO);
    return found == 0 ? blkid_probe_get_partitions(probe) : nullptr;
}

int extendedNumber(blkid_partlist table) {
    for (int i = 0; i < blkid_partlist_numof_partitions(table); ++i) {
        const auto partition = blkid_partlist_get_partition(table, i);
        if (blkid_partition_is_extended(partition))
            return blkid_partition_get_partno(partition);
    }
    return 0;
}

slice makeSlice(blkid_partition partition, int extended) {
    slice result{};
    result.start = static_cast<uint64_t>(blkid_partition_get_start(partition));
    result.size = blkid_partition_is_extended(partition)
                      ? ExtendedSize
                      : static_cast<uint64_t>(blkid_partition_get_size(partition));
    result.container = blkid_partition_is_logical(partition) ? extended : 0;
    result.minor = blkid_partition_get_partno(partition);
    return result;
}

void append(blkid_partlist table, std::list<slice>& slices) {
    const int extended = extendedNumber(table);
    for (int i = 0; i < blkid_partlist_numof_partitions(table); ++i)
        slices.push_back(makeSlice(blkid_partlist_get_partition(table, i), extended));
}

void read(const char* path, std::list<slice>& slices) {
    const OpenDevice device(path);
    const bool image = device.isImage();
    device.checkReadable();
    // A file cannot tell its sector size; a GPT gives it away by where its header stands.
    for (const unsigned sectorSize : {0U, 4096U}) {
        const Probe probe = makeProbe(device, sectorSize);
        if (const blkid_partlist table = readTable(probe.get()))
            append(table, slices);
        if (!image || !slices.empty())
            return;
    }
}

} // namespace

int getPartitions(const char* device, std::list<slice>& slices) {
    slices.clear();
    std::list<slice> found;
    try {
        if (!device)
            return -EFAULT;
        read(device, found);
    } catch (const std::system_error& failure) {
        return -failure.code().value();
    } catch (const std::bad_alloc&) {
        return -ENOMEM;
    }
    slices.swap(found);
    return static_cast<int>(slices.size());
}
