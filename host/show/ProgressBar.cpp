#include "ProgressBar.h"

#include <algorithm>
#include <chrono>
#include <fmt/format.h>

#include "Printable.h"
#include "StatusLine.h"

using namespace std::chrono_literals;

ProgressBar::ProgressBar(std::string what, std::size_t total) : what_(std::move(what)), total_(total) {
    if (StatusLine::visible())
        thread_ = std::thread([this] { draw(); });
}

ProgressBar::~ProgressBar() {
    if (!thread_.joinable())
        return;
    {
        const std::lock_guard lock(mutex_);
        stopped_ = true;
    }
    stop_.notify_one();
    thread_.join();
    StatusLine::show("");
}

void ProgressBar::draw() {
    std::unique_lock lock(mutex_);
    for (auto next = 1000ms; !stop_.wait_for(lock, next, [this] { return stopped_; }); next = 100ms)
        StatusLine::show(text());
}

/** "[####      ] 12 of 30 maps"; without the bar, or only its beginning, where there is no room. */
std::string ProgressBar::text() const {
    constexpr std::size_t widest = 40;
    const std::size_t width = StatusLine::width();
    const std::size_t done = done_;
    const std::string count = fmt::format("{} of {} {}", done, total_, what_);
    if (width < count.size() + 8)
        return count.substr(0, width);
    const std::size_t bar = std::min(widest, width - count.size() - 3);
    const std::size_t full = bar * done / total_;
    const char* const block = localeCharacterSet() == CharacterSet::utf8 ? "\u2588" : "#";
    std::string blocks;
    for (std::size_t i = 0; i < full; ++i)
        blocks += block;
    return "[" + blocks + std::string(bar - full, ' ') + "] " + count;
}
