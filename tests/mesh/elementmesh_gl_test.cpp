// Element meshes through all routes: one picture, whatever the coordinates and the driver.
#include <functional>
#include <tuple>

#include "tests/mesh/elementsheet.h"
#include "tests/support/glsnapshot.h"
#include "tests/support/subprocess.h"

using namespace nrutest;
using namespace ngl;

TEST_F(ElementMesh, AllRoutesGiveOnePicture) {
    using Change = std::function<void(NglElementAttributes&)>;
    const auto nothing = [](auto&) {};
    const std::tuple<const char*, void (*)(NglElementMesh&), Change> rows[] = {
        {"smooth", [](NglElementMesh&) {}, nothing},
        {"flat", [](NglElementMesh&) {}, [](auto& a) { a.shading = NglElementFlat; }},
        {"element normals", [](NglElementMesh&) {}, [](auto& a) { a.shading = NglElementNormals; }},
        {"front and back", markSome,
         [](auto& a) {
             std::tie(a.frontAndBack, a.frontColor, a.backColor) = std::tuple{true, 0xFF, 0xFF00};
         }},
        {"unlit and marked", markSome, [](auto& a) { a.lit = false; }},
        {"marked, flat", markSome, [](auto& a) { a.shading = NglElementFlat; }},
        {"marked, element normals", markSome, [](auto& a) { a.shading = NglElementNormals; }},
        {"bands", nodeContour, nothing},
        {"bands, unlit", nodeContour, [](auto& a) { a.lit = false; }},
        {"smeared", smearedContour, nothing},
        {"bands, marked", [](NglElementMesh& m) { markedContour(m, 30); }, nothing},
        {"bands, marked and creased", [](NglElementMesh& m) { markedContour(m, 4); }, nothing},
        {"values of elements", elementContour, nothing},
        {"values of elements, normals too", elementContour, [](auto& a) { a.shading = NglElementNormals; }},
        {"contour off", nodeContour, [](auto& a) { a.contour = false; }},
        {"clipped", setLevels, [](auto& a) { a.clipFlag = 1; }},
        {"clipped below", setLevels, [](auto& a) { a.clipFlag = 3; }},
        {"failing", setLevels,
         [](auto& a) {
             std::tie(a.failureMode, a.failureLevel) = std::pair{1, 4};
         }},
        {"failing below", setLevels,
         [](auto& a) {
             std::tie(a.failureMode, a.failureLevel) = std::pair{2, 4};
         }},
        {"failing by both", setLevels,
         [](auto& a) {
             std::tie(a.failureMode, a.failureLevel) = std::pair{3, 3};
         }},
        {"transparent", markSome, [](auto& a) { a.opacity = 0.4f; }}};
    Picture last = read();
    for (const double turnDeg : {25, 155}) // from behind too
        for (const auto& [name, prepare, change] : rows) {
            SCOPED_TRACE(::testing::Message() << name << " at " << turnDeg << " degrees");
            look(0, turnDeg);
            ASSERT_EQ(mesh.Create(sheet.input()), 0);
            prepare(mesh);
            NglElementAttributes how;
            change(how);
            const Picture first = draw(how);
            EXPECT_GT(first.countOtherThan(kClear), 300);
            EXPECT_FALSE(samePicture(first, last)) << "as in the row before";
            last = first;
            for (const NglElementRoute route : kRoutes) {
                how.route = route;
                // Fixed function lights at the vertices, and rounds its colours once more.
                const int tolerance = route != NglElementRouteFixed ? 1 : how.lit ? 4 : 1;
                EXPECT_TRUE(samePicture(first, draw(how), tolerance)) << "route " << route;
            }
        }
}

TEST_F(ElementMesh, TransparentFacesBlendInTheirOrder) {
    const double nodes[] = {-1, -1, 0, 1, -1, 0, 1, 1, 0, -1, 1, 0};
    const std::uint32_t triangle[] = {0, 1, 2}, quad[] = {0, 1, 2, 3};
    NglElementMesh two; // of one place
    ASSERT_EQ(two.Create({4, nodes, nullptr, 1, triangle, nullptr, 1, quad}), 0);
    two.SetColor(NglElements::One(0), 0x0000FF);
    two.SetColor(NglElements::One(1), 0x00FF00);
    look(0, 0);
    NglElementAttributes how;
    how.lit = false;
    how.opacity = 0.5f;
    for (const NglElementRoute route : kRoutes) {
        how.route = route;
        const std::uint32_t pixel = draw(two, how).at(40, 20); // the quad over the triangle
        EXPECT_NEAR(pixel & 0xFF, 0x44, 1) << "route " << route;
        EXPECT_NEAR(pixel >> 8 & 0xFF, 0x88, 1) << "route " << route;
    }
}

