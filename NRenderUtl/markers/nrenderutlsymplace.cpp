// Where symbols are placed: one worker each for point, line, axis and orientation symbols, which draws or
// picks with the target that it is given. A worker leaves the view by nullifying it and goes on in the view's
// own space, whose units are the model's.
#include <cmath>
#include <optional>

#include "NRenderUtl/gl/nglrecord.h"
#include "NRenderUtl/gl/stateguards.h"
#include "NRenderUtl/host/hostmath.h"
#include "NRenderUtl/markers/nrenderutlsym.h"

namespace {

enum Result { Done = 0, Nothing = -1, NotKnown = -2, NotInList = -3 };

constexpr int kNoSlot = -1;
constexpr double kPi = 3.1415927410125732; // of single precision, as hosts' symbol data were tuned with
constexpr double kPointsAtViewer = 1e-4;   // pixels

double degrees(double radians) {
    return radians * 180.0 / kPi;
}

_NgPoint3Str viewPoint(const _NgPoint3Str& model) {
    _NgPoint3Str p;
    NglTransform33p(model, nglRecord().live.modelView, p);
    return p;
}

_NgPoint2Str screenPoint(const _NgPoint3Str& model) {
    _NgPoint2Str p;
    ngl_transform_32(model.x, model.y, model.z, &p.x, &p.y);
    return p;
}

bool isInDepthRange(const _NgPoint3Str& view) {
    const NgMatrix& p = nglRecord().live.projection;
    const double z = p[0][2] * view.x + p[1][2] * view.y + p[2][2] * view.z + p[3][2];
    const double w = p[0][3] * view.x + p[1][3] * view.y + p[2][3] * view.z + p[3][3];
    return std::abs(z) <= w;
}

/// The host's symbol of a slot, or the result that says why there is none.
struct Choice {
    const utl_symbols* symbol;
    Result failure;
};

Choice choose(int slot, const void* points, Result whenNotInList) {
    const SymbolState& state = symbolState();
    if (!state.list)
        return {nullptr, Nothing};
    if (slot == kNoSlot)
        return {nullptr, NotKnown};
    if (slot >= state.count)
        return {nullptr, whenNotInList};
    return {points ? &state.list[slot] : nullptr, Nothing};
}

SymbolPlace placeInView(const _NgPoint3Str& view) {
    SymbolPlace place = SymbolPlace::ofView();
    place.translate(view);
    return place;
}

int walk(SymbolTarget& target, const SymbolPlace& place, const utl_symbols& symbol,
         const SymbolParameters& parameters) {
    return walkSymbol(target, place, parameters, symbol.partCount, symbol.parts);
}

// --- point symbols -----------------------------------------------------------------------------------------

int pointSlot(int kind) {
    switch (kind) {
    case 8:
    case 16:
        return 6;
    case 9:
        return 5;
    case 10:
        return 4;
    case 17:
        return 9;
    case 18:
        return 10;
    case 19:
        return 11;
    case 21:
        return 13;
    default:
        return kNoSlot;
    }
}

/// At z = 0, but not where that would be clipped away, as in perspective or with the eye outside the model.
_NgPoint3Str pointPlace(const _NgPoint3Str& model) {
    const _NgPoint3Str view = viewPoint(model), flat{view.x, view.y, 0.0};
    return isInDepthRange(flat) ? flat : view;
}

int placePoint(SymbolTarget& target, const _NgPoint3Str* point, int kind) {
    // Deliberate: a list that is too short counts as an unknown kind; hosts tell point symbols apart by it.
    const Choice choice = choose(pointSlot(kind), point, NotKnown);
    if (!choice.symbol)
        return choice.failure;
    target.useRecord();
    const double size = 0.5;
    return walk(target, placeInView(pointPlace(*point)), *choice.symbol, {&size, 1});
}

// --- axis and orientation symbols --------------------------------------------------------------------------

struct SizeMode {
    int slot;
    SymbolParameters parameters;
};

SizeMode sizeOf(int mode) {
    static const double large[] = {1.5, 1.5}, small[] = {1.0, 1.0, 1.0};
    if (mode == 0)
        return {7, {large, 2}};
    return {mode == 1 ? 3 : kNoSlot, {small, 3}};
}

_NgPoint3Str unitVector(int direction) {
    const double sign = direction % 2 == 0 ? 1.0 : -1.0;
    switch (direction / 2) {
    case 1:
        return {sign, 0, 0};
    case 2:
        return {0, sign, 0};
    default:
        return {0, 0, sign};
    }
}

int placeAxis(SymbolTarget& target, const _NgPoint3Str* point, int direction, int mode) {
    const SizeMode size = sizeOf(mode);
    const bool isDirection = direction >= 2 && direction <= 7;
    const Choice choice = choose(isDirection ? size.slot : kNoSlot, point, NotInList);
    if (!choice.symbol)
        return choice.failure;
    const _NgPoint2Str o = screenPoint({}), d = screenPoint(unitVector(direction));
    const double right = d.x - o.x, up = o.y - d.y;
    SymbolPlace place = placeInView(viewPoint(*point));
    if (std::abs(right) <= kPointsAtViewer && std::abs(up) <= kPointsAtViewer)
        place.rotate(90.0, 'y');
    else
        place.rotate(degrees(std::atan2(up, right)), 'z');
    return walk(target, place, *choice.symbol, size.parameters);
}

struct Turns {
    int last;
    const int* axes;
    const double* anglesDeg;
};

int placeOrientation(SymbolTarget& target, const _NgPoint3Str* point, const Turns& turns, int mode) {
    const SizeMode size = sizeOf(mode);
    const bool isComplete = turns.last < 0 || (turns.axes && turns.anglesDeg);
    const Choice choice = choose(size.slot, isComplete ? point : nullptr, NotInList);
    if (!choice.symbol)
        return choice.failure;
    SymbolPlace place = placeInView(viewPoint(*point));
    for (int k = turns.last; k >= 0; --k)
        if (turns.axes[k] >= 0 && turns.axes[k] <= 2)
            place.rotate(turns.anglesDeg[k], "xyz"[turns.axes[k]]);
    return walk(target, place, *choice.symbol, size.parameters);
}

// --- line symbols ------------------------------------------------------------------------------------------

int lineSlot(int kind) {
    switch (kind) {
    case 1:
        return 3;
    case 11:
        return 0;
    case 12:
        return 1;
    case 13:
        return 2;
    case 14:
        return 14;
    case 15:
        return 8;
    case 20:
        return 12;
    case 22:
        return 15;
    default:
        return kNoSlot;
    }
}

bool isSpring(int slot) {
    return slot <= 2;
}

double nominalLength(const utl_symbols& symbol, int part) {
    return symbol.parts && part < symbol.partCount ? symbol.parts[part].nominalLength : 0.0;
}

struct LineParameters {
    double values[3];
    int count;
    SymbolParameters view() const { return {values, count}; }
};

/// Both ends of a line symbol stretched by s.
LineParameters stretched(double s) {
    return {{s, 1.0, s}, 3};
}

/// Nothing when a spring does not fit and is not to be drawn. The length is in pixels, for slot 14 in model
/// units.
std::optional<LineParameters> lineParameters(int slot, const utl_symbols& symbol, double length,
                                             bool isDrawing) {
    const double l0 = nominalLength(symbol, 0), l1 = nominalLength(symbol, 1);
    if (slot == 8)
        return LineParameters{{length / l0}, 1};
    if (slot == 12)
        return LineParameters{{1.0, 1.0}, 2};
    if (slot == 15)
        return LineParameters{{0.0, 1.0, 0.0}, 3};
    const double s = (length - l1) / (2.0 * l0);
    if (slot == 14) {
        const double pixel = symbolState().orthoScale;
        return LineParameters{{s / pixel, 1.0 / pixel, s / pixel}, 3};
    }
    if (!isSpring(slot) || length - l1 >= 0.0 || !isDrawing)
        return stretched(
            s); // deliberate for springs that are picked: their hits do not depend on a drawing mode
    if (symbolState().springDrawMode == 0)
        return std::nullopt;
    return stretched((0.0 - l1) / (2.0 * l0)); // deliberate: a spring without length, folded over its coil
}

double screenLength(const _NgPoint3Str& p, const _NgPoint3Str& q) {
    const NglProjection record = nglRecordProjection(nglRecord().live);
    const _NgPoint3Str a = nglProject(record, p), b = nglProject(record, q);
    return std::hypot(b.x - a.x, b.y - a.y);
}

double lineAngleDeg(double dx, double dy) {
    const double a = std::atan2(dy, dx);
    return degrees(a / 48000 + a); // deliberate: hosts' symbol data were drawn with this excess
}

struct Contour {
    float c1, c2;
};

void drawLine(const _NgPoint3Str points[2], const std::optional<Contour>& contour) {
    if (!contour)
        return ngl_batch_line_3d_s(&points[0], &points[1], 0);
    const CurrentStateGuard current;
    RenderingDrawLine(&points[0], &points[1], contour->c1, contour->c2, 0, 0);
}

int placeLine(SymbolTarget& target, const _NgPoint3Str points[2], int kind,
              const std::optional<Contour>& contour) {
    const int slot = lineSlot(kind);
    const Choice choice = choose(slot, points, NotInList);
    if (!choice.symbol)
        return choice.failure;
    const bool isDrawnSpring = isSpring(slot) && target.isDrawing();
    if (isDrawnSpring)
        drawLine(points, contour);
    NgMatrix& matrix = symbolState().matrix;
    ngl_get_3d_matrix(matrix);
    _NgPoint3Str p, q;
    NglTransform33p(points[0], matrix, p);
    NglTransform33p(points[1], matrix, q);
    const _NgPoint3Str d = MathDifference(q, p);
    // Deliberate: a line seen end on is done, also when it is picked; hosts pick its points then.
    if (std::abs(d.x) <= 1e-5 && std::abs(d.y) <= 1e-4)
        return Done;
    const double length = slot == 14 ? std::hypot(d.x, d.y) : screenLength(points[0], points[1]);
    const auto parameters = lineParameters(slot, *choice.symbol, length, target.isDrawing());
    if (!parameters)
        return Done;
    // Deliberate: springs are drawn about the middle of their line, and picked from its start.
    SymbolPlace place = placeInView(isDrawnSpring ? MathScaled(MathAdd(p, q), 0.5) : p);
    place.rotate(lineAngleDeg(d.x, d.y), 'z');
    return walk(target, place, *choice.symbol, parameters->view());
}

/// Draws or picks with one of the workers.
template <class Worker, class... Arguments>
int draw(const Worker& worker, const Arguments&... arguments) {
    SymbolDrawer drawer;
    return worker(drawer, arguments...);
}

template <class Worker, class... Arguments>
int pick(int x, int y, const Worker& worker, const Arguments&... arguments) {
    SymbolPicker picker(x, y);
    return worker(picker, arguments...);
}

} // namespace

