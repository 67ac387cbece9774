// A snapshot of the compatibility GL state, to prove that a drawing function leaves it as it found it.
#pragma once

#include <array>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace nrutest {

/// Values of the state in named groups: enables, masks, blending, program, buffers, textures of units in use,
/// matrices and stack depths, client arrays, attribute stacks, pixel store, current colour, normal and
/// texture coordinate, point and line size, shade and light model.
class GlSnapshot {
public:
    static GlSnapshot take();
    /// Success when both hold the same values but for the groups excepted; the failure lists what differs.
    ::testing::AssertionResult equals(const GlSnapshot& other,
                                      const std::vector<std::string>& except = {}) const;

private:
    /// By group and query; zeros stand behind a query's own values.
    std::map<std::pair<std::string, unsigned>, std::array<double, 16>> m_values;
};

} // namespace nrutest
