// The records that hosts fill byte by byte, and the switches of the record room that need no context.
#include <cstddef>
#include <string>

#include <gtest/gtest.h>

#include "NRenderUtl/gl/nglrecord.h"

namespace {

struct Field {
    std::size_t offset; ///< as compiled
    std::size_t scalar; ///< bytes of one value, which is also its alignment
    std::size_t count;  ///< values
};

/// Lays the fields out one after the other, each aligned to its scalar, and compares.
template <std::size_t N>
void expectLayout(const Field (&fields)[N], std::size_t recordSize, std::size_t alignment, const char* name) {
    std::size_t end = 0;
    for (const Field& field : fields) {
        const std::size_t start = (end + field.scalar - 1) / field.scalar * field.scalar;
        EXPECT_EQ(field.offset, start) << name << ", field " << &field - fields + 1;
        end = start + field.scalar * field.count;
    }
    EXPECT_EQ(recordSize, (end + alignment - 1) / alignment * alignment) << name;
}

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

TEST(NglRecords, HaveTheHostsLayout) {
    constexpr std::size_t kPointer = sizeof(void*);
    using R = _NglInfoStr;
    const Field view[] = {{offsetof(R, modelView), 8, 16},      {offsetof(R, modelViewF), 4, 16},
                          {offsetof(R, projection), 8, 16},     {offsetof(R, projectionF), 4, 16},
                          {offsetof(R, textureMatrix), 4, 16},  {offsetof(R, inverseModelView), 8, 16},
                          {offsetof(R, viewport), 4, 4},        {offsetof(R, viewY), 8, 3},
                          {offsetof(R, viewX), 8, 3},           {offsetof(R, view), 8, 3},
                          {offsetof(R, orthoMin), 8, 3},        {offsetof(R, orthoMax), 8, 3},
                          {offsetof(R, pixelSize), 4, 1},       {offsetof(R, screenOrigin), 8, 3},
                          {offsetof(R, colorCount), 4, 1},      {offsetof(R, palette), kPointer, 1},
                          {offsetof(R, backgroundColor), 4, 1}, {offsetof(R, reserved), 4, 1},
                          {offsetof(R, colorIndex), 4, 1},      {offsetof(R, optimizedDisplayMode), 4, 1},
                          {offsetof(R, pushDelta), 8, 3},       {offsetof(R, transformed), 4, 1},
                          {offsetof(R, perspective), 4, 1},     {offsetof(R, noComplement), 4, 1},
                          {offsetof(R, viewPushCount), 4, 1},   {offsetof(R, zoomedOrFit), 4, 1},
                          {offsetof(R, lights), 4, 8 * 20},     {offsetof(R, frontMaterial), 4, 17},
                          {offsetof(R, backMaterial), 4, 17},   {offsetof(R, cameraPosition), 8, 3}};
    expectLayout(view, sizeof(R), 8, "view");
    using L = NglLightParams;
    const Field light[] = {{offsetof(L, enabled), 4, 1},           {offsetof(L, ambient), 4, 4},
                           {offsetof(L, diffuse), 4, 4},           {offsetof(L, specular), 4, 4},
                           {offsetof(L, position), 4, 4},          {offsetof(L, constantAttenuation), 4, 1},
                           {offsetof(L, linearAttenuation), 4, 1}, {offsetof(L, quadraticAttenuation), 4, 1}};
    expectLayout(light, sizeof(L), 4, "light");
    using M = NglMatParams;
    const Field material[] = {{offsetof(M, emission), 4, 4},
                              {offsetof(M, ambient), 4, 4},
                              {offsetof(M, diffuse), 4, 4},
                              {offsetof(M, specular), 4, 4},
                              {offsetof(M, shininess), 4, 1}};
    expectLayout(material, sizeof(M), 4, "material");
    using F = _NglFBOInfoStr;
    const Field framebuffer[] = {{offsetof(F, pixels), kPointer, 1}, {offsetof(F, framebuffer), 4, 1},
                                 {offsetof(F, colorTexture), 4, 1},  {offsetof(F, depthTexture), 4, 1},
                                 {offsetof(F, width), 4, 1},         {offsetof(F, height), 4, 1},
                                 {offsetof(F, pixelCount), 4, 1}};
    expectLayout(framebuffer, sizeof(F), kPointer, "framebuffer");
}

TEST(NglRecordState, MeshScaleFactorCountsFromItsThreshold) {
    const struct {
        double factor;
        int flag;
    } rows[] = {{5e-8, 0}, {1e-7, 1}, {-1e-7, 1}, {-9.9e-8, 0}, {3.0, 1}, {0.0, 0}};
    double factor = 42.0;
    for (const auto& row : rows) {
        NglSetMeshScaleFactor(row.factor);
        EXPECT_EQ(NglGetScaleFactorAndFlag(&factor), row.flag) << row.factor;
        EXPECT_EQ(factor, row.factor);
    }
    NglResetScaleFactorAndFlag(7, 1e-30);
    EXPECT_EQ(NglGetScaleFactorAndFlag(&factor), 7);
    EXPECT_EQ(factor, 1e-30);
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

TEST(NglRecordState, PromptsReachTheirFunctionsUnlessBlocked) {
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
