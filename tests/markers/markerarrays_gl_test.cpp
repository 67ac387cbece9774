// Arrays of 3D markers against as many single calls, by their pixels: exact on every path, and otherwise
// within half a pixel of outline; and what they leave as it was.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "NRenderUtl/host/nhost.h"
#include "NRenderUtl/markers/nmarkers.h"
#include "tests/support/glsnapshot.h"
#include "tests/support/librarytest.h"
#include "tests/support/subprocess.h"

using namespace nrutest;

namespace {

constexpr auto kCylinder = RENDER_3D_MARKER_CYLINDER, kSphere = RENDER_3D_MARKER_SPHERE;
constexpr auto kSmooth = RENDER_3D_MARKER_SHAPE_SMOOTH;

/// Markers of all kinds of looks, of which some are degenerate.
struct Markers {
    std::vector<_NgFPoint3Str> starts, vectors;
    std::vector<float> lengthScales, widthRatios, texCoords1, texCoords2;
    std::vector<NgColorLong> colors;
    std::vector<std::uint8_t> selected, highlighted;
    NgColorLong color = 0xFF3060A0;
    bool contoured = false, exact = true;

    std::size_t count() const { return starts.size(); }
    Render3DMarkerArray array() const {
        const auto data = [](const auto& v) { return v.empty() ? nullptr : v.data(); };
        return {count(),
                starts.data(),
                vectors.data(),
                data(lengthScales),
                0.8f,
                data(widthRatios),
                0.3f,
                data(colors),
                &color,
                contoured,
                data(texCoords1),
                0.2f,
                data(texCoords2),
                0.7f,
                data(selected),
                data(highlighted),
                exact};
    }
    Render3DSphereArray spheres() const {
        const Render3DMarkerArray a = array();
        return {count(),   a.starts,     a.vectors, {},         a.colors,      color,
                contoured, a.texCoords1, 0.2f,      a.selected, a.highlighted, exact};
    }
    int draw(bool asSpheres) const {
        const Render3DMarkerArray a = array();
        const Render3DSphereArray s = spheres();
        return asSpheres ? RenderDraw3DSpheres(&s) : RenderDraw3DMarkers(&a);
    }
    int drawSingly(bool asSpheres) const {
        const auto at = [](const auto& v, std::size_t i, auto otherwise) {
            return v.empty() ? otherwise : v[i];
        };
        int sum = 0;
        for (std::size_t i = 0; i < count(); ++i) {
            const NgColorLong c = at(colors, i, color);
            const float t1 = at(texCoords1, i, 0.2f), t2 = at(texCoords2, i, 0.7f);
            const int s = at(selected, i, std::uint8_t{0}), h = at(highlighted, i, std::uint8_t{0});
            sum += asSpheres ? RenderDraw3DSphere(&starts[i], &vectors[i], c, contoured, t1, s, h)
                             : RenderDraw3DMarker(&starts[i], &vectors[i], at(lengthScales, i, 0.8f),
                                                  at(widthRatios, i, 0.3f), &c, contoured, t1, t2, s, h);
        }
        return sum;
    }
};

/// Some beyond the window, some through the planes in front and behind, the first two degenerate.
Markers strew(int count, float size, bool looks) {
    std::mt19937 random(7);
    std::uniform_real_distribution<float> unit;
    const auto about = [&](float reach) { return reach * (2 * unit(random) - 1); };
    Markers m;
    for (int i = 0; i < count; ++i) {
        m.starts.push_back({about(2.4f), about(2.4f), about(4)});
        m.vectors.push_back({about(size), about(size), about(size)});
        if (!looks)
            continue;
        m.lengthScales.push_back(unit(random) + 0.5f);
        m.widthRatios.push_back(i % 5 == 0 ? 0 : about(0.6f));
        m.texCoords1.push_back(unit(random));
        m.texCoords2.push_back(unit(random));
        m.colors.push_back(static_cast<NgColorLong>(random()));
        m.selected.push_back(i % 7 == 0);
        m.highlighted.push_back(i % 11 == 0);
    }
    m.vectors[0] = {0, 0, 0};
    m.vectors[1] = {NAN, 1, 0};
    return m;
}

class MarkerArrays : public LibraryTest {
protected:
    void SetUp() override {
        LibraryTest::SetUp();
        setView(false);
        _NglInfoStr& info = *NglGetNglInfo();
        for (NglLightParams& light : info.lights)
            light.enabled = 0;
        info.lights[2] = {1, {.2f, .2f, .2f, 1}, {.8f, .8f, .8f, 1}, {1, 1, 1, 1}, {6, 9, 12, 1}, 1, 0, 0};
        info.frontMaterial = info.backMaterial = {{}, {}, {}, {.4f, .4f, .4f, 1}, 20};
        const NgColorLong texels[4] = {0xFFF05030, 0xFF10A0C0, 0xFF808020, 0xFFE0E0A0};
        GLuint texture;
        glGenTextures(1, &texture);
        glBindTexture(GL_TEXTURE_2D, texture);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 4, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, texels);
        const float textureMatrix[4][4] = {{.9f}, {0, 1}, {0, 0, 1}, {.05f, .5f, 0, 1}};
        std::copy_n(&textureMatrix[0][0], 16, &info.textureMatrix[0][0]);
        glClipPlane(GL_CLIP_PLANE0, (const double[]){.5, .7, .3, .1});
        glDisable(GL_DITHER);
        NHostServices services{};
        services.context = &m_log;
        services.diagnostic = [](void* log, int level, const char* text) {
            *static_cast<std::string*>(log) += std::to_string(level) + " " + text + "\n";
        };
        NHostSetServices(&services);
    }
    void TearDown() override {
        NHostSetServices(nullptr);
        LibraryTest::TearDown();
    }
    /// Of the square -2..2, turned; near and far planes cut some of what is strewn.
    static void setView(bool perspective) {
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        if (perspective)
            glFrustum(-1, 1, -1, 1, 3, 9);
        else
            glOrtho(-2, 2, -2, 2, -3, 3);
        glMatrixMode(GL_MODELVIEW);
        glLoadIdentity();
        if (perspective)
            glTranslatef(0, 0, -6);
        glRotatef(30, 1, 2, 3);
    }
    /// A section of one draw, which is to return count.
    Picture picture(_Render3DMarkerType type, bool fixed, int count, const std::function<int()>& draw) {
        clear();
        RenderBegin3DMarkerDraw(type, kSmooth, fixed);
        EXPECT_EQ(draw(), count);
        RenderEnd3DMarkerDraw();
        return read();
    }
    void expectSame(_Render3DMarkerType type, const Markers& markers, bool fixed = false) {
        const bool spheres = type == kSphere;
        const int count = static_cast<int>(markers.count());
        const Picture single = picture(type, fixed, count, [&] { return markers.drawSingly(spheres); });
        EXPECT_GT(single.countOtherThan(kClear), 300);
        EXPECT_TRUE(samePicture(picture(type, fixed, count, [&] { return markers.draw(spheres); }), single));
    }
    /// All shapes, with and without arrays of looks, in colours and values, in both projections, clipped,
    /// blended and by fixed function.
    void expectAllSame() {
        for (const auto type : {kCylinder, RENDER_3D_MARKER_RIVET, RENDER_3D_MARKER_CONE, kSphere,
                                RENDER_3D_MARKER_ARROW_ONE_WAY})
            for (const char* state :
                 {"", "no arrays", "values", "perspective", "clipped", "blended", "fixed"}) {
                SCOPED_TRACE(testing::Message() << "shape " << type << " " << state);
                const auto is = [&](const char* name) { return std::strcmp(state, name) == 0; };
                Markers markers = strew(40, 1.4f, !is("no arrays"));
                markers.contoured = is("values");
                setView(is("perspective"));
                ngl_set_blending_value(100);
                glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
                const auto set = [](GLenum capability, bool on) {
                    on ? glEnable(capability) : glDisable(capability);
                };
                set(GL_BLEND, is("blended"));
                set(GL_CLIP_PLANE0, is("clipped"));
                RenderBegin3DMarkerDraw(type, kSmooth, false);
                RenderClip3DMarkerDraw(is("clipped"));
                RenderEnd3DMarkerDraw();
                expectSame(type, markers, is("fixed"));
                set(GL_BLEND, false);
            }
    }
    std::string takeLog() { return std::exchange(m_log, ""); }

private:
    std::string m_log;
};

