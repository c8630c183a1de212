#include "Interruption.h"

#include <chrono>
#include <cstdlib>
#include <fmt/format.h>
#include <future>

#include "CommandGate.h"
#include "NrProcess.h"
#include "Output.h"
#include "StatusLine.h"

using namespace std::chrono_literals;

namespace {

/** Ends the wait of the thread when no interruption has come; no process is sent this one. */
constexpr int wakeUp = SIGUSR1;

/** @return Whether all commands had ended in time. */
bool signalUntilGone(const CommandGate& gate, int number, std::chrono::milliseconds longest) {
    const auto end = std::chrono::steady_clock::now() + longest;
    while (NrProcess::signalAll(number) != 0 || gate.running() != 0) {
        if (std::chrono::steady_clock::now() >= end)
            return false;
        std::this_thread::sleep_for(20ms);
    }
    return true;
}

void tellWhatWasUnderWay(const CommandGate& gate) {
    const auto changes = gate.changes();
    if (!changes.empty() && !gate.rehearses())
        tell(fmt::format("interrupted while {}: nrmpio show tells what is left",
                         changes.back().command.doing()));
}

/** Waits no longer for standard error than for a command: its reader may have stopped. */
void sayGoodbye(const CommandGate& gate) {
    std::promise<void> told;
    const auto end = told.get_future();
    try {
        std::thread([&gate, told = std::move(told)]() mutable {
            StatusLine::close();
            tellWhatWasUnderWay(gate);
            told.set_value();
        }).detach();
        end.wait_for(2s);
    } catch (const std::system_error&) {
        // Without a thread, no word.
    }
}

} // namespace

Interruption::Interruption(CommandGate& gate) : gate_(gate) {
    sigemptyset(&signals_);
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction action {};
        sigaction(number, nullptr, &action);
        if (action.sa_handler != SIG_IGN)
            sigaddset(&signals_, number);
    }
    sigaddset(&signals_, wakeUp);
    pthread_sigmask(SIG_BLOCK, &signals_, &blockedBefore_);
    thread_ = std::thread([this] { await(); });
}

Interruption::~Interruption() {
    over_ = true;
    pthread_kill(thread_.native_handle(), wakeUp);
    thread_.join();
    pthread_sigmask(SIG_SETMASK, &blockedBefore_, nullptr);
}

void Interruption::await() {
    int number = 0;
    while (!over_)
        if (sigwait(&signals_, &number) == 0 && number != wakeUp)
            end(number);
}

void Interruption::end(int number) {
    gate_.close();
    if (!signalUntilGone(gate_, number, 2s))
        signalUntilGone(gate_, SIGKILL, 2s);
    sayGoodbye(gate_);
    pthread_sigmask(SIG_UNBLOCK, &signals_, nullptr);
    raise(number);
    std::_Exit(128 + number); // not reached: nobody handles it
}