TEST_F(ElementMesh, LeavesTextureBuffersAsTheyWere) {
    GLuint buffer, textures[32];
    glGenBuffers(1, &buffer);
    glBindBuffer(GL_TEXTURE_BUFFER, buffer);
    glGenTextures(32, textures);
    for (GLenum unit = 32; unit-- > 0;) { // down to one that fixed function has
        glActiveTexture(GL_TEXTURE0 + unit);
        glBindTexture(GL_TEXTURE_BUFFER, textures[unit]);
    }
    NglElementAttributes how;
    for (const NglElementRoute route : kRoutes) {
        NglElementMesh fresh; // makes its textures in the draw
        ASSERT_EQ(fresh.Create(sheet.input()), 0);
        markSome(fresh);
        how.route = route;
        const GlSnapshot before = GlSnapshot::take();
        draw(fresh, how);
        EXPECT_TRUE(before.equals(GlSnapshot::take())) << "route " << route;
    }
}

TEST_F(ElementMesh, CoordinatesFarFromZeroKeepThePicture) {
    constexpr double kFar = 10485760; // 10 * 2^20: single precision keeps whole numbers of it
    const Picture near = draw(NglElementAttributes{});
    EXPECT_GT(near.countOtherThan(kClear), 300);
    NglElementMesh far;
    ASSERT_EQ(far.Create(Sheet(0.06, kFar).input()), 0);
    look(kFar);
    for (const NglElementRoute route : kRoutes) {
        NglElementAttributes how;
        how.route = route;
        // Fixed function has a matrix of its own making.
        EXPECT_TRUE(samePicture(draw(far, how), near, route == NglElementRouteFixed ? 4 : 0)) << route;
    }
    // A matrix that the record does not hold is GL's own.
    glTranslated(4, 0, 0); // in steps of 1, which is what is left of its precision
    EXPECT_FALSE(samePicture(draw(far, {}), near));
}

TEST_F(ElementMesh, WhatCannotRunFallsBackToThePicture) {
    const NglElementAttributes how;
    const Picture expected = draw(how);
    NglElementMesh other;
    const auto drawsTheSame = [&](const char* without, int tolerance) {
        ASSERT_EQ(other.Create(sheet.input()), 0);
        EXPECT_TRUE(samePicture(draw(other, how), expected, tolerance)) << without;
        other.Clear();
    };
    SetRenderingContextActive(false);
    drawsTheSame("a declared context", 4);
    SetRenderingContextActive(true);
    SetUserDefinedFastRenderingMode(0);
    drawsTheSame("programs", 4);
    SetUserDefinedFastRenderingMode(1);
    const auto genBuffers = epoxy_glGenBuffers;
    epoxy_glGenBuffers = [](GLsizei, GLuint* names) { *names = 0; };
    drawsTheSame("buffers", 4);
    epoxy_glGenBuffers = genBuffers;
    const auto createProgram = epoxy_glCreateProgram;
    epoxy_glCreateProgram = []() -> GLuint { return 0; };
    NglElementAttributes unlit;
    unlit.lit = false; // a program that was not made before
    NglElementAttributes mesh1 = unlit;
    mesh1.route = NglElementRouteMesh;
    EXPECT_TRUE(samePicture(draw(unlit), draw(mesh1), 1));
    epoxy_glCreateProgram = createProgram;
}

TEST_F(ElementMesh, DriversWithoutProgramsDrawByFixedFunction) {
    const Environment drivers[] = {
        {{"MESA_EXTENSION_OVERRIDE", "-GL_ARB_vertex_shader -GL_ARB_fragment_shader"}},
        {{"MESA_GL_VERSION_OVERRIDE", "1.4"}, {"MESA_EXTENSION_OVERRIDE", "-GL_ARB_vertex_buffer_object"}},
        {{"NU_RENDERING_MODE", "1"}}};
    for (const Environment& driver : drivers) {
        if (ranInSubprocess(driver))
            continue;
        InitRenderDefaults(); // which reads the mode
        ASSERT_FALSE(IsFastRendererEnabled());
        nodeContour(mesh);
        const Picture automatic = draw({});
        EXPECT_GT(automatic.countOtherThan(kClear), 300);
        NglElementAttributes fixed;
        fixed.route = NglElementRouteFixed;
        EXPECT_TRUE(samePicture(draw(fixed), automatic));
        return;
    }
}

