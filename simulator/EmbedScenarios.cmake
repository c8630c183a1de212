# Writes the scenario files into a C++ source: cmake -DOUTPUT=… -DSCENARIOS=… -P EmbedScenarios.cmake
set(entries "")
foreach(file IN LISTS SCENARIOS)
  get_filename_component(name "${file}" NAME_WE)
  file(READ "${file}" text)
  string(REGEX MATCH "^# ([^\n]*)" _ "${text}")
  string(APPEND entries "    {\"${name}\", R\"~(${CMAKE_MATCH_1})~\", R\"~(${text})~\"},\n")
endforeach()
file(WRITE "${OUTPUT}" "#include \"builtin_scenarios.h\"\n\n"
  "const std::vector<sim::BuiltinScenario> sim::BuiltinScenarios = {\n${entries}};\n")
