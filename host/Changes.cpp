#include "Changes.h"

#include <fmt/format.h>

#include "Diagnosis.h"
#include "Output.h"

// The library does not test what it changes: the linear mappings on any disk would go.

ExitStatus refresh(const Library& library, const Arguments&) {
    library.refresh();
    return ExitStatus::success;
}

ExitStatus failIfNoPath(const Library& library, const Arguments& arguments) {
    requireMultipath(library, arguments.device());
    library.failIfNoPath(arguments.device());
    return ExitStatus::success;
}

ExitStatus deletePartitions(const Library& library, const Arguments& arguments) {
    requireMultipath(library, arguments.device());
    library.deletePartitions(arguments.device());
    return ExitStatus::success;
}

ExitStatus deleteDevice(const Library& library, const Arguments& arguments) {
    requireMultipath(library, arguments.device());
    library.deleteDevice(arguments.device());
    return ExitStatus::success;
}
