// 3D markers in sections, by their pixels: placed and coloured by the program and by fixed function, and what
// begins, parks and ends.
#include <algorithm>
#include <cstdlib>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "NRenderUtl/markers/nmarkers.h"
#include "tests/shaders/testprogram.h"
#include "tests/support/glsnapshot.h"
#include "tests/support/librarytest.h"
#include "tests/support/subprocess.h"

using namespace nrutest;

namespace {

constexpr auto kCylinder = RENDER_3D_MARKER_CYLINDER, kSphere = RENDER_3D_MARKER_SPHERE;
constexpr auto kSmooth = RENDER_3D_MARKER_SHAPE_SMOOTH;
constexpr NgColorLong kRed = 0x2040E0, kGreen = 0x40C020, kHighlight = 0x00E0F0, kSelection = 0xF080E0;
constexpr NgColorLong kOpaque = 0xFF000000;
constexpr NgColorLong kLow = 0xF05030, kHigh = 0x10A0C0, kSelectionRow = 0x808020, kHighlightRow = 0xE0E0A0;

struct Marker {
    _Render3DMarkerType type = kCylinder;
    _NgFPoint3Str start{-1, .5f, 0}, vector{2, 0, 0};
    float lengthScale = 1, widthRatio = 0;
    const NgColorLong* color = &kRed;
    bool contoured = false;
    int selected = 0, highlighted = 0;
    float values[2] = {15, 25}; ///< of the texture's two columns
};
const Marker kBall{kSphere, {0, .5f, 0}, {2, 1, 1}},
    kValuedBall{kSphere, {0, .5f, 0}, {2, 1, 1}, 1, 0, &kRed, true};

int draw(const Marker& m) {
    if (m.type == kSphere)
        return RenderDraw3DSphere(&m.start, &m.vector, *m.color, m.contoured, m.values[0], m.selected,
                                  m.highlighted);
    return RenderDraw3DMarker(&m.start, &m.vector, m.lengthScale, m.widthRatio, m.color, m.contoured,
                              m.values[0], m.values[1], m.selected, m.highlighted);
}

std::uint32_t colorAt(const Picture& p, int x, int y) {
    return p.at(x, y) & 0xFFFFFF;
}

/// A view along -z of the square -2..2, 16 pixels a unit, with light that shows every side in its colour.
class Markers3D : public LibraryTest {
protected:
    void SetUp() override {
        LibraryTest::SetUp();
        glMatrixMode(GL_PROJECTION);
        glOrtho(-2, 2, -2, 2, -4, 4);
        glMatrixMode(GL_MODELVIEW);
        _NglInfoStr& info = *NglGetNglInfo();
        for (NglLightParams& light : info.lights)
            light.enabled = 0;
        const float white = 1 / 1.74f; // the weight of ambient light
        info.lights[2] = {1, {white, white, white, white}, {}, {}, {1, 2, 3, 1}, 1, 0, 0};
        info.frontMaterial = info.backMaterial = {};
        const float textureMatrix[4][4] = {{.05f}, {0, 1}, {0, 0, 1}, {-.5f, 0, 0, 1}};
        std::copy_n(&textureMatrix[0][0], 16, &info.textureMatrix[0][0]);
        NglSetHighlightColor(kHighlight);
        NglSetSelectionColor(kSelection);
        ngl_set_color_long(kOpaque | kGreen);
        captureHostLog();
    }
    Picture picture(const std::function<void()>& drawing) {
        clear();
        drawing();
        return read();
    }
    /// One marker in a section of its own.
    Picture section(const Marker& marker, bool fixed = false) {
        return picture([&] {
            RenderBegin3DMarkerDraw(marker.type, kSmooth, fixed);
            EXPECT_EQ(draw(marker), 1);
            RenderEnd3DMarkerDraw();
        });
    }
    /// Of both kinds of draw, in the current colour.
    void expectFixedFunction() {
        for (const Marker& marker : {Marker{}, kBall})
            EXPECT_EQ(colorAt(section(marker), 32, 40), kGreen);
        EXPECT_EQ(takeLog(), "");
    }
    /// Diagnostics have negative numbers.
    static std::string takeLog() { return std::exchange(hostLog(), ""); }
};

bool attributeZeroIsEnabled() {
    GLint enabled = 0;
    glGetVertexAttribiv(0, GL_VERTEX_ATTRIB_ARRAY_ENABLED, &enabled);
    return enabled != 0;
}

/// First and last column and row of what is drawn.
std::vector<int> boxOf(const Picture& p) {
    std::vector<int> box = {p.width(), p.height(), -1, -1};
    for (int y = 0; y < p.height(); ++y)
        for (int x = 0; x < p.width(); ++x)
            if (p.at(x, y) != 0xFF332211)
                box = {std::min(box[0], x), std::min(box[1], y), std::max(box[2], x), std::max(box[3], y)};
    return box;
}

void makeContourTexture() {
    const NgColorLong texels[4][2] = {{kLow, kHigh},
                                      {kSelectionRow, kSelectionRow},
                                      {kHighlightRow, kHighlightRow},
                                      {0xFFFFFFFF, 0xFFFFFFFF}};
    GLuint texture;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 2, 4, 0, GL_RGBA, GL_UNSIGNED_BYTE, texels);
    glMatrixMode(GL_TEXTURE);
    glLoadMatrixf(&NglGetNglInfo()->textureMatrix[0][0]);
    glMatrixMode(GL_MODELVIEW);
}

} // namespace

