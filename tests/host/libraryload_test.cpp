// The library's attachment to its process: it complains only when it is detached too early.
#include <gtest/gtest.h>

#include "NRenderUtl/host/hostutl.h"
#include "tests/support/subprocess.h"

namespace {

// The two ways into a process end it with the warning on: the library's destructor must know the reason. The
// host that loads it closes its handle before that: the library stays.
TEST(LibraryProcessEnd, IsNoUnload) {
    NHostEnableUnloadWarning(true);
    ::testing::internal::CaptureStderr();
    hostLibraryDetach(false);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(),
              "'NRenderUtl' dll is getting unloaded with application still running!\n");
    for (const std::vector<std::string>& host :
         {std::vector<std::string>{LINKED_HOST}, {LOADING_HOST, SHARED_LIBRARY}}) {
        const nrutest::ProcessResult result = nrutest::runProgram(host);
        EXPECT_EQ(result.exitCode, 3) << host[0];
        EXPECT_EQ(result.output, "end of main\n") << host[0];
    }
}

} // namespace
