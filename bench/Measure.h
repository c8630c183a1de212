/* Taking ratios: two ways of doing one thing in turns, so that whatever else the machine does falls
 * on both. */
#ifndef MEASURE_H
#define MEASURE_H

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <vector>

inline void require(bool condition, const std::string& what) {
    if (!condition)
        throw std::runtime_error(what);
}

/** In seconds. */
template <typename Function>
double timeOf(Function&& run) {
    using Clock = std::chrono::steady_clock;
    const auto start = Clock::now();
    run();
    return std::chrono::duration<double>(Clock::now() - start).count();
}

/** The value that the given share of all values, 0 to 1, is below. */
inline double quantile(std::vector<double> values, double share) {
    const auto place =
        values.begin() + static_cast<std::ptrdiff_t>(static_cast<double>(values.size() - 1) * share);
    std::nth_element(values.begin(), place, values.end());
    return *place;
}

inline double median(std::vector<double> values) {
    return quantile(std::move(values), 0.5);
}

/** Of times: what a busy machine adds falls on the other three quarters. */
inline double lowerQuartile(std::vector<double> values) {
    return quantile(std::move(values), 0.25);
}

/** The median of what `run` costs by what `base` costs, pair by pair; who goes first alternates. */
template <typename Function, typename Base>
double ratioOf(Function&& run, Base&& base, int pairs) {
    std::vector<double> ratios;
    for (int i = 0; i < pairs; ++i) {
        const double before = i % 2 == 0 ? timeOf(base) : 0;
        const double own = timeOf(run);
        ratios.push_back(own / (i % 2 == 0 ? before : timeOf(base)));
    }
    return median(ratios);
}

/** One line for bench/report: section, what, ratio, the limit that it should keep (0: none). */
inline void tell(const char* section, const std::string& what, double ratio, double limit = 0) {
    std::printf("%s\t%s\t%.4f\t%g\n", section, what.c_str(), ratio, limit);
    std::fflush(stdout);
}

#endif
