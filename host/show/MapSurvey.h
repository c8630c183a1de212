/* Finds out about maps what show tells of them. */
#ifndef MAPSURVEY_H
#define MAPSURVEY_H

#include <string>
#include <vector>

#include "Device.h"
#include "DeviceMapper.h"
#include "Library.h"

/** A map that is to be asked about. */
struct Subject {
    std::string path;                 ///< Of its node, as it was listed or named.
    const Mapping* mapping = nullptr; ///< Null where device-mapper could not be read.
};

/** What could be found out, and a sentence for each thing that could not. */
struct MapReport {
    Device map;
    std::vector<std::string> complaints;
};

/** Asks the library and, for what it does not know, device-mapper and sysfs. May be used by many threads. */
class MapSurvey {
public:
    /** @param state null where device-mapper cannot be read; like the library, it outlives this object. */
    MapSurvey(const Library& library, const DeviceMapper* state) : library_(library), state_(state) {}

    /**
     * The partition table is not read where the read might wait for ever: of a map that is suspended
     * or has no usable path. Its partition mappings are known all the same.
     *
     * @throw Failure when it is no map (any more); ToolsFailure where nothing can be asked.
     */
    MapReport ask(const Subject& subject) const;

private:
    const Library& library_;
    const DeviceMapper* state_;
};

#endif
