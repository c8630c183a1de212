/* Who holds a block device in use. */
#ifndef HOLDERS_H
#define HOLDERS_H

#include <string>
#include <vector>

#include "DeviceMapper.h"

/**
 * What keeps a mapping from being removed, as sentences: "mpatha2 is mounted on /srv/data", "mpatha2
 * is open in process 4711 (sleep)", "logical volume vg-lv (253:12) lies on mpatha2". Mounts, swap
 * space, other block devices and processes are looked at, see proc(5) and the kernel's sysfs;
 * what may not be read is left out.
 *
 * @param deviceMapper holds the mapping, and those that may lie on it.
 * @param except       mappings in it that do not count.
 */
std::vector<std::string> holdersOf(const Mapping& mapping, const DeviceMapper& deviceMapper,
                                   const std::vector<const Mapping*>& except = {});

/** What a mapping is, with its name: "partition mapping mpatha1", "logical volume vg-lv (253:12)". */
std::string description(const Mapping& mapping);

/** Whether its UUID says that it is no partition mapping. */
bool isKnownAsOther(const Mapping& mapping);

#endif
