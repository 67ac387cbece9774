// The capability table over drivers that lack a feature, pretended by the environment of a subprocess.
#include <cstdlib>
#include <tuple>

#include "NRenderUtl/host/hostgl.h"
#include "tests/support/gltest.h"
#include "tests/support/subprocess.h"

namespace {

std::string capabilities() {
    std::string bits;
    for (int n = 0; n < GLeeCapabilityCount; ++n)
        bits += GLeeEnabled(n) ? '1' : '0';
    return bits;
}

constexpr const char* kVersion = "MESA_GL_VERSION_OVERRIDE";
constexpr const char* kGlsl = "MESA_GLSL_VERSION_OVERRIDE";
constexpr const char* kExtensions = "MESA_EXTENSION_OVERRIDE";

constexpr const char* kGeometryExt = "+GL_EXT_geometry_shader4";
constexpr const char* kNoBuffers = "-GL_ARB_texture_buffer_object -GL_EXT_texture_buffer_object";
constexpr const char* kNoFramebuffers = "-GL_ARB_framebuffer_object -GL_EXT_framebuffer_object";

// What the environment makes of the driver, and its capabilities 0 to 8.
const std::tuple<const char*, nrutest::Environment, const char*> kDrivers[] = {
    {"Everything", {}, "111111111"},
    {"NoGeometryStage", {{kVersion, "3.1COMPAT"}}, "001111111"},
    {"ExtGeometryStage", {{kVersion, "3.1COMPAT"}, {kExtensions, kGeometryExt}}, "011111111"},
    // The version still claims texture buffers: only drawing with one can tell that they do not work.
    {"TextureBuffersClaimed", {{kVersion, "4.5COMPAT"}, {kExtensions, kNoBuffers}}, "111111111"},
    {"NoTextureBuffers", {{kVersion, "3.0COMPAT"}, {kGlsl, "150"}, {kExtensions, kNoBuffers}}, "001111110"},
    {"NoFramebufferObjects", {{kExtensions, kNoFramebuffers}}, "001000011"},
    {"OnlyTheExtFramebufferForm", {{kExtensions, "-GL_ARB_framebuffer_object"}}, "001010011"},
    {"OnlyTheCoreFramebufferForm", {{kExtensions, "-GL_EXT_framebuffer_object"}}, "111101111"},
    {"NoBufferObjects", {{kVersion, "1.4"}, {kExtensions, "-GL_ARB_vertex_buffer_object"}}, "000001001"},
    {"NoGlslObjects", {{kExtensions, "-GL_ARB_vertex_shader -GL_ARB_fragment_shader"}}, "000011011"},
    {"Glsl120", {{kVersion, "2.1"}, {kGlsl, "120"}}, "001011011"},
};

constexpr const char* kExpected = "NRUTEST_CAPABILITIES";
using GLInterface = nrutest::GlTest;

TEST_F(GLInterface, TellsWhatTheDriverHas) {
    if (const char* expected = std::getenv(kExpected)) {
        EXPECT_EQ(GLeeInit(), 0);
        EXPECT_EQ(capabilities(), expected) << glGetString(GL_VERSION);
        EXPECT_EQ(glVersion(), epoxy_gl_version());
        EXPECT_FALSE(GLeeEnabled(-1) || GLeeEnabled(GLeeCapabilityCount));
        return;
    }
    for (auto [name, environment, expected] : kDrivers) {
        SCOPED_TRACE(name);
        environment.emplace_back(kExpected, expected);
        nrutest::ranInSubprocess(environment);
    }
}

// The first GL call of this process: the loader must not abort it.
TEST(GLInterfaceWithoutContext, LeavesTheTableFalse) {
    GLeeInit();
    EXPECT_EQ(capabilities(), "000000000");
    nruview::OffscreenContext context;
    ASSERT_EQ(context.create(4, 4), "");
    EXPECT_TRUE(glContextIsCurrent());
    GLeeInit();
    context.destroy();
    EXPECT_FALSE(glContextIsCurrent());
    GLeeInit();
    EXPECT_EQ(capabilities(), "000000000");
}

} // namespace
