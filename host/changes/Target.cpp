#include "Target.h"

#include <algorithm>
#include <cctype>
#include <fmt/format.h>
#include <sstream>

#include "Diagnosis.h"
#include "ExitStatus.h"
#include "Holders.h"
#include "Output.h"
#include "SizeText.h"
#include "ToolCommand.h"

namespace {

struct Extent {
    unsigned long long start = 0;
    unsigned long long length = 0;
};

Extent extentOf(const std::string& target) {
    Extent extent;
    std::istringstream(target) >> extent.start >> extent.length;
    return extent;
}

/** Each target begins where the one before ends; one that does not is a part of another device's name. */
bool isWhole(const Mapping& mapping) {
    unsigned long long end = 0;
    for (const std::string& target : mapping.table) {
        const Extent extent = extentOf(target);
        if (extent.start != end)
            return false;
        end += extent.length;
    }
    return true;
}

/** Whether the library, which searches the text of the listing, takes a line for a mapping on the device. */
bool looksLinearOn(const std::string& line, Node device) {
    const std::string text = fmt::format("linear {}:{}", device.major, device.minor);
    for (auto found = line.find(text); found != std::string::npos; found = line.find(text, found + 1)) {
        const auto after = found + text.size();
        if (after < line.size() && !std::isdigit(static_cast<unsigned char>(line[after])))
            return true;
    }
    return false;
}

/** The library cuts the name at the first colon and at blanks, and a shell reads it. */
bool survivesLibrary(const std::string& name) {
    return isPlainName(name) && name.find(':') == std::string::npos;
}

std::string remedy(const Mapping& mapping, const Mapping& map) {
    const std::string name = escaped(shellQuoted(mapping.name));
    return mapping.isLinearOn(map.number)
               ? fmt::format("remove that mapping by hand first: dmsetup remove {}", name)
               : fmt::format("rename that device first: dmsetup rename {} NEWNAME", name);
}

void requireRemovable(const Mapping& mapping, const Mapping& map) {
    const bool looksSo =
        std::any_of(mapping.table.begin(), mapping.table.end(), [&](const std::string& target) {
            return looksLinearOn(mapping.name + ": " + target, map.number);
        });
    if (!looksSo)
        return;
    if (!survivesLibrary(mapping.name))
        throw Failure(fmt::format("the name {} would be read differently on its way to dmsetup, and another "
                                  "device might be removed; {}",
                                  escaped(mapping.name), remedy(mapping, map)));
    if (!isWhole(mapping))
        throw Failure(
            fmt::format("dmsetup table tells no whole table of {}: another device has a line end in "
                        "its name; rename that one first, with dmsetup rename",
                        mapping.name));
    if (isKnownAsOther(mapping))
        throw Failure(fmt::format("{} is no partition mapping, and would go with {}; {}",
                                  description(mapping), map.name, remedy(mapping, map)));
}

/** The library looks for a partition mapping's map beside its node: not so where it is given the map's. */
DeviceName nodeOf(const Mapping& map, const DeviceName& otherwise) {
    try {
        const std::string node = map.node();
        return node.empty() ? otherwise : DeviceName(node);
    } catch (const UsageError&) { // Odd characters are escaped in it by another one.
        return otherwise;
    }
}

/** The same device, however its paths have changed. */
bool same(const Mapping& one, const Mapping& other) {
    return one.name == other.name && one.number == other.number && one.sectors() == other.sectors();
}

} // namespace

Target::Target(DeviceMapper deviceMapper, Node number, DeviceName device, std::string partition)
    : deviceMapper_(std::move(deviceMapper)), number_(number), device_(std::move(device)),
      partition_(std::move(partition)) {}

Target Target::find(const Library& library, const DeviceName& device) {
    requireMultipath(library, device);
    DeviceMapper deviceMapper = DeviceMapper::read();
    const Mapping* mapping = deviceMapper.find(device);
    const Mapping* map = mapping ? deviceMapper.mapOf(*mapping) : nullptr;
    if (!map)
        throw Failure(fmt::format("dmsetup lists no map for {}; try again", device.text()));
    const Node number = map->number;
    DeviceName node = nodeOf(*map, device);
    std::string partition = mapping == map ? "" : mapping->name;
    return {std::move(deviceMapper), number, std::move(node), std::move(partition)};
}

std::vector<std::string> Target::removable(bool wholeMap) const {
    std::vector<std::string> names;
    for (const Mapping* mapping : mappings())
        names.push_back(mapping->name);
    if (wholeMap)
        names.push_back(map().name);
    return names;
}

void Target::requireMap() const {
    if (!partition_.empty())
        throw Failure(fmt::format("{} is a partition mapping; name its map, {}", partition_, map().name));
}

void Target::requireRemovable() const {
    if (!isPlainName(map().name))
        throw Failure(fmt::format("the name of map {} would be read differently on its way to the tools; "
                                  "rename it first: dmsetup rename {} NEWNAME",
                                  escaped(map().name), escaped(shellQuoted(map().name))));
    for (const Mapping& mapping : deviceMapper_.all())
        ::requireRemovable(mapping, map());
}

void Target::requireUnchanged() const {
    const DeviceMapper now = DeviceMapper::read();
    const Mapping* map = now.find(number_);
    const auto before = mappings();
    const auto after = now.linearOn(number_);
    const auto sameMapping = [](const Mapping* one, const Mapping* other) { return same(*one, *other); };
    if (!map || !same(*map, this->map()) ||
        !std::equal(before.begin(), before.end(), after.begin(), after.end(), sameMapping))
        throw Failure(fmt::format("{} is not any more what was asked about, and nothing was changed: run the "
                                  "same command again",
                                  this->map().name));
}

std::string namesOf(const std::vector<const Mapping*>& mappings) {
    std::string names;
    for (const Mapping* mapping : mappings)
        names += (names.empty() ? "" : ", ") + escaped(mapping->name);
    return names;
}

std::string nameAndSize(const Mapping& mapping) {
    return fmt::format("{} ({})", escaped(mapping.name), sizeText(mapping.sectors() * 512));
}
