/* What sysfs tells of a block device; see the kernel's Documentation/ABI/stable/sysfs-block. */
#ifndef SYSBLOCK_H
#define SYSBLOCK_H

#include <optional>
#include <string>

#include "DeviceName.h"

/** A block device by its number. Whatever cannot be read is empty. */
class SysBlock {
public:
    explicit SysBlock(Node number);

    /** True also where sysfs cannot be looked at. */
    bool isThere() const;
    /** The kernel's name, such as sda. */
    std::string name() const;
    std::optional<unsigned long long> sectors() const;
    /** Of a disk, in the words of its driver: running, offline and others. */
    std::string diskState() const;
    /** Whether the disk is there, and its driver does not say that it does not run. */
    bool mayWork() const;

private:
    std::string directory_;
};

#endif
