// The rubber band: lines by XOR over the finished picture, which the same call erases.
#include "NRenderUtl/gl/nglline.h"
#include "NRenderUtl/gl/nglrecord.h"
#include "NRenderUtl/gl/stateguards.h"

namespace {

constexpr int kColorIndex = 15;
constexpr int kWidthPx = 2;

enum RubberKind { RubberLine, RubberRectangle };

bool drawsToWindow() {
    GLint framebuffer = 0;
    if (glVersion() >= 30 || epoxy_has_gl_extension("GL_EXT_framebuffer_object") ||
        epoxy_has_gl_extension("GL_ARB_framebuffer_object"))
        glGetIntegerv(GL_FRAMEBUFFER_BINDING, &framebuffer);
    return framebuffer == 0;
}

/// Draws into what the user sees: the window's front buffer, or the framebuffer object that is bound, which
/// has none.
class VisibleBufferGuard {
public:
    VisibleBufferGuard() : m_window(drawsToWindow()) {
        if (!m_window)
            return;
        glGetIntegerv(GL_DRAW_BUFFER, &m_was);
        glDrawBuffer(GL_FRONT);
    }
    /// Deliberate: hosts draw into the back buffer next, whatever was selected; without one, as it was.
    ~VisibleBufferGuard() {
        if (!m_window)
            return;
        GLboolean hasBack = GL_FALSE;
        glGetBooleanv(GL_DOUBLEBUFFER, &hasBack);
        glDrawBuffer(hasBack ? GL_BACK : static_cast<GLenum>(m_was));
    }
    VisibleBufferGuard(const VisibleBufferGuard&) = delete;
    VisibleBufferGuard& operator=(const VisibleBufferGuard&) = delete;

private:
    const bool m_window;
    GLint m_was = GL_NONE;
};

bool encodesColors() {
    const bool isKnown = glVersion() >= 30 || epoxy_has_gl_extension("GL_ARB_framebuffer_sRGB") ||
                         epoxy_has_gl_extension("GL_EXT_framebuffer_sRGB");
    return isKnown && glIsEnabled(GL_FRAMEBUFFER_SRGB);
}

class XorGuard {
public:
    XorGuard() : m_encodes(encodesColors()) {
        if (m_encodes)
            glDisable(GL_FRAMEBUFFER_SRGB); // GL has no logic operation on colours that it encodes
        glEnable(GL_COLOR_LOGIC_OP);
        glLogicOp(GL_XOR);
    }
    ~XorGuard() {
        glLogicOp(GL_COPY);
        glDisable(GL_COLOR_LOGIC_OP);
        if (m_encodes)
            glEnable(GL_FRAMEBUFFER_SRGB);
    }
    XorGuard(const XorGuard&) = delete;
    XorGuard& operator=(const XorGuard&) = delete;

private:
    const bool m_encodes;
};

/// Model point under a screen point, in the plane through the model's origin across the ray.
_NgPoint3Str modelPoint(int sx, int sy) {
    _NgPoint3Str origin{}, point;
    MathGet3dPtFromClickPtGivenRefPt(&origin, sx, sy, &point);
    return point;
}

void emitRectangle(const _NgPoint3Str& a, const _NgPoint3Str& b) {
    const _NglInfoStr& info = nglRecord().live;
    const double z = (info.orthoMax.z + info.orthoMin.z) / 2;
    const _NgPoint3Str corners[] = {{a.x, a.y, z}, {b.x, a.y, z}, {b.x, b.y, z}, {a.x, b.y, z}};
    for (int i = 0; i < 4; ++i) {
        glVertex3dv(&corners[i].x);
        glVertex3dv(&corners[(i + 1) % 4].x);
    }
}

void drawBand(int kind, const _NgPoint3Str& a, const _NgPoint3Str& b) {
    const NoDepthTestGuard onTop;
    glBegin(GL_LINES);
    if (kind == RubberLine) {
        glVertex3dv(&a.x);
        glVertex3dv(&b.x);
    }
    if (kind == RubberRectangle)
        emitRectangle(a, b);
    glEnd();
    glFlush(); // no swap shows the front buffer
}

} // namespace

void ngl_draw_rubber(int kind, int x0, int y0, int x1, int y1) {
    const VisibleBufferGuard visible;
    const XorGuard byXor;
    const MatrixModeGuard mode;
    const NoProgramGuard fixed;
    ngl_push_3d_matrix();
    ngl_init_3d_matrix();
    // Deliberate: colour and width stay, as a band is drawn over and over.
    ngl_set_color_no_complement(kColorIndex);
    nglIssueLineWidth(kWidthPx);
    drawBand(kind, modelPoint(x0, y0), modelPoint(x1, y1));
    ngl_pop_3d_matrix();
}
