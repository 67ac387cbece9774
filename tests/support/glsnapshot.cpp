#include "tests/support/glsnapshot.h"

#include <algorithm>

namespace nrutest {

::testing::AssertionResult GlSnapshot::equals(const GlSnapshot& other,
                                              const std::vector<std::string>& except) const {
    ::testing::AssertionResult result = ::testing::AssertionSuccess();
    for (const nruview::GlStateChange& change : m_state.changesTo(other.m_state)) {
        if (std::find(except.begin(), except.end(), change.key.group) != except.end())
            continue;
        result = result ? ::testing::AssertionFailure() << "GL state differs:" : result;
        result << "\n  " << change.text();
    }
    return result;
}

} // namespace nrutest
