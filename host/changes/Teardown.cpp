#include "Teardown.h"

#include <algorithm>
#include <fmt/format.h>

#include "Holders.h"
#include "Output.h"
#include "ToolCommand.h"

namespace {

using Sentences = std::vector<std::string>;

void add(Sentences& sentences, Sentences more) {
    std::move(more.begin(), more.end(), std::back_inserter(sentences));
}

/** @param except what lies on the mapping and goes with it. */
Sentences holders(const Mapping& mapping, const DeviceMapper& deviceMapper,
                  const std::vector<const Mapping*>& except = {}) {
    if (mapping.openCount <= except.size())
        return {};
    Sentences sentences = holdersOf(mapping, deviceMapper, except);
    if (sentences.empty())
        sentences.push_back(fmt::format("{} is in use; by whom cannot be seen", mapping.name));
    return sentences;
}

/** Who holds the mappings on a map and, where it goes too, the map itself. */
Sentences allHolders(const Mapping& map, const DeviceMapper& deviceMapper, bool wholeMap) {
    const auto mappings = deviceMapper.linearOn(map.number);
    Sentences sentences;
    for (const Mapping* mapping : mappings)
        add(sentences, holders(*mapping, deviceMapper));
    if (wholeMap)
        add(sentences, holders(map, deviceMapper, mappings));
    return sentences;
}

void addIfSuspended(const Mapping& mapping, Sentences& sentences) {
    if (mapping.suspended)
        sentences.push_back(
            fmt::format("{0} is suspended, and I/O on it waits: dmsetup resume {0} ends that", mapping.name));
}

std::string whatIsThere(const Mapping& map, const std::vector<const Mapping*>& mappings, bool wholeMap) {
    if (!mappings.empty())
        return fmt::format("{} {} still there",
                           wholeMap ? map.name + " with " + namesOf(mappings) : namesOf(mappings),
                           wholeMap || mappings.size() == 1 ? "is" : "are");
    return fmt::format("{} is still there, with no mapping on it", map.name);
}

} // namespace

Sentences warnings(const Target& target, bool wholeMap) {
    Sentences sentences;
    if (wholeMap && !target.partition().empty())
        sentences.push_back(fmt::format("{} is a partition mapping on {}: the whole map goes",
                                        target.partition(), target.map().name));
    add(sentences, allHolders(target.map(), target.deviceMapper(), wholeMap));
    return sentences;
}

Sentences remains(const Target& before, bool wholeMap) {
    const DeviceMapper now = DeviceMapper::read();
    const Mapping* map = now.find(before.map().number);
    if (!map || map->name != before.map().name)
        return {fmt::format("{} is gone", before.map().name)};
    const auto mappings = now.linearOn(map->number);
    Sentences sentences = {whatIsThere(*map, mappings, wholeMap)};
    addIfSuspended(*map, sentences);
    for (const Mapping* mapping : mappings)
        addIfSuspended(*mapping, sentences);
    if (before.map().queuesWithoutPath() && !map->queuesWithoutPath())
        sentences.push_back(
            fmt::format("{0} queued I/O while it had no path, and fails it now: dmsetup message "
                        "{0} 0 queue_if_no_path switches back",
                        map->name));
    const auto holding = allHolders(*map, now, wholeMap);
    add(sentences, holding);
    sentences.push_back(holding.empty() ? "when the reason is gone, run the same command again"
                                        : "end what holds it, and run the same command again");
    return sentences;
}
