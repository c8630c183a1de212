#include "ToolCommand.h"

#include <algorithm>

namespace {

using Action = ToolCommand::Action;

struct Form {
    /** As it is run, with slots: <NAME>, <N> for a number, <FIELDS>. */
    std::string_view text;
    Action action;
    bool mayEndLine = false; ///< A line end may follow.
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
    {"dmsetup deps <NAME>", Action::look, true},
    {"dmsetup deps | grep '(<N>, <N>)$' | cut -d ':' -f1", Action::look},
    {"dmsetup info -c --noheadings -o <FIELDS>", Action::look},
    {"dmsetup info -c --noheadings -o <FIELDS> <NAME>", Action::look},
    {"dmsetup info -c --noheadings -o <FIELDS> -j <N> -m <N>", Action::look},
    {"multipath", Action::reload},
    {"multipath -f <NAME>", Action::flush, true},
    {"kpartx -a <NAME>", Action::mapPartitions},
    {"dmsetup message <NAME> 0 \"fail_if_no_path\"", Action::failWithoutPath},
    {"dmsetup message -j <N> -m <N> 0 \"fail_if_no_path\"", Action::failWithoutPath},
    {"dmsetup remove <NAME>", Action::remove},
};

/** What stands for a part of a device's name or number in a form; no piece of it looks like an option. */
struct Slot {
    std::string_view mark;
    std::string_view characters;
    std::size_t longest;
    bool names; ///< Whether the piece is the device's name, or a part of its number.
};

constexpr Slot slots[] = {
    {"<NAME>", plainCharacters, std::string_view::npos, true},
    {"<N>", "0123456789", 10, true},
    {"<FIELDS>", "abcdefghijklmnopqrstuvwxyz_,", std::string_view::npos, false},
};

bool startsWith(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

bool endsWith(std::string_view text, std::string_view end) {
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

const Slot* slotAt(std::string_view form) {
    for (const Slot& slot : slots)
        if (startsWith(form, slot.mark))
            return &slot;
    return nullptr;
}

/** How much of the line's beginning fits; 0 when nothing does. */
std::size_t fitting(const Slot& slot, std::string_view line) {
    if (line.empty() || line[0] == '-')
        return 0;
    const auto length = std::min(line.find_first_not_of(slot.characters), line.size());
    return length > slot.longest ? 0 : length;
}

/** Takes off a line what a form stands for, and adds what names the device. False when it does not fit. */
bool take(std::string_view form, std::string_view& line, std::string& device) {
    while (!form.empty()) {
        const Slot* slot = slotAt(form);
        const auto piece = slot ? slot->mark : form.substr(0, form.find('<'));
        const auto length = slot ? fitting(*slot, line) : startsWith(line, piece) ? piece.size() : 0;
        if (length == 0)
            return false;
        if (slot && slot->names)
            device.append(device.empty() ? "" : ":").append(line.substr(0, length));
        form.remove_prefix(piece.size());
        line.remove_prefix(length);
    }
    return true;
}

std::optional<ToolCommand> parse(const Form& form, std::string_view line) {
    std::string device;
    const bool fits = take(form.text, line, device) && (line.empty() || (form.mayEndLine && line == "\n"));
    return fits ? std::optional(ToolCommand{form.action, device}) : std::nullopt;
}

/** What stands in a line in the place of a form's name. */
std::optional<std::string_view> nameIn(const Form& form, std::string_view line) {
    constexpr std::string_view mark = "<NAME>";
    const auto place = form.text.find(mark);
    std::string unused;
    if (place == std::string_view::npos || !take(form.text.substr(0, place), line, unused))
        return std::nullopt;
    if (form.mayEndLine && endsWith(line, "\n"))
        line.remove_suffix(1);
    const auto end = form.text.substr(place + mark.size());
    if (!endsWith(line, end))
        return std::nullopt;
    return line.substr(0, line.size() - end.size());
}

} // namespace

std::optional<ToolCommand> ToolCommand::parse(std::string_view line) {
    for (const Form& form : forms)
        if (auto command = ::parse(form, line))
            return command;
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
           name.find_first_not_of(plainCharacters) == std::string_view::npos;
}

std::optional<std::string> unfitName(std::string_view line) {
    std::optional<std::string> shortest;
    for (const Form& form : forms)
        if (const auto name = nameIn(form, line); name && (!shortest || name->size() < shortest->size()))
            shortest = *name;
    return shortest;
}

std::string shellQuoted(std::string_view name) {
    std::string text = "'";
    for (const char c : name)
        text += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return text + "'";
}
