// A host with physically based shading: a copper sphere under lamps about the camera, or lit by an HDR
// picture that also stands behind it. Usage: pbr FILE.ppm [FILE.hdr]
#include <NRenderUtl/NRenderUtl.h>

#include <GL/gl.h>

#include <cmath>
#include <cstdio>
#include <vector>

#include "../common/context.h"

namespace {

constexpr int kSize = 384;
constexpr double kDistance = 4.0;

/// A unit sphere in quads; its normals are its positions.
struct Sphere {
    static constexpr unsigned int kAround = 96, kHigh = 48;
    std::vector<float> positions;
    std::vector<unsigned int> quads;
    Sphere() {
        for (unsigned int i = 0; i <= kHigh; ++i)
            for (unsigned int j = 0; j <= kAround; ++j) {
                const double polar = M_PI * i / kHigh, turn = 2 * M_PI * j / kAround;
                for (const double x :
                     {std::sin(polar) * std::sin(turn), std::cos(polar), std::sin(polar) * std::cos(turn)})
                    positions.push_back(static_cast<float>(x));
            }
        for (unsigned int i = 0; i < kHigh; ++i)
            for (unsigned int j = 0; j < kAround; ++j) {
                const unsigned int first = i * (kAround + 1) + j, below = first + kAround + 1;
                quads.insert(quads.end(), {first, below, below + 1, first + 1});
            }
    }
};

// 2. The library starts in the context, and the shading is chosen.
bool start(const char* hdrFile) {
    NglInitGLExtensions();
    InitRenderDefaults();
    RenderingInitShaders(); // reads the table of materials, under the setting NU_COMMON_PATH
    SetRenderingContextActive(true);
    NRenderMaterialApperanceHandler::Add(L"My Copper", {1.0f, 0.25f, 1.0f, 0.8f});
    EnablePhysicallyBasedRendering(true);
    if (hdrFile == nullptr)
        return true;
    EnableEnvironmentReflection(true);
    NImageBasedLightHandler::EnableHDRBackgroundRendering(true);
    const NErrorPtr error =
        NImageBasedLightHandler::SetHDRImage(GuString(hdrFile).c_str(), NImageBasedLightHandler::ImageUpY);
    if (error)
        std::fprintf(stderr, "%s: %s\n", hdrFile, error->GetTextUtf8());
    return !error;
}

// 3. A frame opens with the host's view; the camera's position is for the shading.
void beginFrame() {
    glViewport(0, 0, kSize, kSize);
    glClearColor(1, 1, 1, 1);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glEnable(GL_DEPTH_TEST);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glFrustum(-0.3, 0.3, -0.3, 0.3, 1.0, 10.0);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glTranslated(0, 0, -kDistance);
    NglUpdateNglInfo();
    NglGetNglInfo()->view = {0, 0, -1}; // of the lamps; read back it is the ray at the window's corner
    _NgPoint3Str camera = {0, 0, kDistance};
    ngl_set_camera_position(&camera);
    NglGetColors()[10] = ngl_get_color_long_from_rgb(232, 154, 120);
    NglUpdateColor(NglMaxColor, NglGetColors());
}

/// The background stands half a turn about z from what the sphere mirrors: the view is turned back for it.
void drawBackground() {
    _NglInfoStr turned = *NglGetNglInfo();
    for (int column : {0, 1})
        for (double& element : turned.modelView[column])
            element = -element;
    NImageBasedLightHandler::DrawHDRBackground(&turned);
}

// 4. The library draws. The maps of an environment are made now.
void drawSphere(const Sphere& sphere) {
    ngl::NglMeshRenderer renderer;
    renderer.SetColor(10);
    renderer.SetRenderMaterial(L"My Copper");
    if (!renderer.RenderBegin(ngl::NglMeshRenderer::RenderPassOpaque))
        return;
    renderer.Render(sphere.positions.data(), sphere.positions.data(), 0, nullptr,
                    static_cast<unsigned int>(sphere.quads.size() / 4), sphere.quads.data());
    renderer.RenderEnd();
}

bool writePicture(const char* path) {
    std::vector<unsigned char> pixels(kSize * kSize * 3);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, kSize, kSize, GL_RGB, GL_UNSIGNED_BYTE, pixels.data());
    std::FILE* file = std::fopen(path, "wb");
    if (file == nullptr)
        return false;
    std::fprintf(file, "P6\n%d %d\n255\n", kSize, kSize);
    for (int y = kSize - 1; y >= 0; --y)
        std::fwrite(&pixels[y * kSize * 3], 3, kSize, file);
    return std::fclose(file) == 0;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2 && argc != 3) {
        std::fprintf(stderr, "usage: %s FILE.ppm [FILE.hdr]\n", argv[0]);
        return 2;
    }
    if (!makeContext(kSize, kSize)) { // 1. The host owns the context.
        std::fprintf(stderr, "%s: no OpenGL context\n", argv[0]);
        return 2;
    }
    if (!start(argc == 3 ? argv[2] : nullptr))
        return 2;
    beginFrame();
    drawBackground();
    drawSphere(Sphere());
    const bool written = writePicture(argv[1]);
    NImageBasedLightHandler::CleanUpBuffers();
    RenderGLCleanupBuffers();
    SetRenderingContextActive(false);
    return written ? 0 : 1;
}
