// Clocks and checks of the benchmarks that draw frames themselves.
#pragma once

#include <algorithm>
#include <cstddef>
#include <ctime>
#include <stdexcept>
#include <vector>

/// Milliseconds of the wall clock and of the CPU in all threads.
struct Times {
    double wall = 0, cpu = 0;
};

inline double milliseconds(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) * 1e-6;
}

inline Times now() {
    return {milliseconds(CLOCK_MONOTONIC), milliseconds(CLOCK_PROCESS_CPUTIME_ID)};
}

inline Times since(const Times& start) {
    const Times end = now();
    return {end.wall - start.wall, end.cpu - start.cpu};
}

inline double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

inline void check(bool right, const char* what) {
    if (!right)
        throw std::runtime_error(what);
}