TEST_F(ElementMesh, NumbersBeyondSinglePrecision) {
    // Elements that single precision does not tell from their neighbours.
    constexpr std::uint32_t kFirst = (1u << 24) + 1;
    Sheet large;
    for (auto* elements : {&large.ofTriangles, &large.ofQuads})
        for (std::uint32_t& element : *elements)
            element = kFirst + (element - 5) / 2;
    ASSERT_EQ(mesh.Create(large.input()), 0);
    NglElementAttributes how;
    how.lit = false;
    std::vector<std::uint32_t> odd;
    for (std::uint32_t e = kFirst; e < mesh.ElementCount(); e += 2)
        odd.push_back(e);
    ASSERT_EQ(mesh.SetVisible(NglElements::List(odd.data(), static_cast<std::uint32_t>(odd.size())), false),
              0);
    const Picture picture = draw(how);
    how.route = NglElementRouteFixed;
    EXPECT_TRUE(samePicture(picture, draw(how), 1));
    EXPECT_GT(picture.countOtherThan(kClear), 300);
}

TEST_F(ElementMesh, RefusesWhatIsNotInOrder) {
    NglElementAttributes how;
    const Picture before = draw(how);
    const std::uint32_t count = mesh.ElementCount(), list[] = {1, count};
    const float values[] = {1, 2};
    const int levels[] = {1, 2};
    const NgColorLong colors[] = {1, 2};
    NglElementMesh none;
    Sheet bad;
    bad.nodes[5] = kNan;
    const std::pair<const char*, int> refused[] = {
        {"one", mesh.SetVisible(NglElements::One(count), false)},
        {"range", mesh.SetVisible(NglElements::Range(count - 1, 2), false)},
        {"range around", mesh.SetColor(NglElements::Range(1, 0xFFFFFFFF), 1)},
        {"list", mesh.SetSelection(NglElements::List(list, 2), NglElementSelected)},
        {"selection", mesh.SetSelection(NglElements::One(0), static_cast<NglElementSelection>(3))},
        {"clip code", mesh.SetClipCode(NglElements::One(0), 256)},
        {"no colours", mesh.SetColors(NglElements::One(0), nullptr)},
        {"colours", mesh.SetColors(NglElements::List(list, 2), colors)},
        {"no levels", mesh.SetFailureLevels(NglElements::One(0), levels, nullptr)},
        {"levels", mesh.SetFailureLevels(NglElements::List(list, 2), levels, levels)},
        {"values", mesh.SetElementValues(NglElements::List(list, 2), values)},
        {"no values", mesh.SetElementValues(NglElements::One(0), nullptr)},
        {"before Create", none.SetVisible(NglElements::Range(0, 0), false)},
        {"values before Create", none.SetNodeValues(values)},
        {"surface", mesh.Create(bad.input())}};
    for (const auto& [name, result] : refused)
        EXPECT_EQ(result, -1) << name;
    EXPECT_EQ(mesh.SetVisible(NglElements::Range(count, 0), false), 0) << "no elements";
    EXPECT_TRUE(samePicture(draw(how), before));
    EXPECT_EQ(none.Draw(), 0);
    NglElementPick pick;
    EXPECT_FALSE(none.PickPixel(1, 1, &pick));
    EXPECT_FALSE(none.IsElementShown(0));
}

TEST_F(ElementMesh, MovesAndStartsAnew) {
    nodeContour(mesh);
    NglElementAttributes how;
    how.shading = NglElementFlat;
    how.route = NglElementRouteMesh;
    const Picture banded = draw(how);
    NglElementMesh moved = std::move(mesh);
    EXPECT_TRUE(samePicture(draw(moved, how), banded));
    EXPECT_EQ(mesh.ElementCount(), 0u);
    EXPECT_EQ(mesh.Create(sheet.input()), 0) << "as good as new";
    // Attributes and scale stay, facts and values do not.
    markSome(moved);
    ASSERT_EQ(moved.Create(sheet.input()), 0);
    EXPECT_EQ(moved.Attributes().shading, NglElementFlat);
    EXPECT_TRUE(samePicture(draw(moved, how), draw(mesh, how)));
    moved.SetNodeValues(sheet.nodeValues.data());
    EXPECT_TRUE(samePicture(draw(moved, how), banded));
    moved.Clear();
    EXPECT_EQ(draw(moved, how).countOtherThan(kClear), 0);
    EXPECT_EQ(moved.SetVisible(NglElements::Range(0, 0), true), -1);
}

TEST(ElementMeshAlone, DrawsNothingWithoutAContext) {
    NglElementMesh mesh;
    const Sheet sheet;
    ASSERT_EQ(mesh.Create(sheet.input()), 0);
    EXPECT_EQ(mesh.Draw(), 0);
}
