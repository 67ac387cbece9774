// A text is one textured rectangle: its coverage is the alpha of one colour, each texel a pixel.
#include "viewer/labels/hosttext.h"

#include <epoxy/gl.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstdlib>
#include <filesystem>

#include "viewer/error.h"

namespace nruview {

namespace {

constexpr int kDefaultSize_px = 13;

HostText* active = nullptr;

/// The font of a handle; null without one.
Font* fontOf(void* handle) {
    if (handle != nullptr || active == nullptr)
        return static_cast<Font*>(handle);
    return active->font(kDefaultSize_px);
}

/// Where a text's point is in the window, by the matrices in force.
struct WindowPoint {
    int x = 0, y = 0; ///< nearest pixel corner, y upward
    double depth = 0.0;
    std::array<int, 4> viewport{};
    bool isSeen = false; ///< not before the near plane, which also takes what is behind the eye
};

WindowPoint project(_NgPoint3Str point) {
    constexpr double kRounding = 1e-6, kFarthest_px = 1e6;
    WindowPoint window;
    std::array<double, 16> modelView, projection;
    ngl_get_std_matrices(modelView.data(), projection.data(), window.viewport.data());
    _NgPoint3Str at{};
    ngl_transform_33_s_with_mat(&point, modelView.data(), projection.data(), window.viewport.data(), &at);
    window.isSeen = at.z >= -kRounding && at.z <= 1.0 + kRounding && std::abs(at.x) < kFarthest_px &&
                    std::abs(at.y) < kFarthest_px;
    if (window.isSeen) {
        window.x = static_cast<int>(std::lround(at.x));
        window.y = static_cast<int>(std::lround(at.y));
        window.depth = at.z;
    }
    return window;
}

/// All of the state that a text changes, for the length of a block: plain textured drawing in a view whose
/// corners are those of the viewport.
class TextState {
public:
    explicit TextState(bool atDepth) {
        glPushClientAttrib(GL_CLIENT_PIXEL_STORE_BIT);
        glPushAttrib(GL_ALL_ATTRIB_BITS);
        if (epoxy_gl_version() >= 20) {
            glGetIntegerv(GL_CURRENT_PROGRAM, &m_program);
            glUseProgram(0);
        }
        if (epoxy_gl_version() >= 21)
            glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
        setFragmentState(atDepth);
        glActiveTexture(GL_TEXTURE0);
        for (const GLenum mode : kMatrices) {
            glMatrixMode(mode);
            glPushMatrix();
            glLoadIdentity();
        }
    }
    ~TextState() {
        for (const GLenum mode : kMatrices) {
            glMatrixMode(mode);
            glPopMatrix();
        }
        if (m_program != 0)
            glUseProgram(static_cast<GLuint>(m_program));
        glPopAttrib();
        glPopClientAttrib();
    }
    TextState(const TextState&) = delete;
    TextState& operator=(const TextState&) = delete;

private:
    /// Scissor and masks stay the caller's.
    static void setFragmentState(bool atDepth) {
        for (const GLenum off : {GL_LIGHTING, GL_FOG, GL_CULL_FACE, GL_ALPHA_TEST, GL_STENCIL_TEST,
                                 GL_COLOR_LOGIC_OP, GL_POLYGON_STIPPLE, GL_TEXTURE_1D, GL_TEXTURE_3D,
                                 GL_TEXTURE_CUBE_MAP, GL_TEXTURE_GEN_S, GL_TEXTURE_GEN_T})
            glDisable(off);
        for (GLenum plane = 0; plane < 6; ++plane)
            glDisable(GL_CLIP_PLANE0 + plane);
        if (!atDepth)
            glDisable(GL_DEPTH_TEST);
        glDepthMask(GL_FALSE);
        glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
        glEnable(GL_BLEND);
        glBlendFuncSeparate(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA, GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
    }

    static constexpr std::array<GLenum, 3> kMatrices = {GL_PROJECTION, GL_TEXTURE, GL_MODELVIEW};
    GLint m_program = 0;
};

/// Loads a raster into the lower left of a texture of powers of two, which every driver takes. Returns the
/// texture coordinates of its upper right corner.
std::array<float, 2> loadTexture(unsigned int& texture, const TextRaster& raster) {
    const auto width = static_cast<int>(std::bit_ceil(static_cast<unsigned>(raster.width)));
    const auto height = static_cast<int>(std::bit_ceil(static_cast<unsigned>(raster.height)));
    if (texture == 0)
        glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    for (const GLenum row : {GL_UNPACK_ROW_LENGTH, GL_UNPACK_SKIP_ROWS, GL_UNPACK_SKIP_PIXELS})
        glPixelStorei(row, 0);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_ALPHA8, width, height, 0, GL_ALPHA, GL_UNSIGNED_BYTE, nullptr);
    glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, raster.width, raster.height, GL_ALPHA, GL_UNSIGNED_BYTE,
                    raster.coverage.data());
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    glEnable(GL_TEXTURE_2D);
    return {static_cast<float>(raster.width) / static_cast<float>(width),
            static_cast<float>(raster.height) / static_cast<float>(height)};
}

/// A rectangle of the texture with its first row on top; left, bottom, right, top in pixels.
void drawRectangle(const std::array<int, 4>& edges, const WindowPoint& window,
                   const std::array<float, 2>& corner) {
    const auto& [left, bottom, right, top] = edges;
    const auto vertex = [&](int x, int y, float s, float t) {
        glTexCoord2f(s, t);
        glVertex3d(2.0 * (x - window.viewport[0]) / window.viewport[2] - 1.0,
                   2.0 * (y - window.viewport[1]) / window.viewport[3] - 1.0, 2.0 * window.depth - 1.0);
    };
    glBegin(GL_QUADS);
    vertex(left, bottom, 0.0f, corner[1]);
    vertex(right, bottom, corner[0], corner[1]);
    vertex(right, top, corner[0], 0.0f);
    vertex(left, top, 0.0f, 0.0f);
    glEnd();
}

} // namespace

