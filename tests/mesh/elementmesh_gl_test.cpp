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
#include "tests/mesh/testmesh.h"
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

/// Nodes have copies, to carry the numbers of elements or, with a small angle, for their normals.
void markedContour(NglElementMesh& mesh, double creaseDeg) {
    const Sheet sheet;
    NglElementMeshInput input = sheet.input();
    input.creaseDeg = creaseDeg;
    input.triangleElements = nullptr;
    mesh.Create(input);
    nodeContour(mesh);
    markSome(mesh);
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

/// Tiles of 8 x 8 pixels, in rows of eight from the bottom up: each an element of its own.
class ElementTiles : public ElementMesh {
protected:
    void SetUp() override {
        ElementMesh::SetUp();
        std::vector<double> nodes;
        std::vector<std::uint32_t> quads;
        for (std::uint32_t i = 0; i < 64; ++i)
            for (const auto& [x, y] : {std::pair{0, 0}, {1, 0}, {1, 1}, {0, 1}}) {
                quads.push_back(static_cast<std::uint32_t>(nodes.size() / 3));
                nodes.insert(nodes.end(), {(i % 8 + x) / 4.0 - 1, (i / 8 + y) / 4.0 - 1, 0});
            }
        NglElementMeshInput input;
        input.nodeCount = 256;
        input.nodes = nodes.data();
        input.quadCount = 64;
        input.quads = quads.data();
        ASSERT_EQ(mesh.Create(input), 0);
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        glMatrixMode(GL_MODELVIEW);
        glLoadIdentity();
        NglUpdateNglInfo();
        NglSetSelectionColor(kSelected);
        NglSetHighlightColor(kHighlighted);
        how.lit = false;
        how.color = kPlain;
    }
    static std::uint32_t middle(const Picture& picture, std::uint32_t tile) {
        return picture.at(tile % 8 * 8 + 4, tile / 8 * 8 + 4);
    }

    static constexpr std::uint32_t kSelected = 0xFF0010F0, kHighlighted = 0xFFE0A000, kPlain = 0xFF809080;
    NglElementAttributes how;
};

TEST_F(ElementTiles, ChangesShowWhereTheyWereMade) {
    std::mt19937 random(7);
    const auto below = [&](std::uint32_t end) { return static_cast<std::uint32_t>(random() % end); };
    std::vector<std::uint32_t> colors(64, kPlain), selections(64, 0);
    for (int change = 0; change < 28; ++change) {
        // A range, a list or a single one, in turn.
        std::vector<std::uint32_t> list;
        NglElements elements = NglElements::One(below(64));
        if (change % 3 == 1) {
            const std::uint32_t first = below(64);
            elements = NglElements::Range(first, below(65 - first));
        } else if (change % 3 == 2) {
            for (std::uint32_t i = below(30); i > 0; --i)
                list.push_back(below(64));
            elements = NglElements::List(list.data(), static_cast<std::uint32_t>(list.size()));
        }
        const std::uint32_t color = 0xFF000000 | random() >> 8;
        const auto selection = static_cast<NglElementSelection>(below(3));
        const auto forAll = [&](std::vector<std::uint32_t>& values, std::uint32_t value) {
            for (std::uint32_t i = 0; i < elements.count; ++i)
                values[elements.list ? elements.list[i] : elements.first + i] = value;
        };
        switch (below(6)) {
        case 0:
            EXPECT_EQ(mesh.SetVisible(elements, below(3) != 0), 0);
            break;
        case 1:
            EXPECT_EQ(mesh.SetColor(elements, color), 0);
            forAll(colors, color);
            break;
        case 2:
            EXPECT_EQ(mesh.ClearColors(elements), 0);
            forAll(colors, kPlain);
            break;
        case 3:
            EXPECT_EQ(mesh.SetSelection(elements, selection), 0);
            forAll(selections, selection);
            break;
        case 4:
            EXPECT_EQ(mesh.SetClipCode(elements, static_cast<int>(below(4))), 0);
            break;
        default:
            EXPECT_EQ(mesh.SetFailureLevel(elements, static_cast<int>(below(6)) - 1,
                                           static_cast<int>(below(6)) - 1),
                      0);
        }
        if (change == 14)
            std::tie(how.clipFlag, how.failureMode, how.failureLevel) = std::tuple{1, 3, 3};
        how.route = kRoutes[change % 4];
        const Picture picture = draw(how);
        for (std::uint32_t e = 0; e < 64; ++e) {
            const std::uint32_t marks[] = {colors[e], kSelected, kHighlighted};
            EXPECT_EQ(middle(picture, e), mesh.IsElementShown(e) ? marks[selections[e]] : kClear)
                << "element " << e << ", change " << change << ", route " << how.route;
        }
    }
}

namespace {

/// Calls of two entry points that fill buffers, and the bytes of the second.
struct Uploads {
    int made = 0, updates = 0;
    long bytes = 0;
    bool operator==(const Uploads&) const = default;
} uploads;
PFNGLBUFFERDATAPROC bufferData;
PFNGLBUFFERSUBDATAPROC bufferSubData;

void countUploads() {
    // The entry points are looked up by their first call.
    RenderGLBuffer buffer;
    buffer.Create(GL_ARRAY_BUFFER, 4, nullptr, GL_STATIC_DRAW);
    buffer.Update(&uploads);
    bufferData = epoxy_glBufferData;
    bufferSubData = epoxy_glBufferSubData;
    epoxy_glBufferData = [](GLenum target, GLsizeiptr size, const void* data, GLenum usage) {
        ++uploads.made;
        bufferData(target, size, data, usage);
    };
    epoxy_glBufferSubData = [](GLenum target, GLintptr offset, GLsizeiptr size, const void* data) {
        ++uploads.updates;
        uploads.bytes += size;
        bufferSubData(target, offset, size, data);
    };
}

} // namespace

TEST_F(ElementTiles, AChangeUploadsItsSpanAlone) {
    how.failureMode = 1;
    how.clipFlag = 1;
    const std::uint32_t scattered[] = {40, 8, 9, 30, 20};
    const NglElements list = NglElements::List(scattered, 5);
    const std::vector<NgColorLong> colors(5, 0x123456);
    const std::vector<int> levels(5, 2);
    const std::vector<float> values(64, 0.5f);
    RenderColorScale otherScale = scale;
    otherScale.SetOutOfRangeMinColor(1);
    const auto changeAll = [&] {
        mesh.SetElementValues(values.data());
        mesh.SetVisible(NglElements::Range(0, 64), true);
        for (std::uint32_t e = 0; e < 64; e += 2) // too many runs to be drawn one by one
            mesh.SetVisible(NglElements::One(e), false);
        mesh.SetSelection(NglElements::One(0), NglElementSelected);
        mesh.SetColor(NglElements::One(0), 1);
        mesh.SetClipCode(NglElements::One(0), 1);
        mesh.SetFailureLevel(NglElements::One(0), 9, 9);
    };
    mesh.SetColorScale(&scale);
    changeAll();
    countUploads();
    draw(how);
    EXPECT_GT(uploads.made, 0);
    const std::tuple<const char*, std::function<int()>, int, long> rows[] = {
        {"nothing", [] { return 0; }, 0, 0},
        {"one hidden", [&] { return mesh.SetVisible(NglElements::One(3), false); }, 2,
         1 + 4}, // and its colour
        {"selection", [&] { return mesh.SetSelection(list, NglElementSelected); }, 1, 33},
        {"colour", [&] { return mesh.SetColor(NglElements::Range(60, 4), 2); }, 1, 16},
        {"colours", [&] { return mesh.SetColors(list, colors.data()); }, 1, 33 * 4},
        {"no colours", [&] { return mesh.ClearColors(NglElements::One(9)); }, 1, 4},
        {"clip code", [&] { return mesh.SetClipCode(list, 1); }, 1, 33},
        {"levels", [&] { return mesh.SetFailureLevels(list, levels.data(), levels.data()); }, 1, 33 * 4},
        {"values", [&] { return mesh.SetElementValues(NglElements::Range(5, 3), values.data()); }, 1, 12},
        {"a scale", [&] { return mesh.SetColorScale(&otherScale); }, 1, -1},
        {"two changes",
         [&] { return mesh.SetClipCode(NglElements::One(1), 1) + mesh.SetClipCode(NglElements::One(50), 1); },
         1, 50}};
    for (const auto& [name, change, updates, bytes] : rows) {
        uploads = {};
        EXPECT_EQ(change(), 0);
        draw(how);
        EXPECT_EQ(uploads.made, 0) << name;
        EXPECT_EQ(uploads.updates, updates) << name;
        EXPECT_TRUE(bytes == -1 || uploads.bytes == bytes) << name << ": " << uploads.bytes;
    }
}

TEST_F(ElementTiles, APartIsHiddenByItsIndicesAlone) {
    mesh.SetVisible(NglElements::Range(0, 8), false);
    draw(how);
    countUploads();
    for (std::uint32_t part = 1; part < 8; ++part) {
        mesh.SetVisible(NglElements::Range(8 * part - 8, 8), true);
        mesh.SetVisible(NglElements::Range(8 * part, 8), false);
        uploads = {};
        const Picture picture = draw(how);
        EXPECT_EQ(uploads, (Uploads{0, 1, 16 * 6 * 4})) << "part " << part;
        for (std::uint32_t e = 0; e < 64; ++e)
            EXPECT_EQ(middle(picture, e), e / 8 == part ? kClear : kPlain) << "element " << e;
    }
}

TEST_F(ElementMesh, ChangesOfFactsUploadNoGeometry) {
    nodeContour(mesh);
    markSome(mesh);
    setLevels(mesh);
    draw({});
    countUploads();
    uploads = {};
    std::vector<float> values = sheet.nodeValues;
    for (float& value : values)
        value = 1 - value;
    EXPECT_EQ(mesh.SetNodeValues(values.data()), 0);
    draw({});
    EXPECT_EQ(uploads.made, 0);
    EXPECT_EQ(uploads.updates, 1);
    for (const NglElementRoute route : kRoutes) {
        NglElementAttributes how;
        how.route = route;
        draw(how);
        uploads = {};
        mesh.SetVisible(NglElements::Range(0, mesh.ElementCount()), true);
        draw(how);
        EXPECT_EQ(uploads.made, 0) << "route " << route;
    }
}

TEST_F(ElementMesh, LeavesArraysAndBlendingAsTheyWere) {
    nodeContour(mesh);
    markSome(mesh);
    GLuint vao, buffer;
    glGenVertexArrays(1, &vao);
    glGenBuffers(1, &buffer);
    glBindBuffer(GL_ARRAY_BUFFER, buffer);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, buffer);
    glEnableClientState(GL_COLOR_ARRAY); // of no vertex, where the mesh has many
    glColorPointer(3, GL_FLOAT, 0, nullptr);
    glBlendFunc(GL_ONE, GL_ONE);
    for (const bool other : {false, true})
        for (const NglElementRoute route : kRoutes)
            for (const float opacity : {1.0f, 0.5f}) {
                glBindVertexArray(other ? vao : 0);
                glActiveTexture(other ? GL_TEXTURE5 : GL_TEXTURE0);
                glMatrixMode(other ? GL_PROJECTION : GL_TEXTURE);
                other ? glEnable(GL_CULL_FACE) : glDisable(GL_CULL_FACE);
                NglElementAttributes how;
                how.route = route;
                how.opacity = opacity;
                const GlSnapshot before = GlSnapshot::take();
                draw(how);
                EXPECT_TRUE(before.equals(GlSnapshot::take()))
                    << "route " << route << ", opacity " << opacity;
            }
}

