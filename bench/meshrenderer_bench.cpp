// The mesh renderer off-screen: 1024 x 768 pixels, a bumpy torus of 100,000 triangles that covers half of
// them, two lights for the classic model.
//
//   meshrenderer_bench [NAME]    steady frames (of the cases whose name contains NAME): milliseconds of wall
//                                clock and of CPU, from clearing to glFinish; the best of three medians of 20
#include <unistd.h>

#include <epoxy/gl.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <numbers>
#include <string>
#include <tuple>
#include <vector>

#include "NRenderUtl/NRenderUtl.h"
#include "bench/timing.h"
#include "viewer/app/offscreen.h"

namespace {

constexpr int kWidth = 1024, kHeight = 768;
constexpr int kRounds = 3, kFrames = 20;

// --- model and view ----------------------------------------------------------------------------------------

struct Model {
    std::vector<float> positions, normals;
    std::vector<unsigned> triangles;
};

/// A torus about the z axis whose tube swells and shrinks, normals from its parametrisation.
Model makeTorus(unsigned around, unsigned along) {
    constexpr double kTurn = 2 * std::numbers::pi;
    const auto point = [](double u, double v) {
        const double tube = 0.4 * (1 + 0.08 * std::sin(12 * u) * std::sin(8 * v)),
                     r = 0.9 + tube * std::cos(v);
        return std::array{r * std::cos(u), r * std::sin(u), tube * std::sin(v)};
    };
    Model model;
    for (unsigned i = 0; i < around * along; ++i) {
        const double u = kTurn * (i / along) / around, v = kTurn * (i % along) / along, h = 1e-4;
        const auto p = point(u, v), a = point(u + h, v), b = point(u, v + h);
        const std::array du = {a[0] - p[0], a[1] - p[1], a[2] - p[2]},
                         dv = {b[0] - p[0], b[1] - p[1], b[2] - p[2]};
        const std::array n = {du[1] * dv[2] - du[2] * dv[1], du[2] * dv[0] - du[0] * dv[2],
                              du[0] * dv[1] - du[1] * dv[0]};
        const double length = std::hypot(n[0], n[1], n[2]);
        for (int k = 0; k < 3; ++k) {
            model.positions.push_back(static_cast<float>(p[k]));
            model.normals.push_back(static_cast<float>(n[k] / length));
        }
        const unsigned j = i / along * along, next = (j + along) % (around * along), up = (i + 1) % along;
        const unsigned c = next + i % along, d = next + up, e = j + up;
        model.triangles.insert(model.triangles.end(), {i, c, d, i, d, e});
    }
    return model;
}

void startLibrary() {
    SetRenderingContextActive(true);
    InitRenderDefaults();
    NglInitGLExtensions();
    RenderingInitShaders();
    NRenderMaterialApperanceHandler::Add("Steel", {0.9f, 0.35f, 1.0f, 0.6f});
}

void setLight(GLenum light, const std::array<float, 4>& position) {
    const std::array<float, 4> dim = {0.2f, 0.2f, 0.2f, 1.0f}, grey = {0.8f, 0.8f, 0.8f, 1.0f};
    glLightfv(light, GL_POSITION, position.data());
    glLightfv(light, GL_AMBIENT, dim.data());
    glLightfv(light, GL_DIFFUSE, grey.data());
    glLightfv(light, GL_SPECULAR, grey.data());
    glEnable(light);
}

/// Surroundings of one radiance, which cost as much as any. The file is read when the first frame is lit.
class ConstantEnvironment {
public:
    ConstantEnvironment() {
        std::ofstream file(m_file, std::ios::binary);
        file << "#?RADIANCE\nFORMAT=32-bit_rle_rgbe\n\n-Y 2 +X 4\n";
        for (int pixel = 0; pixel < 8; ++pixel)
            file << "\x80\x80\x80\x81";
        file.close();
        using Handler = NImageBasedLightHandler;
        const NErrorPtr error = Handler::SetHDRImage(m_file.wstring().c_str(), Handler::ImageUpZ);
        check(!error, "no environment");
    }
    ~ConstantEnvironment() { std::filesystem::remove(m_file); }
    ConstantEnvironment(const ConstantEnvironment&) = delete;
    ConstantEnvironment& operator=(const ConstantEnvironment&) = delete;

private:
    const std::filesystem::path m_file =
        std::filesystem::temp_directory_path() / ("meshrenderer_bench" + std::to_string(getpid()) + ".hdr");
};

/// Two lights, shining materials, and a perspective view of the torus at an angle.
void openView() {
    glViewport(0, 0, kWidth, kHeight);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glFrustum(-0.4, 0.4, -0.31, 0.29, 1, 10);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    setLight(GL_LIGHT0, {-2, 3, 4, 1});
    setLight(GL_LIGHT1, {3, 1, 2, 1});
    const std::array<float, 4> shine = {0.6f, 0.6f, 0.6f, 1.0f};
    glMaterialfv(GL_FRONT_AND_BACK, GL_SPECULAR, shine.data());
    glMaterialf(GL_FRONT_AND_BACK, GL_SHININESS, 30);
    glTranslated(0, 0, -4);
    glRotated(-35, 1, 0, 0);
    glEnable(GL_DEPTH_TEST);
    NglUpdateNglInfo();
    NglUpdateColor(NglMaxColor, NglGetColors());
    _NgPoint3Str camera = {0, 4 * std::sin(-35 * std::numbers::pi / 180),
                           4 * std::cos(35 * std::numbers::pi / 180)};
    ngl_set_camera_position(&camera);
}

/// That a good part of the window is drawn, so that no figure is that of an empty picture.
void checkPicture() {
    std::vector<std::uint32_t> pixels(std::size_t{kWidth} * kHeight);
    glReadPixels(0, 0, kWidth, kHeight, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    const auto drawn =
        std::count_if(pixels.begin(), pixels.end(), [](std::uint32_t p) { return (p & 0xFFFFFF) != 0; });
    check(static_cast<double>(drawn) > 0.45 * static_cast<double>(pixels.size()), "the picture is empty");
    check(glGetError() == GL_NO_ERROR, "OpenGL reports an error");
}

// --- steady frames -----------------------------------------------------------------------------------------

using ngl::NglMeshRenderer;

struct Case {
    std::string name;
    bool physicallyBased, environment, transparent;
};

void drawFrame(NglMeshRenderer& renderer, const Model& model, const Case& test) {
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    check(renderer.RenderBegin(test.transparent ? NglMeshRenderer::RenderPassTransparent
                                                : NglMeshRenderer::RenderPassOpaque),
          "no program");
    renderer.Render(model.positions.data(), model.normals.data(),
                    static_cast<unsigned>(model.triangles.size() / 3), model.triangles.data(), 0, nullptr);
    renderer.RenderEnd();
    glFinish();
}

/// Medians of some frames after two that are not counted.
Times timeFrames(const Model& model, const Case& test) {
    EnablePhysicallyBasedRendering(test.physicallyBased);
    EnableEnvironmentReflection(test.environment);
    NglMeshRenderer renderer;
    renderer.SetColor(8);
    renderer.SetRenderMaterial(L"Steel");
    renderer.EnableTransparency(test.transparent);
    renderer.SetAlpha(test.transparent ? 128 : 0);
    if (test.transparent)
        glEnable(GL_BLEND);
    else
        glDisable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    std::vector<double> wall, cpu;
    for (unsigned frame = 0; frame < kFrames + 2; ++frame) {
        const Times start = now();
        drawFrame(renderer, model, test);
        const Times taken = since(start);
        if (frame < 2)
            continue;
        wall.push_back(taken.wall);
        cpu.push_back(taken.cpu);
    }
    checkPicture();
    return {median(wall), median(cpu)};
}

void timeSteadyFrames(const std::string& filter) {
    std::vector<Case> cases;
    for (const bool transparent : {false, true})
        for (const auto& [name, physicallyBased, environment] : {std::tuple{"classic", false, false},
                                                                 {"direct lights", true, false},
                                                                 {"environment", true, true}})
            cases.push_back({name + std::string(transparent ? ", transparent" : ""), physicallyBased,
                             environment, transparent});
    std::erase_if(cases, [&](const Case& test) { return test.name.find(filter) == std::string::npos; });
    const Model model = makeTorus(400, 125);
    std::vector<Times> best(cases.size(), {1e9, 1e9});
    for (int round = 0; round < kRounds; ++round)
        for (std::size_t i = 0; i < cases.size(); ++i) {
            const Times times = timeFrames(model, cases[i]);
            best[i] = {std::min(best[i].wall, times.wall), std::min(best[i].cpu, times.cpu)};
        }
    std::printf("%zu triangles\n", model.triangles.size() / 3);
    for (std::size_t i = 0; i < cases.size(); ++i)
        std::printf("  %-34s %7.1f ms wall %7.1f ms CPU\n", cases[i].name.c_str(), best[i].wall, best[i].cpu);
}

void run(const std::string& filter) {
    nruview::OffscreenContext context;
    const std::string error = context.create(kWidth, kHeight);
    check(error.empty(), error.c_str());
    startLibrary();
    openView();
    const ConstantEnvironment environment;
    timeSteadyFrames(filter);
}

} // namespace

int main(int count, char** arguments) {
    return runBenchmark(count, arguments, run);
}
