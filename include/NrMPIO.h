/* NrMPIO: the multipath I/O plug-in for Linux native device-mapper multipath.
 *
 * A host loads libNrMPIO_Linux.so, resolves the entry points below by symbol name and calls them.
 * The header serves C11 and C++17; the two entry points at its end exist for C++ only.
 *
 * Conventions that hold for every entry point:
 *
 *  1. State. The plug-in keeps none. No entry point needs an earlier call of another one, init()
 *     included; each call runs its commands anew and tells what holds at that moment.
 *  2. hostContext belongs to the host. It is never read; null is fine.
 *  3. Ownership. All buffers and arrays that are passed in belong to the caller; the plug-in only
 *     writes into them and keeps no pointer to them. The vendor name belongs to the plug-in and is
 *     valid as long as the library is loaded.
 *  4. Buffer sizes. A buffer for a device path holds MAXMPIOPATHLEN bytes, errBuf MAXMPIOERRORLEN,
 *     the terminating NUL included. A longer text is cut to 1023 bytes without notice. A command's
 *     text or a device path that is copied into such a buffer fills the rest of it with NUL.
 *  5. errCode and errBuf. errCode receives a failing command's non-zero status, errBuf what the
 *     command wrote to standard error. Where an entry point says "guarded", a null errCode makes it
 *     return -1 and write nothing, and a null errBuf makes it set *errCode to -1 and return -1;
 *     nothing is run in either case.
 *  6. Left unwritten. On success *errCode and errBuf keep what the caller put there unless the
 *     entry point says otherwise, so test the result, not *errCode. On failure everything that is
 *     not named keeps its value: arrays, counts and paths too.
 *  7. Null pointers. Arguments other than errCode and errBuf are not tested unless the entry point
 *     says so: device, devices, paths and count must be valid.
 *  8. Device names. A device is the path of its node (/dev/mapper/mpatha) or, where no node
 *     answers, a name that dmsetup understands (mpatha). Names go into shell command lines as they
 *     are, unquoted: a host passes no name that it has not checked.
 *  9. Threads. The plug-in starts none and takes no lock; calls may overlap. A call blocks its
 *     thread until its commands have finished. Only the removal of partition mappings waits besides
 *     (up to 50 seconds for each mapping that stays busy).
 * 10. Exceptions. None is thrown, whatever the tools print, apart from std::bad_alloc when memory
 *     is exhausted.
 * 11. Tools. multipath, dmsetup and kpartx are run through the process runner of libNrLib, by a
 *     POSIX shell, and found by its PATH. They need root.
 */
#ifndef NRMPIO_H
#define NRMPIO_H

#include "NrPartInfo.h"

/** Bytes in a buffer for a device path, the terminating NUL included. */
#define MAXMPIOPATHLEN 1024
/** Bytes in errBuf, the terminating NUL included. */
#define MAXMPIOERRORLEN 1024

#define NRMPIO_EXPORT __attribute__((visibility("default")))

#ifdef __cplusplus
#include <string>

