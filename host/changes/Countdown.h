/* A line on the terminal that counts seconds down. */
#ifndef COUNTDOWN_H
#define COUNTDOWN_H

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

/**
 * While it lives, and until the time is over, standard error shows "nrmpio: TEXT N s", written
 * anew each second; the line is gone afterwards. Where standard error is no terminal, or the log
 * may go there, nothing is shown.
 */
class Countdown {
public:
    Countdown(std::string text, std::chrono::seconds duration);
    ~Countdown();
    Countdown(const Countdown&) = delete;
    Countdown& operator=(const Countdown&) = delete;

    /** Whether one would be seen. */
    static bool visible();

private:
    void count();

    const std::string text_;
    const std::chrono::steady_clock::time_point end_;
    std::mutex mutex_;
    std::condition_variable stop_;
    bool stopped_ = false;
    std::thread thread_;
};

#endif
