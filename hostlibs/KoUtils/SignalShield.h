/* Keeps a failing write from killing the process. */
#ifndef SIGNALSHIELD_H
#define SIGNALSHIELD_H

#include <csignal>
#include <ctime>

/**
 * While it lives, a write of this thread to a broken pipe or beyond the file size limit only fails:
 * the signals that the kernel sends the thread for it are held back and removed.
 */
class SignalShield {
public:
    SignalShield() {
        sigset_t pending;
        sigpending(&pending);
        sigemptyset(&mine_);
        for (const int signal : {SIGPIPE, SIGXFSZ})
            if (!sigismember(&pending, signal)) // one that was there before is not ours to remove
                sigaddset(&mine_, signal);
        pthread_sigmask(SIG_BLOCK, &mine_, &before_);
    }
    ~SignalShield() {
        const timespec atOnce{};
        while (sigtimedwait(&mine_, nullptr, &atOnce) > 0) {
        }
        pthread_sigmask(SIG_SETMASK, &before_, nullptr);
    }
    SignalShield(const SignalShield&) = delete;
    SignalShield& operator=(const SignalShield&) = delete;

private:
    sigset_t mine_, before_;
};

#endif
