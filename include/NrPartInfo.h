/* The record in which getPartitionDevices reports one partition to the host.
 *
 * The host supplies an array of these and reads them back, so the layout is a
 * contract: 1064 bytes a record, one after another, little-endian, the same in
 * C and in C++.
 */
#ifndef NRPARTINFO_H
#define NRPARTINFO_H

#include <assert.h>
#include <stddef.h>
#include <stdint.h>

typedef struct NrPartInfo {
    char devName[1024];  /**< Path of the partition mapping's device node, NUL-terminated, at most
                              1022 characters; empty where no mapping stands for the partition. */
    int32_t sliceMinor;  /**< The partition's number in its table, 1 for the first. */
    uint64_t start;      /**< First sector on the multipath device, in 512-byte sectors; 0 where
                              devName is empty. */
    uint64_t size;       /**< Length in 512-byte sectors; 0 where devName is empty. */
    uint64_t sectorSize; /**< Bytes in a sector: 512, 0 where devName is empty. */
    uint32_t devMajor;   /**< Major number of the node devName, or 0. */
    uint32_t devMinor;   /**< Minor number of the node devName, or 0. */
#ifdef __cplusplus
    /** Every field zero, devName empty. */
    NrPartInfo() : devName(), sliceMinor(), start(), size(), sectorSize(), devMajor(), devMinor() {}
#endif
} NrPartInfo;

static_assert(offsetof(NrPartInfo, devName) == 0, "NrPartInfo.devName");
static_assert(offsetof(NrPartInfo, sliceMinor) == 1024, "NrPartInfo.sliceMinor");
static_assert(offsetof(NrPartInfo, start) == 1032, "NrPartInfo.start");
static_assert(offsetof(NrPartInfo, size) == 1040, "NrPartInfo.size");
static_assert(offsetof(NrPartInfo, sectorSize) == 1048, "NrPartInfo.sectorSize");
static_assert(offsetof(NrPartInfo, devMajor) == 1056, "NrPartInfo.devMajor");
static_assert(offsetof(NrPartInfo, devMinor) == 1060, "NrPartInfo.devMinor");
static_assert(sizeof(NrPartInfo) == 1064, "NrPartInfo is 1064 bytes");

#endif
