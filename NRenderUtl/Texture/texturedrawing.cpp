// Textures in rectangles and circles of the window.
#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include "NRenderUtl/Texture/ntexture.h"
#include "NRenderUtl/Texture/texturesources.h"
#include "NRenderUtl/Texture/windowscope.h"
#include "NRenderUtl/gl/immediate.h"
#include "NRenderUtl/gl/pixeldisc.h"
#include "NRenderUtl/host/hostgl.h"
#include "NRenderUtl/shaders/gllabel.h"
#include "NRenderUtl/shaders/vertexattribute.h"

namespace {

constexpr int kWhite = 63; // no scheme and no background tints it
constexpr int kCircleSteps = 360;
constexpr float kRadPerDeg = 0.017453292f;

// --- the texture object ------------------------------------------------------------------------------------

void setParameters() {
    for (const GLenum axis : {GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T})
        glTexParameteri(GL_TEXTURE_2D, axis, GL_REPEAT);
    for (const GLenum filter : {GL_TEXTURE_MIN_FILTER, GL_TEXTURE_MAG_FILTER})
        glTexParameteri(GL_TEXTURE_2D, filter, GL_LINEAR);
}

// Pixels have four bytes whatever the texture keeps of them.
void upload(std::uint32_t format, int width, int height, const unsigned char* pixels) {
    const UnpackGuard memory;
    const PlainTransferGuard values;
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glTexImage2D(GL_TEXTURE_2D, 0, static_cast<GLint>(format), width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                 pixels);
}

bool driverTakes(int width, int height) {
    GLint largest = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &largest);
    return std::max(width, height) <= largest;
}

/// Fixed function draws with the texture as it is, of unit 0, which must be active and is the caller's to
/// restore with its binding.
class TexturedScope {
public:
    explicit TexturedScope(GLuint texture) : m_wasOn(glIsEnabled(GL_TEXTURE_2D)) {
        glGetTexEnviv(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, &m_mode);
        glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE);
        glBindTexture(GL_TEXTURE_2D, texture);
        glEnable(GL_TEXTURE_2D);
        ngl_set_color_no_complement(kWhite);
    }
    ~TexturedScope() {
        glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, m_mode);
        if (!m_wasOn)
            glDisable(GL_TEXTURE_2D);
    }
    TexturedScope(const TexturedScope&) = delete;
    TexturedScope& operator=(const TexturedScope&) = delete;

private:
    static constexpr double kIdentity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    const bool m_wasOn;
    GLint m_mode;
    const NoSamplerGuard m_ownParameters;
    const MatrixGuard m_matrix{GL_TEXTURE, kIdentity};
};

// --- the program -------------------------------------------------------------------------------------------

bool build(NShaderProgram& program) {
    if (program.IsProgramValid())
        return true;
    program = NShaderProgram(); // without the locations of the program before
    const char* fragment[] = {kTextureFragmentMain, kRoundedEdgeLibrary};
    return program.CompileProgram(kTextureVertexMain, 2, fragment, 0, nullptr, 0);
}

/// One of the discs' own, which stays when a texture changes its pixels. Null where the driver has none:
/// asked first, as programs are tried again for each picture.
NShaderProgram* programOfDiscs() {
    static NShaderProgram program;
    return GLeeEnabled(GLeeFragmentShader) && build(program) ? &program : nullptr;
}

// --- rectangles --------------------------------------------------------------------------------------------

constexpr float kCorners[4][2] = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};

void setMatrices(NShaderProgram& program) {
    std::array<float, 16> modelView, projection, texture;
    glGetFloatv(GL_MODELVIEW_MATRIX, modelView.data());
    glGetFloatv(GL_PROJECTION_MATRIX, projection.data());
    glGetFloatv(GL_TEXTURE_MATRIX, texture.data());
    program.SetMVPMatrices(projection.data(), modelView.data(), false);
    program.SetUniform4x4Matrix(RenderUniformTextureMatrix, texture.data());
}

void setCornersAndBorder(NShaderProgram& program, const NuTexture::RenderInfo& info) {
    program.SetUniformValue("g_rounded_corner", info.roundedCorners != 0 ? 1 : 0);
    program.SetUniformValue("g_corner_radius", info.cornerRadius);
    program.SetUniformValue("g_border", info.border != 0 ? 1 : 0);
    if (info.border == 0)
        return;
    float color[4] = {0, 0, 0, 1};
    std::transform(std::begin(info.borderColor), std::end(info.borderColor), color,
                   [](unsigned char byte) { return static_cast<float>(byte) / 255; });
    program.SetUniformValue("g_border_thickness", info.borderThickness);
    program.SetVec4UniformValue("g_border_col", color);
}

