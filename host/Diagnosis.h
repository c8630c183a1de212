/* What an answer of "no" from the library leaves open. */
#ifndef DIAGNOSIS_H
#define DIAGNOSIS_H

#include "ExitStatus.h"
#include "Library.h"

/** The tools cannot answer for any device. */
class ToolsFailure : public Failure {
public:
    using Failure::Failure;
};

/**
 * Makes sure that "no" is the truth about a device. The library also says no where the tools are
 * missing, may not be used or fail, and for a device that does not exist.
 *
 * @throw Failure that names the real reason; ToolsFailure where it is not the device.
 */
void verifyNo(const Library& library, const DeviceName& device);

/** What to throw where only a multipath device will do, and the library says that this is none. */
Failure notMultipath(const Library& library, const DeviceName& device);

/** @throw Failure unless device is a multipath device. */
void requireMultipath(const Library& library, const DeviceName& device);

#endif
