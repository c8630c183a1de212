#include "Diagnosis.h"

#include <fmt/format.h>

/** One map that dmsetup does not recognise may just have gone; when it recognises none, it does not work. */
static void requireWorkingTools(const Library& library) {
    int unrecognised = 0;
    for (const std::string& map : library.maps()) {
        try {
            if (library.isMultipath(DeviceName(map)))
                return;
            ++unrecognised;
        } catch (const UsageError&) {
            // The listing holds more than maps.
        }
    }
    if (unrecognised != 0)
        throw ToolsFailure(
            "the multipath tools list maps, but dmsetup recognises none of them: is it installed, "
            "and are you root?");
}

void verifyNo(const Library& library, const DeviceName& device) {
    requireWorkingTools(library);
    if (!Node::find(device))
        throw Failure(fmt::format("there is no device {}", device.text()));
}

Failure notMultipath(const Library& library, const DeviceName& device) {
    verifyNo(library, device);
    return Failure{
        fmt::format("{} is not a multipath device (code {})", device.text(), Library::notMultipath)};
}

void requireMultipath(const Library& library, const DeviceName& device) {
    if (!library.isMultipath(device))
        throw notMultipath(library, device);
}