int utl_disp_point_symbol(const _NgPoint3Str* point, int kind) {
    return draw(placePoint, point, kind);
}

int utl_pick_point_symbol(const _NgPoint3Str* point, int kind, int x, int y) {
    return pick(x, y, placePoint, point, kind);
}

int utl_disp_line_symbol(const _NgPoint3Str points[2], int kind) {
    return draw(placeLine, points, kind, std::nullopt);
}

int utl_pick_line_symbol(const _NgPoint3Str points[2], int kind, int x, int y) {
    return pick(x, y, placeLine, points, kind, std::nullopt);
}

int utl_disp_line_symbol_WithContour(const _NgPoint3Str points[2], int kind, float c1, float c2) {
    return draw(placeLine, points, kind, Contour{c1, c2});
}

int utl_disp_axis_symbol(const _NgPoint3Str* point, int direction, int sizeMode) {
    return draw(placeAxis, point, direction, sizeMode);
}

int utl_pick_axis_symbol(const _NgPoint3Str* point, int direction, int sizeMode, int x, int y) {
    return pick(x, y, placeAxis, point, direction, sizeMode);
}

int utl_disp_orient_symbol(const _NgPoint3Str* point, int last, const int axes[], const double anglesDeg[],
                           int sizeMode) {
    return draw(placeOrientation, point, Turns{last, axes, anglesDeg}, sizeMode);
}

int utl_pick_orient_symbol(const _NgPoint3Str* point, int last, const int axes[], const double anglesDeg[],
                           int sizeMode, int x, int y) {
    return pick(x, y, placeOrientation, point, Turns{last, axes, anglesDeg}, sizeMode);
}
