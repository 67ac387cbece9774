// Symbols by the segments that reach the window, by the pixels that they light and by the pixels that pick
// them.
#include <cmath>
#include <functional>
#include <utility>

#include "NRenderUtl/host/nhost.h"
#include "NRenderUtl/markers/nmarkers.h"
#include "tests/gl/testview.h"
#include "tests/support/subprocess.h"

using namespace nrutest;

namespace {

using Points = std::vector<_NgPoint3Str>;
using Primitives = std::vector<utl_symbol_primitive_s>;
using Parts = std::vector<utl_parametric_symbol_data_s>;

utl_symbol_primitive_s offsetTo(std::int16_t index, const _NgPoint3Str& offset) {
    return {0, index, {.points = {offset, {}}}};
}
utl_symbol_primitive_s lineOf(const _NgPoint3Str& p, const _NgPoint3Str& q) {
    return {1, 0, {.points = {p, q}}};
}
utl_symbol_primitive_s chainOf(std::int16_t kind, const Points& points, std::size_t count) {
    return {kind, static_cast<std::int16_t>(count), {.array = points.data()}};
}
utl_parametric_symbol_data_s partOf(std::int16_t parameter, std::int16_t offset, const Primitives& primitives,
                                    double nominalLength = 0) {
    return {parameter,         offset,        static_cast<std::int16_t>(primitives.size()),
            primitives.data(), nominalLength, nullptr};
}

/// Lead, coil and lead from the first point on, and the same about the middle.
struct Chain {
    const double u;
    const Points coil{{0, 0, 0}, {3 * u, 4 * u, 0}, {8 * u, -4 * u, 0}, {13 * u, 4 * u, 0}, {16 * u, 0, 0}};
    const Primitives lead{lineOf({}, {4 * u, 0, 0}), offsetTo(1, {4 * u, 0, 0})},
        middle{chainOf(2, coil, 5), offsetTo(2, {16 * u, 0, 0}), offsetTo(3, {-16 * u, 0, 0})},
        toLeft{offsetTo(1, {-8 * u, 0, 0})}, backward{lineOf({}, {-4 * u, 0, 0})}, none{};
    const Parts fromStart{partOf(0, 0, lead, 4 * u), partOf(1, 1, middle, 16 * u), partOf(2, 2, lead)},
        aboutMiddle{partOf(1, 0, toLeft, 4 * u), partOf(1, 1, middle, 16 * u), partOf(2, 2, lead),
                    partOf(1, 0, none), partOf(0, 3, backward)};
};

/// Shaft and head for two parameters; a cross for one, with a triangle that has its first point again.
const Points triangle{{0, 4, 0}, {-3, -3, 0}, {3, -2, 0}, {0, 4, 0}};
const Primitives shaft{lineOf({}, {12, 0, 0}), offsetTo(4, {12, 0, 0})}, head{chainOf(3, triangle, 3)},
    cross{lineOf({-26, -24, 0}, {24, 26, 0}), lineOf({-24, 26, 0}, {26, -24, 0}), chainOf(4, triangle, 3)};
const Parts arrow{partOf(0, 0, shaft, 12), partOf(1, 4, head, 4)}, glyph{partOf(0, 0, cross)};

utl_symbols symbolOf(const Parts& parts) {
    return {nullptr, static_cast<std::int16_t>(parts.size()), parts.data()};
}

struct Call {
    std::string name;
    std::function<int()> draw;
    std::function<int(int, int)> pick;
};

template <class Disp, class Pick, class... Arguments>
Call callOf(const std::string& name, Disp disp, Pick pick, const Points& points, Arguments... arguments) {
    return {name, [=] { return disp(points.data(), arguments...); },
            [=](int x, int y) { return pick(points.data(), arguments..., x, y); }};
}
Call pointCall(const _NgPoint3Str& p, int kind) {
    return callOf("point " + std::to_string(kind), utl_disp_point_symbol, utl_pick_point_symbol, {p}, kind);
}
Call axisCall(const _NgPoint3Str& p, int direction, int mode) {
    return callOf("axis " + std::to_string(direction), utl_disp_axis_symbol, utl_pick_axis_symbol, {p},
                  direction, mode);
}
Call orientCall(const _NgPoint3Str& p, int last, const int* axes, const double* angles, int mode) {
    return callOf("orientation", utl_disp_orient_symbol, utl_pick_orient_symbol, {p}, last, axes, angles,
                  mode);
}
/// A spring is picked from its middle on.
Call lineCall(const _NgPoint3Str& p, const _NgPoint3Str& q, int kind) {
    const _NgPoint3Str middle{(p.x + q.x) / 2, (p.y + q.y) / 2, (p.z + q.z) / 2},
        beyond{middle.x + q.x - p.x, middle.y + q.y - p.y, middle.z + q.z - p.z};
    const bool isSpring = kind >= 11 && kind <= 13;
    const Points points{p, q}, picked{isSpring ? middle : p, isSpring ? beyond : q};
    return {"line " + std::to_string(kind), [=] { return utl_disp_line_symbol(points.data(), kind); },
            [=](int x, int y) { return utl_pick_line_symbol(picked.data(), kind, x, y); }};
}

/// Both ends of every segment that a call draws, in window coordinates.
template <class Draw>
Points drawn(const Draw& draw) {
    std::vector<GLfloat> fed(1 << 10);
    glFeedbackBuffer(1 << 10, GL_3D, fed.data());
    glRenderMode(GL_FEEDBACK);
    EXPECT_EQ(draw(), 0);
    const int count = glRenderMode(GL_RENDER);
    Points points;
    for (int i = 0; i < count; i += 7)
        for (int k = i + 1; k < i + 7; k += 3)
            points.push_back({fed[k], fed[k + 1], fed[k + 2]});
    return points;
}

void expectPoints(const Points& points, const Points& expected) {
    ASSERT_EQ(points.size(), expected.size());
    for (std::size_t i = 0; i < points.size(); ++i)
        expectNear(points[i], expected[i], 1e-4);
}

/// The ends of the segments of chains of points.
Points segments(const std::vector<Points>& chains) {
    Points ends;
    for (const Points& chain : chains)
        for (std::size_t i = 1; i < chain.size(); ++i)
            ends.insert(ends.end(), {chain[i - 1], chain[i]});
    return ends;
}

/// Points along and across an axis that starts at a point of the window.
Points along(const _NgPoint3Str& start, double angleRad, const std::vector<_NgPoint2Str>& points) {
    const double c = std::cos(angleRad), s = std::sin(angleRad);
    Points placed;
    for (const _NgPoint2Str& p : points)
        placed.push_back({start.x + c * p.x - s * p.y, start.y + s * p.x + c * p.y, start.z});
    return placed;
}

/// The chain with leads and a coil of given scales.
std::vector<_NgPoint2Str> scaled(double lead, double coil, double lastLead) {
    const double l = 4 * lead, c = coil;
    return {{0, 0},
            {l, 0},
            {l + 3 * c, 4 * c},
            {l + 8 * c, -4 * c},
            {l + 13 * c, 4 * c},
            {l + 16 * c, 0},
            {l + 16 * c + 4 * lastLead, 0}};
}

/// The list with a view of one unit a pixel about the middle of the window, 64 units deep.
class Symbols : public GlTest {
protected:
    void SetUp() override {
        GlTest::SetUp();
        list.fill(symbolOf(glyph));
        for (const int slot : {3, 12, 15})
            list[slot] = symbolOf(chain.fromStart);
        for (const int slot : {0, 1, 2})
            list[slot] = symbolOf(chain.aboutMiddle);
        list[7] = symbolOf(arrow);
        list[8] = symbolOf(coil);
        list[14] = symbolOf(chain.fromStart);
        UtlSetSymbolList(list.data(), 16);
        loadOrtho(-32, 32, -32, 32, -32, 32);
        NglUpdateNglInfo();
    }