/// A rectangle of the window's units for a picture of some pixels, or for the disc within a square.
struct Quad {
    int from, width, height;
    int pixelsWide, pixelsHigh;
    bool disc;
};

void drawQuad(NShaderProgram& program, const Quad& quad) {
    const auto from = static_cast<float>(quad.from), right = static_cast<float>(quad.from + quad.width),
               top = static_cast<float>(quad.from + quad.height);
    const float positions[] = {from, from, 0, right, from, 0, right, top, 0, from, top, 0};
    const int position = program.GetVertexAttributeLocation(RenderAttribPosition);
    const int coordinate = program.GetVertexAttributeLocation(RenderAttribTexture);
    program.SetVertexAttribute(position, 3, positions);
    program.SetVertexAttribute(coordinate, 2, &kCorners[0][0]);
    advanceByVertex(position);
    advanceByVertex(coordinate);
    glDrawArrays(GL_QUADS, 0, 4);
    program.EnableDisableVertexAttribute(position, false);
    program.EnableDisableVertexAttribute(coordinate, false);
}

void drawByProgram(NShaderProgram& program, const Quad& quad, const NuTexture::RenderInfo& info) {
    const ClientArraysGuard clientMemory;
    program.UseProgram(true);
    setMatrices(program);
    program.SetUniformValue("g_img_tex", 0);
    program.SetUniformValue("g_texture_width", quad.pixelsWide);
    program.SetUniformValue("g_texture_height", quad.pixelsHigh);
    program.SetUniformValue("g_disc", quad.disc ? 1 : 0);
    setCornersAndBorder(program, info);
    drawQuad(program, quad);
    program.UseProgram(false);
}

// --- circles -----------------------------------------------------------------------------------------------

using CirclePoints = std::array<std::array<float, 2>, kCircleSteps + 1>;

/// Cosine and sine in steps of a degree, from 0 to 360.
const CirclePoints& unitCircle() {
    static const CirclePoints points = [] {
        CirclePoints made;
        for (int i = 0; i <= kCircleSteps; ++i) {
            const float angle = static_cast<float>(i) * kRadPerDeg;
            made[static_cast<std::size_t>(i)] = {std::cos(angle), std::sin(angle)};
        }
        return made;
    }();
    return points;
}

// --- discs by rows -----------------------------------------------------------------------------------------

/// The disc of the textured circle, of units that are pixels.
void drawDiscByRows(int centre, int radius) {
    const auto toTexture = [&](int along) {
        return static_cast<float>(along + radius) / static_cast<float>(2 * radius);
    };
    const BeginEnd vertices(GL_QUADS);
    sendDiscByRows(radius, [&](int x, int y) {
        glTexCoord2f(toTexture(x), toTexture(y));
        glVertex2i(centre + x, centre + y);
    });
}

/// What a border of the thickness, on both sides, leaves of a diameter.
int within(int diameter, int thickness) {
    return std::max(diameter - 2 * std::clamp(thickness, 0, diameter), 0);
}

/// By fixed function where the texture has no alpha: its fragments have that of the current colour.
void drawDisc(GLuint texture, bool hasAlpha, int centre, int radius) {
    const bool isOfPixels = radius <= kLargestDiscOfRows && pixelsAreCentres();
    NShaderProgram* program = isOfPixels && hasAlpha ? programOfDiscs() : nullptr;
    std::optional<PlainFragmentsGuard> fragments;
    if (!program)
        fragments.emplace();
    const TexturedScope textured(texture);
    const int size = 2 * radius;
    if (program)
        drawByProgram(*program, {centre - radius, size, size, size, size, true}, {});
    else
        isOfPixels ? drawDiscByRows(centre, radius) : NuTexture::DrawCircle(centre, radius, true);
}