TEST_F(Markers3D, LieWhereTheirLineIsOnBothPaths) {
    struct Row {
        const char* name;
        Marker marker;
        std::vector<int> box;
        double pixels; ///< within 6 %
    };
    const Row rows[] = {
        {"a sixth as wide as long", {}, {16, 37, 47, 42}, 192},
        {"longer and wider", {.lengthScale = 1.5f, .widthRatio = .5f}, {16, 28, 63, 51}, 48 * 24},
        {"no scale", {.lengthScale = 0}, {16, 37, 47, 42}, 192},
        {"negative scale", {.lengthScale = -3}, {16, 37, 47, 42}, 192},
        {"upward", {.start = {0, -1, 0}, .vector = {0, 2, 0}, .widthRatio = .25f}, {28, 16, 35, 47}, 256},
        {"away", {.start = {0, 0, 1}, .vector = {0, 0, -2}, .widthRatio = 1}, {16, 16, 47, 47}, 784},
        {"cone", {.type = RENDER_3D_MARKER_CONE, .widthRatio = 1}, {16, 24, 46, 55}, 512},
        {"cone to the left", {RENDER_3D_MARKER_CONE, {1, 0, 0}, {-2, 0, 0}}, {22, 29, 47, 34}, 85},
        {"arrow", {.type = RENDER_3D_MARKER_ARROW_ONE_WAY, .widthRatio = .25f}, {16, 32, 46, 47}, 256},
        {"rivet", {.type = RENDER_3D_MARKER_RIVET, .widthRatio = .25f}, {15, 32, 48, 47}, 297},
        {"ellipsoid", {kSphere, {.5f, 0, 0}, {2, 1, .5f}, 9, 9}, {24, 24, 55, 39}, 402},
        {"too short", {.vector = {.9e-5f, 0, 0}, .lengthScale = 2e5f}, {64, 64, -1, -1}, 0}};
    for (const auto& [name, marker, box, pixels] : rows) {
        SCOPED_TRACE(name);
        const Picture drawn = section(marker);
        EXPECT_EQ(boxOf(drawn), box);
        EXPECT_NEAR(drawn.countOtherThan(kClear), pixels, .06 * pixels);
        ngl_set_color_long(kOpaque | kRed);
        EXPECT_TRUE(samePicture(section(marker, true), drawn));
        EnablePhysicallyBasedRendering(true);
        EXPECT_TRUE(samePicture(section(marker), drawn)) << "markers have no material";
        EnablePhysicallyBasedRendering(false);
    }
}

