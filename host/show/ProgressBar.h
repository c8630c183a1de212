/* How far a long work has come. */
#ifndef PROGRESSBAR_H
#define PROGRESSBAR_H

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

/**
 * While it lives, and from its second second on, the status line shows a bar; the line is gone
 * afterwards. Where no status line would be seen, nothing is shown.
 */
class ProgressBar {
public:
    /** @param what is counted, such as "maps". @param total at least one. */
    ProgressBar(std::string what, std::size_t total);
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    /** One more is done. Any thread may say so. */
    void advance() { ++done_; }

private:
    void draw();
    std::string text() const;

    const std::string what_;
    const std::size_t total_;
    std::atomic<std::size_t> done_{0};
    std::mutex mutex_;
    std::condition_variable stop_;
    bool stopped_ = false;
    std::thread thread_;
};

#endif