std::string fontFile() {
    if (const char* named = std::getenv("NRUVIEW_FONT"); named != nullptr && *named != '\0')
        return named;
    constexpr std::array kPlaces = {"/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf",   // Debian
                                    "/usr/share/fonts/dejavu-sans-fonts/DejaVuSans.ttf", // Fedora
                                    "/usr/share/fonts/TTF/DejaVuSans.ttf"};              // Arch
    std::error_code ignored;
    for (const char* place : kPlaces)
        if (std::filesystem::exists(place, ignored))
            return place;
    return kPlaces[0];
}

HostText::HostText(const std::string& file) : m_file(file) {
    active = this;
    font(kDefaultSize_px);
    NglRegisterDrawTextFunc(drawText);
    NglRegisterDrawMultiLineTextFunc(drawLines);
    NglRegisterGetTextDimFunc(measure);
    NglRegisterGetTextAscentDescentFunc(measureRise);
}

HostText::~HostText() {
    if (m_texture != 0)
        glDeleteTextures(1, &m_texture);
    if (active == this)
        active = nullptr;
}

Font* HostText::font(int size_px) {
    if (!m_problem.empty())
        return nullptr;
    std::unique_ptr<Font>& font = m_fonts[size_px];
    try {
        if (!font)
            font = std::make_unique<Font>(m_file, size_px);
    } catch (const ViewerError& error) {
        m_problem = error.what();
    }
    return font.get();
}

void HostText::draw(const _NgPoint3Str& point, std::wstring_view text, NgColorLong color, bool atDepth,
                    Font& font, int drop_px) {
    const WindowPoint window = project(point);
    const TextRaster raster = font.raster(text);
    if (!window.isSeen || raster.coverage.empty())
        return;
    const TextState state(atDepth);
    const std::array<float, 2> corner = loadTexture(m_texture, raster);
    float red, green, blue;
    ngl_get_floats_from_color_long(color, red, green, blue);
    glColor4f(red, green, blue, 1.0f);
    const int left = window.x + raster.left, top = window.y - drop_px + raster.top;
    drawRectangle({left, top - raster.height, left + raster.width, top}, window, corner);
}

void HostText::drawText(const _NgPoint3Str* point, const wchar_t* text, NgColorLong color, bool atDepth,
                        void* handle, bool) {
    if (Font* font = fontOf(handle))
        active->draw(*point, text, color, atDepth, *font, 0);
}

void HostText::drawLines(const _NgPoint3Str* point, const wchar_t* text, NgColorLong color, bool atDepth,
                         void* handle, bool) {
    Font* font = fontOf(handle);
    std::wstring_view rest = text;
    for (int drop = 0; font != nullptr; drop += font->lineHeight_px()) {
        const std::size_t end = rest.find(L'\n');
        active->draw(*point, rest.substr(0, end), color, atDepth, *font, drop);
        if (end == std::wstring_view::npos)
            return;
        rest.remove_prefix(end + 1);
    }
}

void HostText::measure(int* width, int* height, const wchar_t* text, void* handle) {
    Font* font = fontOf(handle);
    const TextExtent extent = font != nullptr ? font->extent(text) : TextExtent{};
    *width = extent.width;
    *height = extent.ascent + extent.descent;
}

void HostText::measureRise(const wchar_t* text, int* ascent, int* descent, void* handle) {
    Font* font = fontOf(handle);
    const TextExtent extent = font != nullptr ? font->extent(text) : TextExtent{};
    *ascent = extent.ascent;
    *descent = extent.descent;
}

} // namespace nruview
