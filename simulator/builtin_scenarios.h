// The scenarios that are built into nrmpio-sim: the files of simulator/scenarios/.
#pragma once

#include <string>
#include <vector>

namespace sim {

struct BuiltinScenario {
    std::string name;  // the file's name without ".toml"
    std::string title; // the file's first comment line
    std::string text;
};

extern const std::vector<BuiltinScenario> BuiltinScenarios;

} // namespace sim
