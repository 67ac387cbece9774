// Clip planes, lights and the contour texture.
#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include "NRenderUtl/gl/nglclip.h"
#include "NRenderUtl/gl/nglrecord.h"
#include "NRenderUtl/host/nhost.h"
#include "NRenderUtl/mesh/nmesh.h"
#include "tests/support/glsnapshot.h"
#include "tests/support/gltest.h"

namespace {

using nrutest::GlSnapshot;
using NglStateGl = nrutest::GlTest;

/// What the clip callbacks were called for, with the flag that they saw.
std::string& clipLog() {
    static std::string log;
    return log;
}

int load() {
    clipLog() += nglClipPlanesLoaded() ? "load;" : "load, but marked unloaded;";
    return 41;
}

int unload() {
    clipLog() += nglClipPlanesLoaded() ? "unload, but marked loaded;" : "unload;";
    return 42;
}

template <class Scope>
void expectScope(const char* name, const char* onEntry, const char* onExit) {
    {
        const Scope scope;
        EXPECT_EQ(std::exchange(clipLog(), {}), onEntry) << name;
    }
    EXPECT_EQ(std::exchange(clipLog(), {}), onExit) << name;
}

} // namespace

TEST(NglClip, ScopesCallWhatIsRegistered) {
    EXPECT_EQ(ngl_load_clip_planes(), 0);
    EXPECT_FALSE(nglClipPlanesLoaded()) << "nobody loaded them";
    NglRegisterUnloadClipPlaneFunc(unload);
    NglRegisterUnloadClipPlaneFunc(nullptr);
    expectScope<NglLoadClipPlanes>("unload only", "", "unload;");
    expectScope<NglUnloadClipPlanes>("unload only", "unload;", "");
    NglRegisterLoadClipPlaneFunc(load);
    NglRegisterLoadClipPlaneFunc(nullptr);
    expectScope<NglLoadClipPlanes>("both", "load;", "unload;");
    expectScope<NglUnloadClipPlanes>("both", "unload;", "load;");
    EXPECT_EQ(ngl_load_clip_planes(), 41);
    EXPECT_EQ(ngl_unload_clip_planes(), 42);
}

TEST_F(NglStateGl, LightNumbersMapToThreeLights) {
    for (const auto& [number, light] :
         {std::pair{0, GL_LIGHT0}, {1, GL_LIGHT1}, {2, GL_LIGHT2}, {7, GL_LIGHT2}, {-1, GL_LIGHT2}}) {
        const GlSnapshot before = GlSnapshot::take();
        EXPECT_EQ(ngl_enable_given_light(number), 0);
        EXPECT_TRUE(glIsEnabled(light)) << number;
        EXPECT_EQ(ngl_disable_given_light(number), 1) << number;
        EXPECT_EQ(ngl_disable_given_light(number), 0) << number;
        EXPECT_TRUE(before.equals(GlSnapshot::take())) << number;
    }
}

TEST_F(NglStateGl, SwitchesReachGl) {
    const struct {
        void (*enable)();
        void (*disable)();
        GLenum state;
    } rows[] = {
        {ngl_enable_light, ngl_disable_light, GL_LIGHTING},
        {ngl_enable_depth_test, ngl_disable_depth_test, GL_DEPTH_TEST},
        {[] { NglWrapEnableTexture(GL_TEXTURE_1D); }, [] { NglWrapDisableTexture(GL_TEXTURE_1D); },
         GL_TEXTURE_1D},
        {[] { NglWrapEnableTexture(-5); }, [] { NglWrapDisableTexture(-5); }, GL_TEXTURE_2D},
    };
    for (const auto& row : rows)
        for (const bool on : {true, false}) {
            on ? row.enable() : row.disable();
            EXPECT_EQ(glIsEnabled(row.state), on) << row.state;
            EXPECT_EQ(ngl_is_light_enabled(), on && row.state == GL_LIGHTING);
            EXPECT_EQ(ngl_is_depth_test_enabled(), on && row.state == GL_DEPTH_TEST);
        }
    for (const unsigned int unit : {2u, static_cast<unsigned int>(GL_TEXTURE3)}) {
        NglSetActiveTextureUnit(unit);
        GLint active = 0;
        glGetIntegerv(GL_ACTIVE_TEXTURE, &active);
        EXPECT_EQ(active, unit == 2 ? GL_TEXTURE2 : GL_TEXTURE3);
    }
}