// The position of a vertex is its normal: light from the right shows the right end, whatever the path.
TEST_F(Markers3D, AreLitAsRoundedShapes) {
    const float black[4] = {0, 0, 0, 1}, white[4] = {1, 1, 1, 1}, fromRight[4] = {1e6f, 0, 0, 1};
    NglGetNglInfo()->lights[2] = {1, {}, {2, 2, 2, 2}, {}, {1e6f, 0, 0, 1}, 1, 0, 0};
    glLightfv(GL_LIGHT0, GL_POSITION, fromRight);
    glMaterialfv(GL_FRONT_AND_BACK, GL_AMBIENT, black);
    glMaterialfv(GL_FRONT_AND_BACK, GL_DIFFUSE, white);
    glLightModelfv(GL_LIGHT_MODEL_AMBIENT, black);
    glEnable(GL_LIGHT0);
    glEnable(GL_LIGHTING);
    glShadeModel(GL_FLAT);
    const NgColorLong color = 0xFFFFFFFF;
    for (const bool fixed : {false, true}) {
        SCOPED_TRACE(fixed);
        const Picture upright =
            section({.start = {0, -1, 0}, .vector = {0, 2, 0}, .widthRatio = .5f, .color = &color}, fixed);
        for (int x = 33; x < 40; ++x) // of a cylinder of radius 8 the cosine to the right grows as x does
            for (const int y : {20, 32})
                EXPECT_NEAR(int(colorAt(upright, x, y) & 0xFF), 255 * (x - 31.5) / 8, 14) << x << ", " << y;
        const Picture end =
            section({.start = {0, 0, -1}, .vector = {0, 0, 2}, .widthRatio = 1, .color = &color}, fixed);
        EXPECT_LT(colorAt(end, 33, 32) & 0xFF, 60u) << "its middle looks at the viewer";
        EXPECT_GT(colorAt(end, 46, 32) & 0xFF, 180u) << "its rim to the side";
    }
    EXPECT_FALSE(glIsEnabled(GL_NORMALIZE));
    // Where the light shines on the back of a surface: outward is outward in a mirror too.
    std::fill_n(NglGetNglInfo()->lights[2].specular, 4, 1.0f);
    std::fill_n(NglGetNglInfo()->backMaterial.specular, 4, 1.0f);
    const Picture ball = section(kBall);
    EXPECT_GT(colorAt(ball, 26, 40), colorAt(ball, 44, 40));
    EXPECT_TRUE(samePicture(section({kSphere, {0, .5f, 0}, {-2, 1, 1}}), ball, 1));
}

TEST_F(Markers3D, TakeTheColorOfTheirKindAndState) {
    struct Row {
        const char* name;
        Marker marker;
        NgColorLong start, end, fixed;
    };
    const Row rows[] = {
        {"colour", {}, kRed, kRed, kGreen},
        {"flags count for contours only", {.selected = 1, .highlighted = 1}, kRed, kRed, kGreen},
        {"current", {.color = nullptr}, kGreen, kGreen, kGreen},
        {"values", {.contoured = true}, kLow, kHigh, kLow},
        {"selected", {.contoured = true, .selected = 1}, kSelection, kSelection, kSelectionRow},
        {"highlighted", {.contoured = true, .highlighted = 1}, kHighlight, kHighlight, kHighlightRow},
        {"both", {.contoured = true, .selected = 1, .highlighted = 1}, kHighlight, kHighlight, kHighlightRow},
        {"values again", {.contoured = true, .values = {25, 15}}, kHigh, kLow, kHigh},
        {"sphere", kBall, kRed, kRed, kGreen},
        {"sphere's one value", kValuedBall, kLow, kLow, kLow}};
    makeContourTexture();
    for (const auto& [name, marker, start, end, fixed] : rows) {
        SCOPED_TRACE(name);
        glDisable(GL_TEXTURE_2D);
        ngl_set_color_long(kOpaque | kGreen);
        const Picture drawn = section(marker);
        EXPECT_EQ(hex(colorAt(drawn, 18, 40)), hex(start));
        EXPECT_EQ(hex(colorAt(drawn, 45, 40)), hex(end));
        if (marker.contoured) {
            glEnable(GL_TEXTURE_2D);
            glColor3f(1, 1, 1); // the texture's colours as they are
        }
        const Picture byFixedFunction = section(marker, true);
        for (const int x : {18, 45})
            EXPECT_EQ(hex(colorAt(byFixedFunction, x, 40)), hex(fixed));
    }
    // The first half of an arrow's vertices ends within its neck: the head is of the second.
    const Picture arrow =
        section({.type = RENDER_3D_MARKER_ARROW_ONE_WAY, .widthRatio = .25f, .contoured = true});
    EXPECT_EQ(hex(colorAt(arrow, 18, 40)), hex(kLow));
    EXPECT_EQ(hex(colorAt(arrow, 38, 45)), hex(kHigh));
}

