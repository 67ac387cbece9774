// Textures off-screen: 1024 x 768 pixels, 1,000 pictures of 24 x 24 pixels a frame, of 20 textures, and what
// the manager takes to answer for an unchanged file.
//
//   texture_bench [NAME]    steady frames (of the cases whose name contains NAME): milliseconds of wall clock
//                           and of CPU, from clearing to glFinish; the best of three medians of 20. "bare" is
//                           the same quads without a library, so the difference is what keeping the host's
//                           state costs. Then microseconds for one look-up.
#include <unistd.h>

#include <epoxy/gl.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>

#include "NRenderUtl/NRenderUtl.h"
#include "bench/timing.h"
#include "viewer/app/offscreen.h"

namespace {

constexpr int kWidth = 1024, kHeight = 768, kSize = 24, kPictures = 1000, kTextures = 20;
constexpr int kRounds = 3, kFrames = 20, kLookUps = 100000;

// --- frames ------------------------------------------------------------------------------------------------

/// A picture in two colours, one of them translucent.
std::vector<std::uint32_t> pixelsOf(int texture) {
    std::vector<std::uint32_t> pixels;
    for (int i = 0; i < kSize * kSize; ++i)
        pixels.push_back((i / 6 + i / kSize) % 2 ? 0x80FFFFFF
                                                 : 0xFF0000FF + static_cast<unsigned>(texture) * 2560);
    return pixels;
}

using Draw = std::function<void(int picture, int x, int y)>;

struct Case {
    const char* name;
    Draw draw;
};

void drawFrame(const Draw& draw) {
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    for (int i = 0; i < kPictures; ++i)
        draw(i, i % 40 * (kSize + 1), i / 40 * (kSize + 1));
    glFinish();
}

Times timeFrames(const Draw& draw) {
    std::vector<double> wall, cpu;
    for (int frame = 0; frame < kFrames + 2; ++frame) {
        const Times start = now();
        drawFrame(draw);
        const Times taken = since(start);
        if (frame < 2)
            continue;
        wall.push_back(taken.wall);
        cpu.push_back(taken.cpu);
    }
    std::vector<std::uint32_t> pixels(std::size_t{kWidth} * kHeight);
    glReadPixels(0, 0, kWidth, kHeight, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    check(std::count_if(pixels.begin(), pixels.end(), [](auto p) { return (p & 0xFFFFFF) != 0; }) > 300000,
          "the picture is empty");
    check(glGetError() == GL_NO_ERROR, "OpenGL reports an error");
    return {median(wall), median(cpu)};
}

/// Textures of plain GL.
std::vector<GLuint> makeBareTextures() {
    std::vector<GLuint> names(kTextures);
    glGenTextures(kTextures, names.data());
    for (int i = 0; i < kTextures; ++i) {
        glBindTexture(GL_TEXTURE_2D, names[static_cast<std::size_t>(i)]);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, kSize, kSize, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                     pixelsOf(i).data());
    }
    glBindTexture(GL_TEXTURE_2D, 0);
    return names;
}

void drawBare(GLuint texture, int x, int y) {
    glViewport(x, y, kSize, kSize);
    glBindTexture(GL_TEXTURE_2D, texture);
    glEnable(GL_TEXTURE_2D);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glBegin(GL_QUADS);
    for (const auto& [s, t] : {std::pair{0.0f, 0.0f}, {1.0f, 0.0f}, {1.0f, 1.0f}, {0.0f, 1.0f}}) {
        glTexCoord2f(s, t);
        glVertex2f(2 * s - 1, 2 * t - 1);
    }
    glEnd();
    glDisable(GL_BLEND);
    glDisable(GL_TEXTURE_2D);
}

void timeSteadyFrames(const std::string& filter) {
    std::vector<NuTexture> textures(kTextures);
    for (int i = 0; i < kTextures; ++i)
        check(!textures[static_cast<std::size_t>(i)].CreateFromPixelData(
                  kSize, kSize, reinterpret_cast<unsigned char*>(pixelsOf(i).data()), GL_RGBA),
              "no texture");
    const std::vector<GLuint> bare = makeBareTextures();
    const NuTexture::RenderInfo plain{}, both{1, 6, 1, 3, {255, 255, 0}};
    const auto rectangle = [&](const NuTexture::RenderInfo& info) {
        return [&](int i, int x, int y) {
            textures[static_cast<std::size_t>(i % kTextures)].RenderAsRectangle(x, y, 0, 0, info);
        };
    };
    const auto circle = [&](const NuTexture::RenderInfo& info) {
        return [&](int i, int x, int y) {
            textures[static_cast<std::size_t>(i % kTextures)].RenderAsCircle(x, y, 0, info);
        };
    };
    const Case cases[] = {
        {"bare", [&](int i, int x, int y) { drawBare(bare[static_cast<std::size_t>(i % kTextures)], x, y); }},
        {"rectangles", rectangle(plain)},
        {"rectangles, corners and border", rectangle(both)},
        {"circles", circle(plain)},
        {"circles with a border", circle(both)}};
    std::printf("%d pictures\n", kPictures);
    for (const Case& test : cases) {
        if (std::string(test.name).find(filter) == std::string::npos)
            continue;
        Times best{1e9, 1e9};
        for (int round = 0; round < kRounds; ++round) {
            const Times times = timeFrames(test.draw);
            best = {std::min(best.wall, times.wall), std::min(best.cpu, times.cpu)};
        }
        std::printf("  %-34s %7.1f ms wall %7.1f ms CPU\n", test.name, best.wall, best.cpu);
    }
}

// --- manager -----------------------------------------------------------------------------------------------

/// A folder with one picture, among the resources.
class Resources {
public:
    Resources() {
        std::filesystem::create_directories(m_folder / "Images");
        // One grey pixel.
        static constexpr char kPng[] = "\x89PNG\r\n\x1A\n\0\0\0\rIHDR\0\0\0\1\0\0\0\1\x08\0\0\0\0\x3A\x7E\x9B"
                                       "\x55\0\0\0\nIDAT\x78\x9C\x63\x68"
                                       "\0\0\0\x82\0\x81\x77\xCD\x72\xB6\0\0\0\0IEND\xAE\x42\x60\x82";
        std::ofstream(m_folder / "Images/grey.png", std::ios::binary).write(kPng, sizeof kPng - 1);
        setenv("NU_RESOURCES_PATH", m_folder.c_str(), 1);
    }
    ~Resources() { std::filesystem::remove_all(m_folder); }
    Resources(const Resources&) = delete;
    Resources& operator=(const Resources&) = delete;
    GuStringFileName full() const { return GuStringFileName((m_folder / "Images/grey.png").native()); }

private:
    const std::filesystem::path m_folder =
        std::filesystem::temp_directory_path() / ("texture_bench" + std::to_string(getpid()));
};

void timeLookUps() {
    const Resources resources;
    NuImageTextureManager& manager = *NuImageTextureManager::GetInstance();
    for (const auto& [what, name] : {std::pair{"cached, full path", resources.full()},
                                     {"cached, in the resources", GuStringFileName("grey.png")}}) {
        check(manager.GetNuTexture(name) != nullptr, "the picture cannot be read");
        const Times start = now();
        for (int i = 0; i < kLookUps; ++i)
            manager.GetNuTexture(name);
        const Times taken = since(start);
        std::printf("  %-34s %7.2f us wall %7.2f us CPU\n", what, taken.wall * 1000 / kLookUps,
                    taken.cpu * 1000 / kLookUps);
    }
}

void run(const std::string& filter) {
    nruview::OffscreenContext context;
    const std::string error = context.create(kWidth, kHeight);
    check(error.empty(), error.c_str());
    SetRenderingContextActive(true);
    NglInitGLExtensions();
    RenderingInitShaders();
    timeSteadyFrames(filter);
    timeLookUps();
}

} // namespace

int main(int count, char** arguments) {
    return runBenchmark(count, arguments, run);
}
