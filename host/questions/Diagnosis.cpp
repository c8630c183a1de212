#include "Diagnosis.h"

#include <fmt/format.h>

#include "Printable.h"

namespace {

bool contains(const std::string& text, std::string_view part) {
    return text.find(part) != std::string::npos;
}

/** As dash and bash say that there is no such command. */
bool isMissing(const std::string& tool, const std::string& text) {
    return contains(text, " " + tool + ": not found") || contains(text, " " + tool + ": command not found");
}

/** As readDeviceMapper, but the listing must work in any case. */
DeviceMapper readAll(const Library& library) {
    try {
        library.maps();
        return DeviceMapper::read();
    } catch (const Failure& failure) {
        throw ToolsFailure(explained(failure.what()));
    }
}

template <class Contradiction>
void verify(const Library& library, const DeviceName& device, Contradiction contradicts) {
    const DeviceMapper state = readAll(library);
    const Mapping* mapping = state.find(device);
    const bool isPath = device.text().find('/') != std::string::npos;
    if (!Node::find(device) && (isPath || !mapping))
        throw Failure(fmt::format("there is no device {}", device.text()));
    if (mapping && contradicts(state, *mapping))
        throw ToolsFailure(fmt::format("dmsetup tells different things about {}: try again, and see "
                                       "what fails with --trace",
                                       device.text()));
}

} // namespace

std::string missing(const std::string& tool) {
    return fmt::format("no multipath tools here: {} is not installed (package {} on Debian)", tool,
                       tool == "multipath" ? "multipath-tools" : tool);
}

std::string explained(const std::string& failure) {
    for (const char* tool : {"multipath", "dmsetup", "kpartx"})
        if (isMissing(tool, failure))
            return missing(tool);
    if (contains(failure, "Check that device-mapper is available in the kernel"))
        return "this kernel has no device-mapper (modprobe dm-multipath)";
    if (contains(failure, "need to be root") ||
        contains(failure, "/dev/mapper/control: open failed: Permission denied"))
        return "this needs root: multipath and device-mapper refuse ordinary users";
    return failure;
}

std::string notAMap(const std::string& name) {
    return fmt::format("\"{}\" stands in the list of maps, but there is no such map",
                       printable(name, localeCharacterSet()));
}

DeviceMapper readDeviceMapper(const Library& library) {
    try {
        return DeviceMapper::read();
    } catch (const Failure&) {
        library.maps(); // fails for a reason that comes first, if there is one
        throw;
    }
}

void verifyNo(const Library& library, const DeviceName& device) {
    verify(library, device,
           [](const DeviceMapper& state, const Mapping& mapping) { return state.mapOf(mapping) != nullptr; });
}

void verifyNoPartition(const Library& library, const DeviceName& device) {
    verify(library, device, [](const DeviceMapper& state, const Mapping& mapping) {
        return !mapping.isMap() && state.beneath(mapping);
    });
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
