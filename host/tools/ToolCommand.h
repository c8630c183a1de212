/* The command lines that the plug-in and nrmpio run, and what each of them does. */
#ifndef TOOLCOMMAND_H
#define TOOLCOMMAND_H

#include <optional>
#include <string>
#include <string_view>

/**
 * What a name is made of that neither a shell nor a tool reads as anything else: what device-mapper
 * leaves unescaped in a node's name, without '#', which starts a shell's comment, and the '/' of a path.
 */
inline constexpr std::string_view plainCharacters = "abcdefghijklmnopqrstuvwxyz"
                                                    "ABCDEFGHIJKLMNOPQRSTUVWXYZ"
                                                    "0123456789+-.:=@_/";

/**
 * A command line in one of the known forms. Where a form has a name, it is a plain one.
 */
struct ToolCommand {
    enum class Action { look, lookAtTable, reload, mapPartitions, failWithoutPath, remove, flush };

    Action action;
    std::string name; ///< Of the device that it is about; a number as "253:0"; empty where it is about all.

    /** Nothing for a line in no known form. */
    static std::optional<ToolCommand> parse(std::string_view line);

    bool changes() const { return action != Action::look && action != Action::lookAtTable; }
    bool removes() const { return action == Action::remove || action == Action::flush; }
    /** As in "interrupted while ...": "removing mpatha1". */
    std::string doing() const;
};

/** Whether a name can stand in a command line as it is: it does not look like an option, either. */
bool isPlainName(std::string_view name);

/** What stands for a name in a line that is in a known form but for that name; nothing if it is in none. */
std::optional<std::string> unfitName(std::string_view line);

/** The name as a shell reads it back. */
std::string shellQuoted(std::string_view name);

#endif
