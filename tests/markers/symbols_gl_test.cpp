// Symbols by the segments that reach the window, by the pixels that they light and by the pixels that pick
// them.
#include <cmath>
#include <cstring>
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
class Chain {
public:
    explicit Chain(double unit)
        : m_coil{{0, 0, 0},
                 {3 * unit, 4 * unit, 0},
                 {8 * unit, -4 * unit, 0},
                 {13 * unit, 4 * unit, 0},
                 {16 * unit, 0, 0}},
          m_lead{lineOf({}, {4 * unit, 0, 0}), offsetTo(1, {4 * unit, 0, 0})},
          m_middle{chainOf(2, m_coil, 5), offsetTo(2, {16 * unit, 0, 0}), offsetTo(3, {-16 * unit, 0, 0})},
          m_toLeft{offsetTo(1, {-8 * unit, 0, 0})}, m_backward{lineOf({}, {-4 * unit, 0, 0})},
          fromStart{partOf(0, 0, m_lead, 4 * unit), partOf(1, 1, m_middle, 16 * unit), partOf(2, 2, m_lead)},
          aboutMiddle{partOf(1, 0, m_toLeft, 4 * unit), partOf(1, 1, m_middle, 16 * unit),
                      partOf(2, 2, m_lead), partOf(1, 0, m_none), partOf(0, 3, m_backward)} {}

private:
    const Points m_coil;
    const Primitives m_lead, m_middle, m_toLeft, m_backward, m_none;

public:
    const std::vector<utl_parametric_symbol_data_s> fromStart, aboutMiddle;
};

/// Shaft and head for two parameters; a cross for one, with a triangle that has its first point again.
const Points triangle{{0, 4, 0}, {-3, -3, 0}, {3, -2, 0}, {0, 4, 0}};
const Primitives shaft{lineOf({}, {12, 0, 0}), offsetTo(4, {12, 0, 0})}, head{chainOf(3, triangle, 3)},
    cross{lineOf({-26, -24, 0}, {24, 26, 0}), lineOf({-24, 26, 0}, {26, -24, 0}), chainOf(4, triangle, 3)};
const std::vector arrow{partOf(0, 0, shaft, 12), partOf(1, 4, head, 4)}, glyph{partOf(0, 0, cross)};

utl_symbols symbolOf(const std::vector<utl_parametric_symbol_data_s>& parts) {
    return {nullptr, static_cast<std::int16_t>(parts.size()), parts.data()};
}

struct Call {
    const char* name;
    std::function<int()> draw;
    std::function<int(int, int)> pick;
};

