/* Matches the partitions of a multipath device to the mappings that expose them. */
#ifndef MPARTITERATOR_H
#define MPARTITERATOR_H

#include <cstdint>
#include <cstdio>
#include <map>
#include <string>
#include <utility>

#include "Decimal.h"
#include "Dmsetup.h"
#include "MTokenizer.h"
#include "NrPartInfo.h"
#include "ToolRun.h"
#include "slice.h"

/**
 * A function object, applied to every slice of a partition table in order. However a mapping is
 * named, it belongs to the partition that starts at the same sector and is as long.
 *
 * Copies share the caller's array and each count the records written on their own.
 */
class MPartIterator {
public:
    /**
     * Reads the mappings on the multipath device major:minor from device-mapper.
     *
     * @param partArray    Receives one record for each slice; not owned.
     * @param partCapacity Records that the array takes; later slices are dropped.
     */
    MPartIterator(std::string devicePath, int major, int minor, NrPartInfo* partArray, int partCapacity)
        : mpMajor(major), mpMinor(minor), maxParts(partCapacity), numParts(0), devPath(std::move(devicePath)),
          parts(partArray) {
        getDeps();
    }

    /** Writes the record of one partition; all zero but for sliceMinor where no mapping fits. */
    void operator()(slice partition) {
        NrPartInfo record = deps[{partition.start, partition.size}];
        record.sliceMinor = partition.minor;
        if (numParts < maxParts)
            parts[numParts++] = record;
    }

private:
    /** Start on the multipath device and length, in sectors. */
    using Place = std::pair<std::uint64_t, std::uint64_t>;

    /** A dependency line ends with the last dependency, so "(253, 1)$" is never part of (253, 10). */
    void getDeps() {
        ToolRun tool;
        tool.run("dmsetup deps | grep '(" + std::to_string(mpMajor) + ", " + std::to_string(mpMinor) +
                     ")$' | cut -d ':' -f1",
                 notQuiet);
        const std::string names = std::move(tool.out);
        for (const std::string_view name : splitLines(names))
            if (!name.empty())
                addMapping(std::string(name));
    }

    /** A mapping without a node, a table or the two numbers that place it has no record. */
    void addMapping(const std::string& name) {
        const auto found = findMappingNode(name);
        if (!found)
            return;
        const DeviceNumber number = found->node.number();
        ToolRun tool;
        if (tool.run(tableCommand(number), quietByDebugLevel()) != 0)
            return;
        const auto tokens = tokenize(tool.out, ' ', true);
        if (tokens.size() < 5)
            return;

        NrPartInfo record;
        record.start = sectors(tokens[4].c_str());
        record.size = sectors(tokens[1].c_str());
        record.devMajor = static_cast<std::uint32_t>(number.major);
        record.devMinor = static_cast<std::uint32_t>(number.minor);
        record.sectorSize = 512;
        std::snprintf(record.devName, sizeof record.devName - 1, "%s", found->path.c_str());
        deps[{record.start, record.size}] = record;
    }

    std::int32_t mpMajor;
    std::int32_t mpMinor;
    std::int32_t maxParts;
    std::int32_t numParts;
    std::string devPath; /**< Names the device in a debugger; nothing else needs it. */
    NrPartInfo* parts;
    std::map<Place, NrPartInfo> deps;
};

#endif
