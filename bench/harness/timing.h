// Clocks, memory and the spread of samples.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <ctime>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace nrubench {

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

/// Lower quartile, median and upper quartile of at least one value.
inline std::array<double, 3> quartiles(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    const auto at = [&](std::size_t quarter) { return values[(values.size() - 1) * quarter / 4]; };
    return {at(1), at(2), at(3)};
}

/// A line of /proc/self/status, such as VmRSS or VmHWM, in megabytes.
inline double statusMegabytes(const std::string& key) {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with(key + ":"))
            return std::stod(line.substr(key.size() + 1)) * 1024 / 1e6;
    return 0;
}

inline void check(bool right, const char* what) {
    if (!right)
        throw std::runtime_error(what);
}

} // namespace nrubench
