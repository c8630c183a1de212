/* What is told while a removal waits for its next attempt. */
#ifndef REMOVALPROGRESS_H
#define REMOVALPROGRESS_H

#include <optional>

#include "CommandGate.h"
#include "Countdown.h"
#include "Target.h"

/**
 * While it lives, each wait for a mapping that cannot be removed is told: who holds it, which
 * attempt that was, and when the next one is.
 */
class RemovalProgress : public CommandListener {
public:
    /**
     * @param target outlives this object.
     * @param told   what the user knows already; it is not told again.
     */
    RemovalProgress(const Target& target, std::vector<std::string> told);
    ~RemovalProgress() override;
    RemovalProgress(const RemovalProgress&) = delete;
    RemovalProgress& operator=(const RemovalProgress&) = delete;

    void starting(const ToolCommand& command) override;
    void ended(const ToolCommand& command, int status) override;

private:
    void waitBegins();
    void tellHolders() const;

    const Target& target_;
    const std::vector<std::string> told_;
    std::string name_; ///< Of the mapping that is being removed.
    int attempts_ = 0;
    bool failed_ = false;
    std::optional<Countdown> countdown_;
};

#endif