TEST_F(Markers3D, AlphaIsOfTheCurrentColorOrOfBlending) {
    const NgColorLong faint = 0x10FFFFFF;
    glBlendFunc(GL_ONE, GL_ZERO);
    const auto alpha = [&](const Marker& marker) { return section(marker).at(32, 40) >> 24; };
    glColor4f(1, 1, 1, 77 / 255.0f);
    EXPECT_EQ(alpha({.color = nullptr}), 77u);
    EXPECT_EQ(alpha({.color = &faint}), 255u);
    makeContourTexture();
    for (const unsigned value : {127u, 200u}) {
        ngl_set_blending_value(static_cast<int>(value));
        glEnable(GL_BLEND);
        for (const Marker& marker : {Marker{.color = nullptr}, Marker{}, Marker{.contoured = true}})
            EXPECT_EQ(alpha(marker), value);
        glDisable(GL_BLEND);
        EXPECT_EQ(alpha({}), 255u);
    }
}

TEST_F(Markers3D, ClipFromTheNextBeginOn) {
    const double right[4] = {1, 0, 0, 0};
    glClipPlane(GL_CLIP_PLANE0, right);
    glEnable(GL_CLIP_PLANE0);
    const Picture whole = section({});
    EXPECT_EQ(boxOf(whole)[0], 16);
    RenderClip3DMarkerDraw(true); // outside a section
    EXPECT_TRUE(samePicture(section({}), whole));
    RenderBegin3DMarkerDraw(kCylinder, kSmooth, false);
    RenderClip3DMarkerDraw(true);
    EXPECT_TRUE(samePicture(picture([] { draw({}); }), whole));
    RenderBegin3DMarkerDraw(kCylinder, kSmooth, false);
    EXPECT_EQ(boxOf(picture([] { draw({}); })), (std::vector{32, 37, 47, 42}));
    RenderEnd3DMarkerDraw();
    EXPECT_EQ(boxOf(section({}))[0], 32) << "for the sections to come";
}

// What fixed function draws has the current colour, green, and the program's markers are red.
TEST_F(Markers3D, ForcedFixedFunctionLastsUntilTheEnd) {
    GLuint buffer;
    glGenBuffers(1, &buffer);
    glBindBuffer(GL_ARRAY_BUFFER, buffer);
    section({}, true); // makes the shape's buffers
    EXPECT_EQ(integer(GL_ARRAY_BUFFER_BINDING), GLint(buffer));
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    const GlSnapshot before = GlSnapshot::take();
    const auto isDrawnIn = [&](NgColorLong color) {
        return colorAt(picture([] { draw({}); }), 32, 40) == color;
    };
    const auto begin = [](bool fixed) { RenderBegin3DMarkerDraw(kCylinder, kSmooth, fixed); };
    begin(true);
    EXPECT_EQ(integer(GL_CURRENT_PROGRAM), 0);
    EXPECT_TRUE(isDrawnIn(kGreen));
    RenderEnd3DMarkerDraw();
    begin(false);
    const GLint program = integer(GL_CURRENT_PROGRAM);
    EXPECT_TRUE(program != 0 && attributeZeroIsEnabled());
    EXPECT_TRUE(isDrawnIn(kRed));
    begin(true); // without an end
    EXPECT_EQ(integer(GL_CURRENT_PROGRAM), program);
    EXPECT_TRUE(isDrawnIn(kGreen));
    begin(false);
    EXPECT_TRUE(isDrawnIn(kGreen)) << "parked";
    RenderEnd3DMarkerDraw();
    EXPECT_TRUE(before.equals(GlSnapshot::take()));
    begin(false);
    EXPECT_TRUE(isDrawnIn(kRed));
    RenderBegin3DMarkerDraw(RENDER_3D_MARKER_NONE, kSmooth, false);
    RenderEnd3DMarkerDraw();
    EXPECT_FALSE(attributeZeroIsEnabled());
    EXPECT_TRUE(before.equals(GlSnapshot::take()));
}

