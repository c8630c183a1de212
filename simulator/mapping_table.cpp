#include "mapping_table.h"

#include <algorithm>

namespace sim {

namespace {

const char Selector[] = "service-time";

std::string numberText(std::size_t value) {
    return std::to_string(value);
}

/// Takes words from the front; ok() turns false when one is missing or has another form.
class Reader {
public:
    explicit Reader(const std::vector<std::string>& list) : list_(list) {}

    bool ok() const { return ok_; }
    std::string word() {
        if (next_ >= list_.size()) {
            ok_ = false;
            return "";
        }
        return list_[next_++];
    }
    unsigned number() {
        const auto value = parseNumber(word());
        ok_ = ok_ && value && *value < 100000;
        return ok_ ? static_cast<unsigned>(*value) : 0;
    }
    DeviceNumber device() {
        const auto value = parseDeviceNumber(word());
        ok_ = ok_ && value;
        return value.value_or(DeviceNumber{});
    }
    void skip(unsigned count) {
        for (; ok_ && count > 0; --count)
            word();
    }

private:
    const std::vector<std::string>& list_;
    std::size_t next_ = 0;
    bool ok_ = true;
};

} // namespace

std::vector<std::string> split(const std::string& text, const char* separators) {
    std::vector<std::string> parts;
    for (std::size_t start = 0; (start = text.find_first_not_of(separators, start)) != std::string::npos;) {
        const std::size_t end = std::min(text.find_first_of(separators, start), text.size());
        parts.push_back(text.substr(start, end - start));
        start = end;
    }
    return parts;
}

std::vector<std::string> words(const std::string& text) {
    return split(text, " \t\n");
}

std::string joined(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : " ") + word;
    return text;
}

std::string Target::text() const {
    const bool endsInBlank = type == "multipath" && !arguments.empty();
    return numberText(start) + " " + numberText(length) + " " + type + " " + joined(arguments) +
           (endsInBlank ? " " : "");
}

std::optional<Table> parseTable(const std::string& text) {
    Table table;
    for (const std::string& line : split(text, "\n")) {
        const std::vector<std::string> parts = words(line);
        if (parts.size() < 3)
            return std::nullopt;
        const auto start = parseNumber(parts[0]);
        const auto length = parseNumber(parts[1]);
        if (!start || !length)
            return std::nullopt;
        table.push_back({*start, *length, parts[2], {parts.begin() + 3, parts.end()}});
    }
    return table;
}

std::string tableText(const Table& table) {
    std::string text;
    for (const Target& target : table)
        text += target.text() + "\n";
    return text;
}

std::uint64_t sectorsOf(const Table& table) {
    return table.empty() ? 0 : table.back().start + table.back().length;
}

std::vector<DeviceNumber> devicesOf(const Table& table) {
    std::vector<DeviceNumber> devices;
    for (const Target& target : table)
        for (const std::string& argument : target.arguments)
            if (const auto device = parseDeviceNumber(argument))
                if (std::find(devices.begin(), devices.end(), *device) == devices.end())
                    devices.push_back(*device);
    return devices;
}

Target linearTarget(std::uint64_t start, std::uint64_t length, DeviceNumber device, std::uint64_t offset) {
    return {start, length, "linear", {device.text(), numberText(offset)}};
}

std::optional<Multipath> Multipath::parse(const Target& target) {
    if (target.type != "multipath")
        return std::nullopt;
    Multipath map;
    Reader reader(target.arguments);
    for (unsigned features = reader.number(); features > 0 && reader.ok(); --features)
        map.queueIfNoPath |= reader.word() == "queue_if_no_path";
    reader.skip(reader.number()); // hardware handler
    const unsigned groups = reader.number();
    map.nextGroup = reader.number();
    for (unsigned group = 0; group < groups && reader.ok(); ++group) {
        reader.word(); // path selector
        reader.skip(reader.number());
        const unsigned paths = reader.number();
        const unsigned pathArguments = reader.number();
        map.groups.emplace_back();
        for (unsigned path = 0; path < paths && reader.ok(); ++path) {
            map.groups.back().push_back(reader.device());
            reader.skip(pathArguments);
        }
    }
    return reader.ok() ? std::optional<Multipath>(map) : std::nullopt;
}

Target Multipath::target(std::uint64_t length) const {
    std::string text = queueIfNoPath ? "1 queue_if_no_path 0 " : "0 0 ";
    text += numberText(groups.size()) + " " + numberText(nextGroup);
    for (const auto& group : groups) {
        text += std::string(" ") + Selector + " 0 " + numberText(group.size()) + " 2";
        for (const DeviceNumber path : group)
            text += " " + path.text() + " 1 1";
    }
    return {0, length, "multipath", words(text)};
}

std::string Multipath::loadText(std::uint64_t length) const {
    std::string text = "0 " + numberText(length) + " multipath ";
    text += queueIfNoPath ? "1 queue_if_no_path 0 " : "0 0 ";
    text += numberText(groups.size()) + " 1";
    for (const auto& group : groups) {
        text += std::string(" ") + Selector + " 0 " + numberText(group.size()) + " 1";
        for (const DeviceNumber path : group)
            text += " " + path.text() + " 1";
    }
    return text;
}

std::string Multipath::statusText(unsigned activeGroup, const PathStates& states) const {
    std::string text = "2 0 0 0 " + numberText(groups.size()) + " " + numberText(nextGroup) + " ";
    unsigned number = 0;
    for (const auto& group : groups) {
        text += ++number == activeGroup ? "A" : "E";
        text += " 0 " + numberText(group.size()) + " 2 ";
        for (const DeviceNumber path : group) {
            const auto known = states.find(path);
            const PathState state = known != states.end() ? known->second : PathState{};
            text += path.text() + (state.failed ? " F " : " A ") + numberText(state.failures) + " 0 1 ";
        }
    }
    return text;
}

} // namespace sim
