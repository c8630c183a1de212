#include "RemovalProgress.h"

#include <algorithm>
#include <fmt/format.h>

#include "Holders.h"
#include "Output.h"

// As NrMPIO.h promises for deleteMPIODevicePartitions.
static constexpr int mostAttempts = 6;
static constexpr std::chrono::seconds waitingTime{10};

RemovalProgress::RemovalProgress(const Target& target, std::vector<std::string> told)
    : target_(target), told_(std::move(told)) {
    CommandGate::current().setListener(this);
}

RemovalProgress::~RemovalProgress() {
    CommandGate::current().setListener(nullptr);
}

void RemovalProgress::starting(const ToolCommand&) {
    countdown_.reset();
}

/** After a removal that has failed the library asks for the table; if the mapping is still there, it waits.
 */
void RemovalProgress::ended(const ToolCommand& command, int status) {
    const bool removal = command.action == ToolCommand::Action::remove;
    if (!removal && failed_ && command.name == name_ && status == 0)
        waitBegins();
    if (removal) {
        attempts_ = command.name == name_ ? attempts_ + 1 : 1;
        name_ = command.name;
    }
    failed_ = removal && status != 0;
}

void RemovalProgress::waitBegins() {
    if (attempts_ == 1)
        tellHolders();
    const std::string text =
        fmt::format("{} is busy (attempt {} of {}), trying again in", name_, attempts_, mostAttempts);
    if (Countdown::visible())
        countdown_.emplace(text, waitingTime);
    else
        tell(fmt::format("{} {} s", text, waitingTime.count()));
}

void RemovalProgress::tellHolders() const {
    for (const Mapping* mapping : target_.mappings())
        if (mapping->name == name_)
            for (const std::string& sentence : holdersOf(*mapping, target_.deviceMapper()))
                if (std::find(told_.begin(), told_.end(), sentence) == told_.end())
                    tell(sentence);
}
