// Makes the directory of a world from a scenario.
#pragma once

#include <functional>
#include <string>

#include "scenario.h"

namespace sim {

/// Fills an empty directory. `tool` is the program behind multipath, dmsetup and kpartx.
/// `checkpoint` is called again and again and may throw to stop the work.
/// Throws WorldError or ScenarioError; the directory is then as far as it came.
void buildWorld(const Scenario& scenario, const std::string& directory, const std::string& tool,
                const std::function<void()>& checkpoint);

} // namespace sim
