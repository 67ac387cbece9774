// The records that hosts fill byte by byte, and the switches of the record room that need no context.
#include <cstddef>
#include <string>

#include <gtest/gtest.h>

#include "NRenderUtl/gl/nglrecord.h"

namespace {

struct Field {
    const char* name;
    std::size_t offset, size; ///< as compiled
    std::size_t scalar;       ///< bytes of one value, which is also its alignment
    std::size_t count;        ///< values
};

/// Lays the fields out one after the other, each aligned to its scalar, and compares.
template <std::size_t N>
void expectLayout(const Field (&fields)[N], std::size_t recordSize, std::size_t recordAlignment) {
    std::size_t end = 0;
    for (const Field& field : fields) {
        const std::size_t start = (end + field.scalar - 1) / field.scalar * field.scalar;
        EXPECT_EQ(field.offset, start) << field.name;
        EXPECT_EQ(field.size, field.scalar * field.count) << field.name;
        end = start + field.scalar * field.count;
    }
    EXPECT_EQ(recordSize, (end + recordAlignment - 1) / recordAlignment * recordAlignment);
}

} // namespace

TEST(NglRecords, ViewRecordHasTheHostsLayout) {
    using R = _NglInfoStr;
    const std::size_t light = 4 + 4 * 16 + 3 * 4, material = 4 * 16 + 4;
    const Field fields[] = {
        {"modelView", offsetof(R, modelView), sizeof(R::modelView), 8, 16},
        {"modelViewF", offsetof(R, modelViewF), sizeof(R::modelViewF), 4, 16},
        {"projection", offsetof(R, projection), sizeof(R::projection), 8, 16},
        {"projectionF", offsetof(R, projectionF), sizeof(R::projectionF), 4, 16},
        {"textureMatrix", offsetof(R, textureMatrix), sizeof(R::textureMatrix), 4, 16},
        {"inverseModelView", offsetof(R, inverseModelView), sizeof(R::inverseModelView), 8, 16},
        {"viewport", offsetof(R, viewport), sizeof(R::viewport), 4, 4},
        {"viewY", offsetof(R, viewY), sizeof(R::viewY), 8, 3},
        {"viewX", offsetof(R, viewX), sizeof(R::viewX), 8, 3},
        {"view", offsetof(R, view), sizeof(R::view), 8, 3},
        {"orthoMin", offsetof(R, orthoMin), sizeof(R::orthoMin), 8, 3},
        {"orthoMax", offsetof(R, orthoMax), sizeof(R::orthoMax), 8, 3},
        {"pixelSize", offsetof(R, pixelSize), sizeof(R::pixelSize), 4, 1},
        {"screenOrigin", offsetof(R, screenOrigin), sizeof(R::screenOrigin), 8, 3},
        {"colorCount", offsetof(R, colorCount), sizeof(R::colorCount), 4, 1},
        {"palette", offsetof(R, palette), sizeof(R::palette), sizeof(void*), 1},
        {"backgroundColor", offsetof(R, backgroundColor), sizeof(R::backgroundColor), 4, 1},
        {"reserved", offsetof(R, reserved), sizeof(R::reserved), 4, 1},
        {"colorIndex", offsetof(R, colorIndex), sizeof(R::colorIndex), 4, 1},
        {"optimizedDisplayMode", offsetof(R, optimizedDisplayMode), sizeof(R::optimizedDisplayMode), 4, 1},
        {"pushDelta", offsetof(R, pushDelta), sizeof(R::pushDelta), 8, 3},
        {"transformed", offsetof(R, transformed), sizeof(R::transformed), 4, 1},
        {"perspective", offsetof(R, perspective), sizeof(R::perspective), 4, 1},
        {"noComplement", offsetof(R, noComplement), sizeof(R::noComplement), 4, 1},
        {"viewPushCount", offsetof(R, viewPushCount), sizeof(R::viewPushCount), 4, 1},
        {"zoomedOrFit", offsetof(R, zoomedOrFit), sizeof(R::zoomedOrFit), 4, 1},
        {"lights", offsetof(R, lights), sizeof(R::lights), 4, 8 * light / 4},
        {"frontMaterial", offsetof(R, frontMaterial), sizeof(R::frontMaterial), 4, material / 4},
        {"backMaterial", offsetof(R, backMaterial), sizeof(R::backMaterial), 4, material / 4},
        {"cameraPosition", offsetof(R, cameraPosition), sizeof(R::cameraPosition), 8, 3},
    };
    expectLayout(fields, sizeof(R), 8);
}

