#include "viewer/contract/families.h"

#include <epoxy/gl.h>

#include <array>

#include "NRenderUtl/NRenderUtl.h"

namespace nruview {

namespace {

RenderTextureAttributes& attributes() {
    static RenderTextureAttributes attributes;
    return attributes;
}

RenderTextureAttributes* provide(unsigned, float, float) {
    return &attributes();
}

RenderTextureAttributes* provideNone(unsigned, float, float) {
    return nullptr;
}

} // namespace

std::vector<Family> families() {
    std::vector<Family> all;
    for (const auto& part :
         {primitiveFamilies, batchFamilies, screenFamilies, meshFamilies, bodyFamilies, markerFamilies})
        for (const Family& family : part())
            all.push_back(family);
    return all;
}

ContourTexture::ContourTexture() {
    constexpr std::array<float, 4> limits = {0.0f, 0.3f, 0.6f, 1.0f};
    constexpr std::array<unsigned, 3> colors = {0xFFE06020, 0xFF30D050, 0xFF2040F0};
    constexpr std::array<unsigned, 8> texels = {colors[0], colors[0], colors[1], colors[1],
                                                colors[1], colors[2], colors[2], colors[2]};
    glGenTextures(1, &m_name);
    glBindTexture(GL_TEXTURE_2D, m_name);
    for (const GLenum filter : {GL_TEXTURE_MIN_FILTER, GL_TEXTURE_MAG_FILTER})
        glTexParameteri(GL_TEXTURE_2D, filter, GL_NEAREST);
    for (const GLenum axis : {GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T})
        glTexParameteri(GL_TEXTURE_2D, axis, GL_CLAMP_TO_EDGE);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 8, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, texels.data());
    glBindTexture(GL_TEXTURE_2D, 0);
    RenderTextureAttributes& contour = attributes();
    contour.texture = m_name;
    contour.minValue = 0;
    contour.maxValue = 1;
    contour.UpdateColorScale(3, limits.data(), colors.data());
    NglRegisterGetActiveTextureAttribProc(provide);
    NglSetActiveTextureInfo(0, 0, 0);
}

ContourTexture::~ContourTexture() {
    NglRegisterGetActiveTextureAttribProc(provideNone);
    NglSetActiveTextureInfo(0, 0, 0);
    NglRegisterGetActiveTextureAttribProc(nullptr);
    attributes().Reset();
    glDeleteTextures(1, &m_name);
}

} // namespace nruview
