// 3D markers off-screen: 1024 x 768 pixels, strewn over the window so that 40 % of it is covered (half as
// long where small), one light. All are others in each frame, in place, orientation, length and colour.
//
//   marker_bench [NAME]     steady frames (of the cases whose name contains NAME): milliseconds of wall
//   clock,
//                           of CPU in all threads and in the calling one, from clearing to glFinish; the best
//                           of three medians of 12
//   marker_bench --same     pixels by which an array of exact triangles differs from single calls
#include <epoxy/gl.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "NRenderUtl/NRenderUtl.h"
#include "bench/timing.h"
#include "viewer/app/offscreen.h"

namespace {

constexpr int kWidth = 1024, kHeight = 768;
constexpr int kRounds = 3, kFrames = 12, kSets = 3;

// --- markers -----------------------------------------------------------------------------------------------

struct Markers {
    std::vector<_NgFPoint3Str> starts, vectors, diameters;
    std::vector<NgColorLong> colors;
};

/// In pixels, `size` times one and a half times as long as the side of the square that each has on average.
Markers strew(std::size_t count, unsigned seed, float size = 1) {
    std::mt19937 random(seed);
    std::normal_distribution<float> normal;
    std::uniform_real_distribution<float> unit;
    const float cell = std::sqrt(static_cast<float>(kWidth * kHeight) / static_cast<float>(count));
    Markers markers;
    for (std::size_t i = 0; i < count; ++i) {
        const std::array<float, 3> d = {normal(random), normal(random), normal(random)};
        const float length = size * cell * (1 + unit(random)), scale = length / std::hypot(d[0], d[1], d[2]);
        const _NgFPoint3Str vector = {d[0] * scale, d[1] * scale, d[2] * scale};
        markers.starts.push_back({kWidth * unit(random) - vector.x / 2, kHeight * unit(random) - vector.y / 2,
                                  200 * unit(random) - 100});
        markers.vectors.push_back(vector);
        const float diameter = size * cell * (0.5f + 0.5f * unit(random));
        markers.diameters.push_back({diameter, diameter, diameter});
        markers.colors.push_back(random() & 0xFFFFFF);
    }
    return markers;
}

constexpr float kWidthRatio = 0.25f;

void drawCylinders(const Markers& markers) {
    for (std::size_t i = 0; i < markers.starts.size(); ++i)
        RenderDraw3DMarker(&markers.starts[i], &markers.vectors[i], 0, kWidthRatio, &markers.colors[i], false,
                           0, 0, 0, 0);
}

void drawCylinderArray(const Markers& markers, bool exact) {
    Render3DMarkerArray array;
    array.count = markers.starts.size();
    array.starts = markers.starts.data();
    array.vectors = markers.vectors.data();
    array.widthRatio = kWidthRatio;
    array.colors = markers.colors.data();
    array.exact = exact;
    RenderDraw3DMarkers(&array);
}

void drawSpheres(const Markers& markers) {
    for (std::size_t i = 0; i < markers.starts.size(); ++i)
        RenderDraw3DSphere(&markers.starts[i], &markers.diameters[i], markers.colors[i], false, 0, 0, 0);
}

void drawSphereArray(const Markers& markers, bool exact) {
    Render3DSphereArray array;
    array.count = markers.starts.size();
    array.centres = markers.starts.data();
    array.diameters = markers.diameters.data();
    array.colors = markers.colors.data();
    array.exact = exact;
    RenderDraw3DSpheres(&array);
}

/// The first marker by a call and again for each of the others, with nothing but the draw between: what calls
/// cannot go below.
void drawBare(const Markers& markers) {
    constexpr GLsizei kIndices = 3 * 64;
    RenderDraw3DMarker(&markers.starts[0], &markers.vectors[0], 0, kWidthRatio, nullptr, false, 0, 0, 0, 0);
    for (std::size_t i = 1; i < markers.starts.size(); ++i)
        glDrawElements(GL_TRIANGLES, kIndices, GL_UNSIGNED_INT, nullptr);
}

// --- cases -------------------------------------------------------------------------------------------------

struct Case {
    std::string name;
    _Render3DMarkerType type;
    std::size_t count;
    std::function<void(const Markers&)> draw;
    float size = 1;
};

std::vector<Case> allCases() {
    constexpr auto kCylinder = RENDER_3D_MARKER_CYLINDER, kSphere = RENDER_3D_MARKER_SPHERE;
    const auto exact = [](const Markers& m) { drawCylinderArray(m, true); };
    const auto array = [](const Markers& m) { drawCylinderArray(m, false); };
    const auto exactSpheres = [](const Markers& m) { drawSphereArray(m, true); };
    const auto sphereArray = [](const Markers& m) { drawSphereArray(m, false); };
    return {{"10000 cylinders, bare draws", kCylinder, 10000, drawBare},
            {"10000 cylinders, single calls", kCylinder, 10000, drawCylinders},
            {"10000 cylinders, exact array", kCylinder, 10000, exact},
            {"10000 cylinders, array", kCylinder, 10000, array},
            {"10000 small cylinders, single calls", kCylinder, 10000, drawCylinders, 0.5f},
            {"10000 small cylinders, exact array", kCylinder, 10000, exact, 0.5f},
            {"10000 small cylinders, array", kCylinder, 10000, array, 0.5f},
            {"100000 cylinders, exact array", kCylinder, 100000, exact},
            {"100000 cylinders, array", kCylinder, 100000, array},
            {"1000 spheres, single calls", kSphere, 1000, drawSpheres},
            {"1000 spheres, exact array", kSphere, 1000, exactSpheres},
            {"1000 spheres, array", kSphere, 1000, sphereArray},
            {"10000 spheres, array", kSphere, 10000, sphereArray}};
}

void startLibrary() {
    SetRenderingContextActive(true);
    InitRenderDefaults();
    NglInitGLExtensions();
    RenderingInitShaders();
}

void openView() {
    glViewport(0, 0, kWidth, kHeight);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(0, kWidth, 0, kHeight, -300, 300);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    const std::array<float, 4> position = {-2000, 3000, 4000, 1}, dim = {0.2f, 0.2f, 0.2f, 1.0f},
                               grey = {0.8f, 0.8f, 0.8f, 1.0f};
    glLightfv(GL_LIGHT0, GL_POSITION, position.data());
    glLightfv(GL_LIGHT0, GL_AMBIENT, dim.data());
    glLightfv(GL_LIGHT0, GL_DIFFUSE, grey.data());
    glEnable(GL_LIGHT0);
    glEnable(GL_DEPTH_TEST);
    NglUpdateNglInfo();
    NglUpdateColor(NglMaxColor, NglGetColors());
}

void drawFrame(const Case& test, const Markers& markers) {
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    RenderBegin3DMarkerDraw(test.type, RENDER_3D_MARKER_SHAPE_SMOOTH, false);
    test.draw(markers);
    RenderEnd3DMarkerDraw();
    glFinish();
}

std::vector<std::uint32_t> readPixels() {
    std::vector<std::uint32_t> pixels(std::size_t{kWidth} * kHeight);
    glReadPixels(0, 0, kWidth, kHeight, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    check(glGetError() == GL_NO_ERROR, "OpenGL reports an error");
    return pixels;
}

/// That a good part of the window is drawn, so that no figure is that of an empty picture.
void checkPicture(double share) {
    const std::vector<std::uint32_t> pixels = readPixels();
    const auto drawn =
        std::count_if(pixels.begin(), pixels.end(), [](std::uint32_t p) { return (p & 0xFFFFFF) != 0; });
    check(static_cast<double>(drawn) > share * static_cast<double>(pixels.size()), "the picture is empty");
}

// --- steady frames -----------------------------------------------------------------------------------------

struct MarkerTimes {
    double wall = 1e9, cpu = 1e9, calling = 1e9;
};

/// Medians of some frames after two that are not counted.
MarkerTimes timeFrames(const Case& test, const std::vector<Markers>& sets) {
    std::vector<double> wall, cpu, calling;
    for (std::size_t frame = 0; frame < kFrames + 2; ++frame) {
        const double thread = milliseconds(CLOCK_THREAD_CPUTIME_ID);
        const Times start = now();
        drawFrame(test, sets[frame % sets.size()]);
        const Times taken = since(start);
        if (frame < 2)
            continue;
        wall.push_back(taken.wall);
        cpu.push_back(taken.cpu);
        calling.push_back(milliseconds(CLOCK_THREAD_CPUTIME_ID) - thread);
    }
    if (test.name.find("bare") == std::string::npos)
        checkPicture(0.3 * test.size * test.size);
    return {median(wall), median(cpu), median(calling)};
}

std::vector<Markers> setsOf(const Case& test) {
    std::vector<Markers> sets;
    for (unsigned seed = 1; seed <= kSets; ++seed)
        sets.push_back(strew(test.count, seed, test.size));
    return sets;
}

void timeSteadyFrames(const std::string& filter) {
    std::vector<Case> cases = allCases();
    std::erase_if(cases, [&](const Case& test) { return test.name.find(filter) == std::string::npos; });
    std::vector<MarkerTimes> best(cases.size());
    for (int round = 0; round < kRounds; ++round)
        for (std::size_t i = 0; i < cases.size(); ++i) {
            const MarkerTimes times = timeFrames(cases[i], setsOf(cases[i]));
            best[i] = {std::min(best[i].wall, times.wall), std::min(best[i].cpu, times.cpu),
                       std::min(best[i].calling, times.calling)};
        }
    for (std::size_t i = 0; i < cases.size(); ++i)
        std::printf("  %-36s %8.1f ms wall %8.1f ms CPU %8.1f ms calling\n", cases[i].name.c_str(),
                    best[i].wall, best[i].cpu, best[i].calling);
}

/// How many pixels two ways to draw the same differ in, and by how much at most.
void comparePictures(const char* name, const Case& a, const Case& b) {
    const Markers markers = strew(a.count, 1);
    drawFrame(a, markers);
    const std::vector<std::uint32_t> one = readPixels();
    drawFrame(b, markers);
    const std::vector<std::uint32_t> other = readPixels();
    int pixels = 0, largest = 0;
    for (std::size_t i = 0; i < one.size(); ++i) {
        pixels += one[i] != other[i];
        for (unsigned shift = 0; shift < 32; shift += 8)
            largest = std::max(largest, std::abs(static_cast<int>(one[i] >> shift & 0xFF) -
                                                 static_cast<int>(other[i] >> shift & 0xFF)));
    }
    std::printf("  %-32s %8d pixels differ, by %d at most\n", name, pixels, largest);
}

void compareExact() {
    const std::vector<Case> cases = allCases();
    comparePictures("10000 cylinders", cases[1], cases[2]);
    comparePictures("10000 cylinders, not exact", cases[1], cases[3]);
    comparePictures("1000 spheres", cases[9], cases[10]);
    comparePictures("1000 spheres, not exact", cases[9], cases[11]);
}

void run(const std::string& filter) {
    nruview::OffscreenContext context;
    const std::string error = context.create(kWidth, kHeight);
    check(error.empty(), error.c_str());
    startLibrary();
    openView();
    filter == "--same" ? compareExact() : timeSteadyFrames(filter);
}

} // namespace

int main(int count, char** arguments) {
    return runBenchmark(count, arguments, run);
}
