// The state of symbols, and the interpreter that walks a symbol's parts to draw or to hit-test them.
#include "NRenderUtl/markers/nrenderutlsym.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <utility>

#include "NRenderUtl/gl/immediate.h"
#include "NRenderUtl/gl/nglrecord.h"
#include "NRenderUtl/host/hostgl.h"
#include "NRenderUtl/host/nhost.h"

namespace {

enum PrimitiveKind { StoreOffset = 0, Line = 1, Polyline = 2, Polygon = 3, OtherPolygon = 4 };

// --- offset registers --------------------------------------------------------------------------------------

bool growRegisters(SymbolRegisters& registers, int capacity) {
    auto* values =
        static_cast<_NgPoint3Str*>(NHOST_ALLOCATE(static_cast<std::size_t>(capacity) * sizeof(_NgPoint3Str)));
    if (!values)
        return false;
    std::fill_n(std::copy_n(registers.values, registers.capacity, values), capacity - registers.capacity,
                _NgPoint3Str{});
    NHostFree(registers.values);
    registers.values = values;
    registers.capacity = capacity;
    return true;
}

void storeRegister(int index, const _NgPoint3Str& offset) {
    SymbolRegisters& registers = symbolState().registers;
    if (index < 0 || (index >= registers.capacity && !growRegisters(registers, index + 1)))
        return;
    registers.values[index] = offset;
    registers.highest = std::max(registers.highest, index);
}

/// No offset for a register that was never stored: symbol data must not refer to one.
_NgPoint3Str registerOffset(int index) {
    const SymbolRegisters& registers = symbolState().registers;
    return index >= 0 && index <= registers.highest ? registers.values[index] : _NgPoint3Str{};
}

// --- interpreter -------------------------------------------------------------------------------------------

bool visit(SymbolTarget& target, const utl_symbol_primitive_s& primitive) {
    switch (primitive.kind) {
    case StoreOffset:
        storeRegister(primitive.count, primitive.data.points[0]);
        return false;
    case Line:
        return target.line(primitive.data.points[0], primitive.data.points[1]);
    case Polyline:
        return primitive.data.array && target.polyline(primitive.data.array, primitive.count);
    case Polygon:
    case OtherPolygon:
        return primitive.data.array && target.polygon(primitive.data.array, primitive.count);
    default:
        return false;
    }
}

bool visitAll(SymbolTarget& target, const utl_parametric_symbol_data_s& part) {
    for (int i = 0; part.primitives && i < part.primitiveCount; ++i)
        if (visit(target, part.primitives[i]))
            return true;
    return false;
}

/// Model length of a unit of a part; not finite for a part that is left out.
double partScale(const SymbolParameters& parameters, int index) {
    if (index < 0 || index >= parameters.count)
        return std::numeric_limits<double>::quiet_NaN();
    return symbolState().orthoScale * parameters.values[index];
}

} // namespace

SymbolState& symbolState() {
    static SymbolState state;
    return state;
}

int walkSymbol(SymbolTarget& target, const SymbolPlace& place, const SymbolParameters& parameters,
               int partCount, const utl_parametric_symbol_data_s* parts) {
    storeRegister(0, {});
    _NgPoint3Str at{};
    double previousScale = 1.0;
    for (int i = 0; parts && i < partCount; ++i) {
        const double scale = partScale(parameters, parts[i].parameter);
        if (!std::isfinite(scale))
            continue;
        // Each offset is in units of the part before it.
        at = MathAdd(at, MathScaled(registerOffset(parts[i].offsetRegister), previousScale));
        SymbolPlace part = place;
        part.translate(at);
        part.scale(scale);
        target.enter(part);
        const bool hit = visitAll(target, parts[i]);
        target.leave();
        if (hit)
            return 0;
        previousScale = scale;
    }
    return target.isDrawing() ? 0 : -1;
}

// --- places ------------------------------------------------------------------------------------------------

SymbolPlace SymbolPlace::ofView() {
    SymbolPlace place;
    std::copy_n(&nglRecord().live.inverseModelView[0][0], 16, &place.m_matrix[0][0]);
    return place;
}

void SymbolPlace::translate(const _NgPoint3Str& offset) {
    for (int r = 0; r < 4; ++r)
        m_matrix[3][r] += m_matrix[0][r] * offset.x + m_matrix[1][r] * offset.y + m_matrix[2][r] * offset.z;
}

