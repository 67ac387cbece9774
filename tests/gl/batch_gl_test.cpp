// Batches of points and lines: what they draw and by which way, when they flush and what they allocate; and
// the batch of vertices.
#include <cstdlib>
#include <functional>
#include <tuple>

#include "NRenderUtl/host/nhost.h"
#include "NRenderUtl/mesh/nmesh.h"
#include "tests/gl/testgl.h"
#include "tests/support/subprocess.h"

using namespace nrutest;

namespace {

constexpr NgColorLong kRed = 0xFF0000FF, kGreen = 0xFF00FF00, kBlue = 0xFFFF0000, kYellow = 0xFF00FFFF,
                      kGrey = 0xFF808080, kTeal = 0xFF608000;
constexpr int kPoints = 1, kLines = 2, kScreenLines = 3, kColors = 1, kTextured = 2;
constexpr bool kProgram = true, kFixed = false;

struct DrawCall {
    int count;
    bool program; ///< or fixed function
    double width;
};
std::vector<DrawCall> drawCalls;

void note(GLsizei count) {
    drawCalls.push_back({count, stateOf(GL_CURRENT_PROGRAM) != 0, stateOf(GL_LINE_WIDTH)});
}

std::vector<int> takeCounts() {
    std::vector<int> counts;
    for (const DrawCall& call : std::exchange(drawCalls, {}))
        counts.push_back(call.count);
    return counts;
}

void begin(std::initializer_list<int> modes, int option = kColors) {
    for (const int mode : modes)
        NglBatchBegin(mode, option);
}

void end(std::initializer_list<int> modes) {
    for (const int mode : modes)
        NglBatchEnd(mode);
}

int asked = 0;        ///< blocks of memory, by the library
int failing = 0;      ///< the request, counted from now on, that gets none
std::string settings; ///< that the library read
RenderTextureAttributes contour;

/// One unit is a pixel, in GL and in the record.
class Batch : public GlTest {
protected:
    void SetUp() override {
        GlTest::SetUp();
        NglInitGLExtensions();
        loadOrtho(0, kSize, 0, kSize, -10, 10);
        NglUpdateNglInfo();
        const unsigned none = 0;
        glDrawElements(GL_POINTS, 0, GL_UNSIGNED_INT, &none); // finds the entry points
        glDrawArrays(GL_POINTS, 0, 0);
        static const auto drawElements = epoxy_glDrawElements;
        static const auto drawArrays = epoxy_glDrawArrays;
        epoxy_glDrawElements = [](GLenum mode, GLsizei count, GLenum type, const void* indices) {
            note(count);
            drawElements(mode, count, type, indices);
        };
        epoxy_glDrawArrays = [](GLenum mode, GLint first, GLsizei count) {
            note(count);
            drawArrays(mode, first, count);
        };
        NHostServices services{};
        services.allocate = [](void*, std::size_t bytes, const char*, int) {
            ++asked;
            return --failing == 0 ? nullptr : std::malloc(bytes);
        };
        services.release = [](void*, void* block) { std::free(block); };
        services.setting = [](void*, const char* name) -> const char* {
            settings += name;
            return nullptr;
        };
        ASSERT_EQ(NHostSetServices(&services), 0);
    }

    /// The bands 10 to 14 and, for the rows beside them, selection and highlight; as texture and as scale.
    void makeContour() {
        std::uint32_t rows[64][4] = {{kRed, kGreen, kBlue, kGrey}};
        std::fill(rows[15], rows[17], kTeal); // about t = 0.25
        std::fill(rows[31], rows[33], kYellow);
        const float limits[] = {10, 11, 12, 13, 14};
        glGenTextures(1, &contour.texture);
        glBindTexture(GL_TEXTURE_2D, contour.texture);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 4, 64, 0, GL_RGBA, GL_UNSIGNED_BYTE, rows);
        for (const GLenum filter : {GL_TEXTURE_MIN_FILTER, GL_TEXTURE_MAG_FILTER})
            glTexParameteri(GL_TEXTURE_2D, filter, GL_NEAREST);
        glBindTexture(GL_TEXTURE_2D, 0);
        contour.minValue = 10;
        contour.maxValue = 14;
        contour.UpdateColorScale(4, limits, rows[0]);
        NglSetSelectionColor(kTeal);
        NglSetHighlightColor(kYellow);
        NglRegisterGetActiveTextureAttribProc([](unsigned, float, float) { return &contour; });
        NglSetActiveTextureInfo(0, 0, 0);
    }

