// Element meshes through all routes: one picture, the facts by their pixels, and what a change uploads.
#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <random>
#include <tuple>
#include <utility>
#include <vector>

#include "NRenderUtl/gl/ngl.h"
#include "NRenderUtl/mesh/nmesh.h"
#include "NRenderUtl/shaders/nshaders.h"
#include "tests/support/glsnapshot.h"
#include "tests/support/gltest.h"

using namespace nrutest;
using namespace ngl;

namespace {

constexpr NglElementRoute kRoutes[] = {NglElementRouteAutomatic, NglElementRouteMesh, NglElementRouteGeometry,
                                       NglElementRouteFixed};
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

/// A wavy sheet over -1..1, of 12 x 12 cells: quads, warped ones, and every third cell two triangles of one
/// element. Elements have odd numbers from 5 on.
struct Sheet {
    static constexpr unsigned kSide = 12, kRow = kSide + 1;
    std::vector<double> nodes;
    std::vector<std::uint32_t> triangles, quads, ofTriangles, ofQuads;
    std::vector<float> nodeValues;

    explicit Sheet(double height = 0.06, double offset = 0) {
        for (unsigned j = 0; j < kRow; ++j)
            for (unsigned i = 0; i < kRow; ++i) {
                const double x = 2.0 * i / kSide - 1, y = 2.0 * j / kSide - 1;
                // Multiples of 2^-20, so that an offset of 1e7 changes no distance.
                const double z = std::round(height * std::sin(3 * x) * std::cos(4 * y) * 0x1p20) * 0x1p-20;
                for (const double c : {x, y})
                    nodes.push_back(std::round(c * 0x1p20) * 0x1p-20 + offset);
                nodes.push_back(z + offset);
                nodeValues.push_back(static_cast<float>(0.55 + 0.5 * std::sin(2 * x + 3 * y)));
            }
        for (unsigned cell = 0; cell < kSide * kSide; ++cell) {
            const std::uint32_t a = cell / kSide * kRow + cell % kSide, b = a + 1, c = b + kRow, d = a + kRow;
            if (cell % 3 != 0) {
                quads.insert(quads.end(), {a, b, c, d});
                ofQuads.push_back(5 + 2 * cell);
                continue;
            }
            triangles.insert(triangles.end(), {a, b, c, a, c, d});
            ofTriangles.insert(ofTriangles.end(), 2, 5 + 2 * cell);
        }
    }
    NglElementMeshInput input() const {
        const auto count = [](const auto& list, std::size_t each) {
            return static_cast<std::uint32_t>(list.size() / each);
        };
        return {count(nodes, 3),    nodes.data(),    nullptr,      count(triangles, 3), triangles.data(),
                ofTriangles.data(), count(quads, 4), quads.data(), ofQuads.data()};
    }
};

/// Three bands with a gap behind the first, and colours out of range.
RenderColorScale someScale() {
    RenderColorScale scale;
    scale.SetColorBands({{0.1f, 0.3f, 0x2040F0}, {0.4f, 0.6f, 0x30D050}, {0.6f, 0.9f, 0xE06020}});
    scale.SetOutOfRangeMinColor(0xF0F0F0);
    scale.SetOutOfRangeMaxColor(0x8000C0);
    return scale;
}

/// Two lights far away, so that what they give changes little within an element, and other specular colours
/// on the back.
void setLights() {
    const float near[4] = {300, 200, 900, 1}, side[4] = {-300, 100, 900, 1}, some[4] = {0.2f, 0.3f, 0.1f, 1},
                much[4] = {0.7f, 0.5f, 0.6f, 1};
    glLightfv(GL_LIGHT0, GL_POSITION, near);
    glLightfv(GL_LIGHT0, GL_AMBIENT, some);
    glLightfv(GL_LIGHT0, GL_DIFFUSE, much);
    glLightfv(GL_LIGHT2, GL_POSITION, side);
    glLightfv(GL_LIGHT2, GL_DIFFUSE, some);
    glLightfv(GL_LIGHT2, GL_SPECULAR, much);
    glMaterialfv(GL_FRONT, GL_SPECULAR, some);
    glMaterialf(GL_FRONT, GL_SHININESS, 2);
    glEnable(GL_LIGHT0);
    glEnable(GL_LIGHT2);
}

/// An oblique view of the square -1..1, whose edges meet no pixel's centre.
class ElementMesh : public GlTest {
protected:
    void SetUp() override {
        GlTest::SetUp();
        SetRenderingContextActive(true);
        NglInitGLExtensions();
        RenderingInitShaders();
        glEnable(GL_DEPTH_TEST);
        setLights();
        look(0);
        ASSERT_EQ(mesh.Create(sheet.input()), 0);
    }
    void TearDown() override {
        mesh.Clear();
        GlTest::TearDown();
    }
    static void look(double offset, double turnDeg = 25) {
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        glOrtho(-1.21, 1.13, -1.17, 1.19, -4, 4);
        glMatrixMode(GL_MODELVIEW);
        glLoadIdentity();
        glRotated(turnDeg, 0.8, 0.6, 0);
        NglUpdateNglInfo();
        _NglInfoStr& record = *NglGetNglInfo();
        // What the host's own double-precision view is, of which GL keeps a rounded copy.
        for (int k = 0; k < 3; ++k)
            for (int i = 0; i < 3; ++i)
                record.modelView[3][k] -= record.modelView[i][k] * offset;
        glLoadMatrixd(record.modelView[0]);
    }
    Picture draw(NglElementMesh& drawn, const NglElementAttributes& how) {
        clear();
        drawn.SetAttributes(how);
        EXPECT_EQ(drawn.Draw(), 0);
        return read();
    }
    Picture draw(const NglElementAttributes& how) { return draw(mesh, how); }

