// Clip planes, lights and the contour texture.
#include <utility>

#include "NRenderUtl/gl/nglclip.h"
#include "NRenderUtl/host/nhost.h"
#include "NRenderUtl/mesh/nmesh.h"
#include "tests/gl/testgl.h"

using namespace nrutest;

namespace {

int load() {
    calls() += nglClipPlanesLoaded() ? "load;" : "load, but marked unloaded;";
    return 0;
}

int unload() {
    calls() += nglClipPlanesLoaded() ? "unload, but marked loaded;" : "unload;";
    return 0;
}

template <class Scope>
void expectScope(const char* name, const char* onEntry, const char* onExit) {
    {
        const Scope scope;
        EXPECT_EQ(std::exchange(calls(), {}), onEntry) << name;
    }
    EXPECT_EQ(std::exchange(calls(), {}), onExit) << name;
}

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
}

using NglStateGl = GlTest;

TEST_F(NglStateGl, EveryLightNumberAboveOneIsTheThirdLight) {
    EXPECT_EQ(ngl_disable_given_light(7), 0) << "it was off";
    ngl_enable_given_light(-3);
    EXPECT_TRUE(glIsEnabled(GL_LIGHT2));
    EXPECT_EQ(ngl_disable_given_light(7), 1);
    EXPECT_FALSE(glIsEnabled(GL_LIGHT2));
}

class ContourTextureGl : public GlTest {
protected:
    void SetUp() override {
        GlTest::SetUp();
        glGenTextures(1, &attributes.texture);
        NglRegisterGetActiveTextureAttribProc([](unsigned int unit, float a, float b) {
            return unit == 3 && a == 0.25f && b == 0.75f ? &attributes : nullptr;
        });
        NglSetActiveTextureInfo(3, 0.25f, 0.75f);
    }

    static inline RenderTextureAttributes attributes;
};

TEST_F(ContourTextureGl, TextureMatrixMapsTheRangeToOne) {
    const struct {
        const char* name;
        float minValue, maxValue;
        double scale, shift;
    } rows[] = {{"falling range", 20, 12, -0.125, 2.5},
                {"no range", 10, 10, 1, -10},
                {"tiny range", 0, 0x1p-60f, 0x1p60, 0}};
    const GlSnapshot before = GlSnapshot::take();
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        attributes.minValue = row.minValue;
        attributes.maxValue = row.maxValue;
        ASSERT_EQ(NglEnableTexture(-1), 1);
        EXPECT_EQ(stateOf(GL_TEXTURE_BINDING_2D), attributes.texture);
        EXPECT_TRUE(glIsEnabled(GL_TEXTURE_2D));
        const Matrix live = liveMatrix(GL_TEXTURE_MATRIX);
        EXPECT_EQ(live, (Matrix{row.scale, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, row.shift, 0, 0, 1}));
        EXPECT_EQ(live, flat(NglGetNglInfo()->textureMatrix));
        NglDisableTexture(-1);
        EXPECT_TRUE(before.equals(GlSnapshot::take(), {"texture matrix"}));
    }
}

TEST_F(ContourTextureGl, WithoutTextureOrProviderNothingChanges) {
    const GlSnapshot before = GlSnapshot::take();
    attributes.texture = 0;
    EXPECT_EQ(NglEnableTexture(-1), -1);
    NglSetActiveTextureInfo(4, 0.25f, 0.75f);
    EXPECT_EQ(NglEnableTexture(-1), -1) << "the provider had none";
    NHostServices services{};
    services.message = [](void*, int kind, const char* text) { calls() += std::to_string(kind) + text; };
    NHostSetServices(&services);
    NglRegisterGetActiveTextureAttribProc(nullptr);
    NglSetActiveTextureInfo(3, 0.25f, 0.75f);
    EXPECT_EQ(NglGetActiveTextureInfo(), nullptr);
    EXPECT_EQ(calls(), "0Texture attribute instance can not be realized, contour visualization may be "
                       "impacted! Please check the use case and fix this");
    EXPECT_TRUE(before.equals(GlSnapshot::take()));
}

} // namespace