void SymbolPlace::scale(double factor) {
    for (int c = 0; c < 3; ++c)
        for (double& element : m_matrix[c])
            element *= factor;
}

void SymbolPlace::rotate(double angleDeg, int axis) {
    if (axis < 'x' || axis > 'z')
        return;
    // Turns the axis after this one towards the one after that.
    const int first = (axis - 'x' + 1) % 3, second = (first + 1) % 3;
    const double angleRad = angleDeg * (std::numbers::pi / 180), c = std::cos(angleRad),
                 s = std::sin(angleRad);
    for (int r = 0; r < 4; ++r) {
        const double u = m_matrix[first][r], v = m_matrix[second][r];
        m_matrix[first][r] = c * u + s * v;
        m_matrix[second][r] = c * v - s * u;
    }
}

// --- drawing -----------------------------------------------------------------------------------------------

namespace {

bool usesProgram() {
    static const bool hasAssembly = epoxy_has_gl_extension("GL_ARB_vertex_program"); // asks for all by name
    const int version = glVersion();
    GLint program = 0, pipeline = 0;
    if (version >= 20)
        glGetIntegerv(GL_CURRENT_PROGRAM, &program);
    if (version >= 41)
        glGetIntegerv(GL_PROGRAM_PIPELINE_BINDING, &pipeline);
    return program != 0 || pipeline != 0 || (hasAssembly && glIsEnabled(GL_VERTEX_PROGRAM_ARB));
}

/// Whether only the positions of vertices in the window count: light goes by normals, generated texture
/// coordinates by the vertices as they are sent, and programs by what they like.
bool onlyPositionsCount() {
    return !glIsEnabled(GL_LIGHTING) && !glIsEnabled(GL_TEXTURE_GEN_S) && !glIsEnabled(GL_TEXTURE_GEN_T) &&
           !usesProgram();
}

/// Into a display list, which knows nothing of the state at its call.
bool drawsIntoList() {
    GLint list;
    glGetIntegerv(GL_LIST_INDEX, &list);
    return list != 0;
}

bool glHasModelViewOfRecord() {
    float record[4][4], gl[4][4];
    NglToFloat(nglRecord().live.modelView, record);
    glGetFloatv(GL_MODELVIEW_MATRIX, &gl[0][0]);
    return std::equal(&gl[0][0], &gl[0][0] + 16, &record[0][0]);
}

/// Whether points of a part can be sent in model space: it has no perspective of its own, and single
/// precision places them there as in the part's own space, to hundredths of a pixel.
bool fitsModelSpace(const NgMatrix& part) {
    const double projects =
        std::abs(part[0][3]) + std::abs(part[1][3]) + std::abs(part[2][3]) + std::abs(part[3][3] - 1);
    if (!(projects < 1e-9)) // beyond what inverting leaves
        return false;
    constexpr double kMostPixels = 32768; // 1/512 pixel is left
    const double most = kMostPixels * symbolState().orthoScale;
    const double* at = part[3];
    return std::abs(at[0]) < most && std::abs(at[1]) < most && std::abs(at[2]) < most;
}

} // namespace

void SymbolDrawer::readState() {
    m_anySpace = onlyPositionsCount() && !drawsIntoList();
    m_dashed = glIsEnabled(GL_LINE_STIPPLE);
}

void SymbolDrawer::useRecord() {
    m_fromRecord = drawsIntoList() || !glHasModelViewOfRecord();
}

void SymbolDrawer::enter(const SymbolPlace& part) {
    if (!std::exchange(m_ready, true))
        readState();
    if (m_anySpace && !m_fromRecord && fitsModelSpace(part.matrix())) {
        m_part = &part;
        return;
    }
    close();
    glGetIntegerv(GL_MATRIX_MODE, &m_matrixMode);
    ngl_push_3d_matrix();
    if (m_fromRecord)
        ngl_init_3d_matrix();
    NgMatrix matrix;
    std::copy_n(&part.matrix()[0][0], 16, &matrix[0][0]);
    ngl_mult_3d_matrix(matrix);
}

void SymbolDrawer::leave() {
    if (std::exchange(m_part, nullptr))
        return;
    close();
    ngl_pop_3d_matrix();
    glMatrixMode(static_cast<GLenum>(m_matrixMode));
}

