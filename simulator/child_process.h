// Runs the command of a world.
#pragma once

#include <string>
#include <vector>

namespace sim {

/// Keeps the signals that end a program (SIGINT, SIGTERM, SIGHUP, SIGQUIT) waiting from here on, so that
/// what was begun can be taken back. Once, before any thread.
class HeldSignals {
public:
    HeldSignals();
    HeldSignals(const HeldSignals&) = delete;
    HeldSignals& operator=(const HeldSignals&) = delete;

    /// The signal that has come meanwhile, or 0.
    int pending() const;

    /// Runs the command, looked for in the PATH of `environment`, with the signals as they were, and
    /// passes on those that are sent to this process meanwhile. Returns the exit status, 128 + n after
    /// signal n, or 127 with the reason in `error` when it could not be started.
    int run(const std::vector<std::string>& command, const std::vector<std::string>& environment,
            std::string& error) const;
};

} // namespace sim
