/* What an answer of "no" from the library leaves open, and why the tools fail. */
#ifndef DIAGNOSIS_H
#define DIAGNOSIS_H

#include <string>

#include "DeviceMapper.h"
#include "ExitStatus.h"
#include "Library.h"

/** The tools cannot answer for any device. */
class ToolsFailure : public Failure {
public:
    using Failure::Failure;
};

/**
 * The failure of a command as a sentence that says what to do, where what its tool printed shows
 * that rights, the tools or the kernel's device-mapper are missing; otherwise the same sentence.
 */
std::string explained(const std::string& failure);

/** The same for a tool that is known to be missing. */
std::string missing(const std::string& tool);

/** What to say of a name in the list of maps that is none. */
std::string notAMap(const std::string& name);

/** What device-mapper has now. @throw Failure that names first what all commands need. */
DeviceMapper readDeviceMapper(const Library& library);

/**
 * Makes sure that "no multipath device" is the truth. The library also says no where the tools are
 * missing, may not be used or fail, and for a device that does not exist.
 *
 * @throw Failure that names the real reason; ToolsFailure where it is not the device.
 */
void verifyNo(const Library& library, const DeviceName& device);

/** The same of "no partition mapping". */
void verifyNoPartition(const Library& library, const DeviceName& device);

/** What to throw where only a multipath device will do, and the library says that this is none. */
Failure notMultipath(const Library& library, const DeviceName& device);

/** @throw Failure unless device is a multipath device. */
void requireMultipath(const Library& library, const DeviceName& device);

#endif
