#include "getPartitions.h"

#include <blkid.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <memory>
#include <new>
#include <string>
#include <system_error>

namespace {

/** How much of an extended partition the partition mapper maps, in 512-byte sectors. */
constexpr uint64_t ExtendedSize = 2;

/** The unit of the table reader's numbers and of the records', in bytes. */
constexpr uint64_t SectorSize = 512;

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

/** @return The kind of table that was found, as libblkid names it; empty where there is none. */
std::string probeTable(blkid_probe probe) {
    errno = 0;
    if (blkid_do_fullprobe(probe) < 0)
        fail(errno ? errno : EIO);
    const char* kind = nullptr;
    return blkid_probe_lookup_value(probe, "PTTYPE", &kind, nullptr) == 0 ? kind : "";
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

/** A table that leads beyond the device was not made for it, or the device has shrunk. */
void checkFits(blkid_partition partition, uint64_t deviceSize) {
    const auto start = static_cast<uint64_t>(blkid_partition_get_start(partition));
    const auto size = static_cast<uint64_t>(blkid_partition_get_size(partition));
    if (start > deviceSize || size > deviceSize - start)
        fail(EUCLEAN);
}

void append(blkid_probe probe, std::list<slice>& slices) {
    const auto table = blkid_probe_get_partitions(probe);
    if (!table)
        fail(errno ? errno : EIO);
    const int extended = extendedNumber(table);
    for (int i = 0; i < blkid_partlist_numof_partitions(table); ++i) {
        const auto partition = blkid_partlist_get_partition(table, i);
        checkFits(partition, static_cast<uint64_t>(blkid_probe_get_size(probe)) / SectorSize);
        slices.push_back(makeSlice(partition, extended));
    }
}

void read(const char* path, std::list<slice>& slices) {
    const OpenDevice device(path);
    const bool image = device.isImage();
    device.checkReadable();
    const std::string protectiveOnly = "PMBR";
    std::string kind;
    // A file cannot tell its sector size; a GPT gives it away by where its header stands.
    for (const unsigned sectorSize : {0U, 4096U}) {
        const Probe probe = makeProbe(device, sectorSize);
        kind = probeTable(probe.get());
        if (!kind.empty() && kind != protectiveOnly)
            return append(probe.get(), slices);
        if (!image)
            break;
    }
    if (kind == protectiveOnly)
        fail(EUCLEAN);
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
