// Plane drawings about (0, 0), which is where a symbol's point is. Point symbols are in half pixels, for the
// library draws them with a scale of 0.5, the others in pixels. Horizontal lines run from left to right: so
// the library hits them when it picks. It picks outlines: a shape too large to be hit all over has lines
// inside.
#include "viewer/markers/symbols.h"

#include <array>

namespace nruview {

namespace {

using Point3 = _NgPoint3Str;
using Primitive = utl_symbol_primitive_s;
using Part = utl_parametric_symbol_data_s;

constexpr Primitive line(double x1, double y1, double x2, double y2) {
    return {1, 0, {.points = {{x1, y1, 0.0}, {x2, y2, 0.0}}}};
}

constexpr Primitive lineAcross(double z1, double z2) {
    return {1, 0, {.points = {{0.0, 0.0, z1}, {0.0, 0.0, z2}}}};
}

template <std::size_t n>
constexpr Primitive polyline(const std::array<Point3, n>& points) {
    return {2, n, {.array = points.data()}};
}

/// The first point stands again behind the last.
template <std::size_t n>
constexpr Primitive filled(const std::array<Point3, n>& points) {
    return {3, n - 1, {.array = points.data()}};
}

/// What a later part refers to as the place where it starts.
constexpr Primitive startOf(int part, double x) {
    return {0, static_cast<std::int16_t>(part), {.points = {{x, 0.0, 0.0}, {}}}};
}

template <std::size_t n>
constexpr Part part(int parameter, int start, const std::array<Primitive, n>& primitives,
                    double nominalLength = 0.0) {
    return {static_cast<std::int16_t>(parameter),
            static_cast<std::int16_t>(start),
            n,
            primitives.data(),
            nominalLength,
            nullptr};
}

constexpr Part emptyPart(int parameter, double nominalLength) {
    return {static_cast<std::int16_t>(parameter), 0, 0, nullptr, nominalLength, nullptr};
}

/// A regular octagon from the right on, counter-clockwise and closed.
constexpr std::array<Point3, 9> octagon(double x, double y, double radius) {
    const double half = 0.70710678118654752 * radius;
    return {{{x + radius, y, 0},
             {x + half, y + half, 0},
             {x, y + radius, 0},
             {x - half, y + half, 0},
             {x - radius, y, 0},
             {x - half, y - half, 0},
             {x, y - radius, 0},
             {x + half, y - half, 0},
             {x + radius, y, 0}}};
}

// --- springs between two points: slots 0 to 2 --------------------------------------------------------------
//
// The library draws the line itself and puts the symbol about its middle. The first part only has a length,
// by which the library finds out whether the symbol fits.

constexpr double kLead = 8.0;

/// Slot 0: a spring, a coil seen from the side.
constexpr std::array<Point3, 8> kCoil = {
    {{-12, 0, 0}, {-10, 6, 0}, {-6, -6, 0}, {-2, 6, 0}, {2, -6, 0}, {6, 6, 0}, {10, -6, 0}, {12, 0, 0}}};
constexpr std::array kSpringBody = {polyline(kCoil)};
constexpr std::array kSpring = {emptyPart(0, kLead), part(1, 0, kSpringBody, 24.0)};

/// Slot 1: a torsion spring, a spiral.
constexpr std::array<Point3, 13> kSpiral = {{{1, 0, 0},
                                             {1.4, 1.4, 0},
                                             {0, 3, 0},
                                             {-3, 3, 0},
                                             {-5, 0, 0},
                                             {-4, -4, 0},
                                             {0, -6, 0},
                                             {5, -5, 0},
                                             {8, 0, 0},
                                             {6, 6, 0},
                                             {0, 9, 0},
                                             {-7, 7, 0},
                                             {-10, 0, 0}}};
constexpr std::array kTorsionBody = {polyline(kSpiral)};
constexpr std::array kTorsion = {emptyPart(0, kLead), part(1, 0, kTorsionBody, 20.0)};

/// Slot 2: a damper, a piston in a cylinder that is open to the second point.
constexpr std::array kDamperBody = {line(-9, 6, 9, 6), line(-9, -6, 9, -6), line(-9, -6, -9, 6),
                                    line(2, -5, 2, 5), line(3, -5, 3, 5)};
constexpr std::array kDamper = {emptyPart(0, kLead), part(1, 0, kDamperBody, 18.0)};

// --- axes: slots 3 and 7 -----------------------------------------------------------------------------------

/// Slot 3: an arrow along the axis; between two points a line with an arrow head in its middle.
constexpr std::array<Point3, 4> kSmallHead = {{{0, -3.5, 0}, {8, 0, 0}, {0, 3.5, 0}, {0, -3.5, 0}}};
constexpr std::array kSmallShaft = {line(0, 0, 12, 0), startOf(1, 12)};
constexpr std::array kSmallHeadBody = {filled(kSmallHead), startOf(2, 8)};
constexpr std::array kSmallTail = {line(0, 0, 12, 0)};
constexpr std::array kSmallAxis = {part(0, 0, kSmallShaft, 12.0), part(1, 1, kSmallHeadBody, 8.0),
                                   part(2, 2, kSmallTail, 12.0)};

/// Slot 7: an orientation. The arrow is its x axis, the longer stroke y, the shorter one z.
constexpr std::array<Point3, 4> kHeadFlat = {{{0, -2.5, 0}, {6, 0, 0}, {0, 2.5, 0}, {0, -2.5, 0}}};
constexpr std::array<Point3, 4> kHeadUpright = {{{0, 0, -2.5}, {6, 0, 0}, {0, 0, 2.5}, {0, 0, -2.5}}};
constexpr std::array kFrameAxes = {line(0, 0, 16, 0), line(0, 0, 0, 14), lineAcross(0, 8), startOf(1, 16)};
constexpr std::array kFrameHead = {filled(kHeadFlat), filled(kHeadUpright)};
constexpr std::array kFrame = {part(0, 0, kFrameAxes, 16.0), part(1, 1, kFrameHead, 6.0)};

// --- points: slots 4, 5, 6, 9, 10, 11 and 13 ---------------------------------------------------------------

constexpr std::array<Point3, 4> kTriangle = {{{-18, -28, 0}, {18, -28, 0}, {0, 0, 0}, {-18, -28, 0}}};

/// Slot 4: a roller, a triangle on wheels, which may move along the ground.
constexpr auto kLeftWheel = octagon(-10, -34, 6), kRightWheel = octagon(10, -34, 6);
constexpr std::array kRollerBody = {polyline(kTriangle), polyline(kLeftWheel), polyline(kRightWheel),
                                    line(-22, -41, 22, -41)};
constexpr std::array kRoller = {part(0, 0, kRollerBody)};

/// Slot 5: a pin, a triangle on hatched ground, which may turn.
constexpr std::array kPinBody = {polyline(kTriangle),     line(-22, -28, 22, -28), line(-24, -38, -14, -28),
                                 line(-14, -38, -4, -28), line(-4, -38, 6, -28),   line(6, -38, 16, -28)};
constexpr std::array kPin = {part(0, 0, kPinBody)};

/// Slot 6: a clamp, a block with crossed corners, which holds everything.
constexpr std::array<Point3, 5> kBlock = {{{-8, -8, 0}, {8, -8, 0}, {8, 8, 0}, {-8, 8, 0}, {-8, -8, 0}}};
constexpr std::array kClampBody = {filled(kBlock), line(-15, -15, 15, 15), line(-15, 15, 15, -15)};
constexpr std::array kClamp = {part(0, 0, kClampBody)};

/// Slot 9: a diamond.
constexpr std::array<Point3, 5> kRhomb = {{{0, -14, 0}, {14, 0, 0}, {0, 14, 0}, {-14, 0, 0}, {0, -14, 0}}};
constexpr std::array kDiamondBody = {filled(kRhomb), line(-14, 0, 14, 0), line(0, -14, 0, 14)};
constexpr std::array kDiamond = {part(0, 0, kDiamondBody)};

/// Slot 10: a cross.
constexpr std::array kCrossBody = {line(-13, -13, 13, 13), line(-13, 13, 13, -13)};
constexpr std::array kCross = {part(0, 0, kCrossBody)};

/// Slot 11: a ring.
constexpr auto kCircle = octagon(0, 0, 14);
constexpr std::array kRingBody = {polyline(kCircle)};
constexpr std::array kRing = {part(0, 0, kRingBody)};

/// Slot 13: a star.
constexpr std::array kStarBody = {line(-15, 0, 15, 0), line(0, -15, 0, 15), line(-11, -11, 11, 11),
                                  line(-11, 11, 11, -11)};
constexpr std::array kStar = {part(0, 0, kStarBody)};

// --- other lines: slots 8, 12, 14 and 15 -------------------------------------------------------------------

/// Slot 8: a rigid link, two strokes that grow with the distance of the points.
constexpr std::array kLinkBody = {line(0, 2, 100, 2), line(0, -2, 100, -2), line(0, -4, 0, 4),
                                  line(100, -4, 100, 4)};
constexpr std::array kLink = {part(0, 0, kLinkBody, 100.0)};

/// Slot 12: the ground at the first point, hatched on the side that is away from the second.
constexpr std::array kGroundBar = {line(0, -9, 0, 9)};
constexpr std::array kGroundHatch = {line(-5, -11, 0, -6), line(-5, -5, 0, 0), line(-5, 1, 0, 6)};
constexpr std::array kGround = {part(0, 0, kGroundBar), part(1, 0, kGroundHatch)};

/// Slot 14: a spring whose coil keeps its size in the model, in model units, from end to end.
constexpr std::array<Point3, 6> kModelCoilShape = {
    {{0, 0, 0}, {0.005, 0.015, 0}, {0.015, -0.015, 0}, {0.025, 0.015, 0}, {0.035, -0.015, 0}, {0.04, 0, 0}}};
constexpr std::array kModelLead = {line(0, 0, 0.01, 0), startOf(1, 0.01)};
constexpr std::array kModelCoil = {polyline(kModelCoilShape), startOf(2, 0.04)};
constexpr std::array kModelEnd = {line(0, 0, 0.01, 0)};
constexpr std::array kModelSpring = {part(0, 0, kModelLead, 0.01), part(1, 1, kModelCoil, 0.04),
                                     part(2, 2, kModelEnd, 0.01)};

/// Slot 15: a hinge at the first point; the library gives its outer parts no size.
constexpr auto kHingeRing = octagon(0, 0, 5);
constexpr std::array kHingeBody = {polyline(kHingeRing)};
constexpr std::array kHinge = {emptyPart(0, 1.0), part(1, 0, kHingeBody, 10.0), emptyPart(2, 1.0)};

template <std::size_t n>
utl_symbols symbol(const std::array<Part, n>& parts) {
    return {nullptr, n, parts.data()};
}

} // namespace

std::span<utl_symbols> symbolList() {
    static std::array list = {symbol(kSpring), symbol(kTorsion), symbol(kDamper),      symbol(kSmallAxis),
                              symbol(kRoller), symbol(kPin),     symbol(kClamp),       symbol(kFrame),
                              symbol(kLink),   symbol(kDiamond), symbol(kCross),       symbol(kRing),
                              symbol(kGround), symbol(kStar),    symbol(kModelSpring), symbol(kHinge)};
    return list;
}

} // namespace nruview
