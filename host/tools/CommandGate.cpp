#include "CommandGate.h"

#include <algorithm>
#include <fmt/format.h>
#include <unistd.h>
#include <utility>

#include "ExitStatus.h"
#include "NrProcess.h"
#include "Output.h"

namespace {

/** As a shell reports a command that it may not execute. */
constexpr int refusedStatus = 126;

CommandGate* gate = nullptr;
thread_local unsigned commandsSeen = 0;
thread_local std::string refusal;

std::string whyRefused(const std::string& line) {
    if (const auto name = unfitName(line))
        return fmt::format("the name {} would not reach the tools as it is: a shell or a tool reads it "
                           "differently; rename that device first: dmsetup rename {} NEWNAME",
                           escaped(*name), escaped(shellQuoted(*name)));
    return fmt::format("a command line was kept from running, since nrmpio does not know its form: {}",
                       escaped(line));
}

std::string withoutLineEnd(std::string line) {
    if (!line.empty() && line.back() == '\n')
        line.pop_back();
    return line;
}

} // namespace

CommandListener::~CommandListener() = default;

CommandGate::CommandGate(Mode mode) : mode_(mode) {
    gate = this;
    NrProcess::setWatch(this);
}

CommandGate::~CommandGate() {
    NrProcess::setWatch(nullptr);
    gate = nullptr;
}

CommandGate& CommandGate::current() {
    return *gate;
}

std::optional<CommandAnswer> CommandGate::before(const char* line) {
    ++running_; // before it looks whether the gate is closed: one of the two sees the other
    holdBackIfClosed();
    ++commandsSeen;
    auto answer = decide(line);
    if (answer)
        --running_;
    return answer;
}

std::optional<CommandAnswer> CommandGate::decide(const char* line) {
    const auto command = ToolCommand::parse(line);
    if (refusal.empty())
        refusal = objection(command, line);
    if (!refusal.empty())
        return CommandAnswer{refusedStatus, "", refusal + "\n"};
    if (command->changes()) {
        const std::lock_guard lock(mutex_);
        changes_.push_back({withoutLineEnd(line), *command, std::nullopt});
        if (rehearses())
            return CommandAnswer{};
    }
    if (CommandListener* listener = listener_)
        listener->starting(*command);
    return std::nullopt;
}

std::string CommandGate::objection(const std::optional<ToolCommand>& command, const char* line) const {
    if (!command)
        return whyRefused(line);
    if (!command->removes())
        return {};
    const std::lock_guard lock(mutex_);
    if (std::find(removable_.begin(), removable_.end(), command->name) != removable_.end())
        return {};
    return fmt::format(
        "{} is not among what was to be removed, and is left alone; run the same command again",
        command->name);
}

void CommandGate::after(const char* line, int status) {
    holdBackIfClosed();
    --running_;
    const auto command = ToolCommand::parse(line);
    if (!command)
        return;
    if (command->changes())
        noteStatus(withoutLineEnd(line), status);
    try {
        if (CommandListener* listener = listener_)
            listener->ended(*command, status);
    } catch (const std::exception&) { // what cannot be told changes no answer
    }
}

void CommandGate::noteStatus(const std::string& line, int status) {
    const std::lock_guard lock(mutex_);
    const auto change = std::find_if(changes_.rbegin(), changes_.rend(), [&](const Change& candidate) {
        return !candidate.status && candidate.line == line;
    });
    if (change != changes_.rend())
        change->status = status;
}

std::vector<Change> CommandGate::changes() const {
    const std::lock_guard lock(mutex_);
    return changes_;
}

void CommandGate::permitRemoval(std::vector<std::string> names) {
    const std::lock_guard lock(mutex_);
    removable_ = std::move(names);
}

void CommandGate::holdBackIfClosed() {
    if (closed_)
        --running_;
    while (closed_)
        pause();
}

unsigned CommandGate::seen() {
    return commandsSeen;
}

void CommandGate::forgetRefusals() {
    refusal.clear();
}

void CommandGate::requireNoRefusal() {
    if (!refusal.empty())
        throw Failure(std::exchange(refusal, {}));
}
