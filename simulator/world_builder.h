// Makes the directory of a world from a scenario.
#pragma once

#include <string>

#include "scenario.h"

namespace sim {

/// Fills an empty directory. `tool` is the program behind multipath, dmsetup and kpartx.
/// Throws WorldError; the directory is then as far as it came.
void buildWorld(const Scenario& scenario, const std::string& directory, const std::string& tool);

} // namespace sim
