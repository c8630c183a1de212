// dmsetup: takes the command line apart and runs the command. See dmsetup(8).
#include <unistd.h>

#include "dmsetup_command.h"

namespace sim {

namespace {

using dm::Options;

struct OptionForm {
    const char* longName;
    char shortName;
    bool takesValue;
};

constexpr OptionForm OptionForms[] = {
    {"major", 'j', true},        {"minor", 'm', true},    {"columns", 'c', false},
    {"noheadings", '\0', false}, {"options", 'o', true},  {"target", '\0', true},
    {"table", '\0', true},       {"notable", 'n', false}, {"tree", '\0', false},
};

const OptionForm& optionForm(const std::string& argument) {
    for (const OptionForm& form : OptionForms)
        if (argument == std::string("--") + form.longName ||
            (form.shortName != '\0' && argument == std::string("-") + form.shortName))
            return form;
    throw NotSimulated("option " + argument);
}

Options parse(const Arguments& arguments) {
    Options options;
    for (size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (argument.size() < 2 || argument[0] != '-') {
            (options.command.empty() ? options.command : options.operands.emplace_back()) = argument;
            continue;
        }
        const OptionForm& form = optionForm(argument);
        if (form.takesValue && ++i == arguments.size())
            throw NotSimulated("option " + argument + " without a value");
        options.values[form.longName] = form.takesValue ? arguments[i] : "";
    }
    return options;
}

std::string standardInput() {
    std::string text;
    char block[4096];
    for (ssize_t count; (count = ::read(STDIN_FILENO, block, sizeof block)) > 0;)
        text.append(block, static_cast<size_t>(count));
    return text;
}

int version(World&, const Options& options) {
    dm::requireOnly(options, {});
    out("Library version:   1.02.185 (2022-05-18)\nDriver version:    4.47.0\n");
    return 0;
}

struct Command {
    const char* name;
    int (*run)(World&, const Options&);
    size_t operands; // at most
    bool changes;
};

constexpr Command Commands[] = {
    {"table", dm::table, 1, false},
    {"status", dm::status, 1, false},
    {"deps", dm::deps, 1, false},
    {"ls", dm::ls, 0, false},
    {"info", dm::info, 1, false},
    {"version", version, 0, false},
    {"message", dm::message, 3, true},
    {"remove", dm::remove, 1, true},
    {"create", dm::create, 1, true},
    {"rename", dm::rename, 2, true},
    {"suspend", dm::suspendOrResume, 1, true},
    {"resume", dm::suspendOrResume, 1, true},
};

} // namespace

int dmsetup(World& world, const Arguments& arguments) {
    Options options = parse(arguments);
    // Read before the world is locked: what is piped in may come from another tool.
    if (options.command == "create" && !options.has("notable") && !options.has("table"))
        options.values["table"] = standardInput();
    for (const Command& command : Commands) {
        if (options.command != command.name)
            continue;
        if (options.operands.size() > command.operands)
            throw NotSimulated("more than one device");
        const UniqueFd lock = command.changes ? world.lockForChanges() : world.lockForReading();
        return command.run(world, options);
    }
    throw NotSimulated("this command of dmsetup");
}

} // namespace sim
