/* What happens on SIGINT, SIGTERM and SIGHUP. */
#ifndef INTERRUPTION_H
#define INTERRUPTION_H

#include <atomic>
#include <csignal>
#include <thread>

class CommandGate;

/**
 * While it lives, these signals end the process in an orderly way: the gate closes, the commands
 * that run receive the signal, and those still there after two seconds SIGKILL; a change that was
 * under way is told; and the process ends by the same signal. Commands run in process groups of
 * their own, and would be left behind otherwise. A signal that the caller ignores stays ignored.
 *
 * The signals are blocked in the thread that makes it, and so in those that this one makes later.
 */
class Interruption {
public:
    explicit Interruption(CommandGate& gate);
    ~Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

private:
    void await();
    [[noreturn]] void end(int number);

    CommandGate& gate_;
    sigset_t signals_{};
    sigset_t blockedBefore_{};
    std::atomic<bool> over_{false};
    std::thread thread_;
};

#endif