    const Sheet sheet;
    const RenderColorScale scale = someScale();
    NglElementMesh mesh;
};

/// Changes of a mesh, for rows of cases.
void nodeContour(NglElementMesh& mesh) {
    const RenderColorScale scale = someScale();
    mesh.SetColorScale(&scale);
    mesh.SetNodeValues(Sheet().nodeValues.data());
}

void smearedContour(NglElementMesh& mesh) {
    nodeContour(mesh);
    RenderColorScale scale = someScale();
    scale.SetSmearedMode(true);
    mesh.SetColorScale(&scale);
}

void elementContour(NglElementMesh& mesh) {
    nodeContour(mesh);
    std::vector<float> values(mesh.ElementCount());
    for (std::size_t i = 0; i < values.size(); ++i)
        values[i] = i % 17 == 0 ? kNan : static_cast<float>(i % 29) / 26;
    mesh.SetElementValues(values.data());
}

void markSome(NglElementMesh& mesh) {
    const std::uint32_t some[] = {5, 11, 47, 101, 201};
    mesh.SetVisible(NglElements::Range(60, 30), false);
    mesh.SetSelection(NglElements::List(some, 5), NglElementSelected);
    mesh.SetSelection(NglElements::Range(75, 9), NglElementHighlighted);
    mesh.SetColor(NglElements::Range(40, 100), 0x40C0E0);
    mesh.ClearColors(NglElements::Range(110, 10));
}

void setLevels(NglElementMesh& mesh) {
    for (std::uint32_t e = 0; e < mesh.ElementCount(); ++e) {
        mesh.SetClipCode(NglElements::One(e), static_cast<int>(e / 2 % 5));
        mesh.SetFailureLevel(NglElements::One(e), static_cast<int>(e % 11) - 1, static_cast<int>(e % 7) - 1);
    }
}

} // namespace

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

