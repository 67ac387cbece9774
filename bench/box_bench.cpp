// Boxes in window pixels off-screen: 1,000 a frame, as labels of 80 x 20 pixels, spread over 1024 x 768.
//
//   box_bench [NAME]    steady frames (of the cases whose name contains NAME): milliseconds of wall clock and
//                       of CPU, from clearing to glFinish; the best of three medians of 20. The rows without
//                       state draw in a view that the program sets itself: what they lack is the time that
//                       saving and restoring the host's state takes. Boxes of one pixel leave the calls
//                       alone.
#include <epoxy/gl.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "NRenderUtl/NRenderUtl.h"
#include "bench/timing.h"
#include "viewer/app/offscreen.h"

namespace {

constexpr int kWidth = 1024, kHeight = 768, kBoxes = 1000;
constexpr int kRounds = 3, kFrames = 20;

struct Case {
    const char* name;
    int width, height;
    bool byProgram, keepsState;
};
constexpr Case kCases[] = {{"rounded, bordered", 80, 20, true, true},
                           {"rounded, bordered, without state", 80, 20, true, false},
                           {"plain", 80, 20, false, true},
                           {"plain, without state", 80, 20, false, false},
                           {"rounded, bordered, one pixel", 1, 1, true, true},
                           {"rounded, bordered, one pixel, without state", 1, 1, true, false}};

N2DBoxDrawer::RenderInfo boxOf(const Case& test, int i) {
    N2DBoxDrawer::RenderInfo box;
    box.x = i * 97 % (kWidth - test.width);
    box.y = i * 61 % (kHeight - test.height);
    box.width = test.width;
    box.height = test.height;
    box.fillColor = 0x90000000u | static_cast<NgColorLong>(i * 7919);
    if (!test.byProgram)
        return box;
    box.roundedCorners = box.border = 1;
    std::fill_n(box.cornerRadii, 4, 6.0f);
    box.borderThickness = 2;
    box.borderColor[0] = 255;
    return box;
}

void setView(const N2DBoxDrawer::RenderInfo& box) {
    glViewport(box.x, box.y, box.width, box.height);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(0, box.width, 0, box.height, -1, 1);
}

void drawFrame(const Case& test) {
    N2DBoxDrawer drawer;
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    for (int i = 0; i < kBoxes; ++i) {
        const auto box = boxOf(test, i);
        if (test.keepsState) {
            drawer.Render(box);
            continue;
        }
        setView(box);
        if (test.byProgram)
            check(drawer.DrawWithVAMode(box), "no program");
        else
            drawer.DrawWithImmediateMode(box);
    }
    glFinish();
}

/// The state that hosts have in a view; without it that of the boxes.
void setState(bool hosts) {
    for (const GLenum feature : {GL_DEPTH_TEST, GL_LIGHTING})
        hosts ? glEnable(feature) : glDisable(feature);
    hosts ? glDisable(GL_BLEND) : glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
}

/// That boxes are drawn, so that no figure is that of an empty picture.
void checkPicture(const Case& test) {
    std::vector<std::uint32_t> pixels(std::size_t{kWidth} * kHeight);
    glReadPixels(0, 0, kWidth, kHeight, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    const auto drawn =
        std::count_if(pixels.begin(), pixels.end(), [](std::uint32_t p) { return (p & 0xFFFFFF) != 0; });
    check(test.width == 1 || drawn > kWidth * kHeight / 3, "the picture is empty");
    check(glGetError() == GL_NO_ERROR, "OpenGL reports an error");
}

/// Medians of some frames after two that are not counted.
Times timeFrames(const Case& test) {
    setState(test.keepsState);
    std::vector<double> wall, cpu;
    for (int frame = 0; frame < kFrames + 2; ++frame) {
        const Times start = now();
        drawFrame(test);
        const Times taken = since(start);
        if (frame < 2)
            continue;
        wall.push_back(taken.wall);
        cpu.push_back(taken.cpu);
    }
    checkPicture(test);
    return {median(wall), median(cpu)};
}

void run(const std::string& filter) {
    nruview::OffscreenContext context;
    const std::string error = context.create(kWidth, kHeight);
    check(error.empty(), error.c_str());
    std::vector<Case> cases(std::begin(kCases), std::end(kCases));
    std::erase_if(cases,
                  [&](const Case& c) { return std::string(c.name).find(filter) == std::string::npos; });
    std::vector<Times> best(cases.size(), {1e9, 1e9});
    for (int round = 0; round < kRounds; ++round)
        for (std::size_t i = 0; i < cases.size(); ++i) {
            const Times times = timeFrames(cases[i]);
            best[i] = {std::min(best[i].wall, times.wall), std::min(best[i].cpu, times.cpu)};
        }
    std::printf("%d boxes a frame\n", kBoxes);
    for (std::size_t i = 0; i < cases.size(); ++i)
        std::printf("  %-46s %7.1f ms wall %7.1f ms CPU\n", cases[i].name, best[i].wall, best[i].cpu);
}

} // namespace

int main(int count, char** arguments) {
    return runBenchmark(count, arguments, run);
}
