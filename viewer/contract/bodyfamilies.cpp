// The mesh renderer, classic and physically based, and the surroundings.
#include <epoxy/gl.h>

#include <array>

#include "NRenderUtl/NRenderUtl.h"
#include "viewer/contract/families.h"

namespace nruview {

namespace {

/// A low pyramid on its head: triangles above, one quad below.
constexpr std::array<float, 15> kPositions = {-0.8f, -0.7f, 0,    0.8f, -0.8f, 0.1f, 0.7f, 0.8f,
                                              0,     -0.6f, 0.7f, 0.1f, 0.1f,  0,    0.6f};
constexpr std::array<float, 15> kNormals = {-0.6f, -0.6f, 0.53f, 0.6f,  -0.6f, 0.53f, 0.6f, 0.6f,
                                            0.53f, -0.6f, 0.6f,  0.53f, 0,     0,     1};
constexpr std::array<unsigned, 12> kTriangles = {0, 1, 4, 1, 2, 4, 2, 3, 4, 3, 0, 4};
constexpr std::array<unsigned, 4> kQuad = {0, 3, 2, 1};

template <bool transparent>
void drawBody() {
    ngl::NglMeshRenderer renderer;
    ngl::_RenderAttributes attributes;
    attributes.color = 4;
    attributes.materialName = L"Steel";
    attributes.frontAndBackRender = transparent;
    attributes.transparency = transparent;
    attributes.alpha = 0.6f;
    if (!renderer.RenderBegin(transparent ? ngl::NglMeshRenderer::RenderPassTransparent
                                          : ngl::NglMeshRenderer::RenderPassOpaque))
        return;
    renderer.Render(kPositions.data(), kNormals.data(), 4, kTriangles.data(), 1, kQuad.data(), attributes);
    renderer.RenderEnd();
}

void drawPhysicalBody() {
    EnablePhysicallyBasedRendering(true);
    drawBody<false>();
    EnablePhysicallyBasedRendering(false);
}

void drawMirroringBody() {
    EnableEnvironmentReflection(true);
    drawPhysicalBody();
    EnableEnvironmentReflection(false);
}

void drawBackground() {
    NImageBasedLightHandler::EnableHDRBackgroundRendering(true);
    NImageBasedLightHandler::DrawHDRBackground(NglGetNglInfo());
    NImageBasedLightHandler::EnableHDRBackgroundRendering(false);
}

} // namespace

std::vector<Family> bodyFamilies() {
    using enum FamilyKind;
    return {{"mesh renderer", Bodies, drawBody<false>, nullptr, true},
            {"mesh renderer, transparent", Bodies, drawBody<true>, nullptr, true},
            {"mesh renderer, physical", Bodies, drawPhysicalBody, nullptr, true},
            {"mesh renderer, environment", Bodies, drawMirroringBody, nullptr, true},
            {"surroundings", Background, drawBackground, nullptr, true}};
}

} // namespace nruview
