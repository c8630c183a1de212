#include "PolicyCheck.h"

#include <string>

#include "Countdown.h"
#include "NrProcess.h"
#include "ToolCommand.h"

using Seconds = std::chrono::seconds;

/**
 * The listing of one map warns on standard error where no daemon runs, see multipath(8). A map with
 * a name that cannot be passed on is looked at all the same.
 */
static bool mayDaemonRun(const Mapping& map) {
    if (!isPlainName(map.name))
        return true;
    std::string listing;
    std::string warnings;
    NrProcess::system(("multipath -l " + map.name).c_str(), &listing, &warnings, 0, false);
    return warnings.find("multipathd service is not running") == std::string::npos;
}

bool queueingComesBack(const Mapping& map, int seconds) {
    if (seconds == 0 || !mayDaemonRun(map))
        return false;
    const Countdown countdown("looking whether the daemon takes it back:", Seconds(seconds));
    for (int second = 0; second < seconds; ++second) {
        std::this_thread::sleep_for(Seconds(1));
        const DeviceMapper now = DeviceMapper::read();
        const Mapping* same = now.find(map.number);
        if (!same || same->queuesWithoutPath())
            return same != nullptr;
    }
    return false;
}