Call pointCall(const char* name, const _NgPoint3Str& p, int kind) {
    return {name, [=] { return utl_disp_point_symbol(&p, kind); },
            [=](int x, int y) { return utl_pick_point_symbol(&p, kind, x, y); }};
}
/// A spring is picked from the middle on.
Call lineCall(const char* name, const _NgPoint3Str& p, const _NgPoint3Str& q, int kind) {
    const double half = kind >= 11 && kind <= 13 ? 0.5 : 0;
    const std::array ends{p, q};
    std::array moved = ends;
    for (_NgPoint3Str& end : moved)
        end = {end.x + half * (q.x - p.x), end.y + half * (q.y - p.y), end.z + half * (q.z - p.z)};
    return {name, [=] { return utl_disp_line_symbol(ends.data(), kind); },
            [=](int x, int y) { return utl_pick_line_symbol(moved.data(), kind, x, y); }};
}
Call axisCall(const char* name, const _NgPoint3Str& p, int direction, int mode) {
    return {name, [=] { return utl_disp_axis_symbol(&p, direction, mode); },
            [=](int x, int y) { return utl_pick_axis_symbol(&p, direction, mode, x, y); }};
}
Call orientCall(const char* name, const _NgPoint3Str& p, std::vector<int> axes, std::vector<double> angles,
                int mode) {
    const int last = static_cast<int>(axes.size()) - 1;
    return {name, [=] { return utl_disp_orient_symbol(&p, last, axes.data(), angles.data(), mode); },
            [=](int x, int y) {
                return utl_pick_orient_symbol(&p, last, axes.data(), angles.data(), mode, x, y);
            }};
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

/// Points given along and across an axis that starts at a point of the window.
Points along(const _NgPoint3Str& start, double angleRad, const std::vector<_NgPoint2Str>& points) {
    const double c = std::cos(angleRad), s = std::sin(angleRad);
    Points placed;
    for (const _NgPoint2Str& p : points)
        placed.push_back({start.x + c * p.x - s * p.y, start.y + s * p.x + c * p.y, start.z});
    return placed;
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
    const std::vector<utl_parametric_symbol_data_s> coil{
        {0, 0, 1, chain.fromStart[1].primitives, 16, nullptr}};
    std::array<utl_symbols, 16> list;
};

TEST_F(Symbols, KindsNameTheirSlots) {
    // Each symbol is a line as long as its slot's number and one; a line of 8 makes the stretching s one.
    std::array<Primitives, 16> lines;
    std::array<utl_parametric_symbol_data_s, 16> parts;
    for (int slot = 0; slot < 16; ++slot) {
        lines[slot] = {lineOf({}, {slot + 1.0, 0, 0})};
        parts[slot] = partOf(slot == 15, 0, lines[slot], 4);
        list[slot] = {nullptr, 1, &parts[slot]};
    }
    const std::tuple<Call, int, double> rows[] = {{pointCall("8", {}, 8), 6, 0.5},
                                                  {pointCall("16", {}, 16), 6, 0.5},
                                                  {pointCall("9", {}, 9), 5, 0.5},
                                                  {pointCall("10", {}, 10), 4, 0.5},
                                                  {pointCall("17", {}, 17), 9, 0.5},
                                                  {pointCall("18", {}, 18), 10, 0.5},
                                                  {pointCall("19", {}, 19), 11, 0.5},
                                                  {pointCall("21", {}, 21), 13, 0.5},
                                                  {axisCall("large axis", {}, 2, 0), 7, 1.5},
                                                  {axisCall("small axis", {}, 2, 1), 3, 1},
                                                  {orientCall("large", {}, {}, {}, 0), 7, 1.5},
                                                  {orientCall("small", {}, {}, {}, 1), 3, 1},
                                                  {lineCall("1", {}, {8, 0, 0}, 1), 3, 1},
                                                  {lineCall("11", {}, {8, 0, 0}, 11), 0, 1},
                                                  {lineCall("12", {}, {8, 0, 0}, 12), 1, 1},
                                                  {lineCall("13", {}, {8, 0, 0}, 13), 2, 1},
                                                  {lineCall("14", {}, {8, 0, 0}, 14), 14, 1},
                                                  {lineCall("15", {}, {8, 0, 0}, 15), 8, 2},
                                                  {lineCall("20", {}, {8, 0, 0}, 20), 12, 1},
                                                  {lineCall("22", {}, {8, 0, 0}, 22), 15, 1}};
    for (const auto& [call, slot, size] : rows) {
        SCOPED_TRACE(call.name);
        const Points points = drawn(call.draw);
        ASSERT_GE(points.size(), 2u);
        const std::size_t last = points.size() - 1;
        EXPECT_NEAR(points[last].x - points[last - 1].x, (slot + 1) * size, 1e-4);
        EXPECT_EQ(points.size() == 4, slot <= 2) << "springs alone come with their line";
    }
}

TEST_F(Symbols, PartsAddUpTheirOffsetsInTheUnitBefore) {
    UtlSymSetOrthoScale(0.5);
    const double parameters[] = {2, 1, 3};
    const Points points = drawn([&] {
        utl_symbol_draw(parameters, 3, chain.fromStart.data());
        return 0;
    });
    // Units 1, 0.5 and 1.5: a lead of 4, a coil of 8, a lead of 6.
    expectPoints(points, segments({along({32, 32, 0.5}, 0,
                                         {{0, 0}, {4, 0}, {5.5, 2}, {8, -2}, {10.5, 2}, {12, 0}, {18, 0}})}));
    EXPECT_EQ(NHostLiveBlocks(), 1u) << "the registers, which are kept";
}

TEST_F(Symbols, LineSymbolsFitBetweenTheirPoints) {
    const double angle = std::atan2(3, 4), turn = angle + angle / 48000;
    const _NgPoint3Str p{-12, -9, 8}, q{12, 9, 8}, start{20, 23, 0.375}, end{44, 41, 0.375},
        middle{32, 32, 0.375};
    const std::vector<_NgPoint2Str> fitted{{0, 0}, {7, 0}, {10, 4}, {15, -4}, {20, 4}, {23, 0}, {30, 0}};
    const std::vector<Points> spring{
        {start, end},
        along(middle, turn, {{-8, 0}, {-5, 4}, {0, -4}, {5, 4}, {8, 0}, {15, 0}}),
        along(middle, turn, {{-8, 0}, {-15, 0}})};
    std::vector<_NgPoint2Str> half = fitted;
    for (_NgPoint2Str& point : half)
        point = {point.x / 2, point.y / 2};
    const std::tuple<const char*, int, double, std::vector<Points>> rows[] = {
        {"stretched leads", 1, 1, {along(start, turn, fitted)}},
        {"in units of half a pixel", 1, 0.5, {along(start, turn, half)}},
        {"stretched as a whole, by 30/16",
         15,
         1,
         {along(start, turn, {{0, 0}, {5.625, 7.5}, {15, -7.5}, {24.375, 7.5}, {30, 0}})}},
        {"as it is, without the third part",
         20,
         1,
         {along(start, turn, {{0, 0}, {4, 0}, {7, 4}, {12, -4}, {17, 4}, {20, 0}})}},
        {"its middle alone",
         22,
         1,
         {along(start, turn, {{0, 0}, {0, 0}, {3, 4}, {8, -4}, {13, 4}, {16, 0}, {16, 0}})}},
        {"a spring about its middle", 12, 1, spring},
    };
    for (const auto& [name, kind, scale, chains] : rows) {
        SCOPED_TRACE(name);
        UtlSymSetOrthoScale(scale);
        expectPoints(drawn(lineCall(name, p, q, kind).draw), segments(chains));
    }
    // In a view of half a unit a pixel, by lengths in pixels and by lengths in the model.
    const Chain halfChain(0.5);
    list[14] = symbolOf(halfChain.fromStart);
    loadOrtho(-16, 16, -16, 16, -16, 16);
    NglUpdateNglInfo();
    for (const int kind : {1, 14})
        expectPoints(drawn(lineCall("half", {-6, -4.5, 4}, {6, 4.5, 4}, kind).draw),
                     segments({along(start, turn, fitted)}));
    const _NgPoint3Str ends[] = {{-6, -4.5, 4}, {6, 4.5, 4}};
    expectPoints(drawn([&] { return utl_disp_line_symbol_WithContour(ends, 13, 0.25f, 0.75f); }),
                 segments(spring));
}

TEST_F(Symbols, SpringsThatDoNotFit) {
    const Call spring = lineCall("spring", {-4, -3, 0}, {4, 3, 0}, 11);
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
    for (const int mode : {0, 1}) {
        UtlSetSpringDrawMode(mode);
        UtlSetSymPickSnapValue(1);
        EXPECT_EQ(spring.pick(32, 32), -1);
        const Points onLead = along(middle, -turn, {{5.5, 0}});
        UtlSetSymPickSnapValue(2);
        EXPECT_EQ(spring.pick(std::lround(onLead[0].x), std::lround(onLead[0].y)), 0);
    }
}

TEST_F(Symbols, LinesSeenEndOnAreDone) {
    const Call row = lineCall("end on", {3, 4, -9}, {3 + 9e-6, 4 - 9e-5, 20}, 15);
    EXPECT_TRUE(drawn(row.draw).empty());
    EXPECT_EQ(row.pick(0, 0), 0);
    EXPECT_FALSE(drawn(lineCall("nearly", {3, 4, -9}, {3, 4 - 2e-4, 20}, 15).draw).empty());
    EXPECT_FALSE(drawn(lineCall("nearly", {3, 4, -9}, {3 + 2e-5, 4, 20}, 15).draw).empty());
}

TEST_F(Symbols, TurnAboutTheirPoint) {
    const std::vector<_NgPoint2Str> flat{{0, 0}, {4, 0}, {7, 4}, {12, -4}, {17, 4}, {20, 0}, {24, 0}};
    const auto away = [&](double depth, double y) { // along the depth, across in y
        Points points;
        for (const _NgPoint2Str& p : flat)
            points.push_back({32, 32 + y * p.y, 0.5 + depth * p.x / 64});
        return points;
    };
    const std::tuple<Call, Points> rows[] = {
        {axisCall("+x", {0, 0, 0}, 2, 1), along({32, 32, 0.5}, 0, flat)},
        {axisCall("-x", {4, 5, -16}, 3, 1), along({36, 37, 0.75}, M_PI, flat)},
        {axisCall("+y", {0, 0, 0}, 4, 1), along({32, 32, 0.5}, M_PI / 2, flat)},
        {axisCall("-y", {0, 0, 0}, 5, 1), along({32, 32, 0.5}, -M_PI / 2, flat)},
        {axisCall("+z, at the viewer", {0, 0, 0}, 6, 1), away(1, 1)},
        {axisCall("-z, from the viewer", {0, 0, 0}, 7, 1), away(1, 1)},
        {orientCall("about z", {0, 0, 0}, {2}, {30}, 1), along({32, 32, 0.5}, M_PI / 6, flat)},
        {orientCall("about x, then z, listed in turn from the last", {0, 0, 0}, {2, 0}, {90, 90}, 1),
         along({32, 32, 0.5}, M_PI / 2, {})},
        {orientCall("axes that are none", {0, 0, 0}, {3, -1}, {90, 90}, 1), along({32, 32, 0.5}, 0, flat)},
    };
    for (const auto& [call, points] : rows) {
        SCOPED_TRACE(call.name);
        if (!points.empty())
            expectPoints(drawn(call.draw), segments({points}));
    }
    // Of x, y and z the last turn, about x, is applied first: the chain runs to the viewer, its coil along x.
    const Points toViewer = drawn(std::get<0>(rows[7]).draw);
    expectNear(toViewer.back(), {32, 32, 0.5 - 24. / 64}, 1e-4);
    expectNear(toViewer[3], {28, 32, 0.5 - 7. / 64}, 1e-4);
}

TEST_F(Symbols, PickAPolylineAtTheDepthOfItsStart) {
    // Turned by a quarter about y, so that depth in the symbol runs along x: drawn from the middle up to the
    // right, but picked straight up.
    const Points raised{{0, 0, 0}, {0, 20, 20}, {0, 0, 0}};
    const Primitives slanted{chainOf(2, raised, 2)};
    const std::vector parts{partOf(0, 0, slanted)};
    list[3] = symbolOf(parts);
    const Call call = orientCall("raised", {}, {1}, {90}, 1);
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
    const _NgPoint3Str p{1.5, -2.2, 1}, q{-1.5, 1.2, 2};
    const Call calls[] = {
        pointCall("point", {0.6, 0.4, -2}, 9),
        lineCall("stretched leads", p, q, 1),
        lineCall("stretched leads, short", p, {0.5, -1.5, 1}, 1),
        lineCall("spring", q, p, 12),
        lineCall("model units", p, q, 14),
        lineCall("stretched as a whole", p, q, 15),
        lineCall("as it is", p, q, 20),
        lineCall("middle alone", p, q, 22),
        axisCall("+x", {0.5, 0.5, -2}, 2, 0),
        axisCall("-y", {0.5, 0.5, -2}, 5, 1),
        axisCall("+z", {0.5, 0.5, -2}, 6, 0),
        orientCall("turned", {0.5, 0.5, -2}, {2, 1, 0}, {40, 30, -25}, 0),
    };
    list[14] = symbolOf(modelChain.fromStart);
    for (const char* view : {"orthographic", "eye outside the model", "perspective"})
        for (const bool beingDrawn : {false, true}) {
            setLiveView(view[0] == 'p', 37);
            if (view[0] == 'e')
                loadOrtho(-4, 6, -5, 3, 1, 30);
            NglUpdateNglInfo();
            NglGetNglInfo()->perspective = view[0] == 'p';
            if (view[0] == 'p')
                UtlSymSetOrthoScale(UtlSymGetOrthoScale() * 4.5); // the near plane's, taken to the points
            NglSetBeingDrawnState(beingDrawn);
            for (const Call& call : calls) {
                // In perspective the moved points of a spring that is picked are not as far apart.
                if (view[0] == 'p' && call.name == std::string("spring"))
                    continue;
                SCOPED_TRACE(std::string(view) + ", " + call.name);
                clear();
                EXPECT_EQ(call.draw(), 0);
                expectPicksWhatItDraws(call, read(), kClear);
            }
        }
}

TEST_F(Symbols, ArePickedAlsoWhereTheRecordDoesNotFollow) {
    if (ranInSubprocess({{"NU_UPDATE_NGLMAT_ON_PICK", "0"}}))
        return;
    const _NglInfoStr before = *NglGetNglInfo();
    for (const Call& call : {axisCall("axis", {6, 4, 0}, 2, 0), pointCall("point", {6, -4, 0}, 9)}) {
        clear();
        glLoadIdentity();
        glTranslated(call.name == std::string("point") ? 9 : 0, 0, 0); // points alone come by the record
        EXPECT_EQ(call.draw(), 0);
        expectPicksWhatItDraws(call, read(), kClear);
    }
    EXPECT_EQ(std::memcmp(&before, NglGetNglInfo(), sizeof before), 0);
}

TEST_F(Symbols, LeaveStateAndRecordAsTheyWere) {
    setLiveView(false, 20);
    NglUpdateNglInfo();
    glMatrixMode(GL_TEXTURE);
    glTexCoord2f(0.5f, 0.25f);
    const _NglInfoStr record = *NglGetNglInfo();
    const GlSnapshot before = GlSnapshot::take();
    const _NgPoint3Str ends[] = {{0, 0, 1}, {2, 1, 0}};
    for (const Call& call : {pointCall("point", {}, 8), lineCall("spring", ends[0], ends[1], 11),
                             axisCall("axis", {}, 4, 1), orientCall("orientation", {}, {0}, {10}, 0)}) {
        EXPECT_EQ(call.draw(), 0) << call.name;
        call.pick(20, 20);
    }
    EXPECT_EQ(utl_disp_line_symbol_WithContour(ends, 11, 0.1f, 0.9f), 0);
    EXPECT_TRUE(before.equals(GlSnapshot::take()));
    EXPECT_EQ(std::memcmp(&record, NglGetNglInfo(), sizeof record), 0);
    EXPECT_EQ(NglGetPushCount(), 0);
}

TEST_F(Symbols, CarelessDataDoNoHarm) {
    const Points none;
    const Primitives careless{offsetTo(-5, {1, 2, 3}),
                              chainOf(2, none, 5),
                              {2, -3, {.array = triangle.data()}},
                              {3, -3, {.array = triangle.data()}},
                              {-1, 4, {}},
                              {5, 4, {}},
                              lineOf({}, {9, 0, 0}),
                              offsetTo(0, {1, 2, 3})};
    std::vector parts{partOf(0, 0, careless), partOf(0, 32767, careless), partOf(-1, 0, careless),
                      partOf(9, 0, careless), partOf(0, -1, careless)};
    parts.push_back({0, 0, 7, nullptr, 0, nullptr});
    parts.push_back({0, 0, -7, careless.data(), 0, nullptr});
    list[9] = symbolOf(parts);
    const Points first = drawn(pointCall("careless", {}, 17).draw);
    EXPECT_EQ(first.size(), 6u) << "of the parts that have a parameter";
    expectPoints(drawn(pointCall("careless, with no offset in register 0 again", {}, 17).draw), first);
    const utl_symbols empty[] = {{nullptr, 5, nullptr}, {nullptr, -1, parts.data()}};
    for (const utl_symbols& symbol : empty) {
        list.fill(symbol);
        EXPECT_TRUE(drawn(pointCall("empty", {}, 8).draw).empty());
        EXPECT_TRUE(drawn(lineCall("empty", {}, {8, 0, 0}, 1).draw).empty());
        EXPECT_EQ(pointCall("empty", {}, 8).pick(32, 32), -1);
    }
    utl_symbol_draw(nullptr, 5, parts.data());
}

TEST_F(Symbols, WithoutMemoryLoseTheirOffsets) {
    NHostServices services{};
    services.allocate = [](void*, std::size_t, const char*, int) -> void* { return nullptr; };
    services.release = [](void*, void*) {};
    ASSERT_EQ(NHostSetServices(&services), 0);
    expectPoints(drawn(lineCall("all from the start", {}, {24, 0, 0}, 1).draw),
                 segments({{{32, 32, 0.5}, {36, 32, 0.5}},
                           along({32, 32, 0.5}, 0, {{0, 0}, {3, 4}, {8, -4}, {13, 4}, {16, 0}}),
                           {{32, 32, 0.5}, {36, 32, 0.5}}}));
}

} // namespace