    /// Draws through the batches of a way, and says that it was this way.
    Picture drawBatched(const std::function<void()>& scene, int option, bool way) {
        clear();
        drawCalls.clear();
        way == kFixed ? NglSetTransformedState() : NglClearTransformedState();
        begin({kPoints, kLines}, option);
        scene();
        end({kPoints, kLines});
        NglClearTransformedState();
        EXPECT_EQ(drawCalls.size(), 2u);
        for (const DrawCall& call : drawCalls)
            EXPECT_EQ(call.program, way);
        return read();
    }
};

void drawLine(double x0, double y0, double x1, double y1, int screen = 0) {
    const _NgPoint3Str p{x0, y0, 0}, q{x1, y1, 0};
    ngl_batch_line_3d_s(&p, &q, screen);
}

void drawPoint(double x, double y, float size) {
    const _NgPoint3Str p{x, y, 0};
    ngl_batch_point_3d_given_size(1, &p, size);
}

// Coordinates away from pixel limits: there the ways may round apart, as one multiplies the matrices first.
void drawColored() {
    ngl_set_line_width(2);
    ngl_set_color_long(0x40608020);
    drawLine(3.5, 4.5, 40.5, 11.25);
    ngl_set_color_long(kGreen);
    const _NgPoint3Str strip[] = {{5.5, 50.5, 1}, {30.5, 60.5, -1}, {55.5, 20.5, 0}, {60.5, 40.25, 0}};
    ngl_batch_polyline_3d_s(strip, 4, 0);
    ngl_set_color_long(kBlue);
    const _NgFPoint3Str p{50.5f, 2.5f, 0}, q{52.5f, 60.5f, 0},
        dots[] = {{10.5f, 30.5f, 0}, {20.5f, 35.5f, 2}};
    ngl_batch_line_3f_s(&p, &q);
    ngl_batch_point_3f_given_size(2, dots, 5);
    ngl_set_color_long(kYellow);
    drawPoint(40.5, 30.5, 5);
}

template <class Point, class Line, class List>
void drawContourOf(Line line, List list) {
    glPointSize(3);
    const Point p[] = {{4.5, 4.5, 0}, {60.5, 9.5, 0}, {4.5, 20.5, 0}, {60.5, 30.5, 0}};
    const Point dots[] = {{10.5, 50.5, 0}, {20.5, 50.5, 0}, {40.5, 50.5, 0}, {50.5, 50.5, 0}};
    const float values[] = {11.5f, 12.5f};
    line(&p[0], &p[1], 10.25f, 13.75f, 0, 0);
    line(&p[2], &p[3], 11.25f, 12.75f, 1, 0);
    line(&p[1], &p[2], 11.25f, 12.75f, 0, 1);
    list(2, dots, values, 0, 0);
    list(1, dots + 2, values, 1, 0);
    list(1, dots + 3, nullptr, 1, 1);
    const _NgFPoint3Str single{30.5f, 50.5f, 0};
    RenderingDrawPointF(&single, 13.5f, 0, 0);
}

void drawContour() {
    drawContourOf<_NgFPoint3Str>(RenderingDrawLineF, RenderingDrawPointListF);
}

