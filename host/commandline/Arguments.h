/* What the command line gave to a command. */
#ifndef ARGUMENTS_H
#define ARGUMENTS_H

#include <string>
#include <vector>

#include "DeviceName.h"

/** How show asks, and how it presents what it has found. */
struct ShowOptions {
    enum class Format { tree, list, pairs, json, dot };

    Format format = Format::tree;
    std::vector<std::string> columns; ///< As they were given, none of them empty; none: the usual ones.
    bool headings = true;
    bool bytes = false;
    unsigned jobs = 1; ///< Maps that are asked about at the same time; at least one.
};

struct Arguments {
    std::vector<DeviceName> devices; ///< One for a command on a device, any number for show.
    int major = 0;
    int minor = 0;
    bool json = false; ///< Of all commands but show, which has a format.
    bool kpartx = false;
    bool yes = false;    ///< Every question is answered so.
    bool dryRun = false; ///< The command lines that change something are shown, not run.
    int recheck = 6;     ///< Seconds after which a path policy is looked at again; 0: not at all.
    ShowOptions show;

    const DeviceName& device() const { return devices.front(); }
};

#endif
