// The records that hosts fill byte by byte, and the switches beside them.
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "NRenderUtl/gl/ngl.h"

namespace {

/// Offsets of a record's fields, then its size.
using Offsets = std::vector<std::ptrdiff_t>;

template <class Record, class... Fields>
Offsets layoutOf(const Record& record, const Fields&... fields) {
    const auto start = reinterpret_cast<const char*>(&record);
    return {reinterpret_cast<const char*>(&fields) - start..., sizeof record};
}

// The numbers are those of a 64-bit host that declares the records by itself.
TEST(NglRecords, HaveTheHostsLayout) {
    const _NglInfoStr r{};
    EXPECT_EQ(layoutOf(r, r.modelView, r.modelViewF, r.projection, r.projectionF, r.textureMatrix,
                       r.inverseModelView, r.viewport, r.viewY, r.viewX, r.view, r.orthoMin, r.orthoMax,
                       r.pixelSize, r.screenOrigin, r.colorCount, r.palette, r.backgroundColor, r.reserved,
                       r.colorIndex, r.optimizedDisplayMode, r.pushDelta, r.transformed, r.perspective,
                       r.noComplement, r.viewPushCount, r.zoomedOrFit, r.lights, r.frontMaterial,
                       r.backMaterial, r.cameraPosition),
              (Offsets{0,   128, 192, 320, 384, 448, 576, 592, 616, 640, 664, 688,  712,  720,  744, 752,
                       760, 764, 768, 772, 776, 800, 804, 808, 812, 816, 820, 1460, 1528, 1600, 1624}));
    const NglLightParams l{};
    EXPECT_EQ(layoutOf(l, l.enabled, l.ambient, l.diffuse, l.specular, l.position, l.constantAttenuation,
                       l.linearAttenuation, l.quadraticAttenuation),
              (Offsets{0, 4, 20, 36, 52, 68, 72, 76, 80}));
    const NglMatParams m{};
    EXPECT_EQ(layoutOf(m, m.emission, m.ambient, m.diffuse, m.specular, m.shininess),
              (Offsets{0, 16, 32, 48, 64, 68}));
    const _NglFBOInfoStr f{};
    EXPECT_EQ(
        layoutOf(f, f.pixels, f.framebuffer, f.colorTexture, f.depthTexture, f.width, f.height, f.pixelCount),
        (Offsets{0, 8, 12, 16, 20, 24, 28, 32}));
}

TEST(NglSwitches, MeshScaleFactorCountsFromItsThresholdOn) {
    for (const auto& [factor, flag] : {std::pair{5e-8, 0}, {-1e-7, 1}, {2.0, 1}}) {
        double stored = 0;
        NglSetMeshScaleFactor(factor);
        EXPECT_EQ(NglGetScaleFactorAndFlag(&stored), flag) << factor;
        EXPECT_EQ(stored, factor);
    }
}

TEST(NglSwitches, PromptsGoToTheirFunctionUnlessBlocked) {
    static std::string log;
    NglRegisterPromptFunction([](const char* text) { return static_cast<int>((log += text).size()); });
    NglRegisterPromptFunction(nullptr);
    SetPromptNoUpdate("no function of this kind;");
    PromptSetSimple("shown;");
    NglBlockPrompts();
    PromptSetSimple("blocked;");
    NglUnBlockPrompts();
    PromptSetSimple("again;");
    EXPECT_EQ(log, "shown;again;");
}

} // namespace
