// Start-up on drivers that lack something or fail: what it says, which switches and programs remain, and the
// GL state it leaves. A process starts up once, so every row is a process of its own.
#include <epoxy/egl.h>

#include <cstring>

#include "NRenderUtl/gl/ngl.h"
#include "NRenderUtl/shaders/texturebufferprobe.h"
#include "tests/shaders/testprogram.h"
#include "tests/support/glsnapshot.h"
#include "tests/support/subprocess.h"
#include "viewer/contract/hoststates.h"
#include "viewer/contract/resetstate.h"

using namespace nrutest;

namespace {

constexpr const char* kOldCard =
    "1 \nPlease update your graphic card to benefit from our optimized rendering\n\n";
constexpr const char* kNoSmooth =
    "1 \nPlease update your graphic card to benefit from our optimized smooth shaded rendering\n\n";
constexpr const char* kOldDriver =
    "1 \nPlease update your graphic card driver to benefit from our optimized rendering\n\n";
constexpr const char* kSmoothOff = "2 \nOptimized smooth shaded rendering is disabled\n\n";
constexpr const char* kOff = "2 \nOptimized rendering is disabled\n\n";
constexpr const char* kOn = "2 \nOptimized rendering is enabled\n\n";

// --- faults: entry points replaced by others that fail -----------------------------------------------------

/// The driver's own entry point: the loader's would put itself back in the first call.
template <class Function>
Function driver(Function, const char* name) {
    return reinterpret_cast<Function>(eglGetProcAddress(name));
}

/// The programs are linked in the order probe, then types 1 to 4.
template <int number>
void failLink() {
    epoxy_glLinkProgram = [](GLuint program) {
        static int count = 0;
        if (count++ != number)
            driver(epoxy_glLinkProgram, "glLinkProgram")(program);
    };
}

template <int size>
void failBuffer() {
    epoxy_glGetBufferParameteriv = [](GLenum target, GLenum query, GLint* value) {
        driver(epoxy_glGetBufferParameteriv, "glGetBufferParameteriv")(target, query, value);
        *value -= *value == size;
    };
}

void failFramebuffer() {
    epoxy_glCheckFramebufferStatusEXT = [](GLenum) -> GLenum { return GL_FRAMEBUFFER_UNSUPPORTED; };
}

/// The last texel of a texture buffer is read wrong.
void spoilTexel() {
    epoxy_glBufferData = [](GLenum target, GLsizeiptr size, const void* data, GLenum usage) {
        std::vector<std::uint8_t> bytes(static_cast<std::size_t>(size));
        std::memcpy(bytes.data(), data, bytes.size());
        if (target == GL_TEXTURE_BUFFER)
            ++bytes.back();
        driver(epoxy_glBufferData, "glBufferData")(target, size, bytes.data(), usage);
    };
}

void spoilTexelUnseen() {
    spoilTexel();
    failFramebuffer();
}

// --- rows --------------------------------------------------------------------------------------------------

struct StartUp {
    const char* name;
    std::string messages;
    std::string result; ///< switches (fast renderer, geometry stages, optimized SPH) and valid programs
    void (*fault)() = nullptr;
    Environment environment = {};
    int pushed = 0; ///< attributes left on the stack
};

void PrintTo(const StartUp& row, std::ostream* out) {
    *out << row.name;
}

const std::pair<std::string, std::string>
    kNoShaders = {"MESA_EXTENSION_OVERRIDE", "-GL_ARB_vertex_shader -GL_ARB_fragment_shader"},
    kNoGeometry = {"MESA_GL_VERSION_OVERRIDE", "3.1COMPAT"},
    kGeometryClaimed = {"MESA_EXTENSION_OVERRIDE", "+GL_EXT_geometry_shader4"},
    kBuffersClaimed = {"MESA_GL_VERSION_OVERRIDE", "4.5COMPAT"},
    kNoBuffers = {"MESA_EXTENSION_OVERRIDE", "-GL_ARB_texture_buffer_object -GL_EXT_texture_buffer_object"},
    kModeOff = {"NU_RENDERING_MODE", "1"}, kModeOn = {"NU_RENDERING_MODE", "2"},
    kNoSph = {"DISPLAY_OPTIMIZED_SPH", "0"};

const StartUp kRows[] = {
    {"EverythingWorks", kOn, "111 1234"},
    {"NoShaders", kOldCard, "001 ", nullptr, {kNoShaders}},
    {"NoGeometryStages", std::string(kNoSmooth) + kOn, "101 14", nullptr, {kNoGeometry}},
    {"GeometryExtensionClaimed", kOn, "111 1234", nullptr, {kGeometryClaimed}},
    {"TextureBuffersClaimed", kOldDriver, "001 ", nullptr, {kBuffersClaimed, kNoBuffers}},
    {"ModeOff", kOn, "001 14", nullptr, {kModeOff}},
    {"ModeOffWithoutGeometryStages", kOn, "001 14", nullptr, {kModeOff, kNoGeometry}},
    {"ModeOn", kOn, "110 1234", nullptr, {kModeOn, kNoSph}},
    {"ProbeDoesNotLink", kOldDriver, "001 ", failLink<0>},
    {"MeshProgramFails", kOff, "001 ", failLink<1>},
    {"TriangleProgramFails", std::string(kSmoothOff) + kOn, "101 134", failLink<2>},
    {"QuadProgramFails", std::string(kSmoothOff) + kOn, "101 124", failLink<3>},
    {"PointProgramFails", kOff, "110 123", failLink<4>},
    {"WrongTexel", kOldDriver, "001 ", spoilTexel},
    {"WrongTexelUnseenWithoutFramebuffer", kOn, "111 1234", spoilTexelUnseen},
    {"TextureBufferTooSmall", kOldDriver, "001 ", failBuffer<5>},
    {"VertexBufferTooSmall", kOldDriver, "001 ", failBuffer<48>, {}, 1},
    {"IndexBufferTooSmall", kOldDriver, "001 ", failBuffer<16>, {}, 1},
};

class StartUpRow : public GlTest, public ::testing::WithParamInterface<StartUp> {};

std::string result() {
    std::string text;
    for (int value : {IsFastRendererEnabled(), IsGeometryShaderRenderingEnabled(), CanUseOptimizedSPH()})
        text += std::to_string(value);
    text += " ";
    for (int type = RenderShaderMesh; type <= RenderShaderPoints; ++type)
        if (RenderingGetShaderProgram(_RenderingShaderType(type))->IsProgramValid())
            text += std::to_string(type);
    return text;
}

TEST_P(StartUpRow, DecidesOnce) {
    const StartUp& row = GetParam();
    if (!row.environment.empty() && ranInSubprocess(row.environment))
        return;
    captureHostLog();
    NglInitGLExtensions();
    NglUpdateNglInfo();
    InitRenderDefaults();
    if (row.fault)
        row.fault();
    EXPECT_EQ(RenderingInitShaders(), 0);
    EXPECT_EQ(hostLog(), row.messages);
    EXPECT_EQ(result(), row.result);
    EXPECT_EQ(IsSphereShaderRenderingEnabled(), 0);
    EXPECT_EQ(integer(GL_ATTRIB_STACK_DEPTH), row.pushed);
    EXPECT_EQ(living(glIsBuffer) + living(glIsTexture), 0) << "the probe left something behind";
    const bool refused = row.environment == Environment{kBuffersClaimed, kNoBuffers};
    EXPECT_EQ(takeGlErrors() > 0, refused) << "only a driver that refuses what it claims may complain";

    hostLog().clear();
    SetUserDefinedFastRenderingMode(7);
    InitRenderDefaults(); // once only: the host's own stays
    EXPECT_EQ(RenderingInitShaders(), 0);
    EXPECT_EQ(hostLog(), "");
    EXPECT_EQ(IsFastRendererEnabled(), 7);
}

INSTANTIATE_TEST_SUITE_P(Driver, StartUpRow, ::testing::ValuesIn(kRows),
                         [](const auto& row) { return row.param.name; });

class StartUpGl : public GlTest {
protected:
    void SetUp() override {
        GlTest::SetUp();
        captureHostLog();
        NglInitGLExtensions();
        NglUpdateNglInfo();
    }
};

TEST_F(StartUpGl, ProbeLeavesTheHostsStateAndIsNotSpoiltByIt) {
    const nruview::HostObjects objects;
    for (const nruview::HostState& state : nruview::hostStates()) {
        // Nothing can be drawn.
        if (state.end || state.name == "rasterizer discard" || state.name.starts_with("render mode"))
            continue;
        SCOPED_TRACE(state.name);
        state.set(objects);
        const GlSnapshot before = GlSnapshot::take();
        EXPECT_TRUE(TextureBufferProbe().run(GL_RGBA8UI));
        EXPECT_TRUE(before.equals(GlSnapshot::take()));
        nruview::resetState();
    }
}

TEST_F(StartUpGl, ProbeReadsEveryTexelFormat) {
    const GLenum formats[] = {GL_R8UI, GL_R32F, GL_R32I, GL_RGBA8UI};
    for (GLenum format : formats)
        EXPECT_TRUE(TextureBufferProbe().run(format)) << hex(format);
    spoilTexel();
    for (GLenum format : formats)
        EXPECT_FALSE(TextureBufferProbe().run(format)) << hex(format);
}

} // namespace
