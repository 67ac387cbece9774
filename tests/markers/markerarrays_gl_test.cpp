// Arrays of 3D markers against as many single calls, by their pixels: exact on every path, and otherwise
// within half a pixel of outline; and what they leave as it was.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <random>
#include <string>
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
        glDisable(GL_DITHER);
        captureHostLog();
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
        glClipPlane(GL_CLIP_PLANE0, std::array{.5, .7, .3, .1}.data());
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
    /// All shapes, with and without arrays of looks and highlights, in colours and values, with one light and
    /// two, in both projections, clipped, blended and by fixed function.
    void expectAllSame() {
        for (const auto type : {kCylinder, RENDER_3D_MARKER_RIVET, RENDER_3D_MARKER_CONE, kSphere,
                                RENDER_3D_MARKER_ARROW_ONE_WAY})
            for (const char* state :
                 {"", "no arrays", "values", "perspective", "clipped", "blended", "fixed"}) {
                SCOPED_TRACE(testing::Message() << "shape " << type << " " << state);
                const auto is = [&](const char* name) { return std::strcmp(state, name) == 0; };
                Markers markers = strew(40, 1.4f, !is("no arrays"));
                markers.contoured = is("values");
                _NglInfoStr& info = *NglGetNglInfo();
                info.lights[5] = info.lights[2];
                info.lights[5].position[0] = -40;
                info.lights[5].enabled = is("perspective");
                std::fill_n(info.frontMaterial.specular, 3, is("no arrays") ? 0 : 0.4f);
                info.backMaterial = info.frontMaterial;
                info.frontMaterial.emission[3] = 1;
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
    /// Diagnostics have negative numbers.
    static std::string takeLog() { return std::exchange(hostLog(), ""); }
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

namespace {

/// Colours and depths of a square window.
struct Image {
    explicit Image(int side)
        : side(side), depths(static_cast<std::size_t>(side) * side), colors(side, side) {}
    static Image read(int side) {
        Image image(side);
        image.colors = Picture::read(side, side);
        glReadPixels(0, 0, side, side, GL_DEPTH_COMPONENT, GL_FLOAT, image.depths.data());
        return image;
    }
    bool shows(int x, int y) const { return depths[static_cast<std::size_t>(y) * side + x] < 1; }
    /// Channel 3 is the depth, in pixels of the views below.
    float value(int x, int y, int channel) const {
        return channel == 3
                   ? depths[static_cast<std::size_t>(y) * side + x] * 6 / 4 * static_cast<float>(side)
                   : static_cast<float>(colors.at(x, y) >> 8 * channel & 0xFF);
    }
    int side;
    std::vector<float> depths;
    Picture colors;
};

/// How far one image of markers is from another.
struct Deviation {
    int lit = 0;     ///< pixels that both show
    int outline = 0; ///< pixels that only one shows
    int beyond = 0;  ///< of both, that lie beyond their neighbourhood by more than shading or outline explain
    float color = 0; ///< by which a channel lies beyond those of the pixel and its neighbours, at most
    float depth = 0; ///< the same, of the depth in pixels
};

/// By how much a channel of a pixel lies beyond the other image's in the pixel and its neighbours.
float beyondNeighbours(const Image& one, const Image& other, int x, int y, int channel) {
    float low = std::numeric_limits<float>::max(), high = -low;
    for (int k = 0; k < 9; ++k) {
        const int i = x + k % 3 - 1, j = y + k / 3 - 1;
        if (!other.shows(i, j))
            continue;
        low = std::min(low, other.value(i, j, channel));
        high = std::max(high, other.value(i, j, channel));
    }
    const float value = one.value(x, y, channel);
    return std::max({0.0f, low - value, value - high});
}

Deviation deviation(const Image& one, const Image& other) {
    Deviation d;
    for (int y = 1; y < one.side - 1; ++y)
        for (int x = 1; x < one.side - 1; ++x) {
            d.outline += one.shows(x, y) != other.shows(x, y);
            if (!one.shows(x, y) || !other.shows(x, y))
                continue;
            float color = 0;
            for (int channel = 0; channel < 3; ++channel)
                color = std::max(color, beyondNeighbours(one, other, x, y, channel));
            const float depth = beyondNeighbours(one, other, x, y, 3);
            ++d.lit;
            d.beyond += color > 20 || depth > 1;
            d.color = std::max(d.color, color);
            d.depth = std::max(d.depth, depth);
        }
    return d;
}

} // namespace

// Outline, colour and depth of what is not exact, from 2 to 400 pixels.
TEST_F(MarkerArrays, OthersLookAsSingleCallsWithinAPixel) {
    constexpr int kSide = 512;
    _NglFBOInfoStr window; // is drawn on from here
    ASSERT_EQ(NglCreateFBO(kSide, kSide, GL_RGBA, GL_UNSIGNED_BYTE, &window), 0);
    glViewport(0, 0, kSide, kSide);
    std::mt19937 random(3);
    std::normal_distribution<float> normal;
    bool sawOther = false;
    /// Side by side, each in a direction of its own; the first of a row is half beyond the window, and
    /// the first row of a parallel view half beyond its far plane.
    const auto spread = [&](float pixels, bool spheres) {
        Markers m;
        m.exact = false;
        float view[16];
        glGetFloatv(GL_MODELVIEW_MATRIX, view);
        const float size = std::hypot(view[0], view[1], view[2]);
        const int side = std::clamp(static_cast<int>(kSide / (1.6f * pixels)), 1, 12);
        const float unit = 4.f / kSide / size;
        for (int i = 0; i < side * side; ++i) {
            std::array<float, 3> d = {normal(random), normal(random), normal(random)};
            const float scale = pixels * unit / std::hypot(d[0], d[1], d[2]);
            const float x = 4 * ((i % side + .1f) / side - .5f), y = 4 * ((i / side + .5f) / side - .5f);
            const float z = view[14] == 0 && side > 1 && i / side == 0 ? -3.0f : 0.0f;
            std::array<float, 3> start;
            for (std::size_t k = 0; k < 3; ++k) {
                d[k] *= scale;
                start[k] = (view[4 * k] * x + view[4 * k + 1] * y + view[4 * k + 2] * z) / (size * size) -
                           (spheres ? 0 : d[k] / 2);
            }
            m.starts.push_back({start[0], start[1], start[2]});
            const float diameter = pixels * unit;
            m.vectors.push_back(spheres ? _NgFPoint3Str{diameter, diameter, diameter}
                                        : _NgFPoint3Str{d[0], d[1], d[2]});
            m.lengthScales.push_back(1);
            m.widthRatios.push_back(i % 3 == 0 ? .5f : .25f);
            m.colors.push_back(0xFFFFFF);
            m.texCoords1.push_back(.1f);
            m.texCoords2.push_back(.9f);
        }
        return m;
    };
    for (const auto type : {kCylinder, kSphere})
        for (const char* state : {"ortho", "perspective", "ortho clipped", "perspective clipped",
                                  "ortho values", "ortho enlarged in part of the depth"})
            for (const float pixels :
                 {2.f, 3.f, 5.f, 8.f, 13.f, 21.f, 34.f, 55.f, 90.f, 150.f, 240.f, 400.f}) {
                const auto has = [&](const char* word) { return std::strstr(state, word) != nullptr; };
                setView(has("perspective"));
                if (has("enlarged"))
                    glScalef(3, 3, 3);
                glDepthRange(has("part") ? .2 : 0, has("part") ? .7 : 1);
                has("clipped") ? glEnable(GL_CLIP_PLANE0) : glDisable(GL_CLIP_PLANE0);
                RenderBegin3DMarkerDraw(type, kSmooth, false);
                RenderClip3DMarkerDraw(has("clipped"));
                RenderEnd3DMarkerDraw();
                Markers m = spread(pixels, type == kSphere);
                m.contoured = has("values");
                const auto image = [&](bool singly) {
                    clear();
                    RenderBegin3DMarkerDraw(type, kSmooth, false);
                    singly ? m.drawSingly(type == kSphere) : m.draw(type == kSphere);
                    RenderEnd3DMarkerDraw();
                    return Image::read(kSide);
                };
                const Image exact = image(true), other = image(false);
                const Deviation d = deviation(other, exact);
                SCOPED_TRACE(testing::Message()
                             << "shape " << type << " " << state << " " << pixels << " px: " << d.lit
                             << " lit, " << d.outline << " of one, " << d.beyond << " beyond, colour "
                             << d.color << ", depth " << d.depth);
                EXPECT_GT(d.lit, 80);
                EXPECT_LE(d.outline, 1 + d.lit / 50);
                EXPECT_LE(d.beyond, 1 + d.lit / 100);
                EXPECT_LE(d.color, 50);
                EXPECT_LE(d.depth, 10);
                sawOther |= d.color > 0;
            }
    EXPECT_TRUE(sawOther) << "nothing was drawn in another way";
    NglDestroyFBO(&window);
}

// A light that hardly fades takes the programs for lights that do.
TEST_F(MarkerArrays, ALightThatDoesNotFadeIsOneThatHardlyFades) {
    _NglInfoStr& info = *NglGetNglInfo();
    info.frontMaterial = info.backMaterial = {{.05f, .1f, 0, .5f}, {}, {}, {0, 0, 0, 1}, 20};
    std::copy_n(std::array{1.0f, 1.5f, 2.0f}.data(), 3, info.lights[2].position); // near
    ngl_set_blending_value(100);
    for (const bool gpu : {false, true}) {
        if (gpu)
            pretendGpu();
        for (const auto type : {kCylinder, kSphere})
            for (const char* way : {"singly", "exact", "other", "other perspective", "singly blended",
                                    "singly values", "exact values", "other values"}) {
                SCOPED_TRACE(testing::Message() << "shape " << type << " " << way << gpu);
                const auto has = [&](const char* word) { return std::strstr(way, word) != nullptr; };
                setView(has("perspective"));
                has("blended") ? glEnable(GL_BLEND) : glDisable(GL_BLEND);
                Markers markers = strew(40, has("other") ? .3f : 1.4f, true);
                markers.exact = !has("other");
                markers.contoured = has("values");
                if (has("other") && type == kSphere) // round, so that rays find them
                    for (_NgFPoint3Str& d : markers.vectors)
                        d.y = d.z = d.x = std::fabs(d.x);
                const auto lit = [&](float fading) {
                    info.lights[2].linearAttenuation = fading;
                    return picture(type, false, 40, [&] {
                        return has("singly") ? markers.drawSingly(type == kSphere)
                                             : markers.draw(type == kSphere);
                    });
                };
                const Picture plain = lit(0);
                EXPECT_GT(plain.countOtherThan(kClear), 60);
                EXPECT_TRUE(samePicture(plain, lit(1e-30f), 1)); // rounded in another order
                EXPECT_FALSE(samePicture(plain, lit(.01f), 1));
            }
    }
}

TEST_F(MarkerArrays, MixWithSingleCallsAndLeaveTheStateOfTheSection) {
    for (const bool gpu : {false, true}) {
        if (gpu)
            pretendGpu();
        for (const bool exact : {false, true}) {
            SCOPED_TRACE(testing::Message() << gpu << exact);
            const Markers array = strew(30, exact ? 1.2f : 0.2f, true); // the small ones as points
            Markers drawn = array;
            drawn.exact = exact;
            const Picture single = picture(kCylinder, false, 30, [&] { return array.drawSingly(false); });
            RenderBegin3DMarkerDraw(kCylinder, kSmooth, false);
            const GlSnapshot before = GlSnapshot::take();
            EXPECT_EQ(drawn.draw(false), 30);
            EXPECT_TRUE(before.equals(GlSnapshot::take()));
            clear();
            array.drawSingly(false);
            EXPECT_TRUE(samePicture(read(), single));
            RenderEnd3DMarkerDraw();
        }
    }
}

TEST_F(MarkerArrays, MakeNoBuffersWithoutADeclaredContext) {
    SetRenderingContextActive(false);
    for (const bool gpu : {false, true}) {
        if (gpu)
            pretendGpu();
        for (const auto type : {kCylinder, kSphere})
            expectSame(type, strew(30, 1.2f, true));
    }
    for (GLuint name = 1; name < 16; ++name)
        EXPECT_FALSE(glIsBuffer(name)) << name;
}

TEST_F(MarkerArrays, TakeMatricesOfTheBeginningAndBlendingOfNow) {
    const Markers array = strew(30, 1.2f, true);
    const auto drawLate = [&](bool singly) {
        return picture(kCylinder, false, 30, [&] {
            glTranslatef(1, 0, 0);
            glEnable(GL_BLEND);
            const int drawn = singly ? array.drawSingly(false) : array.draw(false);
            glDisable(GL_BLEND);
            glTranslatef(-1, 0, 0);
            return drawn;
        });
    };
    ngl_set_blending_value(90);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    const Picture first = picture(kCylinder, false, 30, [&] { return array.draw(false); });
    const Picture single = drawLate(true);
    EXPECT_GT(compare(single, first).pixels, 100);
    EXPECT_TRUE(samePicture(drawLate(false), single));
}

TEST_F(MarkerArrays, WrongCallsAreToldAndDrawNothing) {
    const Markers markers = strew(5, 1, false);
    const auto nothing = [&](int expected, bool spheres) {
        clear();
        EXPECT_EQ(markers.draw(spheres), expected);
        EXPECT_EQ(read().countOtherThan(kClear), 0);
    };
    nothing(0, false);
    nothing(0, true);
    RenderBegin3DMarkerDraw(kSphere, kSmooth, false);
    nothing(0, false);
    RenderBegin3DMarkerDraw(kCylinder, kSmooth, false);
    nothing(0, true);
    const std::string log = takeLog();
    EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 4) << log;
    Render3DMarkerArray empty = markers.array(), noStarts = empty, noVectors = empty;
    empty.count = 0;
    noStarts.starts = noVectors.vectors = nullptr;
    for (const Render3DMarkerArray* wrong : {&empty, &noStarts, &noVectors})
        EXPECT_EQ(RenderDraw3DMarkers(wrong), 0);
    EXPECT_EQ(RenderDraw3DMarkers(nullptr), 0);
    RenderBegin3DMarkerDraw(RENDER_3D_MARKER_NONE, kSmooth, false);
    nothing(0, false);
    RenderBegin3DMarkerDraw(kCylinder, static_cast<_Render3DMarkerShape>(7), false);
    nothing(5, false); // as single calls: a shape without triangles
    RenderEnd3DMarkerDraw();
    EXPECT_EQ(takeLog(), "");
    EXPECT_EQ(RenderDraw3DSpheres(nullptr), 0);
    EXPECT_NE(takeLog(), "");
}
