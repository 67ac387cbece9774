// The batch renderers: memory, adding, and both ways to draw.
#include "NRenderUtl/gl/NglBatchRender.h"

#include <algorithm>
#include <optional>

#include "NRenderUtl/gl/batchprogram.h"
#include "NRenderUtl/gl/nglrecord.h"
#include "NRenderUtl/gl/stateguards.h"
#include "NRenderUtl/host/hostgl.h"
#include "NRenderUtl/host/hostutl.h"

namespace {

struct ProgramState {
    bool tried = false;
    bool built = false;
    bool colorScale = false; ///< contours by bands rather than by the texture
};

ProgramState& programState() {
    static ProgramState state;
    return state;
}

void buildProgramOnce() {
    ProgramState& state = programState();
    if (state.tried)
        return;
    state.tried = true;
    if (!GLeeEnabled(GLeeVertexShader) || !GLeeEnabled(GLeeFragmentShader) || !batchProgramHook().build)
        return;
    state.built = batchProgramHook().build();
    if (state.built)
        state.colorScale = hostIntSetting("NU_CONTOUR_COLOR_SCALE_MODE", 0) > 0;
}

/// The contour texture on unit 0 for the length of a block.
class ContourTextureGuard {
public:
    ContourTextureGuard() {
        glGetIntegerv(GL_ACTIVE_TEXTURE, &m_unit);
        glActiveTexture(GL_TEXTURE0);
        m_enabled = NglEnableTexture(-1) >= 0;
    }
    ~ContourTextureGuard() {
        NglDisableTexture(-1);
        glActiveTexture(static_cast<GLenum>(m_unit));
    }
    ContourTextureGuard(const ContourTextureGuard&) = delete;
    ContourTextureGuard& operator=(const ContourTextureGuard&) = delete;

    /// Whether the program finds the contour's colours; else all is drawn in the current one.
    bool hasContour() const {
        return m_enabled || (programState().colorScale && NglGetActiveTextureInfo() != nullptr);
    }

private:
    GLint m_unit;
    bool m_enabled;
};

bool usesProgram(const std::optional<ContourTextureGuard>& texture) {
    return programState().built && !viewIsModified() && (!texture || texture->hasContour());
}

void drawWithProgram(const BatchVertices& vertices) {
    const ClientArraysGuard arrays;
    batchProgramHook().draw(vertices, programState().colorScale);
}

void drawFixed(const BatchVertices& vertices) {
    const AttributesGuard current(GL_CURRENT_BIT); // GL may leave the last vertex's colour as current
    const NoProgramGuard program;
    const ClientArraysGuard arrays;
    glEnableClientState(GL_VERTEX_ARRAY);
    glVertexPointer(3, GL_FLOAT, 0, vertices.positions);
    if (vertices.texCoords) {
        glEnableClientState(GL_TEXTURE_COORD_ARRAY);
        glTexCoordPointer(2, GL_FLOAT, 0, vertices.texCoords);
    } else {
        glEnableClientState(GL_COLOR_ARRAY);
        glColorPointer(4, GL_UNSIGNED_BYTE, 0, vertices.colors);
    }
    vertices.draw();
}

void drawPointsWithProgram(const BatchVertices& points) {
    const bool was = glIsEnabled(GL_PROGRAM_POINT_SIZE);
    glEnable(GL_PROGRAM_POINT_SIZE);
    drawWithProgram(points);
    if (!was)
        glDisable(GL_PROGRAM_POINT_SIZE);
}

void drawPointsFixed(const BatchVertices& points) {
    // Deliberate: a fractional size comes back rounded, which hosts that set whole sizes have always seen.
    GLint size;
    glGetIntegerv(GL_POINT_SIZE, &size);
    glPointSize(points.pointSize);
    drawFixed(points);
    glPointSize(static_cast<GLfloat>(std::max(size, 1)));
}

void drawLinesFixed(const BatchVertices& lines, bool screen, int style) {
    std::optional<PixelViewGuard> view;
    if (screen)
        view.emplace();
    const int before = ngl_get_line_style();
    ngl_set_line_style(style);
    drawFixed(lines);
    view.reset();
    ngl_set_line_style(before);
}

} // namespace

