// A snapshot of the compatibility GL state, to prove that a drawing function leaves it as it found it.
#pragma once

#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace nrutest {

/// Named values of the state: enables, masks, blending, program, buffers, textures of units in use, matrices
/// and stack depths, client arrays, attribute stacks, pixel store, current colour, normal and texture
/// coordinate, point and line size, shade and light model.
class GlSnapshot {
public:
    static GlSnapshot take();
    /// Success when both hold the same values but for the named exceptions; the failure lists what differs.
    ::testing::AssertionResult equals(const GlSnapshot& other,
                                      const std::vector<std::string>& except = {}) const;

private:
    std::map<std::string, std::vector<double>> m_values;
};

} // namespace nrutest
