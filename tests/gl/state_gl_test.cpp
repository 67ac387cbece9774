// Clip planes, lights and the contour texture.
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

/// What the callbacks were called for, with the flag that they saw.
std::string& clipLog() {
    static std::string log;
    return log;
}

int load() {
    clipLog() += nglClipPlanesLoaded() ? "load while loaded;" : "load while unloaded;";
    return 41;
}

int unload() {
    clipLog() += nglClipPlanesLoaded() ? "unload while loaded;" : "unload while unloaded;";
    return 42;
}

std::string taken() {
    return std::exchange(clipLog(), {});
}

template <class Scope>
void expectScope(const char* name, const std::string& onEntry, const std::string& onExit) {
    {
        const Scope scope;
        EXPECT_EQ(taken(), onEntry) << name;
    }
    EXPECT_EQ(taken(), onExit) << name;
}

constexpr const char* kLoad = "load while loaded;";
constexpr const char* kUnload = "unload while unloaded;";

} // namespace

TEST(NglClip, ScopesCallWhatIsRegistered) {
    EXPECT_EQ(ngl_load_clip_planes(), 0);
    EXPECT_FALSE(nglClipPlanesLoaded()) << "nobody loaded them";
    expectScope<NglLoadClipPlanes>("none", "", "");
    NglRegisterUnloadClipPlaneFunc(unload);
    NglRegisterUnloadClipPlaneFunc(nullptr);
    expectScope<NglLoadClipPlanes>("unload only", "", kUnload);
    expectScope<NglUnloadClipPlanes>("unload only", kUnload, "");
    NglRegisterLoadClipPlaneFunc(load);
    NglRegisterLoadClipPlaneFunc(nullptr);
    expectScope<NglLoadClipPlanes>("both", kLoad, kUnload);
    expectScope<NglUnloadClipPlanes>("both", kUnload, kLoad);
    EXPECT_TRUE(nglClipPlanesLoaded());
    EXPECT_EQ(ngl_load_clip_planes(), 41);
    EXPECT_EQ(ngl_unload_clip_planes(), 42);
    EXPECT_FALSE(nglClipPlanesLoaded());
}

TEST(NglClip, AScopeWithoutUnloadLeavesThePlanesLoaded) {
    NglRegisterLoadClipPlaneFunc(load);
    expectScope<NglUnloadClipPlanes>("load only", "", kLoad);
    expectScope<NglLoadClipPlanes>("load only", kLoad, "");
    EXPECT_TRUE(nglClipPlanesLoaded());
}

TEST_F(NglStateGl, LightNumbersMapToThreeLights) {
    const struct {
        int number;
        GLenum light;
    } rows[] = {{0, GL_LIGHT0}, {1, GL_LIGHT1}, {2, GL_LIGHT2}, {7, GL_LIGHT2}, {-1, GL_LIGHT2}};
    for (const auto& row : rows) {
        const GlSnapshot before = GlSnapshot::take();
        EXPECT_EQ(ngl_enable_given_light(row.number), 0);
        EXPECT_TRUE(glIsEnabled(row.light)) << row.number;
        EXPECT_EQ(ngl_disable_given_light(row.number), 1) << row.number;
        EXPECT_EQ(ngl_disable_given_light(row.number), 0) << row.number;
        EXPECT_TRUE(before.equals(GlSnapshot::take())) << row.number;
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

/// A 2 x 1 texture, red then green, not interpolated.
GLuint twoTexels() {
    const std::array<std::uint32_t, 2> texels{0xFF0000FF, 0xFF00FF00};
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 2, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, texels.data());
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glBindTexture(GL_TEXTURE_2D, 0);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE);
    return texture;
}

class ContourTextureGl : public nrutest::GlTest {
protected:
    void SetUp() override {
        GlTest::SetUp();
        attributes().texture = twoTexels();
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

void onMessage(void*, int, const char* text) {
    messages() += text;
}

} // namespace

TEST_F(ContourTextureGl, ValuesFindTheirTexel) {
    const GlSnapshot before = GlSnapshot::take();
    ASSERT_EQ(NglEnableTexture(-1), 1);
    const struct {
        float value;
        std::uint32_t pixel;
    } rows[] = {{10.1f, 0xFF0000FF}, {14.9f, 0xFF0000FF}, {15.1f, 0xFF00FF00}, {19.9f, 0xFF00FF00}};
    for (const auto& row : rows) {
        NglWrapSetTextureColor(row.value, 0.5f);
        glRectf(-1, -1, 1, 1);
        EXPECT_EQ(nrutest::hex(read().at(5, 6)), nrutest::hex(row.pixel)) << row.value;
    }
    NglDisableTexture(-1);
    EXPECT_TRUE(before.equals(GlSnapshot::take(), {"texture matrix", "current texture coordinate"}));
}

TEST_F(ContourTextureGl, RecordAndGlGetOneTextureMatrix) {
    const struct {
        const char* name;
        float minValue, maxValue, scale, shift;
    } rows[] = {{"range", 10, 20, 0.1f, -1},
                {"falling range", 20, 10, -0.1f, 2},
                {"no range", 10, 10, 1, -10},
                {"tiny range", 0, 1e-20f, 1e20f, 0}};
    for (const auto& row : rows) {
        attributes().minValue = row.minValue;
        attributes().maxValue = row.maxValue;
        ASSERT_EQ(NglEnableTexture(GL_TEXTURE_2D), 1);
        std::array<float, 16> live;
        glGetFloatv(GL_TEXTURE_MATRIX, live.data());
        std::array<float, 16> expected{row.scale, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, row.shift, 0, 0, 1};
        for (int i = 0; i < 16; ++i) {
            EXPECT_FLOAT_EQ(live[i], expected[i]) << row.name << " " << i;
            EXPECT_FLOAT_EQ((&NglGetNglInfo()->textureMatrix[0][0])[i], expected[i]) << row.name << " " << i;
        }
        GLint mode = 0;
        glGetIntegerv(GL_MATRIX_MODE, &mode);
        EXPECT_EQ(mode, GL_MODELVIEW);
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
    services.message = onMessage;
    NHostSetServices(&services);
    NglRegisterGetActiveTextureAttribProc(nullptr);
    EXPECT_EQ(NglGetActiveTextureInfo(), &attributes()) << "until it is asked again";
    NglSetActiveTextureInfo(3, 0.25f, 0.75f);
    EXPECT_EQ(NglGetActiveTextureInfo(), nullptr);
    const std::string text =
        "Texture attribute instance can not be realized, contour visualization may be impacted! "
        "Please check the use case and fix this";
    EXPECT_EQ(messages(), text);
    NglSetActiveTextureInfo(3, 0.25f, 0.75f);
    EXPECT_EQ(messages(), text + text);
}

TEST_F(NglStateGl, UnitsAndTargetsReachGl) {
    for (unsigned int unit : {2u, static_cast<unsigned int>(GL_TEXTURE2)}) {
        NglSetActiveTextureUnit(0);
        NglSetActiveTextureUnit(unit);
        GLint active = 0;
        glGetIntegerv(GL_ACTIVE_TEXTURE, &active);
        EXPECT_EQ(active, GL_TEXTURE2);
    }
    NglWrapEnableTexture(GL_TEXTURE_1D);
    NglWrapEnableTexture(-5);
    EXPECT_TRUE(glIsEnabled(GL_TEXTURE_1D) && glIsEnabled(GL_TEXTURE_2D));
    NglWrapDisableTexture(-5);
    EXPECT_TRUE(glIsEnabled(GL_TEXTURE_1D) && !glIsEnabled(GL_TEXTURE_2D));
}
