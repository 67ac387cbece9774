// The element mesh off-screen: 1024 x 768 pixels, a wavy sheet over 80 % of them, one light, 12 bands.
//
//   elementmesh_bench [NAME]     steady frames (of the cases whose name contains NAME): milliseconds of wall
//                                clock and of CPU, from clearing to glFinish; the best of three medians of 20
//   elementmesh_bench --first    the first frame of a million triangles, medians of seven processes: the
//                                library's start-up, Create with values and scale, first frame, and resident
//                                memory
//   elementmesh_bench --calls    the OpenGL calls of one steady frame
#include <epoxy/gl.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "NRenderUtl/NRenderUtl.h"
#include "bench/glcalls.h"
#include "bench/timing.h"
#include "viewer/app/offscreen.h"

namespace {

using ngl::NglElementAttributes;
using ngl::NglElementMesh;
using ngl::NglElements;

constexpr int kWidth = 1024, kHeight = 768;
constexpr int kRounds = 3, kFrames = 20, kProcesses = 7;
constexpr unsigned kBands = 12;

// --- model and view ----------------------------------------------------------------------------------------

/// A wavy sheet over the square -1..1, of side x side quads or twice as many triangles.
struct Sheet {
    Sheet(unsigned side, bool quads);
    std::uint32_t elementCount() const { return static_cast<std::uint32_t>(elementValues.size()); }
    ngl::NglElementMeshInput input() const;