TEST_F(ElementMesh, ElementsComeAndGo) {
    using Step = std::function<void(NglElementMesh&, NglElementAttributes&)>;
    const std::pair<const char*, Step> steps[] = {
        {"some hidden", [](auto& m, auto&) { m.SetVisible(NglElements::Range(60, 90), false); }},
        {"one more", [](auto& m, auto&) { m.SetVisible(NglElements::One(11), false); }},
        {"some of them back", [](auto& m, auto&) { m.SetVisible(NglElements::Range(80, 30), true); }},
        {"clipped too", [](auto& m, auto& a) { setLevels(m), a.clipFlag = 1; }},
        {"other codes", [](auto& m, auto&) { m.SetClipCode(NglElements::Range(7, 20), 0); }},
        {"failing too",
         [](auto&, auto& a) {
             std::tie(a.failureMode, a.failureLevel) = std::pair{1, 4};
         }},
        {"at another level", [](auto&, auto& a) { a.failureLevel = 2; }},
        {"by other levels", [](auto& m, auto&) { m.SetFailureLevel(NglElements::Range(90, 60), 1, -1); }},
        {"one hidden that is selected",
         [](auto& m, auto&) { m.SetSelection(NglElements::One(61), NglElementSelected); }},
        {"and no longer",
         [](auto& m, auto&) { m.SetSelection(NglElements::One(61), NglElementNotSelected); }},
        {"nothing hidden",
         [](auto& m, auto&) { m.SetVisible(NglElements::Range(0, m.ElementCount()), true); }},
        {"neither clipped nor failing", [](auto&, auto& a) { a = {}; }}};
    const Picture all = draw({});
    NglElementAttributes how;
    Picture last = all;
    for (const auto& [name, step] : steps) {
        SCOPED_TRACE(name);
        step(mesh, how);
        const Picture picture = draw(how);
        EXPECT_FALSE(samePicture(picture, last)) << "nothing changed";
        last = picture;
        NglElementMesh fresh; // without buffers of earlier steps
        ASSERT_EQ(fresh.Create(sheet.input()), 0);
        for (std::uint32_t e = 0; e < fresh.ElementCount(); ++e)
            fresh.SetVisible(NglElements::One(e), mesh.IsElementShown(e));
        if (std::string(name) == "one hidden that is selected")
            fresh.SetSelection(NglElements::One(61), NglElementSelected);
        for (const NglElementRoute route : {NglElementRouteAutomatic, NglElementRouteMesh}) {
            NglElementAttributes plain;
            plain.route = route;
            EXPECT_TRUE(samePicture(draw(fresh, plain), picture, 1)) << "route " << route;
        }
    }
    EXPECT_TRUE(samePicture(last, all));
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

TEST_F(ElementMesh, TakesNoHarmFromTheHostsStateAndLeavesIt) {
    markSome(mesh);
    NglElementAttributes how;
    how.lit = false;
    const Picture plain = draw(how);
    GLuint buffer, textures[32];
    glGenBuffers(1, &buffer);
    glBindBuffer(GL_TEXTURE_BUFFER, buffer);
    glGenTextures(32, textures);
    for (GLenum unit = 32; unit-- > 0;) { // down to one that fixed function has
        glActiveTexture(GL_TEXTURE0 + unit);
        glBindTexture(GL_TEXTURE_BUFFER, textures[unit]);
    }
    glEnable(GL_PRIMITIVE_RESTART);
    glPrimitiveRestartIndex(20);
    glProvokingVertex(GL_FIRST_VERTEX_CONVENTION);
    const auto get = [](GLenum name) {
        GLint value = -1;
        glGetIntegerv(name, &value);
        return static_cast<GLuint>(value);
    };
    for (const NglElementRoute route : kRoutes) {
        SCOPED_TRACE(::testing::Message() << "route " << route);
        NglElementMesh fresh; // makes its textures in the draw
        ASSERT_EQ(fresh.Create(sheet.input()), 0);
        markSome(fresh);
        how.route = route;
        const GlSnapshot before = GlSnapshot::take();
        EXPECT_TRUE(samePicture(plain, draw(fresh, how), 1));
        EXPECT_TRUE(before.equals(GlSnapshot::take()));
        EXPECT_EQ(get(GL_TEXTURE_BUFFER), buffer);
        EXPECT_EQ(get(GL_PROVOKING_VERTEX), static_cast<GLuint>(GL_FIRST_VERTEX_CONVENTION));
        EXPECT_TRUE(glIsEnabled(GL_PRIMITIVE_RESTART));
        for (GLenum unit = 32; unit-- > 0;) {
            glActiveTexture(GL_TEXTURE0 + unit);
            EXPECT_EQ(get(GL_TEXTURE_BINDING_BUFFER), textures[unit]) << "unit " << unit;
        }
    }
}

TEST(ElementMeshAlone, DrawsNothingWithoutAContext) {
    NglElementMesh mesh;
    const Sheet sheet;
    ASSERT_EQ(mesh.Create(sheet.input()), 0);
    EXPECT_EQ(mesh.Draw(), 0);
}