TEST_F(Batch, ContoursAreTheImmediateOnesByTextureAndByBands) {
    for (const char* mode : {"0", "1"}) {
        if (ranInSubprocess({{"NU_CONTOUR_COLOR_SCALE_MODE", mode}}))
            continue;
        makeContour();
        ngl_set_color_long(0xFFFFFFFF);
        NglEnableTexture(-1);
        drawContourOf<_NgPoint3Str>(RenderingDrawLine, RenderingDrawPointList);
        const Picture immediate = read();
        clear();
        drawContour();
        EXPECT_TRUE(samePicture(read(), immediate));
        NglDisableTexture(-1);
        const std::pair<int, NgColorLong> dots[] = {
            {10, kGreen}, {20, kBlue}, {30, kGrey}, {40, kTeal}, {50, kYellow}};
        for (const auto& [x, color] : dots)
            EXPECT_EQ(hex(immediate.at(x, 50)), hex(color)) << x;
        GLuint sampler;
        glGenSamplers(1, &sampler); // smooth, and so of no use
        glBindSampler(0, sampler);
        glActiveTexture(GL_TEXTURE2);
        EXPECT_TRUE(samePicture(drawBatched(drawContour, kTextured, kProgram), immediate));
        EXPECT_TRUE(samePicture(drawBatched(drawContour, kTextured, kFixed), immediate));
        EXPECT_EQ(stateOf(GL_ACTIVE_TEXTURE), GL_TEXTURE2);
        const auto dot = [&] {
            begin({kPoints}, kTextured);
            drawContour();
            end({kPoints});
            return hex(read().at(20, 50));
        };
        const bool byBands = *std::getenv("NU_CONTOUR_COLOR_SCALE_MODE") == '1';
        ngl_set_color_long(kTeal);
        EXPECT_TRUE(samePicture(drawBatched(drawContour, kTextured, kProgram),
                                drawBatched(drawContour, kTextured, kFixed)));
        EXPECT_EQ(dot(), hex(0xFF600000)) << "modulates";
        ngl_set_color_long(0xFFFFFFFF);
        contour.colorScale.SetSmearedMode(true);
        EXPECT_EQ(dot(), hex(byBands ? 0xFFC04040 : kBlue)) << "half-way to grey";
        contour.texture = 0;
        EXPECT_EQ(dot(), hex(byBands ? 0xFFC04040 : 0xFFFFFFFF)) << "without texture";
        NglRegisterGetActiveTextureAttribProc(nullptr);
        NglSetActiveTextureInfo(0, 0, 0);
        ngl_set_color_long(kTeal);
        EXPECT_EQ(dot(), hex(kTeal)) << "without contour the current colour";
        return;
    }
}

void drawLines(int count) {
    for (int i = 0; i < count; ++i)
        drawLine(i % 60 + 0.5, 0.5, i % 60 + 3.5, 2.5);
}