namespace {

RenderTextureAttributes& attributes() {
    static RenderTextureAttributes instance;
    return instance;
}

RenderTextureAttributes* provide(unsigned int unit, float a, float b) {
    return unit == 3 && a == 0.25f && b == 0.75f ? &attributes() : nullptr;
}

class ContourTextureGl : public nrutest::GlTest {
protected:
    /// A 2 x 1 texture, red then green, not interpolated.
    void makeTwoTexels() {
        const std::uint32_t texels[] = {0xFF0000FF, 0xFF00FF00};
        glGenTextures(1, &attributes().texture);
        NglWrapBindTexture(-1, attributes().texture);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 2, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, texels);
        for (GLenum filter : {GL_TEXTURE_MIN_FILTER, GL_TEXTURE_MAG_FILTER})
            glTexParameteri(GL_TEXTURE_2D, filter, GL_NEAREST);
        NglWrapBindTexture(-1, 0);
        glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE);
    }
    void SetUp() override {
        GlTest::SetUp();
        makeTwoTexels();
        attributes().minValue = 10;
        attributes().maxValue = 20;
        NglRegisterGetActiveTextureAttribProc(provide);
        NglSetActiveTextureInfo(3, 0.25f, 0.75f);
        ASSERT_EQ(NglGetActiveTextureInfo(), &attributes());
    }
};

std::string& messages() {
    static std::string text;
    return text;
}

} // namespace

TEST_F(ContourTextureGl, ValuesFindTheirTexel) {
    const GlSnapshot before = GlSnapshot::take();
    ASSERT_EQ(NglEnableTexture(-1), 1);
    for (const auto& [value, pixel] :
         {std::pair{10.1f, 0xFF0000FF}, {14.9f, 0xFF0000FF}, {15.1f, 0xFF00FF00}}) {
        NglWrapSetTextureColor(value, 0.5f);
        glRectf(-1, -1, 1, 1);
        EXPECT_EQ(nrutest::hex(read().at(5, 6)), nrutest::hex(pixel)) << value;
    }
    NglDisableTexture(-1);
    EXPECT_TRUE(before.equals(GlSnapshot::take(), {"texture matrix", "current texture coordinate"}));
}

TEST_F(ContourTextureGl, RecordAndGlGetOneTextureMatrix) {
    const struct {
        const char* name;
        float minValue, maxValue, scale, shift;
    } rows[] = {{"falling range", 20, 10, -0.1f, 2},
                {"no range", 10, 10, 1, -10},
                {"tiny range", 0, 1e-20f, 1e20f, 0}};
    for (const auto& row : rows) {
        attributes().minValue = row.minValue;
        attributes().maxValue = row.maxValue;
        ASSERT_EQ(NglEnableTexture(GL_TEXTURE_2D), 1);
        std::array<float, 16> live;
        glGetFloatv(GL_TEXTURE_MATRIX, live.data());
        const std::array<float, 16> expected{row.scale, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, row.shift, 0, 0, 1};
        for (int i = 0; i < 16; ++i)
            EXPECT_FLOAT_EQ(live[i], expected[i]) << row.name << " " << i;
        EXPECT_TRUE(std::equal(live.begin(), live.end(), &NglGetNglInfo()->textureMatrix[0][0])) << row.name;
    }
}

TEST_F(ContourTextureGl, WithoutTextureNothingChanges) {
    EXPECT_EQ(NglEnableTexture(GL_TRIANGLES), 0) << "not a target";
    EXPECT_GT(takeGlErrors(), 0);
    const GlSnapshot before = GlSnapshot::take();
    attributes().texture = 0;
    EXPECT_EQ(NglEnableTexture(-1), -1);
    NglSetActiveTextureInfo(4, 0.25f, 0.75f);
    EXPECT_EQ(NglEnableTexture(-1), -1) << "the provider had none";
    EXPECT_TRUE(before.equals(GlSnapshot::take()));
}

TEST_F(ContourTextureGl, AMissingProviderIsReportedEachTime) {
    NHostServices services{};
    services.message = [](void*, int, const char* text) { messages() += text; };
    NHostSetServices(&services);
    NglRegisterGetActiveTextureAttribProc(nullptr);
    EXPECT_EQ(NglGetActiveTextureInfo(), &attributes()) << "until it is asked again";
    const std::string text =
        "Texture attribute instance can not be realized, contour visualization may be impacted! "
        "Please check the use case and fix this";
    NglSetActiveTextureInfo(3, 0.25f, 0.75f);
    EXPECT_EQ(NglGetActiveTextureInfo(), nullptr);
    NglSetActiveTextureInfo(3, 0.25f, 0.75f);
    EXPECT_EQ(messages(), text + text);
}
