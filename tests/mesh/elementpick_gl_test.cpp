// Picking through pixels against the picture: what is picked is what is drawn there.
#include <algorithm>
#include <cmath>
#include <set>

#include "NRenderUtl/host/hostmath.h"
#include "tests/mesh/testfaces.h"
#include "tests/support/librarytest.h"

using namespace nrutest;
using namespace ngl;

namespace {

/// A view of a mesh of some size about a point.
struct Case {
    const char* name;
    NglElementRoute route;
    bool perspective;
    double nearPlane, farPlane; ///< by the size
    double size;
    _NgPoint3Str middle;
};

std::uint32_t colorOf(std::uint32_t element) {
    return 0xFF800000 | (element + 1);
}

/// Two wavy sheets through each other. Each element has a colour of its own, unlit; some are hidden, clipped
/// or failing.
void createSheets(const Case& c, NglElementMesh& mesh) {
    constexpr std::uint32_t kSide = 14;
    TestFaces faces;
    for (const bool ofQuads : {false, true})
        faces.addSheet(kSide, ofQuads, [&](std::uint32_t i, std::uint32_t j) {
            const double a = 2.0 * i / kSide - 1, b = 2.0 * j / kSide - 1;
            const double height = 0.2 * std::sin(4 * a + ofQuads) * std::cos(5 * b);
            const _NgPoint3Str place = {a, ofQuads ? height : b, ofQuads ? b : height};
            return MathAdd(c.middle, MathScaled(place, c.size));
        });
    NglElementAttributes attributes;
    attributes.route = c.route;
    attributes.lit = false;
    attributes.clipFlag = 1;
    attributes.failureMode = 1;
    attributes.failureLevel = 3;
    mesh.SetAttributes(attributes);
    ASSERT_EQ(mesh.Create(faces.input()), 0);
    for (std::uint32_t element = 0; element < mesh.ElementCount(); ++element)
        mesh.SetColor(NglElements::One(element), colorOf(element));
    mesh.SetVisible(NglElements::Range(100, 60), false);
    mesh.SetClipCode(NglElements::Range(200, 30), 2);
    mesh.SetFailureLevel(NglElements::Range(440, 30), 2, 4);
}

class ElementPickPixel : public LibraryTest {
protected:
    static void setView(const Case& c) {
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        const double n = c.nearPlane * c.size, side = c.perspective ? 0.5 * n : 1.2 * c.size;
        (c.perspective ? glFrustum : glOrtho)(-side, side, -side, side, n, c.farPlane * c.size);
        NgMatrix modelView;
        NglSetTranslation(modelView, {0, 0, -2.5 * c.size});
        NglRotate(modelView, 50, {1, 0.3, 0});
        NglTranslate(modelView, -c.middle.x, -c.middle.y, -c.middle.z);
        glMatrixMode(GL_MODELVIEW);
        glLoadMatrixd(modelView[0]);
        NglUpdateNglInfo();
        // GL may hold less than double precision; the host's record has it all.
        std::copy_n(modelView[0], 16, NglGetNglInfo()->modelView[0]);
    }
    static std::uint32_t pickedColor(NglElementMesh& mesh, int x, int y) {
        NglElementPick picked;
        return mesh.PickPixel(x, y, &picked) ? colorOf(picked.element) : kClear;
    }
};

} // namespace

TEST_F(ElementPickPixel, FindsWhatIsDrawnThere) {
    const Case cases[] = {
        {"orthographic", NglElementRouteAutomatic, false, 0.5, 5, 1, {0, 0, 0}},
        {"perspective", NglElementRouteFixed, true, 0.5, 5, 1, {0, 0, 0}},
        {"cut by both planes", NglElementRouteAutomatic, true, 2.3, 2.7, 1, {0, 0, 0}},
        {"small and far from zero", NglElementRouteAutomatic, true, 0.5, 5, 1e-5, {1e7, -2e7, 3e7}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        NglElementMesh mesh;
        createSheets(c, mesh);
        setView(c);
        clear();
        ASSERT_EQ(mesh.Draw(), 0);
        const Picture drawn = read();
        int differing = 0;
        std::set<std::uint32_t> seen;
        for (int i = 0; i < kSize * kSize; ++i) {
            const int x = i % kSize, y = i / kSize;
            const std::uint32_t expected = drawn.at(x, kSize - 1 - y);
            seen.insert(expected);
            differing += pickedColor(mesh, x, y) != expected;
        }
        EXPECT_GT(seen.size(), 40u);
        EXPECT_LT(differing, 10) << "edges of faces through a pixel's middle, which round apart";
    }
}
