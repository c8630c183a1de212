#include "Countdown.h"

#include <fmt/format.h>

#include "StatusLine.h"

using std::chrono::steady_clock;

bool Countdown::visible() {
    return StatusLine::visible();
}

Countdown::Countdown(std::string text, std::chrono::seconds duration)
    : text_(std::move(text)), end_(steady_clock::now() + duration) {
    if (visible())
        thread_ = std::thread([this] { count(); });
}

Countdown::~Countdown() {
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

void Countdown::count() {
    std::unique_lock lock(mutex_);
    for (auto now = steady_clock::now(); !stopped_ && now < end_; now = steady_clock::now()) {
        const auto left = std::chrono::ceil<std::chrono::seconds>(end_ - now);
        StatusLine::show(fmt::format("nrmpio: {} {} s", text_, left.count()).substr(0, StatusLine::width()));
        stop_.wait_until(lock, end_ - left + std::chrono::seconds(1));
    }
}
