// What is drawn of a support is what is picked of it: both go through place().
#include "viewer/markers/supports.h"

#include <epoxy/gl.h>

#include <algorithm>
#include <cmath>

#include "viewer/markers/symbols.h"
#include "viewer/model/vectors.h"
#include "viewer/scene/sight.h"

namespace nruview {

namespace {

constexpr NgColorLong kColor = 0xFF2A6A0A; ///< a dark green that contours do not have
constexpr float kWidth_px = 1.5f;
constexpr double kLift_px = 24.0, kSnap_px = 3.0;
constexpr double kNearly = 0.9;
constexpr double kEndOn_px = 0.5; ///< a shorter line is seen as a point and has no symbol
constexpr int kDegPerRad = 180;

/// The kinds of the library's symbol functions.
enum PointKind { RollerSymbol = 10, PinSymbol = 9, ClampSymbol = 8, DiamondSymbol = 17, CrossSymbol = 18 };
enum OtherPointKind { RingSymbol = 19, StarSymbol = 21 };
enum LineKind { SpringSymbol = 11, TorsionSymbol = 12, DamperSymbol = 13, GroundSymbol = 20 };
enum AxisSize { Large = 0, Small = 1 };

using Pixel = std::array<int, 2>;

_NgPoint3Str pointOf(const Point& p) {
    return {p[0], p[1], p[2]};
}

double depthOf(const Point& p) {
    double x = 0.0, y = 0.0, depth = 0.0;
    ngl_transform_33(p[0], p[1], p[2], &x, &y, &depth);
    return depth;
}

/// Nearer to the viewer, but not before the near plane.
Point lifted(const Point& p) {
    const Point lift = -kLift_px * pixelLength(p) * sightAt(p);
    const double from = depthOf(p), to = depthOf(p + lift);
    return p + (to < 0.0 && from > 0.0 ? kNearly * from / (from - to) : 1.0) * lift;
}

/// What of a symbol lies before the near plane is drawn too, for the length of a block.
class DrawnToTheEye {
public:
    DrawnToTheEye() {
        if (m_isThere)
            glEnable(GL_DEPTH_CLAMP);
    }
    ~DrawnToTheEye() {
        if (m_isThere)
            glDisable(GL_DEPTH_CLAMP);
    }
    DrawnToTheEye(const DrawnToTheEye&) = delete;
    DrawnToTheEye& operator=(const DrawnToTheEye&) = delete;

private:
    const bool m_isThere = epoxy_gl_version() >= 32 || epoxy_has_gl_extension("GL_ARB_depth_clamp");
};

/// The library scales symbols by the length of a pixel, which in perspective is that at the near plane.
void scaleAt(const Point& p) {
    UtlSymSetOrthoScale(pixelLength(p));
}

bool placePoint(const Point& at, int kind, const Pixel* pixel) {
    const _NgPoint3Str p = pointOf(at);
    return (pixel ? utl_pick_point_symbol(&p, kind, (*pixel)[0], (*pixel)[1])
                  : utl_disp_point_symbol(&p, kind)) == 0;
}

bool placeLine(const Point& from, const Point& to, int kind, const Pixel* pixel) {
    const _NgPoint3Str ends[2] = {pointOf(from), pointOf(to)};
    return (pixel ? utl_pick_line_symbol(ends, kind, (*pixel)[0], (*pixel)[1])
                  : utl_disp_line_symbol(ends, kind)) == 0;
}

/// Of a pixel from the line between two points, in pixels.
double distanceFromLine(const Point& from, const Point& to, const Pixel& pixel) {
    const double part = nearestPart(rayThrough(pixel[0], pixel[1]), from, to);
    const auto [x, y] = windowPosition(from + part * (to - from));
    return std::hypot(x - pixel[0], y - pixel[1]);
}

/// A spring's symbol is drawn about the middle of its line, but picked from its start.
bool placeSpring(const Point& from, const Point& to, int kind, const Pixel* pixel) {
    const auto a = windowPosition(from), b = windowPosition(to);
    if (std::hypot(b[0] - a[0], b[1] - a[1]) < kEndOn_px)
        return false;
    if (!pixel)
        return placeLine(from, to, kind, nullptr) && placeLine(to, from, GroundSymbol, nullptr);
    const Point middle = 0.5 * (from + to);
    return distanceFromLine(from, to, *pixel) <= kSnap_px ||
           placeLine(middle, middle + (to - from), kind, pixel) || placeLine(to, from, GroundSymbol, pixel);
}

bool placeAxis(const Point& at, int axis, const Pixel* pixel) {
    const _NgPoint3Str p = pointOf(at);
    const int direction = 2 + 2 * axis;
    return (pixel ? utl_pick_axis_symbol(&p, direction, Small, (*pixel)[0], (*pixel)[1])
                  : utl_disp_axis_symbol(&p, direction, Small)) == 0;
}

/// The model's axes: turned from the view's by angles about x, then y, then z (Tait & Bryan).
bool placeFrame(const Point& at, const Pixel* pixel) {
    const auto turn = [](int row, int column) { return NglGetNglInfo()->modelView[column][row]; };
    const double sine = std::clamp(turn(0, 2), -1.0, 1.0);
    const bool isLocked = std::abs(sine) > 1.0 - 1e-9; // x and z turn about one axis
    const double toDeg = kDegPerRad / std::acos(-1.0);
    const double anglesDeg[3] = {
        toDeg * (isLocked ? std::atan2(turn(2, 1), turn(1, 1)) : std::atan2(-turn(1, 2), turn(2, 2))),
        toDeg * std::asin(sine), isLocked ? 0.0 : toDeg * std::atan2(-turn(0, 1), turn(0, 0))};
    const int axes[3] = {2, 1, 0}; // the library begins with the last
    const double inOrder[3] = {anglesDeg[2], anglesDeg[1], anglesDeg[0]};
    const _NgPoint3Str p = pointOf(at);
    return (pixel ? utl_pick_orient_symbol(&p, 2, axes, inOrder, Large, (*pixel)[0], (*pixel)[1])
                  : utl_disp_orient_symbol(&p, 2, axes, inOrder, Large)) == 0;
}

int pointKind(SupportKind kind) {
    switch (kind) {
    case SupportKind::Pin:
        return PinSymbol;
    case SupportKind::Roller:
        return RollerSymbol;
    case SupportKind::Diamond:
        return DiamondSymbol;
    case SupportKind::Cross:
        return CrossSymbol;
    case SupportKind::Ring:
        return RingSymbol;
    case SupportKind::Star:
        return StarSymbol;
    default:
        return ClampSymbol;
    }
}

int springKind(SupportKind kind) {
    return kind == SupportKind::Spring    ? SpringSymbol
           : kind == SupportKind::Torsion ? TorsionSymbol
                                          : DamperSymbol;
}

/// Draws, or tests the pixel.
bool place(const Support& support, const Pixel* pixel) {
    const Point at = lifted(support.at);
    scaleAt(at);
    switch (support.kind) {
    case SupportKind::Frame:
        return placeFrame(at, pixel);
    case SupportKind::Axis:
        return placeAxis(at, support.axis, pixel);
    case SupportKind::Spring:
    case SupportKind::Torsion:
    case SupportKind::Damper:
        return placeSpring(at, lifted(support.ground), springKind(support.kind), pixel);
    default:
        return placePoint(at, pointKind(support.kind), pixel);
    }
}

/// How far from its points a symbol reaches.
double extent_px(SupportKind kind) {
    return kSnap_px + (kind == SupportKind::Frame || kind == SupportKind::Axis ? 33.0
                       : kind >= SupportKind::Spring                           ? 13.0
                                                                               : 24.0);
}

void useSymbols() {
    const std::span<utl_symbols> list = symbolList();
    UtlSetSymbolList(list.data(), static_cast<std::uint16_t>(list.size()));
    UtlSetSymPickSnapValue(static_cast<int>(kSnap_px));
    UtlSetSpringDrawMode(1); // however short their line is in the view
}

} // namespace

void drawSupports(const std::vector<Support>& supports) {
    if (supports.empty())
        return;
    useSymbols();
    const DrawnToTheEye clamp;
    ngl_set_color_long(kColor);
    glLineWidth(kWidth_px);
    for (const Support& support : supports)
        place(support, nullptr);
    glLineWidth(1.0f);
}

/// The library's snap test follows steep segments far beyond their ends.
bool isSupportAt(const Support& support, int x, int y) {
    useSymbols();
    const Pixel pixel = {x, y};
    return distanceFromLine(lifted(support.at), lifted(support.ground), pixel) <= extent_px(support.kind) &&
           place(support, &pixel);
}

Point symbolPlace(const Support& support) {
    return lifted(support.at);
}

} // namespace nruview
