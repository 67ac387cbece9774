// A snapshot of the compatibility GL state, to prove that a drawing function leaves it as it found it.
#pragma once

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "viewer/contract/glstate.h"

namespace nrutest {

/// Values of the state in named groups, as nruview::GlState has them.
class GlSnapshot {
public:
    static GlSnapshot take() { return GlSnapshot(nruview::GlState::take()); }
    /// Success when both hold the same values but for the groups excepted; the failure lists what differs.
    ::testing::AssertionResult equals(const GlSnapshot& other,
                                      const std::vector<std::string>& except = {}) const;

private:
    explicit GlSnapshot(nruview::GlState state) : m_state(std::move(state)) {}
    nruview::GlState m_state;
};

} // namespace nrutest