TEST(NglRecords, LightMaterialAndFramebufferHaveTheHostsLayout) {
    using L = NglLightParams;
    const Field light[] = {
        {"enabled", offsetof(L, enabled), sizeof(L::enabled), 4, 1},
        {"ambient", offsetof(L, ambient), sizeof(L::ambient), 4, 4},
        {"diffuse", offsetof(L, diffuse), sizeof(L::diffuse), 4, 4},
        {"specular", offsetof(L, specular), sizeof(L::specular), 4, 4},
        {"position", offsetof(L, position), sizeof(L::position), 4, 4},
        {"constant", offsetof(L, constantAttenuation), sizeof(L::constantAttenuation), 4, 1},
        {"linear", offsetof(L, linearAttenuation), sizeof(L::linearAttenuation), 4, 1},
        {"quadratic", offsetof(L, quadraticAttenuation), sizeof(L::quadraticAttenuation), 4, 1},
    };
    expectLayout(light, sizeof(L), 4);
    using M = NglMatParams;
    const Field material[] = {
        {"emission", offsetof(M, emission), sizeof(M::emission), 4, 4},
        {"ambient", offsetof(M, ambient), sizeof(M::ambient), 4, 4},
        {"diffuse", offsetof(M, diffuse), sizeof(M::diffuse), 4, 4},
        {"specular", offsetof(M, specular), sizeof(M::specular), 4, 4},
        {"shininess", offsetof(M, shininess), sizeof(M::shininess), 4, 1},
    };
    expectLayout(material, sizeof(M), 4);
    using F = _NglFBOInfoStr;
    const Field framebuffer[] = {
        {"pixels", offsetof(F, pixels), sizeof(F::pixels), sizeof(void*), 1},
        {"framebuffer", offsetof(F, framebuffer), sizeof(F::framebuffer), 4, 1},
        {"colorTexture", offsetof(F, colorTexture), sizeof(F::colorTexture), 4, 1},
        {"depthTexture", offsetof(F, depthTexture), sizeof(F::depthTexture), 4, 1},
        {"width", offsetof(F, width), sizeof(F::width), 4, 1},
        {"height", offsetof(F, height), sizeof(F::height), 4, 1},
        {"pixelCount", offsetof(F, pixelCount), sizeof(F::pixelCount), 4, 1},
    };
    expectLayout(framebuffer, sizeof(F), sizeof(void*));
}

TEST(NglRecordState, MeshScaleFactorCountsFromItsThreshold) {
    const struct {
        double factor;
        int flag;
    } rows[] = {{5e-8, 0}, {1e-7, 1}, {-1e-7, 1}, {-9.9e-8, 0}, {3.0, 1}, {0.0, 0}};
    for (const auto& row : rows) {
        NglSetMeshScaleFactor(row.factor);
        double factor = 42.0;
        EXPECT_EQ(NglGetScaleFactorAndFlag(&factor), row.flag) << row.factor;
        EXPECT_EQ(factor, row.factor);
    }
    NglResetScaleFactorAndFlag(7, 1e-30);
    double factor = 0.0;
    EXPECT_EQ(NglGetScaleFactorAndFlag(&factor), 7);
    EXPECT_EQ(factor, 1e-30);
}

TEST(NglRecordState, LoadingARecordTakesItsColourAndForgetsPushes) {
    EXPECT_EQ(ngl_get_color(), 15);
    NglRecordState& state = nglRecord();
    state.pushCount3d = 3;
    _NglInfoStr info{};
    info.colorIndex = 8;
    info.cameraPosition = {1, 2, 3};
    EXPECT_EQ(NglInitMatrices(&info), 0);
    EXPECT_EQ(ngl_get_color(), 8);
    EXPECT_EQ(state.matricesCurrent, 1);
    EXPECT_EQ(state.pushCount3d, 0);
    EXPECT_EQ(NglGetNglInfo()->cameraPosition.z, 3.0);
}

TEST(NglRecordState, ViewIsModifiedByEachOfThreeCauses) {
    const struct {
        const char* name;
        int viewPushes, matrixPushes, transformed;
        bool modified;
    } rows[] = {{"none", 0, 0, 0, false},
                {"view push", 1, 0, 0, true},
                {"matrix push", 0, 1, 0, true},
                {"transformed", 0, 0, -1, true},
                {"pops too many", -1, -2, 0, false}};
    for (const auto& row : rows) {
        nglRecord().live.viewPushCount = row.viewPushes;
        nglRecord().pushCount3d = row.matrixPushes;
        nglRecord().live.transformed = row.transformed;
        EXPECT_EQ(viewIsModified(), row.modified) << row.name;
    }
}

namespace {

std::string& prompted() {
    static std::string log;
    return log;
}

int simplePrompt(const char* message) {
    prompted() += std::string("simple ") + message + ";";
    return -1;
}

int noPumpPrompt(const char* message) {
    prompted() += std::string("no pump ") + message + ";";
    return -1;
}

} // namespace

TEST(NglPrompts, ReachTheirFunctionsUnlessBlocked) {
    PromptSetSimple("unheard");
    NglRegisterPromptFunction(simplePrompt);
    NglRegisterNoPumpPromptFunction(noPumpPrompt);
    NglRegisterPromptFunction(nullptr);
    NglRegisterNoPumpPromptFunction(nullptr);
    NglBlockPrompts();
    PromptSetSimple("blocked");
    SetPromptNoUpdate("blocked");
    EXPECT_EQ(prompted(), "");
    NglUnBlockPrompts();
    PromptSetSimple("a");
    SetPromptNoUpdate("b");
    EXPECT_EQ(prompted(), "simple a;no pump b;");
}
