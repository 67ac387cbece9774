// The library stays mapped once it was loaded: callbacks and static state must not vanish under the host.
#include <dlfcn.h>

#include <gtest/gtest.h>

namespace {

TEST(Loading, TheLibraryOutlivesItsHandle) {
    void* library = dlopen(NRENDERUTL_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
    void* anchor = dlsym(library, "__localFnToKeepNRenderUtlDllLoaded");
    ASSERT_NE(anchor, nullptr) << dlerror();
    ASSERT_EQ(dlclose(library), 0) << dlerror();

    Dl_info info{};
    ASSERT_NE(dladdr(anchor, &info), 0) << "the library was unmapped";
    EXPECT_STREQ(info.dli_sname, "__localFnToKeepNRenderUtlDllLoaded");
    reinterpret_cast<void (*)()>(anchor)();
}

} // namespace