/// The line about a disc, in the colour of the border.
void drawRing(int diameter, const NuTexture::RenderInfo& info) {
    const PlainFragmentsGuard fragments;
    const DisabledGuard whole({GL_LINE_STIPPLE, GL_LINE_SMOOTH});
    glColor4f(static_cast<float>(info.borderColor[0]) / 255, static_cast<float>(info.borderColor[1]) / 255,
              static_cast<float>(info.borderColor[2]) / 255, 1);
    const int lineWidth = ngl_get_line_width();
    GLfloat hostsWidth;
    glGetFloatv(GL_LINE_WIDTH, &hostsWidth);
    ngl_set_line_width(info.borderThickness);
    NuTexture::DrawCircle(diameter / 2, within(diameter, info.borderThickness) / 2, false);
    ngl_set_line_width(lineWidth);
    glLineWidth(hostsWidth); // which the layer does not know if the host set it itself
}

} // namespace

void NuTexture::CreateGLTexture() {
    if (m_texture != 0 && !m_rebuildNeeded)
        return;
    // Also where no context is declared: here one is current, and queued names would pile up.
    if (m_texture != 0)
        glDeleteTextures(1, &m_texture);
    m_texture = 0;
    if (driverTakes(m_width, m_height))
        glGenTextures(1, &m_texture);
    if (m_texture == 0)
        return;
    glBindTexture(GL_TEXTURE_2D, m_texture);
    labelGlObject(GL_TEXTURE, m_texture, "NRenderUtl picture");
    setParameters();
    upload(m_pixelFormat, m_width, m_height, m_pixels);
    glBindTexture(GL_TEXTURE_2D, 0);
    m_rebuildNeeded = false;
}

bool NuTexture::BuildProgram() {
    return build(m_ShaderProgram);
}

void NuTexture::RenderAsRectangle(int x, int y, int width, int height, const RenderInfo& info) {
    if (!m_pixels || !glContextIsCurrent())
        return;
    const TextureUnit0Guard unit;
    CreateGLTexture();
    if (m_texture == 0)
        return;
    width = width > 0 ? width : m_width;
    height = height > 0 ? height : m_height;
    const WindowScope window({x, y, width, height}, m_pixelFormat == GL_RGBA);
    const bool byProgram = (info.roundedCorners != 0 || info.border != 0) && BuildProgram();
    std::optional<PlainFragmentsGuard> fragments;
    if (!byProgram)
        fragments.emplace();
    const TexturedScope textured(m_texture);
    if (!byProgram || !DrawAsRectangleWithVAMode(width, height, info))
        DrawAsRectangleWithImmediateMode(width, height, info);
}

bool NuTexture::DrawAsRectangleWithVAMode(int width, int height, const RenderInfo& info) {
    if (!BuildProgram())
        return false;
    // The texture's own pixels: corners and border grow with the picture.
    drawByProgram(m_ShaderProgram, {0, width, height, m_width, m_height, false}, info);
    return true;
}

void NuTexture::DrawAsRectangleWithImmediateMode(int width, int height, const RenderInfo&) {
    const BeginEnd vertices(GL_QUADS);
    for (const auto& [s, t] : kCorners) {
        glTexCoord2f(s, t);
        glVertex2f(s * static_cast<float>(width), t * static_cast<float>(height));
    }
}

void NuTexture::RenderAsCircle(int x, int y, int diameter, const RenderInfo& info) {
    if (!m_pixels || !glContextIsCurrent())
        return;
    const TextureUnit0Guard unit;
    CreateGLTexture();
    if (m_texture == 0)
        return;
    diameter = diameter > 0 ? diameter : std::min(m_width, m_height);
    const bool hasAlpha = m_pixelFormat == GL_RGBA;
    const WindowScope window({x, y, diameter, diameter}, hasAlpha);
    const int filled = info.border == 1 ? within(diameter, info.borderThickness) : diameter;
    drawDisc(m_texture, hasAlpha, diameter / 2, filled / 2);
    if (info.border != 0)
        drawRing(diameter, info);
}

// Deliberate: the fan starts on the rim, at angle 0, not in the centre.
void NuTexture::DrawCircle(int centre, int radius, bool filled) {
    const auto c = static_cast<float>(centre), r = static_cast<float>(radius);
    const BeginEnd vertices(filled ? GL_TRIANGLE_FAN : GL_LINE_STRIP);
    for (const auto& [cosine, sine] : unitCircle()) {
        if (filled)
            glTexCoord2f((cosine + 1) * 0.5f, (sine + 1) * 0.5f);
        glVertex2f(cosine * r + c, sine * r + c);
    }
}