void BatchVertices::draw() const {
    const auto size = static_cast<GLsizei>(count);
    if (!indices) {
        glDrawArrays(GL_POINTS, 0, size);
        return;
    }
    const PlainIndicesGuard plain;
    glDrawElements(GL_LINES, size, GL_UNSIGNED_INT, indices);
}

// --- common ------------------------------------------------------------------------------------------------

CNglBatchRender::CNglBatchRender() {
    buildProgramOnce();
}

CNglBatchRender::~CNglBatchRender() {
    freeArrays();
}

void CNglBatchRender::start(std::int32_t option) {
    // What was collected has no data for the other option.
    if (isTextured() != (option == kBatchTextured))
        flush();
    m_active = 1;
    m_option = option;
}

int CNglBatchRender::stop() {
    flush();
    m_count = 0;
    m_active = 0;
    return 0;
}

bool CNglBatchRender::allocate(const ArrayBytes& bytes) {
    m_positions = static_cast<float*>(NHOST_ALLOCATE(bytes.positions));
    m_texCoords = static_cast<float*>(NHOST_ALLOCATE(bytes.texCoords));
    m_colors = static_cast<std::uint32_t*>(NHOST_ALLOCATE(bytes.colors));
    if (!m_positions || !m_texCoords || !m_colors)
        freeArrays();
    return m_positions != nullptr;
}

void CNglBatchRender::freeArrays() {
    NHostFree(m_positions);
    NHostFree(m_texCoords);
    NHostFree(m_colors);
    m_positions = m_texCoords = nullptr;
    m_colors = nullptr;
}

BatchVertices CNglBatchRender::vertices() const {
    return {m_count, m_positions, isTextured() ? m_texCoords : nullptr, m_colors, nullptr, 0.0f};
}

// --- points ------------------------------------------------------------------------------------------------

void CNglBatchPointRender::begin(std::int32_t option) {
    start(option);
    if (!m_positions)
        allocate({4800000, 3200000, 1600000});
}

int CNglBatchPointRender::end() {
    return stop();
}

void CNglBatchPointRender::flush() {
    if (m_count == 0 || !glContextIsCurrent()) {
        m_count = 0;
        return;
    }
    BatchVertices points = vertices();
    points.pointSize = m_pointSize;
    std::optional<ContourTextureGuard> texture;
    if (isTextured())
        texture.emplace();
    usesProgram(texture) ? drawPointsWithProgram(points) : drawPointsFixed(points);
    m_count = 0;
}

// --- lines -------------------------------------------------------------------------------------------------

CNglBatchLineRender::~CNglBatchLineRender() {
    NHostFree(m_indices);
}

void CNglBatchLineRender::begin(std::int32_t option) {
    start(option);
    // Coordinates and colours take twice what the capacity needs: hosts budget the memory so.
    if (m_positions || !allocate({3600000, 4800000, 2400000}))
        return;
    m_indices = static_cast<std::uint32_t*>(NHOST_ALLOCATE(2400000));
    if (!m_indices)
        freeArrays();
}

int CNglBatchLineRender::end() {
    return stop();
}

void CNglBatchLineRender::flush() {
    if (m_count == 0 || !glContextIsCurrent()) {
        m_count = 0;
        return;
    }
    BatchVertices lines = vertices();
    lines.indices = m_indices;
    const int width = ngl_get_line_width();
    ngl_set_line_width(m_width);
    {
        std::optional<ContourTextureGuard> texture;
        if (isTextured())
            texture.emplace();
        // Deliberate: the program draws in whatever stipple GL has.
        if (m_space == Model && usesProgram(texture))
            drawWithProgram(lines);
        else
            drawLinesFixed(lines, m_space == Screen, m_style);
    }
    ngl_set_line_width(width);
    m_count = 0;
}