// What GL's loader has in place once a function was called.
decltype(epoxy_glGetString) driversString;
decltype(epoxy_glDrawElements) driversDraw;
decltype(epoxy_glDrawElementsInstanced) driversDrawInstanced;
int draws = 0, instancedDraws = 0;

void countDraws() {
    glDrawElements(GL_TRIANGLES, 0, GL_UNSIGNED_INT, nullptr);
    glDrawElementsInstanced(GL_TRIANGLES, 0, GL_UNSIGNED_INT, nullptr, 0);
    driversDraw = epoxy_glDrawElements;
    driversDrawInstanced = epoxy_glDrawElementsInstanced;
    epoxy_glDrawElements = [](GLenum mode, GLsizei count, GLenum type, const void* indices) {
        ++draws;
        driversDraw(mode, count, type, indices);
    };
    epoxy_glDrawElementsInstanced = [](GLenum mode, GLsizei count, GLenum type, const void* indices,
                                       GLsizei instances) {
        ++instancedDraws;
        driversDrawInstanced(mode, count, type, indices, instances);
    };
}

/// The library takes the driver for one with a GPU.
void pretendGpu() {
    glGetString(GL_RENDERER);
    driversString = epoxy_glGetString;
    epoxy_glGetString = [](GLenum name) {
        return name == GL_RENDERER ? reinterpret_cast<const GLubyte*>("a GPU") : driversString(name);
    };
}

} // namespace

TEST_F(MarkerArrays, ExactOnesAreAsSingleCalls) {
    countDraws();
    expectAllSame();
    // 5 shapes in 7 states, of which one has single draws by fixed function
    EXPECT_EQ(instancedDraws, 0);
    EXPECT_LT(draws, 5 * (7 * 40 + 40 + 6 + 1));
}

TEST_F(MarkerArrays, ExactOnesAreAsSingleCallsAsInstances) {
    pretendGpu();
    countDraws();
    expectAllSame();
    EXPECT_EQ(instancedDraws, 5 * 6);
}

TEST_F(MarkerArrays, AreSingleCallsWhereTheDriverHasNoInstances) {
    if (ranInSubprocess({{"MESA_GL_VERSION_OVERRIDE", "3.2COMPAT"},
                         {"MESA_EXTENSION_OVERRIDE", "-GL_ARB_instanced_arrays"}}))
        return;
    pretendGpu();
    countDraws();
    expectAllSame();
    EXPECT_EQ(instancedDraws, 0);
    EXPECT_GT(draws, 5 * 7 * 2 * 30);
}
