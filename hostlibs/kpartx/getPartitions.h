/* The partition-table reader. */
#ifndef GETPARTITIONS_H
#define GETPARTITIONS_H

#include <list>

#include "slice.h"

/**
 * Reads the partition table of a block device or of a disk image: every kind of table that
 * libblkid knows, GPT and DOS among them. Of a GPT whose primary copy is damaged the backup counts.
 *
 * @param device Path of the device, or of a regular file that holds a disk's content. In an image a
 *               sector is 512 bytes; a GPT made for sectors of 4096 bytes is found, too.
 * @param slices Emptied, then filled with one record for each partition, in partition-table
 *               order: a DOS table's four entries, then its logical partitions.
 *
 * Of each record start and size are in 512-byte sectors whatever the device's sector size, start
 * counted from the beginning of the device; minor is the partition's number; container is, for a
 * logical partition, the number of the extended partition, otherwise 0; major is 0. An extended
 * partition has a size of 2 sectors, as the partition mapper maps it.
 *
 * A table that cannot be trusted is an error and never "no partitions" or a part of them, since a
 * host may take a disk without partitions for an empty one: a partition that reaches beyond the end
 * of the device (the disk has shrunk, or the table is another disk's), and a protective entry (type
 * 0xee in the first sector) without an intact GPT that fits the device.
 *
 * @return The number of partitions, which is the number of records in the list (0 where there is
 *         no partition table), or a negative errno, and the list is empty: -ENOTBLK when the path
 *         is neither a block device nor a regular file, -EUCLEAN for a table that cannot be
 *         trusted, -ENOMEM, otherwise why the device could not be opened or read.
 *
 * Throws nothing. Calls from several threads may overlap.
 */
extern "C" __attribute__((visibility("default"))) int getPartitions(const char* device,
                                                                    std::list<slice>& slices);

#endif
