#include "DeviceMapper.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <fmt/format.h>
#include <iterator>
#include <set>
#include <sstream>

#include "ExitStatus.h"
#include "NrProcess.h"

namespace {

/** The lines that a command prints. @throw Failure when it fails. */
std::vector<std::string> linesOf(const char* command) {
    std::string out;
    std::string err;
    if (const int status = NrProcess::system(command, &out, &err, 0, false))
        throw Failure(fmt::format("{} failed (code {}): {}", command, status, err));
    std::vector<std::string> lines;
    std::istringstream text(out);
    for (std::string line; std::getline(text, line);)
        lines.push_back(line);
    return lines;
}

/** "MAJOR:MINOR:OPEN:STATE:NAME", the state as four letters, of which an s says suspended. */
std::optional<Mapping> mappingOf(const std::string& line) {
    Mapping mapping;
    char state[8];
    int name = 0;
    const int read = std::sscanf(line.c_str(), "%u:%u:%u:%7[^:]:%n", &mapping.number.major,
                                 &mapping.number.minor, &mapping.openCount, state, &name);
    if (read != 4 || name == 0)
        return std::nullopt; // "No devices found"
    mapping.suspended = std::string(state).find('s') != std::string::npos;
    mapping.name = line.substr(static_cast<std::size_t>(name));
    return mapping;
}

bool byName(const Mapping& one, const Mapping& other) {
    return one.name < other.name;
}

/** Of a line "NAME: TARGET": the mapping with the longest name that fits, since names may hold ": ". */
Mapping* ownerOf(const std::string& line, std::vector<Mapping>& mappings) {
    for (auto end = line.rfind(": "); end != std::string::npos && end != 0; end = line.rfind(": ", end - 1)) {
        Mapping wanted;
        wanted.name = line.substr(0, end);
        const auto found = std::lower_bound(mappings.begin(), mappings.end(), wanted, byName);
        if (found != mappings.end() && found->name == wanted.name)
            return &*found;
    }
    return nullptr;
}

void addTargets(const char* command, std::vector<Mapping>& mappings,
                std::vector<std::string> Mapping::*targets) {
    for (const std::string& line : linesOf(command))
        if (Mapping* owner = ownerOf(line, mappings); owner && line.size() > owner->name.size() + 2)
            (owner->*targets).push_back(line.substr(owner->name.size() + 2));
}

/** The words of a target, read in order. */
class Words {
public:
    explicit Words(const std::string& target) : text_(target) {}

    std::string next() {
        std::string word;
        text_ >> word;
        return word;
    }
    /** 0 for what is no number, and at the end. */
    unsigned number() {
        unsigned value = 0;
        std::sscanf(next().c_str(), "%u", &value);
        return value;
    }
    void skip(unsigned count) {
        while (count-- > 0 && text_)
            next();
    }
    bool more() const { return static_cast<bool>(text_); }

private:
    std::istringstream text_;
};

bool hasType(const std::string& target, const char* type) {
    Words words(target);
    words.skip(2);
    return words.next() == type;
}

struct LinearTarget {
    Node device{};
    unsigned long long start = 0;
};

std::optional<LinearTarget> linearTarget(const std::string& target) {
    LinearTarget linear;
    if (std::sscanf(target.c_str(), "%*u %*u linear %u:%u %llu", &linear.device.major, &linear.device.minor,
                    &linear.start) != 3)
        return std::nullopt;
    return linear;
}

/** As libdevmapper names a node in /dev/mapper: see dmsetup(8) on --manglename. */
std::string mangled(const std::string& name) {
    std::string node;
    for (const char c : name) {
        const auto byte = static_cast<unsigned char>(c);
        const bool plain = byte < 0x80 && (std::isalnum(byte) || std::strchr("#+-.:=@_", c));
        node += plain ? std::string(1, c) : fmt::format("\\x{:02x}", byte);
    }
    return node;
}

} // namespace

bool Mapping::isMap() const {
    return std::any_of(table.begin(), table.end(),
                       [](const std::string& target) { return hasType(target, "multipath"); });
}

bool Mapping::queuesWithoutPath() const {
    return std::any_of(table.begin(), table.end(), [](const std::string& target) {
        return hasType(target, "multipath") && (target + " ").find(" queue_if_no_path ") != std::string::npos;
    });
}