    std::vector<double> nodes;
    std::vector<std::uint32_t> triangles, quads;
    std::vector<float> nodeValues, elementValues;
    std::vector<NgColorLong> colors; ///< of the elements
};

Sheet::Sheet(unsigned side, bool ofQuads) {
    const unsigned row = side + 1;
    for (unsigned j = 0; j < row; ++j)
        for (unsigned i = 0; i < row; ++i) {
            const double x = 2.0 * i / side - 1, y = 2.0 * j / side - 1;
            nodes.insert(nodes.end(), {x, y, 0.05 * std::sin(9 * x) * std::cos(7 * y)});
            nodeValues.push_back(static_cast<float>(0.5 + 0.5 * std::sin(3 * x + 2 * y)));
        }
    for (unsigned j = 0; j < side; ++j)
        for (unsigned i = 0; i < side; ++i) {
            const unsigned a = j * row + i, b = a + 1, c = b + row, d = a + row;
            if (ofQuads)
                quads.insert(quads.end(), {a, b, c, d});
            else
                triangles.insert(triangles.end(), {a, b, c, a, c, d});
        }
    const std::size_t count = triangles.size() / 3 + quads.size() / 4;
    for (std::size_t e = 0; e < count; ++e) {
        elementValues.push_back(static_cast<float>(e) / static_cast<float>(count));
        colors.push_back(static_cast<NgColorLong>(e * 2654435761u >> 8 & 0xFFFFFF));
    }
}

ngl::NglElementMeshInput Sheet::input() const {
    ngl::NglElementMeshInput input;
    input.nodeCount = static_cast<std::uint32_t>(nodes.size() / 3);
    input.nodes = nodes.data();
    input.triangleCount = static_cast<std::uint32_t>(triangles.size() / 3);
    input.triangles = triangles.data();
    input.quadCount = static_cast<std::uint32_t>(quads.size() / 4);
    input.quads = quads.data();
    return input;
}

RenderColorScale makeScale() {
    std::vector<RenderColorScale::ColorBand> bands;
    for (unsigned i = 0; i < kBands; ++i)
        bands.push_back({static_cast<float>(i) / kBands, static_cast<float>(i + 1) / kBands,
                         i * 20 | (255 - i * 20) << 8 | 0x800000});
    RenderColorScale scale;
    scale.SetColorBands(bands);
    return scale;
}

void startLibrary() {
    SetRenderingContextActive(true);
    InitRenderDefaults();
    NglInitGLExtensions();
    RenderingInitShaders();
}

/// One light, and a view in which the sheet covers 80 % of the window.
void openView() {
    const double scale = std::sqrt(0.8);
    glViewport(0, 0, kWidth, kHeight);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glScaled(scale, scale, -0.3);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    const std::array<float, 4> toward = {-0.2f, 0.35f, 1.0f, 0.0f}, grey = {0.5f, 0.5f, 0.5f, 1.0f};
    glLightfv(GL_LIGHT0, GL_POSITION, toward.data());
    glLightfv(GL_LIGHT0, GL_AMBIENT, grey.data());
    glLightfv(GL_LIGHT0, GL_DIFFUSE, grey.data());
    glEnable(GL_LIGHT0);
    glEnable(GL_DEPTH_TEST);
    NglUpdateNglInfo();
    NglUpdateColor(NglMaxColor, NglGetColors());
}

void drawFrame(NglElementMesh& mesh) {
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    mesh.Draw();
    glFinish();
}

/// That most of the window is drawn, so that no figure is that of an empty picture.
void checkPicture() {
    std::vector<std::uint32_t> pixels(std::size_t{kWidth} * kHeight);
    glReadPixels(0, 0, kWidth, kHeight, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    const auto drawn =
        std::count_if(pixels.begin(), pixels.end(), [](std::uint32_t p) { return (p & 0xFFFFFF) != 0; });
    check(static_cast<double>(drawn) > 0.6 * static_cast<double>(pixels.size()), "the picture is empty");
    check(glGetError() == GL_NO_ERROR, "OpenGL reports an error");
}

// --- steady frames -----------------------------------------------------------------------------------------

struct Model {
    Model(unsigned side, bool quads) : sheet(side, quads) {
        const RenderColorScale scale = makeScale();
        check(mesh.Create(sheet.input()) == 0 && mesh.SetColorScale(&scale) == 0, "no mesh");
    }
    /// As created, but for what a case sets.
    void reset() {
        const NglElements all = NglElements::Range(0, sheet.elementCount());
        mesh.SetAttributes({});
        mesh.SetNodeValues(nullptr);
        mesh.ClearColors(all);
        mesh.SetVisible(all, true);
    }

    Sheet sheet;
    NglElementMesh mesh;
};

struct Case {
    std::string name;
    std::function<void(Model&)> prepare;
    std::function<void(Model&, unsigned frame)> change = {}; ///< before each frame, timed with it
};

void showNodeValues(Model& model) {
    model.mesh.SetNodeValues(model.sheet.nodeValues.data());
}

void showElementValues(Model& model) {
    model.mesh.SetElementValues(model.sheet.elementValues.data());
}

void showColors(Model& model) {
    model.mesh.SetColors(NglElements::Range(0, model.sheet.elementCount()), model.sheet.colors.data());
}

/// Shows the tenth that the last frame hid, and hides the next.
void hideNextTenth(Model& model, unsigned frame) {
    const std::uint32_t tenth = model.sheet.elementCount() / 10;
    model.mesh.SetVisible(NglElements::Range((frame + 9) % 10 * tenth, tenth), true);
    model.mesh.SetVisible(NglElements::Range(frame % 10 * tenth, tenth), false);
}

/// With the node bands or the element colours, drawn in another way.
Case drawnAs(const std::string& name, const std::function<void(Model&)>& show,
             const std::function<void(NglElementAttributes&)>& set) {
    return {name, [=](Model& model) {
                show(model);
                NglElementAttributes attributes;
                set(attributes);
                model.mesh.SetAttributes(attributes);
            }};
}

std::vector<Case> makeCases() {
    const auto route = [](ngl::NglElementRoute route) {
        return [=](NglElementAttributes& attributes) { attributes.route = route; };
    };
    const auto shading = [](ngl::NglElementShading shading) {
        return [=](NglElementAttributes& attributes) { attributes.shading = shading; };
    };
    const auto none = [](Model&) {};
    return {
        {"node bands", showNodeValues},
        {"element colours", showColors},
        {"element values", showElementValues},
        {"plain", none},
        {"node bands, a changed tenth hidden", showNodeValues, hideNextTenth},
        {"element colours, a changed tenth hidden", showColors, hideNextTenth},
        drawnAs("node bands, flat", showNodeValues, shading(ngl::NglElementFlat)),
        drawnAs("node bands, face normals", showNodeValues, shading(ngl::NglElementNormals)),
        drawnAs("node bands, unlit", showNodeValues, [](NglElementAttributes& a) { a.lit = false; }),
        drawnAs("plain, front and back", none, [](NglElementAttributes& a) { a.frontAndBack = true; }),
        drawnAs("node bands, transparent", showNodeValues, [](NglElementAttributes& a) { a.opacity = 0.5f; }),
        drawnAs("node bands, mesh program", showNodeValues, route(ngl::NglElementRouteMesh)),
        drawnAs("element colours, mesh program", showColors, route(ngl::NglElementRouteMesh)),
        drawnAs("node bands, geometry stage", showNodeValues, route(ngl::NglElementRouteGeometry)),
        drawnAs("element colours, geometry stage", showColors, route(ngl::NglElementRouteGeometry)),
        drawnAs("node bands, fixed function", showNodeValues, route(ngl::NglElementRouteFixed)),
        drawnAs("element colours, fixed function", showColors, route(ngl::NglElementRouteFixed)),
    };
}

/// Medians of some frames after two that are not counted.
Times timeFrames(Model& model, const Case& test) {
    model.reset();
    test.prepare(model);
    std::vector<double> wall, cpu;
    for (unsigned frame = 0; frame < kFrames + 2; ++frame) {
        const Times start = now();
        if (test.change)
            test.change(model, frame);
        drawFrame(model.mesh);
        const Times taken = since(start);
        if (frame < 2)
            continue;
        wall.push_back(taken.wall);
        cpu.push_back(taken.cpu);
    }
    checkPicture();
    return {median(wall), median(cpu)};
}

void timeModel(const char* title, Model& model, const std::string& filter) {
    std::vector<Case> cases = makeCases();
    std::erase_if(cases, [&](const Case& test) { return test.name.find(filter) == std::string::npos; });
    std::vector<Times> best(cases.size(), {1e9, 1e9});
    for (int round = 0; round < kRounds; ++round)
        for (std::size_t i = 0; i < cases.size(); ++i) {
            const Times times = timeFrames(model, cases[i]);
            best[i] = {std::min(best[i].wall, times.wall), std::min(best[i].cpu, times.cpu)};
        }
    std::printf("%s\n", title);
    for (std::size_t i = 0; i < cases.size(); ++i)
        std::printf("  %-42s %7.1f ms wall %7.1f ms CPU\n", cases[i].name.c_str(), best[i].wall, best[i].cpu);
    std::fflush(stdout);
}

void timeSteadyFrames(const std::string& filter) {
    const auto time = [&](const char* title, unsigned side, bool quads) {
        Model model(side, quads);
        timeModel(title, model, filter);
    };
    time("100,000 triangles", 224, false);
    time("1,000,000 triangles", 707, false);
    time("500,000 quads", 707, true);
}

// --- calls of a frame --------------------------------------------------------------------------------------

void countCalls() {
    Model model(100, false);
    for (const Case& test : makeCases()) {
        model.reset();
        test.prepare(model);
        for (unsigned frame = 0; frame < 3; ++frame) {
            if (test.change)
                test.change(model, frame);
            (void)takeGlCalls();
            model.mesh.Draw();
        }
        const auto calls = takeGlCalls();
        int sum = 0;
        for (const auto& [name, count] : calls)
            sum += count;
        std::printf("%s: %d\n", test.name.c_str(), sum);
        for (const auto& [name, count] : calls)
            std::printf("  %3d %s\n", count, name.c_str());
    }
}

// --- first frame -------------------------------------------------------------------------------------------

double residentMegabytes() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with("VmRSS:"))
            return std::strtod(line.c_str() + 6, nullptr) * 1024 / 1e6;
    return 0;
}

