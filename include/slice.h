/* The record in which the partition-table reader reports one partition.
 *
 * The layout is shared with libkpartx, which fills these records, and is the
 * same in C and in C++: 32 bytes, little-endian, natural alignment.
 */
#ifndef SLICE_H
#define SLICE_H

#include <assert.h>
#include <stddef.h>
#include <stdint.h>

typedef struct slice {
    uint64_t start;    /**< First sector of the partition on the device, in 512-byte sectors. */
    uint64_t size;     /**< Length of the partition, in 512-byte sectors. */
    int32_t container; /**< Number of the extended partition around a logical one, otherwise 0. */
    int32_t major;     /**< Not used by the reader of this project: 0. */
    int32_t minor;     /**< The partition's number in its table, 1 for the first. */
} slice;

static_assert(offsetof(slice, start) == 0, "slice.start");
static_assert(offsetof(slice, size) == 8, "slice.size");
static_assert(offsetof(slice, container) == 16, "slice.container");
static_assert(offsetof(slice, major) == 20, "slice.major");
static_assert(offsetof(slice, minor) == 24, "slice.minor");
static_assert(sizeof(slice) == 32, "slice is 32 bytes");

#endif
