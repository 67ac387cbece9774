// Clocks and checks of the benchmarks that draw frames themselves.
#pragma once

#include <malloc.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <ctime>
#include <stdexcept>
#include <string>
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

/// Runs a benchmark's cases, named by the program's argument; what goes wrong is told and ends it with 1. The
/// process keeps the memory that it has once had, as GL drivers in software free and take tens of megabytes
/// in each frame.
template <class Run>
int runBenchmark(int count, char** arguments, const Run& run) {
    mallopt(M_TRIM_THRESHOLD, 1 << 30);
    mallopt(M_MMAP_THRESHOLD, 1 << 30);
    try {
        run(std::string(count > 1 ? arguments[1] : ""));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s: %s\n", arguments[0], error.what());
        return 1;
    }
    return 0;
}

inline void check(bool right, const char* what) {
    if (!right)
        throw std::runtime_error(what);
}
