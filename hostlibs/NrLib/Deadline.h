/* A point on the monotonic clock. */
#ifndef DEADLINE_H
#define DEADLINE_H

#include <algorithm>
#include <chrono>
#include <climits>

class Deadline {
public:
    using Clock = std::chrono::steady_clock;

    /** Never, when the duration is not positive. */
    static Deadline in(std::chrono::milliseconds duration) {
        return Deadline(duration.count() > 0 ? Clock::now() + duration : Clock::time_point::max());
    }

    bool passed() const { return at_ != Clock::time_point::max() && Clock::now() >= at_; }

    /** As poll(2) takes it: milliseconds, rounded up, or -1 for no end. */
    int pollTimeout() const {
        return at_ == Clock::time_point::max() ? -1 : pollTimeout(std::chrono::milliseconds(INT_MAX));
    }

    /** The same, but no longer than atMost. */
    int pollTimeout(std::chrono::milliseconds atMost) const {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(at_ - Clock::now());
        return static_cast<int>(std::clamp(left, std::chrono::milliseconds(0), atMost).count());
    }

private:
    explicit Deadline(Clock::time_point at) : at_(at) {}
    Clock::time_point at_;
};

#endif
