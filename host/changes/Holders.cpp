#include "Holders.h"

#include <algorithm>
#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <sstream>
#include <unistd.h>

#include "Output.h"

namespace fs = std::filesystem;

namespace {

using Sentences = std::vector<std::string>;
using Mappings = std::vector<const Mapping*>;

std::string numberText(Node number) {
    return fmt::format("{}:{}", number.major, number.minor);
}

fs::path sysfs(Node number) {
    return "/sys/dev/block/" + numberText(number);
}

/** The first line of a file; empty when it cannot be read. */
std::string firstLine(const fs::path& file) {
    std::ifstream in(file);
    std::string line;
    std::getline(in, line);
    return line;
}

std::string uuid(const Mapping& mapping) {
    return firstLine(sysfs(mapping.number) / "dm/uuid");
}

bool startsWith(const std::string& text, std::string_view start) {
    return text.compare(0, start.size(), start) == 0;
}

/** A path in the kernel's tables, where blanks and the like stand as \ooo. */
std::string unescaped(const std::string& text) {
    const auto octal = [](char c) { return c >= '0' && c <= '7'; };
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\' && i + 3 < text.size() && octal(text[i + 1]) && octal(text[i + 2]) &&
            octal(text[i + 3])) {
            plain += static_cast<char>(std::stoi(text.substr(i + 1, 3), nullptr, 8));
            i += 3;
        } else {
            plain += text[i];
        }
    }
    return plain;
}

void addMounts(const Mapping& mapping, Sentences& sentences) {
    std::ifstream mounts("/proc/self/mountinfo");
    for (std::string line; std::getline(mounts, line);) {
        std::istringstream words(line);
        std::string id, parent, number, root, directory;
        words >> id >> parent >> number >> root >> directory;
        if (number == numberText(mapping.number))
            sentences.push_back(fmt::format("{} is mounted on {}", mapping.name, unescaped(directory)));
    }
}

void addSwapSpace(const Mapping& mapping, Sentences& sentences) {
    std::ifstream swaps("/proc/swaps");
    for (std::string line; std::getline(swaps, line);)
        if (Node::find(unescaped(line.substr(0, line.find_first_of(" \t")))) == mapping.number)
            sentences.push_back(fmt::format("{} is swap space", mapping.name));
}

bool liesOn(const Mapping& upper, const Mapping& lower) {
    return std::any_of(upper.table.begin(), upper.table.end(), [&](const std::string& target) {
        return (target + " ").find(" " + numberText(lower.number) + " ") != std::string::npos;
    });
}

void addMappings(const Mapping& mapping, const DeviceMapper& deviceMapper, const Mappings& except,
                 Sentences& sentences) {
    for (const Mapping& other : deviceMapper.all())
        if (liesOn(other, mapping) && std::find(except.begin(), except.end(), &other) == except.end())
            sentences.push_back(fmt::format("{} lies on {}", description(other), mapping.name));
}

/** What a directory holds; what cannot be read of it is left out. */
std::vector<fs::path> entriesOf(const fs::path& directory) {
    std::vector<fs::path> entries;
    std::error_code error;
    for (fs::directory_iterator entry(directory, error), end; !error && entry != end; entry.increment(error))
        entries.push_back(entry->path());
    return entries;
}

/** What is no mapping, such as an md array, and mappings that have come since the snapshot. */
void addOtherDevices(const Mapping& mapping, const DeviceMapper& deviceMapper, Sentences& sentences) {
    for (const fs::path& holder : entriesOf(sysfs(mapping.number) / "holders")) {
        Node number{};
        char colon = 0;
        std::istringstream text(firstLine(holder / "dev"));
        const bool read = static_cast<bool>(text >> number.major >> colon >> number.minor);
        if (read && deviceMapper.find(number))
            continue;
        const std::string name = firstLine(holder / "dm/name");
        sentences.push_back(
            fmt::format("{} lies on {}", name.empty() ? holder.filename().string() : name, mapping.name));
    }
}

bool hasOpen(const fs::path& process, Node number) {
    const auto descriptors = entriesOf(process / "fd");
    return std::any_of(descriptors.begin(), descriptors.end(), [number](const fs::path& descriptor) {
        return Node::find(descriptor.string()) == number;
    });
}

void addProcesses(const Mapping& mapping, Sentences& sentences) {
    for (const fs::path& process : entriesOf("/proc")) {
        const std::string pid = process.filename();
        if (pid.find_first_not_of("0123456789") == std::string::npos && pid != std::to_string(getpid()) &&
            hasOpen(process, mapping.number))
            sentences.push_back(
                fmt::format("{} is open in process {} ({})", mapping.name, pid, firstLine(process / "comm")));
    }
}

} // namespace

std::vector<std::string> holdersOf(const Mapping& mapping, const DeviceMapper& deviceMapper,
                                   const std::vector<const Mapping*>& except) {
    Sentences sentences;
    addMounts(mapping, sentences);
    addSwapSpace(mapping, sentences);
    addMappings(mapping, deviceMapper, except, sentences);
    addOtherDevices(mapping, deviceMapper, sentences);
    addProcesses(mapping, sentences);
    return sentences;
}

std::string description(const Mapping& mapping) {
    const std::string id = uuid(mapping);
    const std::string numbered = fmt::format("{} ({})", mapping.name, numberText(mapping.number));
    if (startsWith(id, "LVM-"))
        return "logical volume " + numbered;
    if (startsWith(id, "CRYPT-"))
        return "encrypted device " + numbered;
    if (startsWith(id, "mpath-"))
        return "map " + mapping.name;
    if (startsWith(id, "part"))
        return "partition mapping " + mapping.name;
    return "mapping " + numbered;
}

bool isKnownAsOther(const Mapping& mapping) {
    std::error_code error;
    return fs::exists(sysfs(mapping.number) / "dm/uuid", error) && !startsWith(uuid(mapping), "part");
}