    const Chain chain{1}, modelChain{0.2};
    const Parts coil{{0, 0, 1, chain.fromStart[1].primitives, 16, nullptr}};
    std::array<utl_symbols, 16> list;
};

TEST_F(Symbols, KindsNameTheirSlots) {
    // Each symbol is a line as long as its slot's number and one; a line of 8 makes the stretching s one.
    std::array<Primitives, 16> lines;
    Parts parts(16);
    for (int slot = 0; slot < 16; ++slot) {
        lines[slot] = {lineOf({}, {slot + 1.0, 0, 0})};
        parts[slot] = partOf(slot == 15, 0, lines[slot], 4);
        list[slot] = {nullptr, 1, &parts[slot]};
    }
    const auto expectSlot = [](const Call& call, int slot, double size) {
        const Points points = drawn(call.draw);
        ASSERT_EQ(points.size(), slot <= 2 ? 4u : 2u) << "springs alone come with their line";
        EXPECT_NEAR(points.back().x - points[points.size() - 2].x, (slot + 1) * size, 1e-4) << call.name;
        EXPECT_EQ(points.back().z, 0.5) << "the middle of the view's depth";
    };
    const std::pair<int, int> pointKinds[] = {{8, 6},  {16, 6},  {9, 5},   {10, 4},
                                              {17, 9}, {18, 10}, {19, 11}, {21, 13}},
                              lineKinds[] = {{1, 3},   {11, 0}, {12, 1},  {13, 2},
                                             {14, 14}, {15, 8}, {20, 12}, {22, 15}};
    for (const auto& [kind, slot] : pointKinds)
        expectSlot(pointCall({0, 0, 9}, kind), slot, 0.5);
    for (const auto& [kind, slot] : lineKinds)
        expectSlot(lineCall({}, {8, 0, 0}, kind), slot, slot == 8 ? 2 : 1);
    for (const int mode : {0, 1}) {
        expectSlot(axisCall({}, 2, mode), mode ? 3 : 7, mode ? 1 : 1.5);
        expectSlot(orientCall({}, -1, nullptr, nullptr, mode), mode ? 3 : 7, mode ? 1 : 1.5);
    }
}

TEST_F(Symbols, PointsStayWhereTheRecordHasThemWhenAListIsCalled) {
    list[6] = symbolOf(coil); // of lines alone
    const Call call = pointCall({5, -3, 9}, 8);
    const Points wanted = drawn(call.draw);
    const GLuint compiled = glGenLists(1);
    glNewList(compiled, GL_COMPILE);
    call.draw();
    glEndList();
    glTranslated(4, 4, 0); // of the host's, where it calls the list
    expectPoints(drawn([&] { return glCallList(compiled), 0; }), wanted);
}

TEST_F(Symbols, PartsAddUpTheirOffsetsInTheUnitBefore) {
    UtlSymSetOrthoScale(0.5);
    const double parameters[] = {2, 1, 3};
    const Points points = drawn([&] { return utl_symbol_draw(parameters, 3, chain.fromStart.data()), 0; });
    expectPoints(points, segments({along({32, 32, 0.5}, 0, scaled(1, 0.5, 1.5))}));
    EXPECT_EQ(NHostLiveBlocks(), 1u) << "the registers, which are kept";
}

TEST_F(Symbols, LineSymbolsFitBetweenTheirPoints) {
    const double turn = std::atan2(3, 4) * (1 + 1 / 48000.);
    const _NgPoint3Str p{-12, -9, 8}, q{12, 9, 8}, start{20, 23, 0.375}, end{44, 41, 0.375},
        middle{32, 32, 0.375};
    const Points fitted = along(start, turn, scaled(1.75, 1, 1.75));
    const std::vector<Points> spring{
        {start, end},
        along(middle, turn, {{-8, 0}, {-5, 4}, {0, -4}, {5, 4}, {8, 0}, {15, 0}}),
        along(middle, turn, {{-8, 0}, {-15, 0}})};
    Points whole = along(start, turn, scaled(0, 30. / 16, 0)), two = along(start, turn, scaled(1, 1, 0));
    whole = {whole.begin() + 1, whole.end() - 1};
    two.pop_back(); // its third part has no parameter
    const std::tuple<int, double, std::vector<Points>> rows[] = {
        {1, 1, {fitted}}, {1, 0.5, {along(start, turn, scaled(0.875, 0.5, 0.875))}},
        {15, 1, {whole}}, {20, 1, {two}},
        {12, 1, spring},  {22, 1, {along(start, turn, scaled(0, 1, 0))}},
    };
    for (const auto& [kind, scale, chains] : rows) {
        SCOPED_TRACE(kind);
        UtlSymSetOrthoScale(scale);
        expectPoints(drawn(lineCall(p, q, kind).draw), segments(chains));
    }
    // In a view of half a unit a pixel, by lengths in pixels and by lengths in the model.
    const Chain halfChain{0.5};
    list[14] = symbolOf(halfChain.fromStart);
    loadOrtho(-16, 16, -16, 16, -16, 16);
    NglUpdateNglInfo();
    for (const int kind : {1, 14})
        expectPoints(drawn(lineCall({-6, -4.5, 4}, {6, 4.5, 4}, kind).draw), segments({fitted}));
    const _NgPoint3Str ends[] = {{-6, -4.5, 4}, {6, 4.5, 4}};
    expectPoints(drawn([&] { return utl_disp_line_symbol_WithContour(ends, 13, 0.25f, 0.75f); }),
                 segments(spring));
}

TEST_F(Symbols, CarryContourValuesAlongTheLineOfASpring) {
    const std::uint32_t texels[] = {0xFF0000FF, 0xFF00FF00};
    glTexParameteri(GL_TEXTURE_1D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_1D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glTexImage1D(GL_TEXTURE_1D, 0, GL_RGBA8, 2, 0, GL_RGBA, GL_UNSIGNED_BYTE, texels);
    glEnable(GL_TEXTURE_1D);
    const _NgPoint3Str ends[] = {{-20, 0.5, 0}, {-10, 0.5, 0}}; // too short for the spring itself
    EXPECT_EQ(utl_disp_line_symbol_WithContour(ends, 13, 0.0f, 1.0f), 0);
    EXPECT_EQ(read().at(14, 32), texels[0]);
    EXPECT_EQ(read().at(20, 32), texels[1]);
}

TEST_F(Symbols, SpringsThatDoNotFit) {
    const Call spring = lineCall({-4, -3, 0}, {4, 3, 0}, 11);
    const double turn = std::atan2(3, 4) * (1 + 1 / 48000.);
    const _NgPoint3Str middle{32, 32, 0.5};
    const Points line{{28, 29, 0.5}, {36, 35, 0.5}};
    expectPoints(drawn(spring.draw), line);
    UtlSetSpringDrawMode(1);
    // Leads of -16/2: back to the middle.
    expectPoints(drawn(spring.draw),
                 segments({line, along(middle, turn, {{-8, 0}, {-5, 4}, {0, -4}, {5, 4}, {8, 0}, {0, 0}}),
                           along(middle, turn, {{-8, 0}, {0, 0}})}));
    // Those that are picked are of (10 - 16)/2 in either mode, and end 5 before the middle.
    const Points onLead = along(middle, -turn, {{5.5, 0}});
    for (const int mode : {0, 1}) {
        UtlSetSpringDrawMode(mode);
        UtlSetSymPickSnapValue(1);
        EXPECT_EQ(spring.pick(32, 32), -1);
        UtlSetSymPickSnapValue(2);
        EXPECT_EQ(spring.pick(std::lround(onLead[0].x), std::lround(onLead[0].y)), 0);
    }
}

TEST_F(Symbols, LinesSeenEndOnAreDone) {
    const Call row = lineCall({3, 4, -9}, {3 + 9e-6, 4 - 9e-5, 20}, 15);
    EXPECT_TRUE(drawn(row.draw).empty());
    EXPECT_EQ(row.pick(0, 0), 0);
    EXPECT_FALSE(drawn(lineCall({3, 4, -9}, {3, 4 - 2e-4, 20}, 15).draw).empty());
    EXPECT_FALSE(drawn(lineCall({3, 4, -9}, {3 + 2e-5, 4, 20}, 15).draw).empty());
}

TEST_F(Symbols, TurnAboutTheirPoint) {
    const std::vector<_NgPoint2Str> flat = scaled(1, 1, 1);
    Points away, toViewer;
    for (const _NgPoint2Str& p : flat) {
        away.push_back({32, 32 + p.y, 0.5 + p.x / 64});
        toViewer.push_back({32 + p.y, 32, 0.5 - p.x / 64});
    }
    const auto turned = [&](double angle) { return along({32, 32, 0.5}, angle, flat); };
    const int axes[] = {2, 0}, noAxes[] = {3, -1};
    const double angles[] = {-90, -90};
    const std::pair<Call, Points> rows[] = {
        {axisCall({}, 2, 1), turned(0)},
        {axisCall({4, 5, -16}, 3, 1), along({36, 37, 0.75}, M_PI, flat)},
        {axisCall({}, 4, 1), turned(M_PI / 2)},
        {axisCall({}, 5, 1), turned(-M_PI / 2)},
        {axisCall({}, 6, 1), away},
        {axisCall({}, 7, 1), away},
        {orientCall({}, 0, axes, angles, 1), turned(-M_PI / 2)},
        {orientCall({}, 1, axes, angles, 1), toViewer}, // the last turn, about x, comes first
        {orientCall({}, 1, noAxes, angles, 1), turned(0)},
    };
    for (const auto& [call, points] : rows) {
        SCOPED_TRACE(call.name);
        expectPoints(drawn(call.draw), segments({points}));
    }
}

TEST_F(Symbols, PickAPolylineAtTheDepthOfItsStart) {
    // Turned by a quarter about y, so that depth in the symbol runs along x: drawn from the middle up to the
    // right, but picked straight up.
    const Points raised{{0, 0, 0}, {0, 20, 20}};
    const Primitives slanted{chainOf(2, raised, 2)};
    const Parts parts{partOf(0, 0, slanted)};
    list[3] = symbolOf(parts);
    const int axis = 1;
    const double angle = 90;
    const Call call = orientCall({}, 0, &axis, &angle, 1);
    expectPoints(drawn(call.draw), {{32, 32, 0.5}, {52, 52, 0.5}});
    EXPECT_EQ(call.pick(42, 22), -1);
    EXPECT_EQ(call.pick(32, 22), 0);
}

/// Expects every pixel of the viewport that a call lights to pick, and none that is far from all of them.
void expectPicksWhatItDraws(const Call& call, const Picture& picture, std::uint32_t clear) {
    constexpr int kFarX = 7, kFarY = 20; // a steep segment snaps beyond its ends, within 6 columns
    const std::array<int, 4> viewport = liveViewport();
    const int left = viewport[0], right = left + viewport[2] - 1;
    const int bottom = viewport[1], top = bottom + viewport[3] - 1;
    const auto isNear = [&](int x, int y) {
        for (int v = std::max(y - kFarY, bottom); v <= std::min(y + kFarY, top); ++v)
            for (int u = std::max(x - kFarX, left); u <= std::min(x + kFarX, right); ++u)
                if (picture.at(u, v) != clear)
                    return true;
        return false;
    };
    int lit = 0, far = 0;
    for (int y = bottom; y <= top; ++y)
        for (int x = left; x <= right; ++x) {
            const bool isLit = picture.at(x, y) != clear, isFar = !isLit && !isNear(x, y);
            lit += isLit;
            far += isFar;
            if (isLit || isFar) {
                ASSERT_EQ(call.pick(x, viewport[3] - 1 - y), isLit ? 0 : -1) << "pixel " << x << ", " << y;
            }
        }
    EXPECT_GE(lit, 8);
    EXPECT_GE(far, 100);
}

TEST_F(Symbols, ArePickedWhereTheyAreDrawn) {
    // First in a process where the record is not to follow matrix operations, then in this one.
    ranInSubprocess({{"NU_UPDATE_NGLMAT_ON_PICK", "0"}});
    const _NgPoint3Str p{1.5, -2.2, 1}, q{-1.5, 1.2, 2};
    const _NgPoint3Str at{0.5, 0.5, -2};
    const int axes[] = {2, 1, 0};
    const double angles[] = {40, 30, -25};
    const Call calls[] = {
        pointCall(at, 9),   lineCall(p, q, 1),  lineCall(p, {0.5, -1.5, 1}, 1),
        lineCall(q, p, 12), lineCall(p, q, 14), lineCall(p, q, 15),
        lineCall(p, q, 20), lineCall(p, q, 22), axisCall(at, 2, 0),
        axisCall(at, 5, 1), axisCall(at, 6, 0), orientCall(at, 2, axes, angles, 0),
    };
    list[14] = symbolOf(modelChain.fromStart);
    for (const std::string view : {"orthographic", "eye outside the model", "perspective"})
        for (const bool beingDrawn : {false, true}) {
            const bool perspective = view == "perspective";
            setLiveView(perspective, 37);
            if (view == "eye outside the model")
                loadOrtho(-4, 6, -5, 3, 1, 30);
            NglUpdateNglInfo();
            if (perspective)
                UtlSymSetOrthoScale(UtlSymGetOrthoScale() * 4.5); // the near plane's, taken to the points
            NglSetBeingDrawnState(beingDrawn);
            for (const Call& call : calls) {
                // In perspective the moved points of a spring that is picked are not as far apart.
                if (perspective && call.name == "line 12")
                    continue;
                SCOPED_TRACE(view + ", " + call.name);
                clear();
                EXPECT_EQ(call.draw(), 0);
                expectPicksWhatItDraws(call, read(), kClear);
            }
        }
}

TEST_F(Symbols, LookAlikeByMatricesOfTheirOwn) {
    // Generated coordinates of a texture that is off: nothing but the way changes.
    const _NgPoint3Str at{0.5, 0.5, -2}, p{1.5, -2.2, 1}, q{-1.5, 1.2, 2};
    const GLdouble twice[16] = {2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2}; // the same view
    for (const std::string view : {"parallel", "perspective", "in other homogeneous coordinates"}) {
        setLiveView(view == "perspective", 37);
        if (view == "in other homogeneous coordinates")
            glMultMatrixd(twice);
        NglUpdateNglInfo();
        glRotated(10, 0, 0, 1); // GL's own, which the record does not know
        for (const Call& call :
             {lineCall(p, q, 1), lineCall(p, q, 12), pointCall(at, 8), axisCall(at, 4, 0)}) {
            SCOPED_TRACE(call.name + ", " + view);
            const Points points = drawn(call.draw);
            EXPECT_GE(points.size(), 2u);
            glEnable(GL_TEXTURE_GEN_S);
            expectPoints(points, drawn(call.draw));
            glDisable(GL_TEXTURE_GEN_S);
        }
    }
}

TEST_F(Symbols, AreLitFromTheFrontInTurnedViews) {
    glRotated(60, 0, 1, 0);
    NglUpdateNglInfo();
    glEnable(GL_LIGHTING);
    glEnable(GL_LIGHT0); // white, from the viewer
    const std::array black{0.0f, 0.0f, 0.0f, 1.0f}, white{1.0f, 1.0f, 1.0f, 1.0f};
    glLightModelfv(GL_LIGHT_MODEL_AMBIENT, black.data());
    glMaterialfv(GL_FRONT_AND_BACK, GL_DIFFUSE, white.data());
    EXPECT_EQ(orientCall({0, 0.5, 0}, -1, nullptr, nullptr, 1).draw(), 0);
    EXPECT_EQ(read().at(34, 32), 0xFFFFFFFFu);
}

TEST_F(Symbols, KeepTheirShapeFarFromTheOrigin) {
    const std::vector<Points> lead{along({32, 32, 0.5}, 0, scaled(1, 1, 1))};
    for (const double far : {1e3, 1e5, 4e6}) { // the last with a unit between neighbours of single precision
        glLoadIdentity();
        glTranslated(-far, 0, 0);
        NglUpdateNglInfo();
        UtlSymSetOrthoScale(0.125);
        const Points points = drawn(orientCall({far, 0, 0}, -1, nullptr, nullptr, 1).draw);
        ASSERT_EQ(points.size(), 12u) << far;
        for (std::size_t i = 0; i < points.size(); ++i)
            EXPECT_NEAR(points[i].x - 32, 0.125 * (segments(lead)[i].x - 32), 0.01) << far;
    }
}

TEST_F(Symbols, CarryDashesOnAlongAChain) {
    const Points flat{{0, 0.5, 0}, {3, 0.5, 0}, {8, 0.5, 0}, {16, 0.5, 0}};
    const Primitives primitives{chainOf(2, flat, 4)};
    const Parts parts{partOf(0, 0, primitives)};
    glEnable(GL_LINE_STIPPLE);
    glLineStipple(1, 0x0F0F);
    const double parameter = 1;
    utl_symbol_draw(&parameter, 1, parts.data());
    for (int i = 0; i < 16; ++i)
        EXPECT_EQ(read().at(32 + i, 32) != kClear, i % 8 < 4) << i;
}

TEST_F(Symbols, CarelessDataDoNoHarm) {
    const utl_symbol_primitive_s negative{2, -3, {.array = triangle.data()}}, unknown{5, 4, {}};
    const Primitives careless{offsetTo(-5, {1, 2, 3}), chainOf(2, {}, 5),     negative, unknown,
                              lineOf({}, {9, 0, 0}),   offsetTo(0, {1, 2, 3})};
    const Parts parts{partOf(0, 0, careless),
                      partOf(0, 32767, careless),
                      partOf(-1, 0, careless),
                      partOf(9, 0, careless),
                      partOf(0, -1, careless),
                      {0, 0, 7, nullptr, 0, nullptr},
                      {0, 0, -7, careless.data(), 0, nullptr}};
    list[9] = symbolOf(parts);
    const Points first = drawn(pointCall({}, 17).draw);
    EXPECT_EQ(first.size(), 6u) << "of the parts that have a parameter";
    glTranslated(9, 0, 0); // points are placed by the record alone
    expectPoints(drawn(pointCall({}, 17).draw), first);
    for (const utl_symbols& symbol : {utl_symbols{nullptr, 5, nullptr}, {nullptr, -1, parts.data()}}) {
        list.fill(symbol);
        EXPECT_TRUE(drawn(pointCall({}, 8).draw).empty());
        EXPECT_TRUE(drawn(lineCall({}, {8, 0, 0}, 1).draw).empty());
        EXPECT_EQ(pointCall({}, 8).pick(32, 32), -1);
    }
    utl_symbol_draw(nullptr, 5, parts.data());
}

TEST_F(Symbols, WithoutMemoryLoseTheirOffsets) {
    NHostServices services{};
    services.allocate = [](void*, std::size_t, const char*, int) -> void* { return nullptr; };
    services.release = [](void*, void*) {};
    ASSERT_EQ(NHostSetServices(&services), 0);
    const Points points = drawn(lineCall({}, {24, 0, 0}, 1).draw);
    ASSERT_EQ(points.size(), 12u);
    for (const std::size_t partStart : {0, 2, 10})
        expectNear(points[partStart], {32, 32, 0.5}, 1e-4);
}

} // namespace
