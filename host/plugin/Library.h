/* The plug-in's entry points with values instead of buffers. */
#ifndef LIBRARY_H
#define LIBRARY_H

#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "DeviceName.h"
#include "Plugin.h"

/**
 * Calls the plug-in and grows the arrays that were too small.
 *
 * Every failure is thrown as a Failure: what was to be done, the code and the text that came back.
 * An answer of "not a multipath device" is no failure: it is an empty optional. An answer for which
 * a command was needed that the gate refuses is none: it is a Failure, too.
 */
class Library {
public:
    /** The result that stands for a device which is no multipath device. */
    static constexpr int notMultipath = -6;

    /** @param plugin outlives this object. */
    explicit Library(const Plugin& plugin) : plugin_(plugin) {}

    std::string vendorName() const;
    /** The vendor name, or nothing when the multipath tools cannot list the maps. */
    std::optional<std::string> init() const;

    /** Device paths, as the listing gave them: a warning in it looks like a map. */
    std::vector<std::string> maps() const;
    bool isMultipath(const DeviceName& device) const;
    std::optional<std::vector<std::string>> paths(const DeviceName& device) const;

    /** The path of the device that a partition mapping lies on; nothing when device is none. */
    std::optional<std::string> partitionParent(const DeviceName& device) const;
    std::optional<std::vector<NrPartInfo>> partitions(const DeviceName& device, bool runKpartx) const;

    void refresh() const;
    void failIfNoPath(const DeviceName& device) const;
    void deletePartitions(const DeviceName& device) const;
    void deleteDevice(const DeviceName& device) const;

    /** Empty when no SCSI disk has the number. */
    std::string scsiName(int major, int minor) const;

private:
    /** @throw Failure in a rehearsal, when the plug-in's commands do not come to the gate. */
    void requireGated() const;

    const Plugin& plugin_;
    mutable std::once_flag gated_; ///< Found out once, by whichever thread comes first.
};

#endif