std::vector<PathState> Mapping::paths() const {
    std::vector<PathState> paths;
    for (const std::string& target : status) {
        if (!hasType(target, "multipath"))
            continue;
        Words words(target);
        words.skip(3);
        words.skip(words.number()); // features
        words.skip(words.number()); // hardware handler
        const unsigned groups = words.number();
        words.skip(1); // the group that is tried first
        for (unsigned group = 0; group < groups && words.more(); ++group) {
            words.skip(1);              // its state
            words.skip(words.number()); // of the path selector
            const unsigned count = words.number();
            const unsigned selectorWords = words.number();
            for (unsigned path = 0; path < count && words.more(); ++path) {
                PathState state{};
                if (std::sscanf(words.next().c_str(), "%u:%u", &state.disk.major, &state.disk.minor) != 2)
                    return paths;
                state.failed = words.next() == "F";
                paths.push_back(state);
                words.skip(1 + selectorWords); // its failures first
            }
        }
    }
    return paths;
}

bool Mapping::isLinearOn(Node device) const {
    return std::any_of(table.begin(), table.end(), [device](const std::string& target) {
        const auto linear = linearTarget(target);
        return linear && linear->device == device;
    });
}

std::optional<unsigned long long> Mapping::linearStart() const {
    const auto linear = table.size() == 1 ? linearTarget(table.front()) : std::nullopt;
    return linear ? std::optional(linear->start) : std::nullopt;
}

unsigned long long Mapping::sectors() const {
    unsigned long long sum = 0;
    for (const std::string& target : table) {
        unsigned long long length = 0;
        std::sscanf(target.c_str(), "%*u %llu", &length);
        sum += length;
    }
    return sum;
}

std::string Mapping::node() const {
    for (const std::string& path : {"/dev/mapper/" + mangled(name), fmt::format("/dev/dm-{}", number.minor)})
        if (Node::find(path) == number)
            return path;
    return {};
}

DeviceMapper DeviceMapper::read() {
    DeviceMapper read;
    for (const std::string& line : linesOf("dmsetup info -c --noheadings -o major,minor,open,attr,name"))
        if (auto mapping = mappingOf(line))
            read.mappings_.push_back(std::move(*mapping));
    std::sort(read.mappings_.begin(), read.mappings_.end(), byName);
    addTargets("dmsetup table", read.mappings_, &Mapping::table);
    addTargets("dmsetup status", read.mappings_, &Mapping::status);
    read.index();
    return read;
}

void DeviceMapper::index() {
    for (std::size_t place = 0; place < mappings_.size(); ++place) {
        const Mapping& mapping = mappings_[place];
        byNumber_[{mapping.number.major, mapping.number.minor}] = place;
        std::set<Number> below;
        for (const std::string& target : mapping.table)
            if (const auto linear = linearTarget(target))
                below.insert({linear->device.major, linear->device.minor});
        for (const Number& device : below)
            linearOn_.emplace(device, place);
    }
}

const Mapping* DeviceMapper::find(Node number) const {
    const auto found = byNumber_.find({number.major, number.minor});
    return found == byNumber_.end() ? nullptr : &mappings_[found->second];
}

const Mapping* DeviceMapper::find(const std::string& name) const {
    Mapping wanted;
    wanted.name = name;
    const auto found = std::lower_bound(mappings_.begin(), mappings_.end(), wanted, byName);
    return found == mappings_.end() || found->name != name ? nullptr : &*found;
}

const Mapping* DeviceMapper::find(const DeviceName& device) const {
    if (const auto number = Node::find(device))
        return find(*number);
    const std::string directory = "/dev/mapper/";
    const std::string& text = device.text();
    return find(text.compare(0, directory.size(), directory) == 0 ? text.substr(directory.size()) : text);
}

const Mapping* DeviceMapper::beneath(const Mapping& mapping) const {
    for (const std::string& target : mapping.table)
        if (const auto linear = linearTarget(target))
            return find(linear->device);
    return nullptr;
}

const Mapping* DeviceMapper::mapOf(const Mapping& mapping) const {
    const Mapping* candidate = mapping.isMap() ? &mapping : beneath(mapping);
    return candidate && candidate->isMap() ? candidate : nullptr;
}

std::vector<const Mapping*> DeviceMapper::linearOn(Node device) const {
    const auto [first, last] = linearOn_.equal_range({device.major, device.minor});
    std::vector<const Mapping*> found;
    std::transform(first, last, std::back_inserter(found),
                   [this](const auto& entry) { return &mappings_[entry.second]; });
    return found;
}