void SymbolDrawer::send(const _NgPoint3Str& p) const {
    if (!m_part)
        return sendVertex(p);
    const NgMatrix& m = m_part->matrix();
    const auto row = [&](int r) {
        return static_cast<GLfloat>(m[0][r] * p.x + m[1][r] * p.y + m[2][r] * p.z + m[3][r]);
    };
    glVertex3f(row(0), row(1), row(2));
}

void SymbolDrawer::open() {
    if (!std::exchange(m_open, true))
        glBegin(GL_LINES);
}

void SymbolDrawer::close() {
    if (std::exchange(m_open, false))
        glEnd();
}

void SymbolDrawer::drawChain(unsigned primitive, const _NgPoint3Str* points, int count) {
    close();
    if (count > 0)
        drawVertices(primitive, static_cast<std::uint64_t>(count),
                     [=, this](std::uint64_t i) { send(points[i]); });
}

bool SymbolDrawer::line(const _NgPoint3Str& p, const _NgPoint3Str& q) {
    open();
    send(p);
    send(q);
    return false;
}

bool SymbolDrawer::polyline(const _NgPoint3Str* points, int count) {
    if (m_dashed)
        drawChain(GL_LINE_STRIP, points, count);
    else // as segments, which the driver joins with those before
        for (int i = 1; i < count; ++i)
            line(points[i - 1], points[i]);
    return false;
}

bool SymbolDrawer::polygon(const _NgPoint3Str* points, int count) {
    drawChain(GL_POLYGON, points, count);
    return false;
}

// --- picking -----------------------------------------------------------------------------------------------

SymbolPicker::SymbolPicker(int x, int y)
    : m_x(x), m_y(y), m_projection(nglRecordProjection(nglRecord().live)) {}

void SymbolPicker::enter(const SymbolPlace& part) {
    NgMatrix product;
    NglMultiply(nglRecord().live.modelView, part.matrix(), product);
    std::copy_n(&product[0][0], 16, m_projection.modelView);
}

bool SymbolPicker::hits(const _NgPoint3Str& p, const _NgPoint3Str& q) const {
    const _NgPoint3Str a = nglProject(m_projection, p), b = nglProject(m_projection, q);
    const double top = m_projection.viewport[3];
    return UtlCheckLineSnap(symbolState().snapPixels, m_x, m_y, a.x, top - a.y, b.x, top - b.y, nullptr,
                            nullptr) == 0;
}

bool SymbolPicker::hitsChain(const _NgPoint3Str* points, int segments) const {
    for (int i = 1; i <= segments; ++i)
        // Deliberate: a segment is tested at the depth of its start, as for the flat symbols that hosts draw.
        if (hits(points[i - 1], {points[i].x, points[i].y, points[i - 1].z}))
            return true;
    return false;
}

bool SymbolPicker::line(const _NgPoint3Str& p, const _NgPoint3Str& q) {
    return hits(p, q);
}

bool SymbolPicker::polyline(const _NgPoint3Str* points, int count) {
    return hitsChain(points, count - 1);
}

/// The array ends with its first point again, behind the points that are drawn.
bool SymbolPicker::polygon(const _NgPoint3Str* points, int count) {
    return hitsChain(points, count);
}

// --- public functions --------------------------------------------------------------------------------------

void UtlSymInit(const double* matrix, int /*unused*/, const float* scale) {
    SymbolState& state = symbolState();
    if (matrix) {
        std::copy_n(matrix, 16, &state.matrix[0][0]);
        state.initialised = true;
    }
    if (scale)
        state.orthoScale = *scale;
}

void UtlSetSymbolList(utl_symbols* list, std::uint16_t count) {
    symbolState().list = list;
    symbolState().count = count;
}

utl_symbols* UtlGetSymbolList() {
    return symbolState().list;
}

void UtlSymSetOrthoScale(double scale) {
    symbolState().orthoScale = static_cast<float>(scale);
}

double UtlSymGetOrthoScale() {
    return symbolState().orthoScale;
}

void UtlSetSymPickSnapValue(int pixels) {
    symbolState().snapPixels = pixels;
}

void UtlSetSpringDrawMode(int mode) {
    symbolState().springDrawMode = mode;
}

void utl_symbol_draw(const double* parameters, int partCount, const utl_parametric_symbol_data_s* parts) {
    if (!parameters)
        return;
    SymbolDrawer drawer;
    walkSymbol(drawer, {}, {parameters, std::numeric_limits<int>::max()}, partCount, parts);
}
