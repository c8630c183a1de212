// The function that an interposed one stands before.
#pragma once

#include <atomic>

#include <dlfcn.h>

namespace sim {

/// The C library's own function of a name, or that of a library between.
template <typename Function>
class Next {
public:
    constexpr explicit Next(const char* name) : name_(name) {}

    template <typename... Arguments>
    auto operator()(Arguments... arguments) {
        Function* function = found_.load(std::memory_order_relaxed);
        if (function == nullptr) {
            function = reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name_));
            found_.store(function, std::memory_order_relaxed);
        }
        return function(arguments...);
    }

private:
    const char* name_;
    std::atomic<Function*> found_{nullptr};
};

} // namespace sim