TEST_F(ElementMesh, TransparentFacesLieOverThoseBehind) {
    const std::vector<double> nodes = cubeCoords();
    const std::vector<std::uint32_t> quads = cubeQuads().indices;
    NglElementMeshInput input;
    std::tie(input.nodeCount, input.nodes) = std::pair{8u, nodes.data()};
    std::tie(input.quadCount, input.quads) = std::pair{6u, quads.data()};
    ASSERT_EQ(mesh.Create(input), 0);
    NglElementAttributes how;
    how.lit = false;
    how.frontAndBack = true;
    how.frontColor = 0x0000FF;
    how.backColor = 0x00FF00;
    how.opacity = 0.25f;
    for (const NglElementRoute route : kRoutes) {
        how.route = route;
        const std::uint32_t middle = draw(how).at(32, 32);
        // The front's red over the back's green over the clear colour.
        const double share[3] = {0.25 * 255, 0, 0}, behind[3] = {0, 0.25 * 255, 0};
        for (int k = 0; k < 3; ++k) {
            const double expected = share[k] + 0.75 * (behind[k] + 0.75 * (kClear >> 8 * k & 0xFF));
            EXPECT_NEAR(middle >> 8 * k & 0xFF, expected, 1.5) << "channel " << k << ", route " << route;
        }
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