TEST_F(Batch, FlushesWhenItIsFullAndWhenWidthStyleOrSizeChange) {
    const auto lines = [](void (*set)(int), std::array<int, 3> values) {
        return [=] {
            for (const int value : values)
                set(value), drawLines(1);
        };
    };
    const auto screenLines = [] { drawLine(1, 1, 2, 2, 1), drawLine(2, 2, 3, 3, 1); };
    const auto options = [] {
        drawLines(3), NglBatchBegin(kLines, kTextured), NglBatchBegin(kLines, kColors);
    };
    const auto points = [](int count) {
        const std::vector<_NgFPoint3Str> dots(std::max(count, 0));
        ngl_batch_point_3f_given_size(count, dots.data(), 1);
    };
    const auto sizes = [](float a, float b) { return [=] { drawPoint(5, 5, a), drawPoint(9, 9, b); }; };
    const struct {
        const char* name;
        int mode;
        std::function<void()> scene;
        std::vector<int> before, atEnd; ///< vertices of the flushes before the batch's end, and at the end
    } rows[] = {
        {"widths", kLines, lines(ngl_set_line_width, {1, 3, 1}), {2, 2}, {2}},
        {"styles", kLines, lines(ngl_set_line_style, {0, 2, 2}), {2}, {4}},
        {"same style and width", kScreenLines, screenLines, {}, {4}},
        {"full lines", kLines, [] { drawLines(150000); }, {}, {300000}},
        {"more lines", kLines, [] { drawLines(150001); }, {300000}, {2}},
        {"full points", kPoints, [&] { points(400000); }, {}, {400000}},
        {"more points", kPoints, [&] { points(400001); }, {400000}, {1}},
        {"no points", kPoints, [&] { points(0), points(-1); }, {}, {}},
        {"sizes within a tenth", kPoints, sizes(3.0f, 3.05f), {}, {2}},
        {"sizes a tenth apart", kPoints, sizes(3.0f, 3.1f), {1}, {1}},
        {"the same, down", kPoints, sizes(3.1f, 3.0f), {1}, {1}},
        {"another option", kLines, options, {6}, {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        begin({row.mode});
        row.scene();
        EXPECT_EQ(takeCounts(), row.before);
        end({row.mode});
        EXPECT_EQ(takeCounts(), row.atEnd);
    }
}

TEST_F(Batch, EachFlushHasTheWidthStyleOrSizeOfItsOwn) {
    glEnable(GL_LINE_STIPPLE);
    glPointSize(2.6f);
    const auto scene = [] {
        ngl_set_line_width(3);
        ngl_set_line_style(2); // on the fixed way only
        drawLine(0.5, 20.5, 60.5, 20.5);
        ngl_set_line_width(5);
        ngl_set_line_style(0);
        drawPoint(30, 40, 4);
    };
    for (const bool way : {kProgram, kFixed}) {
        EXPECT_EQ(drawBatched(scene, kColors, way).countOtherThan(kClear),
                  16 + 3 * (way == kFixed ? 28 : 60));
        EXPECT_EQ(drawCalls[1].width, 3) << "not the width at the end";
        EXPECT_TRUE(ngl_get_line_width() == 5 && ngl_get_line_style() == 0);
        EXPECT_EQ(glIsEnabled(GL_PROGRAM_POINT_SIZE), GL_FALSE);
        EXPECT_EQ(stateOf(GL_POINT_SIZE), way == kProgram ? 2.6f : 3.0f) << "deliberate: read as an integer";
    }
    glPointSize(0.3f); // no size once it is rounded
    drawBatched(scene, kColors, kFixed);
}

TEST_F(Batch, AsksForItsTableOnceAndIgnoresAddsWithoutMemory) {
    const auto draw = [](int mode) {
        const float zero[3] = {};
        if (mode == 0) // of vertices
            NglBatchRenderBegin(GL_LINES, 1);
        begin({mode}); // what is added to other batches is drawn at once
        drawPoint(1, 1, 1), drawLine(1, 1, 9, 9), drawLine(1, 1, 9, 9, 1);
        NglBatchRenderAddVertex(zero, zero, 0, 0);
        end({mode});
        NglBatchRenderFlush();
    };
    for (const auto& [mode, blocks] : {std::pair{kPoints, 3}, {kLines, 4}, {kScreenLines, 4}, {0, 5}}) {
        const std::size_t live = NHostLiveBlocks();
        for (int n = blocks; n > 0; --n) {
            failing = n;
            draw(mode);
            EXPECT_EQ(NHostLiveBlocks(), live) << mode;
        }
        EXPECT_EQ(takeCounts(), std::vector<int>());
        asked = 0;
        draw(mode);
        draw(mode);
        EXPECT_EQ(takeCounts().size(), 2u);
        EXPECT_EQ(asked, blocks);
    }
}

TEST_F(Batch, TakesTheFixedWayWhereTheViewIsModifiedOrTheDriverIsOld) {
    const bool refused = std::getenv("REFUSE_PROGRAMS") != nullptr;
    const bool old = refused || std::getenv("MESA_GLSL_VERSION_OVERRIDE") != nullptr;
    if (refused)
        epoxy_glLinkProgram = [](GLuint) {};
    const std::pair<std::function<void()>, std::function<void()>> changes[] = {
        {UtlPushViewPoint, UtlPopViewPoint},
        {ngl_push_3d_matrix, ngl_pop_3d_matrix},
        {NglSetTransformedState, NglClearTransformedState},
        {[] { ngl_set_line_style(1); }, [] { ngl_set_line_style(0); }}}; // not a change of the view
    for (const auto& [change, undo] : changes) {
        begin({kPoints, kLines});
        drawLines(1);
        drawPoint(5, 5, 1);
        change();
        end({kPoints, kLines});
        undo();
    }
    ASSERT_EQ(drawCalls.size(), 8u);
    for (std::size_t i = 0; i < 8; ++i)
        EXPECT_EQ(drawCalls[i].program, i >= 6 && !old) << i;
    EXPECT_EQ(settings, old ? "" : "NU_CONTOUR_COLOR_SCALE_MODE") << "read once, for the program";
    if (old)
        return;
    ranInSubprocess({{"MESA_GL_VERSION_OVERRIDE", "2.1"}, {"MESA_GLSL_VERSION_OVERRIDE", "120"}});
    ranInSubprocess({{"REFUSE_PROGRAMS", "1"}});
}

TEST(BatchWithoutContext, DropsWhatItCollects) {
    begin({kPoints, kLines, kScreenLines});
    drawLine(1, 1, 2, 2, 0), drawLine(1, 1, 2, 2, 1), drawPoint(5, 5, 1);
    end({kPoints, kLines, kScreenLines});
    const float zero[3] = {};
    NglBatchRenderBegin(GL_LINES, 1);
    NglBatchRenderAddVertex(zero, zero, 0, 0);
    EXPECT_EQ(NglBatchRenderFlush(), 0);
    EXPECT_EQ(NglBatchRenderFlush(), -2);
}

TEST_F(Batch, ScreenLinesAreInPixelsWhateverTheView) {
    glMatrixMode(GL_PROJECTION);
    glOrtho(-1, 1, -1, 1, -1, 1);
    glMatrixMode(GL_MODELVIEW);
    glTranslated(7, 7, 7);
    NglUpdateNglInfo();
    ngl_set_color_long(kRed);
    begin({kScreenLines});
    drawLine(10.5, 5.5, 20.5, 5.5, 1);
    drawLine(10.5, 5.5, 20.5, 5.5, 0); // at once, as the model's batch is not active
    NglBatchEnd(kScreenLines);
    for (const auto& [x, y] : {std::pair{10, 5}, {19, 5}, {20, 12}})
        EXPECT_EQ(hex(read().at(x, y)), hex(kRed)) << x;
    EXPECT_EQ(read().countOtherThan(kClear), 20);
    EXPECT_FALSE(drawCalls.at(0).program);
}

TEST_F(Batch, ClipsWhileTheHostsPlanesAreLoaded) {
    NglRegisterLoadClipPlaneFunc([] {
        const double plane[4] = {1, 0, 0, -32};
        glClipPlane(GL_CLIP_PLANE0, plane);
        glEnable(GL_CLIP_PLANE0);
        return 1;
    });
    const auto scene = [] { drawLine(0.5, 20.5, 63.5, 20.5), drawPoint(5, 5, 3), drawPoint(50, 5, 3); };
    for (const bool way : {kProgram, kFixed}) {
        ngl_load_clip_planes();
        const Picture p = drawBatched(scene, kColors, way);
        EXPECT_TRUE(p.at(30, 20) == kClear && p.at(5, 5) == kClear);
        EXPECT_TRUE(p.at(34, 20) != kClear && p.at(50, 5) != kClear);
    }
    NglRegisterUnloadClipPlaneFunc([] { return 0; }); // leaves the plane in GL
    ngl_unload_clip_planes();
    EXPECT_NE(drawBatched(scene, kColors, kProgram).at(5, 5), kClear);
}

TEST_F(Batch, BothWaysDrawTheImmediatePicture) {
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    const Picture plain = (drawColored(), read());
    EXPECT_TRUE(plain.at(20, 35) == kBlue && plain.at(40, 30) == kYellow && drawCalls.empty());
    const auto scene = [] { drawColored(), ngl_set_line_width(1); };
    for (const bool way : {kProgram, kFixed})
        EXPECT_TRUE(samePicture(drawBatched(scene, kColors, way), plain));
}

TEST_F(Batch, ScopeEndsLinesThenPointsThenScreenLines) {
    begin({kPoints, kLines, kScreenLines, 0, 4, -1});
    {
        const NglBeginEndBatchDraw none(false, false, false), all(true, true, true);
        drawLine(1, 1, 2, 2, 1);
        drawPoint(5, 5, 1);
        drawLine(1, 1, 2, 2), drawLine(1, 1, 3, 3);
        EXPECT_EQ(takeCounts(), std::vector<int>());
    }
    EXPECT_EQ(takeCounts(), (std::vector<int>{4, 1, 2}));
    drawLine(1, 1, 9, 9); // not active any more
    NglBatchEnd(kLines);
    EXPECT_EQ(takeCounts(), std::vector<int>());
    EXPECT_NE(read().at(5, 5), kClear);
}

// --- vertices ----------------------------------------------------------------------------------------------

TEST_F(Batch, OfVerticesDrawsItsPrimitiveLitInColoursOrTexture) {
    makeContour();
    const float corners[3][3] = {{4, 4, 0}, {60, 4, 0}, {4, 60, 0}}, black[4] = {0, 0, 0, 1};
    glLightModelfv(GL_LIGHT_MODEL_AMBIENT, black);
    glEnable(GL_LIGHT0); // from the viewer
    glEnable(GL_COLOR_MATERIAL);
    EXPECT_EQ(NglBatchRenderFlush(), -1);
    const std::tuple<int, float, NgColorLong> rows[] = {
        {0, 1, 0xFFFFFFFF}, {0, -1, 0xFF000000}, {1, 1, kGreen}, {2, 1, kBlue}};
    for (const auto& [option, towardsViewer, expected] : rows) {
        const float normal[3] = {0, 0, towardsViewer};
        clear();
        ngl_set_color_long(0xFFFFFFFF);
        NglEnableTexture(-1);
        if (option != 2)
            NglDisableTexture(-1);
        option == 0 ? glEnable(GL_LIGHTING) : glDisable(GL_LIGHTING);
        EXPECT_EQ(NglBatchRenderBegin(GL_TRIANGLES, option), 0);
        EXPECT_EQ(NglBatchRenderFlush(), -2);
        NglBatchRenderAddVertex(normal, normal, 0, 0);
        NglBatchRenderBegin(GL_TRIANGLES, option); // from the start
        for (const auto& corner : corners)
            EXPECT_EQ(NglBatchRenderAddVertex(corner, normal, 12.5f, static_cast<int>(kGreen)), 0);
        EXPECT_EQ(NglBatchRenderAddVertex(nullptr, normal, 0, 0), 0);
        EXPECT_EQ(NglBatchRenderFlush(), 0);
        EXPECT_EQ(hex(read().at(10, 10)), hex(expected)) << option;
        EXPECT_EQ(takeCounts(), std::vector<int>{3});
        EXPECT_EQ(NglBatchRenderFlush(), -2) << "drawn already";
    }
}

TEST_F(Batch, OfVerticesIsFlushedByItsLastVertex) {
    const float position[3] = {5, 5, 0};
    for (const int primitive : {GL_LINES, 0}) { // without primitive never drawn, and no more than full
        NglBatchRenderBegin(primitive, 0);
        for (int i = 0; i < 120002; ++i) {
            EXPECT_EQ(drawCalls.size(), primitive && i >= 120000) << i;
            NglBatchRenderAddVertex(position, position, 0, 0);
        }
        EXPECT_EQ(NglBatchRenderFlush(), primitive ? 0 : -1);
        EXPECT_EQ(takeCounts(), primitive ? (std::vector<int>{120000, 2}) : std::vector<int>());
    }
}

} // namespace
