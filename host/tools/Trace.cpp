#include "Trace.h"

#include <chrono>
#include <fmt/format.h>

#include "NrProcess.h"
#include "Output.h"

using Clock = std::chrono::steady_clock;

/** A thread runs one command at a time. */
static thread_local Clock::time_point started;

Trace::Trace(CommandWatch& watch) : watch_(watch) {
    NrProcess::setWatch(this);
}

Trace::~Trace() {
    NrProcess::setWatch(&watch_);
}

std::optional<CommandAnswer> Trace::before(const char* command) {
    auto answer = watch_.before(command);
    if (answer)
        tell(fmt::format("not run: {}", escaped(command)));
    started = Clock::now();
    return answer;
}

void Trace::after(const char* command, int status) {
    const auto elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - started);
    tell(fmt::format("status {} after {} ms: {}", status, elapsed.count(), escaped(command)));
    watch_.after(command, status);
}
