// The surroundings behind the view.
#include <algorithm>
#include <iterator>

#include "NRenderUtl/host/hostmath.h"
#include "NRenderUtl/lighting/imagebasedlight.h"
#include "NRenderUtl/lighting/lightsources.h"
#include "NRenderUtl/shaders/programinuse.h"

namespace {

/// State of the host's that would draw the surroundings otherwise than whole and behind, or that drawing
/// them changes. Depth test, masks, scissor and stencil are the host's to choose.
struct BackgroundState {
    const ProgramInUseGuard program;
    const VertexArrayGuard vertexArray;
    const TextureUnit0Guard textures;
    const NoSamplerGuard sampler;
    const SeamlessCubesGuard seamless;
    const LessOrEqualGuard depth;
    const FilledFacesGuard filled;
    const NoClipPlanesGuard clipPlanes;
    const DisabledGuard disabled{GL_ALPHA_TEST, GL_BLEND, GL_COLOR_LOGIC_OP};
};

/// 90 degrees from left to right, from 0.1 to 100.
void skyProjection(double aspect, float (&matrix)[16]) {
    constexpr double kNear = 0.1, kFar = 100.0;
    std::fill(std::begin(matrix), std::end(matrix), 0.0f);
    matrix[0] = 1.0f;
    matrix[5] = static_cast<float>(aspect);
    matrix[10] = static_cast<float>(-(kFar + kNear) / (kFar - kNear));
    matrix[11] = -1.0f;
    matrix[14] = static_cast<float>(-2.0 * kFar * kNear / (kFar - kNear));
}

/// With the negated position by which the cube is sampled, this mirrored axis makes a turn about z.
void skyView(const _NglInfoStr& info, float (&matrix)[16]) {
    float columns[4][4];
    NglToFloat(info.modelView, columns);
    for (int i = 0; i < 3; ++i)
        columns[2][i] = -columns[2][i];
    std::copy_n(&columns[0][0], 16, matrix);
}

} // namespace

bool NImageBasedLightHandler::InitSkyBoxShaderProgram() {
    m_skyBoxFailed = m_skyBoxFailed ||
                     !m_skyBoxProgram->Build("NRenderUtl background", kSkyBoxVertexMain, kSkyBoxFragmentMain);
    return !m_skyBoxFailed;
}

void NImageBasedLightHandler::RenderHDRBackground(const _NglInfoStr& info) {
    InitializeIBL();
    const auto [x, y, width, height] = info.viewport;
    if (!IsValid() || !glContextIsCurrent() || width <= 0 || height <= 0 || !InitSkyBoxShaderProgram())
        return;
    float projection[16], view[16];
    skyProjection(static_cast<double>(width) / height, projection);
    skyView(info, view);
    const BackgroundState state;
    m_skyBoxProgram->UseProgram(true);
    m_skyBoxProgram->SetUniform4x4Matrix("g_projmat", projection);
    m_skyBoxProgram->SetUniform4x4Matrix("g_viewmat", view);
    m_skyBoxProgram->SetUniformValue("g_skyboxmap", 0);
    glBindTexture(GL_TEXTURE_CUBE_MAP, m_environmentMap);
    RenderSkyBox();
}
