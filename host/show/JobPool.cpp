#include "JobPool.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

namespace {

class JobPool {
public:
    JobPool(std::size_t count, const std::function<void(std::size_t)>& work) : count_(count), work_(work) {}
    ~JobPool() { join(); }

    void run(std::size_t helpers) {
        helpers_.reserve(helpers);
        try {
            while (helpers_.size() < helpers)
                helpers_.emplace_back([this] { takeWork(); });
        } catch (const std::system_error&) {
            // With fewer threads it only takes longer.
        }
        takeWork();
        join();
        if (failure_)
            std::rethrow_exception(failure_);
    }

private:
    void takeWork() {
        for (std::size_t number = next_++; number < count_; number = next_++) {
            try {
                work_(number);
            } catch (...) {
                note(number);
            }
        }
    }

    void note(std::size_t number) {
        next_ = count_;
        const std::lock_guard lock(mutex_);
        if (!failure_ || number < failed_) {
            failure_ = std::current_exception();
            failed_ = number;
        }
    }

    void join() {
        for (std::thread& helper : helpers_)
            helper.join();
        helpers_.clear();
    }

    const std::size_t count_;
    const std::function<void(std::size_t)>& work_;
    std::atomic<std::size_t> next_{0};
    std::mutex mutex_;
    std::exception_ptr failure_;
    std::size_t failed_ = 0;
    std::vector<std::thread> helpers_;
};

} // namespace

void parallelFor(std::size_t count, unsigned jobs, const std::function<void(std::size_t)>& work) {
    const std::size_t most = std::min<std::size_t>(jobs, count);
    JobPool(count, work).run(most > 1 ? most - 1 : 0);
}
