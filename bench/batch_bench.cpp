// Batches off-screen: 1024 x 768 pixels, a million segments of about 6 pixels, or points of size 3, each with
// a colour of its own, supplied again in every frame.
//
//   batch_bench         frames through the batch functions, by program and by fixed function, and by client
//                       arrays written by hand, with the same program and by fixed function: milliseconds of
//                       wall clock and of CPU, from clearing to glFinish, the best of five medians of 10, the
//                       ways taking turns
//   batch_bench --add   adding alone: nanoseconds a segment or point, without the flush
//
// "filled" are arrays that the host narrows and copies in each frame as a batch does, "at hand" those that it
// has anyway.
#include <epoxy/gl.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <functional>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "NRenderUtl/NRenderUtl.h"
#include "bench/timing.h"
#include "viewer/app/offscreen.h"

namespace {

constexpr int kWidth = 1024, kHeight = 768;
constexpr int kRounds = 5, kFrames = 10, kCount = 1000000;
constexpr int kPoints = 1, kLines = 2, kColors = 1;
constexpr float kPointSize = 3.0f;

// --- what the host has -------------------------------------------------------------------------------------

/// Points, or pairs of them, in double precision, and a colour for each point or pair.
struct Model {
    std::vector<_NgPoint3Str> points;
    std::vector<NgColorLong> colors;
};

Model makeModel(bool lines) {
    Model model;
    std::mt19937 random(1);
    std::uniform_real_distribution<double> x(0, kWidth), y(0, kHeight), step(-6, 6);
    for (int i = 0; i < kCount; ++i) {
        const _NgPoint3Str p{x(random), y(random), 0};
        model.points.push_back(p);
        if (lines)
            model.points.push_back({p.x + step(random), p.y + step(random), 0});
        model.colors.push_back(0xFF000000 | random() >> 8);
    }
    return model;
}

// --- by the batch functions --------------------------------------------------------------------------------

void addLines(const Model& model, int count) {
    for (int i = 0; i < count; ++i) {
        ngl_set_color_long(model.colors[i]);
        ngl_batch_line_3d_s(&model.points[2 * i], &model.points[2 * i + 1], 0);
    }
}

void addPoints(const Model& model, int count) {
    for (int i = 0; i < count; ++i) {
        ngl_set_color_long(model.colors[i]);
        ngl_batch_point_3d_given_size(1, &model.points[i], kPointSize);
    }
}

void drawBatch(const Model& model, bool lines) {
    const int mode = lines ? kLines : kPoints;
    NglBatchBegin(mode, kColors);
    lines ? addLines(model, kCount) : addPoints(model, kCount);
    NglBatchEnd(mode);
}

void drawFixedBatch(const Model& model, bool lines) {
    NglSetTransformedState(); // views that are modified are drawn through fixed function
    drawBatch(model, lines);
    NglClearTransformedState();
}

// --- by hand -----------------------------------------------------------------------------------------------

/// The library's own program for colours, found by its names.
GLuint findBatchProgram() {
    for (GLuint name = 1; name < 100; ++name)
        if (glIsProgram(name) && glGetAttribLocation(name, "g_col_attrib") >= 0 &&
            glGetUniformLocation(name, "g_bct") < 0)
            return name;
    throw std::runtime_error("the batches have no program here");
}

class ByHand {
public:
    ByHand(const Model& model, bool lines)
        : m_model(model), m_lines(lines), m_program(findBatchProgram()), m_positions(3 * model.points.size()),
          m_colors(model.points.size()), m_indices(model.points.size()) {
        for (std::size_t i = 0; i < m_indices.size(); ++i)
            m_indices[i] = static_cast<GLuint>(i);
        fill();
    }

    void fill() {
        const std::size_t ends = m_lines ? 2 : 1;
        for (std::size_t i = 0; i < m_model.points.size(); ++i) {
            const _NgPoint3Str& p = m_model.points[i];
            m_positions[3 * i] = static_cast<float>(p.x);
            m_positions[3 * i + 1] = static_cast<float>(p.y);
            m_positions[3 * i + 2] = static_cast<float>(p.z);
            m_colors[i] = m_model.colors[i / ends];
        }
    }

    /// The program keeps the uniforms of the last batch.
    void draw() const {
        glUseProgram(m_program);
        const auto position = static_cast<GLuint>(glGetAttribLocation(m_program, "g_pos_attrib"));
        const auto color = static_cast<GLuint>(glGetAttribLocation(m_program, "g_col_attrib"));
        glEnableVertexAttribArray(position);
        glEnableVertexAttribArray(color);
        glVertexAttribPointer(position, 3, GL_FLOAT, GL_FALSE, 0, m_positions.data());
        glVertexAttribPointer(color, 4, GL_UNSIGNED_BYTE, GL_TRUE, 0, m_colors.data());
        glEnable(GL_PROGRAM_POINT_SIZE);
        const auto count = static_cast<GLsizei>(m_indices.size());
        if (m_lines)
            glDrawElements(GL_LINES, count, GL_UNSIGNED_INT, m_indices.data());
        else
            glDrawArrays(GL_POINTS, 0, count);
        glDisable(GL_PROGRAM_POINT_SIZE);
        glDisableVertexAttribArray(position);
        glDisableVertexAttribArray(color);
        glUseProgram(0);
    }

