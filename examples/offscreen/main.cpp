// The smallest host: makes an OpenGL context without a window, hands its view to the library, lets it draw a
// mesh, and writes the picture. Usage: offscreen FILE.ppm
#include <NRenderUtl/NRenderUtl.h>

#include <GL/gl.h>

#include <cstdio>
#include <vector>

#include "../common/context.h"

namespace {

constexpr int kSize = 256;

// 2. The host sets its view up in OpenGL and lets the library read it back.
void setView() {
    NglInitGLExtensions();
    glViewport(0, 0, kSize, kSize);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(-1, 1, -1, 1, -2, 2);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glRotated(-60, 1, 0, 0);
    glRotated(30, 0, 0, 1);
    NglSetWindowBackGroundColor(0x00FFFFFF);
    NglUpdateColor(NglMaxColor, NglGetColors());
    NglUpdateNglInfo();
}

// 3. The library draws: the sides of a pyramid, each with vertices of its own so that its normal is its own,
// and its edges, which are listed once with shared vertices.
void drawMesh() {
    constexpr double kApex[3] = {0, 0, 0.8};
    constexpr double kBase[4][3] = {{-0.6, -0.6, 0}, {0.6, -0.6, 0}, {0.6, 0.6, 0}, {-0.6, 0.6, 0}};
    constexpr double kNormals[4][3] = {{0, -0.8, 0.6}, {0.8, 0, 0.6}, {0, 0.8, 0.6}, {-0.8, 0, 0.6}};
    std::vector<const double*> coords, normals;
    std::vector<unsigned int> triangles;
    for (int side = 0; side < 4; ++side)
        for (const double* corner : {kBase[side], kBase[(side + 1) % 4], kApex}) {
            triangles.push_back(static_cast<unsigned int>(coords.size()));
            coords.push_back(corner);
            normals.push_back(kNormals[side]);
        }
    _NgMeshStr* faces = ngl_create_mesh(12, coords.data(), normals.data(), 1, 1, 1);
    ngl_add_connect(faces, 4, 3, triangles.data(), 1);
    const double* corners[] = {kBase[0], kBase[1], kBase[2], kBase[3], kApex};
    unsigned int sides[] = {0, 1, 4, 1, 2, 4, 2, 3, 4, 3, 0, 4};
    _NgMeshStr* outline = ngl_create_mesh(5, corners, nullptr, 1, 0, 1);
    ngl_add_connect(outline, 4, 3, sides, 1);

    glEnable(GL_DEPTH_TEST);
    glEnable(GL_COLOR_MATERIAL);
    glEnable(GL_LIGHT0);
    glEnable(GL_POLYGON_OFFSET_FILL); // faces step back, so that their edges are not cut by them
    glPolygonOffset(1, 1);
    ngl_set_color(10);
    ngl_mesh(faces, NglMeshFaces);
    ngl_set_color(48);
    ngl_mesh(outline, NglMeshEdges | NglMeshFlat);
    for (_NgMeshStr* mesh : {faces, outline}) {
        NglDestroyMesh(mesh);
        NHostFree(mesh);
    }
}

// 4. The host takes the picture. Returns how many pixels differ from the background.
int writePicture(const char* path) {
    std::vector<unsigned char> pixels(kSize * kSize * 3);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, kSize, kSize, GL_RGB, GL_UNSIGNED_BYTE, pixels.data());
    std::FILE* file = std::fopen(path, "wb");
    if (file == nullptr)
        return 0;
    std::fprintf(file, "P6\n%d %d\n255\n", kSize, kSize);
    int drawn = 0;
    for (int y = kSize - 1; y >= 0; --y)
        for (int x = 0; x < kSize; ++x) {
            const unsigned char* pixel = &pixels[(y * kSize + x) * 3];
            drawn += pixel[0] != 255 || pixel[1] != 255 || pixel[2] != 255;
            std::fwrite(pixel, 1, 3, file);
        }
    return std::fclose(file) == 0 ? drawn : 0;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s FILE.ppm\n", argv[0]);
        return 2;
    }
    if (!makeContext(kSize, kSize)) { // 1. The host owns the context.
        std::fprintf(stderr, "%s: no OpenGL context\n", argv[0]);
        return 2;
    }
    setView();
    glClearColor(1, 1, 1, 1);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    drawMesh();
    const int drawn = writePicture(argv[1]);
    std::printf("%s: %d pixels drawn\n", argv[1], drawn);
    return drawn > 0 ? 0 : 1;
}
