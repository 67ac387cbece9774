// The state of symbols, and the interpreter that walks a symbol's parts to draw or to hit-test them.
#include "NRenderUtl/markers/nrenderutlsym.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "NRenderUtl/gl/nglrecord.h"
#include "NRenderUtl/gl/stateguards.h"
#include "NRenderUtl/host/hostmath.h"
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

int walkSymbol(SymbolTarget& target, const SymbolParameters& parameters, int partCount,
               const utl_parametric_symbol_data_s* parts) {
    storeRegister(0, {});
    _NgPoint3Str at{};
    double previousScale = 1.0;
    for (int i = 0; parts && i < partCount; ++i) {
        const double scale = partScale(parameters, parts[i].parameter);
        if (!std::isfinite(scale))
            continue;
        // Each offset is in units of the part before it.
        at = MathAdd(at, MathScaled(registerOffset(parts[i].offsetRegister), previousScale));
        SymbolFrame frame;
        frame.translate(at);
        frame.scale(scale);
        if (visitAll(target, parts[i]))
            return 0;
        previousScale = scale;
    }
    return target.isDrawing() ? 0 : -1;
}

// --- frames ------------------------------------------------------------------------------------------------

SymbolFrame::SymbolFrame() {
    ngl_get_3d_matrix(m_outer);
    ngl_push_3d_matrix();
}

SymbolFrame::~SymbolFrame() {
    ngl_pop_3d_matrix();
    std::copy_n(&m_outer[0][0], 16, &nglRecord().live.modelView[0][0]);
}

void SymbolFrame::multiply(double matrix[4][4]) {
    NgMatrix product;
    NglMultiply(nglRecord().live.modelView, matrix, product);
    ngl_mult_3d_matrix(matrix);
    std::copy_n(&product[0][0], 16, &nglRecord().live.modelView[0][0]);
}

void SymbolFrame::nullifyView() {
    NgMatrix product;
    NglMultiply(nglRecord().live.modelView, nglRecord().live.inverseModelView, product);
    ngl_nullify_view();
    std::copy_n(&product[0][0], 16, &nglRecord().live.modelView[0][0]);
}

void SymbolFrame::translate(const _NgPoint3Str& offset) {
    NgMatrix m;
    NglSetTranslation(m, offset);
    multiply(m);
}

void SymbolFrame::scale(double factor) {
    NgMatrix m;
    NglSetScale(m, factor, factor, factor);
    multiply(m);
}

void SymbolFrame::rotate(double angleDeg, int axis) {
    NgMatrix m;
    if (NglSetRotation(m, angleDeg,
                       {axis == 'x' ? 1.0 : 0.0, axis == 'y' ? 1.0 : 0.0, axis == 'z' ? 1.0 : 0.0}) == 0)
        multiply(m);
}

// --- drawing and picking of primitives ---------------------------------------------------------------------

bool SymbolDrawer::line(const _NgPoint3Str& p, const _NgPoint3Str& q) {
    ngl_line_3d_s(&p, &q);
    return false;
}

bool SymbolDrawer::polyline(const _NgPoint3Str* points, int count) {
    ngl_polyline_3d_s(points, static_cast<std::uint64_t>(std::max(count, 0)));
    return false;
}

bool SymbolDrawer::polygon(const _NgPoint3Str* points, int count) {
    ngl_polygon_3d_s(points, static_cast<std::uint64_t>(std::max(count, 0)));
    return false;
}

bool SymbolPicker::hits(const _NgPoint3Str& p, const _NgPoint3Str& q) const {
    double x1, y1, x2, y2;
    ngl_transform_32(p.x, p.y, p.z, &x1, &y1);
    ngl_transform_32(q.x, q.y, q.z, &x2, &y2);
    return UtlCheckLineSnap(symbolState().snapPixels, m_x, m_y, x1, y1, x2, y2, nullptr, nullptr) == 0;
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
    const MatrixModeGuard mode;
    SymbolDrawer drawer;
    walkSymbol(drawer, {parameters, std::numeric_limits<int>::max()}, partCount, parts);
}