/// In a process of its own, with the context made: writes start-up, Create, first and second frame, memory.
/// The host's own arrays are not counted.
void drawFirstFrame() {
    Sheet sheet(707, false);
    const RenderColorScale scale = makeScale();
    const Times begin = now();
    startLibrary();
    openView();
    const Times started = since(begin);

    const Times create = now();
    NglElementMesh mesh;
    check(mesh.Create(sheet.input()) == 0, "no mesh");
    mesh.SetColorScale(&scale);
    mesh.SetNodeValues(sheet.nodeValues.data());
    const Times created = since(create);

    const Times first = now();
    drawFrame(mesh);
    const Times drawn = since(first);
    const double resident = residentMegabytes();
    const Times second = now();
    drawFrame(mesh);
    const Times again = since(second);
    checkPicture();
    const std::size_t hosts =
        sheet.nodes.size() * 8 + sheet.triangles.size() * 4 +
        (sheet.nodeValues.size() + sheet.elementValues.size() + sheet.colors.size()) * 4;
    std::printf("%f %f %f %f %f %f\n", started.wall, created.wall, drawn.wall, again.wall, resident,
                static_cast<double>(hosts) / 1e6);
}

void timeFirstFrames() {
    constexpr std::array<const char*, 6> kNames = {
        "start-up, ms",     "Create, values and scale, ms", "first frame, ms",
        "second frame, ms", "resident after the first, MB", "of it the host's own arrays, MB"};
    std::array<std::vector<double>, kNames.size()> figures;
    std::string command = std::filesystem::read_symlink("/proc/self/exe").string();
    command += " --first-once";
    for (int process = 0; process < kProcesses; ++process) {
        FILE* output = popen(command.c_str(), "r");
        for (std::vector<double>& figure : figures) {
            double value = 0;
            check(output && std::fscanf(output, "%lf", &value) == 1, "a process drew nothing");
            figure.push_back(value);
        }
        pclose(output);
    }
    std::printf("First frame of 1,000,000 triangles with node bands\n");
    for (std::size_t i = 0; i < kNames.size(); ++i)
        std::printf("  %-42s %7.1f\n", kNames[i], median(figures[i]));
}

void run(const std::string& mode) {
    if (mode == "--first")
        return timeFirstFrames();
    nruview::OffscreenContext context;
    const std::string error = context.create(kWidth, kHeight);
    check(error.empty(), error.c_str());
    if (mode == "--first-once")
        return drawFirstFrame();
    startLibrary();
    openView();
    check(IsFastRendererEnabled() == 1, "the programs cannot run here");
    mode == "--calls" ? countCalls() : timeSteadyFrames(mode);
}

} // namespace

int main(int count, char** arguments) {
    return runBenchmark(count, arguments, run);
}
