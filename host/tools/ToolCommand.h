/* The command lines that the plug-in and nrmpio run, and what each of them does. */
#ifndef TOOLCOMMAND_H
#define TOOLCOMMAND_H

#include <optional>
#include <string>
#include <string_view>

/**
 * A command line in one of the known forms. Where a form has a name, the name is made of characters
 * that neither a shell nor a tool reads as anything else, and does not look like an option.
 */
struct ToolCommand {
    enum class Action { look, lookAtTable, reload, mapPartitions, failWithoutPath, remove, flush };

    Action action;
    std::string name; ///< Of the device that it is about; a number as "253:0"; empty where it is about all.

    /** Nothing for a line in no known form. */
    static std::optional<ToolCommand> parse(std::string_view line);

    bool changes() const { return action != Action::look && action != Action::lookAtTable; }
    /** As in "interrupted while ...": "removing mpatha1". */
    std::string doing() const;
};

/** Whether a name can stand in a command line as it is. */
bool isPlainName(std::string_view name);

/** What stands for a name in a line that is in a known form but for that name; nothing if it is in none. */
std::optional<std::string> unfitName(std::string_view line);

/** The name as a shell reads it back. */
std::string shellQuoted(std::string_view name);

#endif