TEST_F(Markers3D, WrongCallsAreToldAndDrawNothing) {
    const auto expectLog = [](int lines, const std::string& words) {
        const std::string log = takeLog();
        EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), lines) << log;
        EXPECT_NE(log.find("-1 " + words), std::string::npos) << log;
    };
    const std::string none = "3D marker draw is called without RenderBegin3DMarkerDraw";
    const Marker sphere{kSphere};
    const auto nothing = [&](const Marker& marker) {
        return picture([&] { EXPECT_EQ(draw(marker), 0); }).countOtherThan(kClear) == 0;
    };
    RenderEnd3DMarkerDraw();
    EXPECT_TRUE(nothing({}) && nothing(sphere));
    expectLog(2, none);
    RenderBegin3DMarkerDraw(kSphere, kSmooth, false);
    EXPECT_TRUE(nothing({}));
    expectLog(1, "Failed to draw 3D sphere (RenderDraw3DMarker is not valid");
    RenderBegin3DMarkerDraw(RENDER_3D_MARKER_RIVET, kSmooth, false);
    EXPECT_TRUE(nothing(sphere));
    expectLog(1, "Failed to draw 3D markers (RenderDraw3DSphere is only valid");
    for (const int unknown : {0, 6, -1}) {
        RenderBegin3DMarkerDraw(static_cast<_Render3DMarkerType>(unknown), kSmooth, false);
        EXPECT_TRUE(nothing({}) && nothing(sphere));
    }
    RenderBegin3DMarkerDraw(kCylinder, kSmooth, false);
    EXPECT_EQ(RenderDraw3DMarker(nullptr, nullptr, 1, 0, nullptr, false, 0, 0, 0, 0), 0);
    RenderEnd3DMarkerDraw();
    EXPECT_EQ(takeLog(), "");
    EXPECT_TRUE(nothing({}));
    expectLog(1, none);
}

TEST_F(Markers3D, AreInertWhereTheSettingSaysSo) {
    if (ranInSubprocess({{"OPTIMIZED_3D_MARKER_RENDERING", "false"}}))
        return;
    RenderBegin3DMarkerDraw(kCylinder, kSmooth, true);
    setenv("OPTIMIZED_3D_MARKER_RENDERING", "true", 1); // too late
    const Picture p = picture([] {
        for (const Marker& marker : {Marker{}, Marker{kSphere}})
            EXPECT_EQ(draw(marker), 0);
        RenderClip3DMarkerDraw(true);
        RenderEnd3DMarkerDraw();
    });
    EXPECT_EQ(p.countOtherThan(kClear), 0);
    EXPECT_EQ(takeLog(), "");
}

TEST_F(Markers3D, AreDrawnFromClientMemoryWithoutADeclaredContext) {
    SetRenderingContextActive(false);
    GLuint buffer;
    glGenBuffers(1, &buffer);
    for (const GLenum target : {GL_ARRAY_BUFFER, GL_ELEMENT_ARRAY_BUFFER})
        glBindBuffer(target, buffer);
    ngl_set_color_long(kOpaque | kRed);
    for (const bool fixed : {false, true})
        EXPECT_EQ(boxOf(section({}, fixed)), (std::vector{16, 37, 47, 42})) << fixed;
    for (GLuint name = 1; name < 16; ++name)
        EXPECT_EQ(glIsBuffer(name), name == buffer);
}

TEST_F(Markers3D, AreDrawnByFixedFunctionWhereTheProgramIsOffOrRefused) {
    SetUserDefinedFastRenderingMode(0);
    expectFixedFunction();
    SetUserDefinedFastRenderingMode(1);
    epoxy_glLinkProgram = [](GLuint) {};
    expectFixedFunction();
}
