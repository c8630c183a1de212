#include "ToolCommand.h"

#include <regex>
#include <vector>

namespace {

using Action = ToolCommand::Action;

constexpr std::string_view nameCharacters = "abcdefghijklmnopqrstuvwxyz"
                                            "ABCDEFGHIJKLMNOPQRSTUVWXYZ"
                                            "0123456789+.:=@_/,%-";

/** Longer lines are in no form: a device-mapper name has 127 characters at most, a path 4095. */
constexpr std::size_t longestLine = 4400;

struct Form {
    /** As it is run, with slots: <NAME>, <N> for a number, <FIELDS>, <END> for a line end that may be there.
     */
    const char* text;
    Action action;
};

constexpr Form forms[] = {
    {"multipath -d  -v1 -l", Action::look},
    {"multipath -l <NAME>", Action::look},
    {"dmsetup table", Action::look},
    {"dmsetup table <NAME>", Action::lookAtTable},
    {"dmsetup table -j <N> -m <N>", Action::lookAtTable},
    {"dmsetup table | grep 'linear <N>:<N>[^0-9]' | cut -d: -f1", Action::look},
    {"dmsetup status", Action::look},
    {"dmsetup deps", Action::look},
    {"dmsetup deps <NAME><END>", Action::look},
    {"dmsetup deps | grep '(<N>, <N>)$' | cut -d ':' -f1", Action::look},
    {"dmsetup info -c --noheadings -o <FIELDS>", Action::look},
    {"dmsetup info -c --noheadings -o <FIELDS> <NAME>", Action::look},
    {"dmsetup info -c --noheadings -o <FIELDS> -j <N> -m <N>", Action::look},
    {"multipath", Action::reload},
    {"multipath -f <NAME><END>", Action::flush},
    {"kpartx -a <NAME>", Action::mapPartitions},
    {"dmsetup message <NAME> 0 \"fail_if_no_path\"", Action::failWithoutPath},
    {"dmsetup message -j <N> -m <N> 0 \"fail_if_no_path\"", Action::failWithoutPath},
    {"dmsetup remove <NAME>", Action::remove},
};

struct Slot {
    std::string_view mark;
    const char* pattern;
};

constexpr Slot slots[] = {
    {"<NAME>", "([A-Za-z0-9+.:=@_/,%][A-Za-z0-9+.:=@_/,%-]*)"},
    {"<N>", "([0-9]{1,10})"},
    {"<FIELDS>", "[a-z_,]+"},
    {"<END>", "\\n?"},
};

/** The pattern for a form; with `name`, that for what stands in the place of its name. */
std::regex compile(std::string_view form, const char* name) {
    std::string pattern;
    while (!form.empty()) {
        const Slot* slot = nullptr;
        for (const Slot& candidate : slots)
            if (form.substr(0, candidate.mark.size()) == candidate.mark)
                slot = &candidate;
        if (slot) {
            pattern += name && slot->mark == "<NAME>" ? name : slot->pattern;
            form.remove_prefix(slot->mark.size());
        } else {
            if (std::string_view("|()[]^$.+*?{}\\").find(form[0]) != std::string_view::npos)
                pattern += '\\';
            pattern += form[0];
            form.remove_prefix(1);
        }
    }
    return std::regex(pattern, std::regex::ECMAScript | std::regex::optimize);
}

std::vector<std::regex> compileAll(const char* name) {
    std::vector<std::regex> patterns;
    for (const Form& form : forms)
        patterns.push_back(compile(form.text, name));
    return patterns;
}

/** One slot is a name, two are a number. */
std::string deviceOf(const std::cmatch& match) {
    if (match.size() == 3)
        return match.str(1) + ":" + match.str(2);
    return match.size() == 2 ? match.str(1) : "";
}

} // namespace

std::optional<ToolCommand> ToolCommand::parse(std::string_view line) {
    static const std::vector<std::regex> patterns = compileAll(nullptr);
    if (line.size() > longestLine)
        return std::nullopt;
    std::cmatch match;
    for (std::size_t i = 0; i < patterns.size(); ++i)
        if (std::regex_match(line.data(), line.data() + line.size(), match, patterns[i]))
            return ToolCommand{forms[i].action, deviceOf(match)};
    return std::nullopt;
}

std::string ToolCommand::doing() const {
    switch (action) {
    case Action::reload:
        return "reloading the maps";
    case Action::mapPartitions:
        return "mapping the partitions of " + name;
    case Action::failWithoutPath:
        return "having " + name + " fail I/O without paths";
    case Action::remove:
        return "removing " + name;
    case Action::flush:
        return "removing map " + name;
    default:
        return "looking";
    }
}

bool isPlainName(std::string_view name) {
    return !name.empty() && name[0] != '-' &&
           name.find_first_not_of(nameCharacters) == std::string_view::npos;
}

std::optional<std::string> unfitName(std::string_view line) {
    static const std::vector<std::regex> patterns = compileAll("([^]*?)");
    std::optional<std::string> shortest;
    std::cmatch match;
    if (line.size() > longestLine)
        return std::nullopt;
    for (const std::regex& pattern : patterns)
        if (std::regex_match(line.data(), line.data() + line.size(), match, pattern) && match.size() == 2)
            if (!shortest || match.length(1) < static_cast<long>(shortest->size()))
                shortest = match.str(1);
    return shortest;
}

std::string shellQuoted(std::string_view name) {
    std::string text = "'";
    for (const char c : name)
        text += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return text + "'";
}
