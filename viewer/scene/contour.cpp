// The library asks the host for the attributes of the active contour texture.
#include "viewer/scene/contour.h"

#include <epoxy/gl.h>

namespace nruview {

namespace {

constexpr NgColorLong kWhite = 0xFFFFFFFF;

RenderTextureAttributes* activeAttributes = nullptr;

RenderTextureAttributes* provideAttributes(unsigned int, float, float) {
    return activeAttributes;
}

} // namespace

ContourInForce::ContourInForce(ColorBands& bands, unsigned int target) : m_target(static_cast<int>(target)) {
    activeAttributes = &bands.attributes();
    NglRegisterGetActiveTextureAttribProc(provideAttributes);
    NglSetActiveTextureInfo(0, 0.0f, 0.0f);
    NglEnableTexture(m_target);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    ngl_set_color_long(kWhite);
}

ContourInForce::~ContourInForce() {
    NglDisableTexture(m_target);
    glMatrixMode(GL_TEXTURE); // NglEnableTexture has put the value range there
    glLoadIdentity();
    glMatrixMode(GL_MODELVIEW);
    activeAttributes = nullptr;
    NglSetActiveTextureInfo(0, 0.0f, 0.0f);
}

} // namespace nruview
