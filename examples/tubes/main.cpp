// A host that draws a pipe with bends by GLE's functions, which it finds in the library, and writes the
// picture. Usage: tubes FILE.png
#include <NRenderUtl/NRenderUtl.h>

#include <GL/gl.h>
#include <GL/gle.h> // for the join styles
#include <png.h>

#include <cstdio>
#include <cstring>
#include <vector>

#include "../common/context.h"

namespace {

constexpr int kWidth = 960, kHeight = 720;

// A camera above and to the left, a lamp over its shoulder, and a material with a highlight.
void setScene() {
    glViewport(0, 0, kWidth, kHeight);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glFrustum(-0.4, 0.4, -0.3, 0.3, 1, 30);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    const float lamp[] = {-0.3f, 0.6f, 1, 0}, dim[] = {0.35f, 0.35f, 0.35f, 1};
    glLightfv(GL_LIGHT0, GL_POSITION, lamp);
    glLightModelfv(GL_LIGHT_MODEL_AMBIENT, dim);
    glMaterialfv(GL_FRONT, GL_SPECULAR, dim);
    glMaterialf(GL_FRONT, GL_SHININESS, 30);
    glTranslated(0.4, 0, -11);
    glRotated(-65, 1, 0, 0);
    glRotated(-30, 0, 0, 1);
    for (const GLenum state : {GL_DEPTH_TEST, GL_LIGHTING, GL_LIGHT0, GL_COLOR_MATERIAL})
        glEnable(state);
    NglUpdateNglInfo();
}

// A pipe that cools from one end to the other. The first and the last point only say how its ends are cut.
void drawPipe() {
    double path[][3] = {{-5, -1, -1.5},    {-3.6, -1, -1.5}, {-1.6, -1, -1.5}, {-1.6, -1, 1.5},
                        {-1.6, 1.5, 1.5},  {0.6, 1.5, 1.5},  {0.6, 1.5, -0.6}, {0.6, -1.5, -0.6},
                        {2.6, -1.5, -0.6}, {2.6, -1.5, 1.5}, {2.6, -1.5, 3}};
    constexpr int kPoints = std::size(path);
    float colors[kPoints][3];
    for (int i = 0; i < kPoints; ++i) {
        const float cold = i / (kPoints - 1.0f);
        colors[i][0] = 0.9f - 0.7f * cold;
        colors[i][1] = 0.35f + 0.2f * cold;
        colors[i][2] = 0.15f + 0.75f * cold;
    }
    gleSetJoinStyle(TUBE_JN_ROUND | TUBE_JN_CAP | TUBE_NORM_EDGE);
    glePolyCylinder(kPoints, path, colors, 0.45);
}

bool writePicture(const char* path) {
    std::vector<unsigned char> pixels(kWidth * kHeight * 3);
    glReadPixels(0, 0, kWidth, kHeight, GL_RGB, GL_UNSIGNED_BYTE, pixels.data());
    png_image image;
    std::memset(&image, 0, sizeof image);
    image.version = PNG_IMAGE_VERSION;
    image.width = kWidth;
    image.height = kHeight;
    image.format = PNG_FORMAT_RGB;
    // A negative stride: OpenGL's rows come from the bottom up.
    return png_image_write_to_file(&image, path, 0, pixels.data(), -kWidth * 3, nullptr) != 0;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s FILE.png\n", argv[0]);
        return 2;
    }
    if (!makeContext(kWidth, kHeight, 4) && !makeContext(kWidth, kHeight)) {
        std::fprintf(stderr, "%s: no OpenGL context\n", argv[0]);
        return 2;
    }
    NglInitGLExtensions();
    setScene();
    glClearColor(1, 1, 1, 1);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    drawPipe();
    if (gleGetJoinStyle() == 0)
        return 1; // no GLE, as the library has said by now
    return writePicture(argv[1]) ? 0 : 1;
}
