#include "Interruption.h"

#include <chrono>
#include <cstdlib>
#include <fmt/format.h>

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
    StatusLine::close();
    if (!signalUntilGone(gate_, number, 2s))
        signalUntilGone(gate_, SIGKILL, 2s);
    tellWhatWasUnderWay(gate_);
    sigset_t only;
    sigemptyset(&only);
    sigaddset(&only, number);
    pthread_sigmask(SIG_UNBLOCK, &only, nullptr);
    raise(number);
    std::_Exit(128 + number); // not reached: nobody handles it
}