extern "C" {
#endif

/** The vendor name, "Norvane: Linux Native MPIO". No entry point changes it. */
extern NRMPIO_EXPORT const char* _VendorName; /* NOLINT(bugprone-reserved-identifier) */

/** The vendor name: the value of _VendorName. Runs nothing. */
NRMPIO_EXPORT const char* getVendorName(void);

/**
 * Tells whether the multipath tools can list the maps on this machine.
 *
 * Guarded, but returns null where other entry points return -1.
 *
 * @return The vendor name for yes, null for no. A failing command writes neither *errCode nor
 *         errBuf.
 */
NRMPIO_EXPORT const char* init(void* hostContext, int* errCode, char* errBuf);

/**
 * Lists the multipath maps as device paths, /dev/mapper/NAME. Guarded.
 *
 * @param devices Array of *count pointers, each to a buffer of MAXMPIOPATHLEN bytes.
 * @param count   In: entries in devices. Out: entries filled; entries past them are not touched.
 *
 * @return 0 when all that the listing printed fitted. Positive when it did not: call again with
 *         that many entries (the number counts the lines of the listing, and the empty one after
 *         its last line end, so it is larger than the number of maps). Negative when the listing
 *         failed: minus the absolute value of *errCode; *count is not written then. A listing that
 *         fails with status 1 gives -1, as the guard does.
 *
 * Every non-empty line of the listing is taken for a name, as `multipath -v1 -l` prints them; see
 * multipath(8).
 */
NRMPIO_EXPORT int getMPIODevices(void* hostContext, char** devices, int* count, int* errCode, char* errBuf);

/**
 * Tells whether a device is a multipath map, or a linear mapping directly on one. Guarded.
 *
 * @return 1 for yes. 0 for no and for every failing command: without the tools, or without the
 *         right to use them, no device is a multipath device. *errCode and errBuf are written by
 *         the guard only.
 */
NRMPIO_EXPORT int isMPIODevice(void* hostContext, const char* device, int* errCode, char* errBuf);

/**
 * Lists the SCSI disks that carry the paths of a multipath device, as /dev/sdX, in the order of
 * `dmsetup deps`. Guarded.
 *
 * @param device A multipath device, or a partition mapping on one: then the paths of its parent.
 * @param paths  Array of *count pointers, each to a buffer of MAXMPIOPATHLEN bytes.
 * @param count  In: entries in paths. Out, on success: entries filled. A dependency that is no
 *               SCSI disk fills none, so *count may be smaller than the number of paths.
 *
 * @return 0 when there were not more dependencies than entries. Positive: the number of
 *         dependencies, for a second call with that many entries. -6 when device is not a
 *         multipath device (isMPIODevice answered 0); nothing is written then. Any other negative
 *         value: a command failed with *errCode, and the result is minus its absolute value. The
 *         result alone does not tell a status of 1 from the guard, nor a status of 6 from -6.
 */
NRMPIO_EXPORT int getUnderlyingDevices(void* hostContext, const char* device, char** paths, int* count,
                                       int* errCode, char* errBuf);

/**
 * Tells whether a device is a partition mapping (a linear mapping on a device-mapper device), and
 * where its parent is. That the parent is a multipath map is not tested: ask isMPIODevice.
 *
 * @param parentPath Buffer of MAXMPIOPATHLEN bytes for the parent's path: the first that exists of
 *                   /dev/mpath/NAME, /dev/mapper/NAME and /dev/NAME. Null makes the answer 0.
 *                   Written only when the answer is 1.
 * @param errCode    Not read, not written; may be null.
 * @param errBuf     Not read, not written; may be null.
 *
 * @return 1 for yes with parentPath written, otherwise 0.
 */
NRMPIO_EXPORT int isPartitionDevice(void* hostContext, const char* device, char* parentPath, int* errCode,
                                    char* errBuf);

/**
 * Lists the partitions of a multipath device with their partition mappings, in the order of the
 * partition table.
 *
 * A partition without a mapping has a record with an empty devName. Where a mapping has no block
 * device node, `kpartx -a` is run and the whole repeated, at most five times in all.
 *
 * @param parts     Array of *count records.
 * @param count     In: records in parts. Out: on success the number of partitions, which may be
 *                  larger than the array (then only the array's records are written); 0 when the
 *                  partition table cannot be read; -1 when a node stayed absent; otherwise not
 *                  written. Null: no record is wanted and no count is written.
 * @param runKpartx Not 0: `kpartx -a` is run before the partition table is first read. It creates
 *                  the mappings that are missing, and they stay.
 * @param errCode   Receives a negative errno when the partition table cannot be read, otherwise -1
 *                  for a failure. May be null, then it is not written.
 * @param errBuf    Receives a sentence for each failure. May be null, then it is not written.
 *                  Pass both: without one of them isMPIODevice cannot be asked, device is taken
 *                  for a multipath device, and *errCode, if given, is -1 even after a success.
 *
 * @return The number of partitions, 0 or more. -6 when device is not a multipath device; nothing
 *         is written then. -1 when device is itself a partition mapping, or when a mapping's node
 *         is no block device after the fifth attempt. Any other negative value: a negative errno,
 *         the partition table cannot be read.
 *
 * The result alone does not tell -1 and -6 from the negative errno of the same value.
 */
NRMPIO_EXPORT int getPartitionDevices(void* hostContext, const char* device, NrPartInfo* parts, int* count,
                                      int runKpartx, int* errCode, char* errBuf);

/**
 * Has the multipath tool create the maps that are missing and reload the others. Guarded.
 *
 * @return 0, or the status of the failed command, which *errCode receives too.
 */
NRMPIO_EXPORT int refreshMPIO(void* hostContext, int* errCode, char* errBuf);

/**
 * Switches a map to fail I/O, instead of queueing it, while no path is left. Guarded.
 *
 * @return 0, or the status of the failed command, which *errCode receives too.
 */
NRMPIO_EXPORT int setFailIfNoPathDevice(void* hostContext, const char* device, int* errCode, char* errBuf);

/**
 * Tears a multipath device down: switches it to fail I/O while no path is left, removes its
 * partition mappings, and flushes the map. Guarded.
 *
 * Only the flush decides the result; an earlier step that fails is logged and the teardown goes
 * on. That device is a multipath device is not tested: the linear mappings on any other device
 * would be removed too.
 *
 * @param device A multipath device, or a partition mapping on one: then its parent is torn down,
 *               with all of the parent's partition mappings.
 *
 * @return 0 when the flush succeeded, otherwise its status. *errCode and errBuf are then those of
 *         the flush; after a result of 0 they hold what deleteMPIODevicePartitions left.
 */
NRMPIO_EXPORT int deleteMPIODevice(void* hostContext, const char* device, int* errCode, char* errBuf);

#ifdef __cplusplus
} /* extern "C" */

/**
 * Removes the linear mappings on a device. Guarded. Exported as _Z26deleteMPIODevicePartitionsPKcPiPc.
 *
 * A removal that fails while its mapping still exists is repeated up to five times, 10 seconds
 * apart. A mapping that cannot be removed does not stop the others from being removed.
 *
 * @param device Path of the device's node; only its device number is used.
 *
 * @return 0 in all cases but the guard's. The outcome is in *errCode, which is always written: 0
 *         when the mappings could be listed, otherwise the errno of the failed stat or the status
 *         of the failed listing. errBuf is written where the stat, the listing or a removal
 *         failed: after a 0 in *errCode it is the only trace of a removal that failed, the last
 *         one's standard error.
 */
NRMPIO_EXPORT int deleteMPIODevicePartitions(const char* device, int* errCode, char* errBuf);

/**
 * The name of the SCSI disk with a device number, without /dev/: "sdb" for 8, 16.
 *
 * A partition's number gives the name of its disk. Read from /proc/partitions, see proc(5).
 * Exported as _Z14getScsiDevNameii and, where the C++ library has two string ABIs, also under that
 * name with the ABI tag of the string that it returns.
 *
 * @return The name; empty when no SCSI disk has the number or the file cannot be read.
 */
NRMPIO_EXPORT std::string getScsiDevName(int major, int minor);
#endif

#endif