    void drawFixed() const {
        glEnableClientState(GL_VERTEX_ARRAY);
        glEnableClientState(GL_COLOR_ARRAY);
        glVertexPointer(3, GL_FLOAT, 0, m_positions.data());
        glColorPointer(4, GL_UNSIGNED_BYTE, 0, m_colors.data());
        glPointSize(kPointSize);
        const auto count = static_cast<GLsizei>(m_indices.size());
        if (m_lines)
            glDrawElements(GL_LINES, count, GL_UNSIGNED_INT, m_indices.data());
        else
            glDrawArrays(GL_POINTS, 0, count);
        glDisableClientState(GL_VERTEX_ARRAY);
        glDisableClientState(GL_COLOR_ARRAY);
    }

private:
    const Model& m_model;
    const bool m_lines;
    const GLuint m_program;
    std::vector<float> m_positions;
    std::vector<GLuint> m_colors, m_indices;
};

// --- timing ------------------------------------------------------------------------------------------------

std::vector<GLubyte> readPixels() {
    std::vector<GLubyte> pixels(4 * kWidth * kHeight);
    glReadPixels(0, 0, kWidth, kHeight, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    return pixels;
}

void drawFrame(const std::function<void()>& draw) {
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    draw();
    glFinish();
}

Times timeFrames(const std::function<void()>& draw) {
    std::vector<double> wall, cpu;
    for (int frame = 0; frame < kFrames; ++frame) {
        const Times start = now();
        drawFrame(draw);
        const Times taken = since(start);
        wall.push_back(taken.wall);
        cpu.push_back(taken.cpu);
    }
    return {median(wall), median(cpu)};
}

void timeModel(const char* title, bool lines) {
    const Model model = makeModel(lines);
    drawFrame([&] { drawBatch(model, lines); });
    const std::vector<GLubyte> expected = readPixels();
    ByHand byHand(model, lines);
    const struct {
        const char* name;
        std::function<void()> draw;
    } ways[] = {{"batch", [&] { drawBatch(model, lines); }},
                {"client arrays, filled", [&] { byHand.fill(), byHand.draw(); }},
                {"client arrays, at hand", [&] { byHand.draw(); }},
                {"fixed arrays, filled", [&] { byHand.fill(), byHand.drawFixed(); }},
                {"batch, fixed function", [&] { drawFixedBatch(model, lines); }}};
    constexpr int kWays = std::size(ways);
    std::vector<Times> best(kWays, {1e9, 1e9});
    for (int round = 0; round < kRounds; ++round)
        for (int i = 0; i < kWays; ++i) {
            const Times times = timeFrames(ways[i].draw);
            check(readPixels() == expected, "another picture");
            best[i] = {std::min(best[i].wall, times.wall), std::min(best[i].cpu, times.cpu)};
        }
    std::printf("%s\n", title);
    for (int i = 0; i < kWays; ++i)
        std::printf("  %-24s %7.1f ms wall %7.1f ms CPU   batch is %.3f x wall %.3f x CPU\n", ways[i].name,
                    best[i].wall, best[i].cpu, best[0].wall / best[i].wall, best[0].cpu / best[i].cpu);
    std::fflush(stdout);
}

/// Nanoseconds for each of as many as a batch takes without flush: the best of five medians of 11.
void timeAdding(const char* name, int mode, int count, const std::function<void()>& add) {
    double best = 1e9;
    for (int round = 0; round < kRounds; ++round) {
        std::vector<double> times;
        for (int i = 0; i < 11; ++i) {
            NglBatchBegin(mode, kColors);
            const double start = milliseconds(CLOCK_PROCESS_CPUTIME_ID);
            add();
            times.push_back((milliseconds(CLOCK_PROCESS_CPUTIME_ID) - start) * 1e6 / count);
            NglBatchEnd(mode);
        }
        best = std::min(best, median(times));
    }
    std::printf("  %-42s %6.1f ns CPU\n", name, best);
}

void timeAdding() {
    const Model lines = makeModel(true), points = makeModel(false);
    constexpr int kSegments = 150000, kDots = 400000;
    std::printf("Adding to an active batch\n");
    timeAdding("a segment", kLines, kSegments, [&] {
        for (int i = 0; i < kSegments; ++i)
            ngl_batch_line_3d_s(&lines.points[2 * i], &lines.points[2 * i + 1], 0);
    });
    timeAdding("a segment and its colour", kLines, kSegments, [&] { addLines(lines, kSegments); });
    timeAdding("a segment of a polyline", kLines, kSegments,
               [&] { ngl_batch_polyline_3d_s(lines.points.data(), kSegments + 1, 0); });
    timeAdding("a point and its colour", kPoints, kDots, [&] { addPoints(points, kDots); });
    timeAdding("a point of an array", kPoints, kDots,
               [&] { ngl_batch_point_3d_given_size(kDots, points.points.data(), kPointSize); });
}

void openView() {
    NglInitGLExtensions();
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(0, kWidth, 0, kHeight, -1, 1);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LEQUAL);
    NglUpdateNglInfo();
}

void run(const std::string& mode) {
    nruview::OffscreenContext context;
    const std::string error = context.create(kWidth, kHeight);
    check(error.empty(), error.c_str());
    openView();
    if (mode == "--add")
        return timeAdding();
    timeModel("1,000,000 segments", true);
    timeModel("1,000,000 points of size 3", false);
}

} // namespace

int main(int count, char** arguments) {
    return runBenchmark(count, arguments, run);
}
