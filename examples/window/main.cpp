// A whole host with a window, which turns a contoured surface. The read-me shows it.
#include <GLFW/glfw3.h>
#include <NRenderUtl/NRenderUtl.h>

#include <cmath>
#include <vector>

int main() {
    glfwInit();
    GLFWwindow* window = glfwCreateWindow(800, 600, "A drum's second mode", nullptr, nullptr);
    glfwMakeContextCurrent(window); // the context is the host's
    NglInitGLExtensions();          // once: the library looks at the driver,
    InitRenderDefaults();
    RenderingInitShaders();          // decides how to draw
    SetRenderingContextActive(true); // and may keep data on the GPU

    std::vector<double> nodes; // 61 x 61 nodes and the quads between them
    std::vector<float> heights;
    std::vector<unsigned> quads;
    for (unsigned i = 0; i < 61 * 61; ++i) {
        const double x = i % 61 / 30.0 - 1, y = i / 61 / 30.0 - 1;
        heights.push_back(float(std::sin(M_PI * x) * std::cos(M_PI_2 * y)));
        nodes.insert(nodes.end(), {x, y, 0.4 * heights.back()});
        if (i % 61 < 60 && i < 60 * 61)
            quads.insert(quads.end(), {i, i + 1, i + 62, i + 61});
    }
    ngl::NglElementMesh mesh;
    mesh.Create({.nodeCount = 61 * 61, .nodes = nodes.data(), .quadCount = 3600, .quads = quads.data()});
    RenderColorScale scale; // ten bands from blue to red
    std::vector<RenderColorScale::ColorBand> bands;
    for (int i = 0; i < 10; ++i)
        bands.push_back(
            {i / 5.0f - 1, (i + 1) / 5.0f - 1, ngl_get_color_long_from_rgb(28 * i, 140, 252 - 28 * i)});
    scale.SetColorBands(bands);
    mesh.SetColorScale(&scale);
    mesh.SetNodeValues(heights.data());

    const float place[] = {-2e4f, 4e4f, 1e5f, 1}, ambient[] = {0.29f, 0.29f, 0.29f, 1}; // far beside the eye
    glLightfv(GL_LIGHT0, GL_POSITION, place);
    glLightfv(GL_LIGHT0, GL_AMBIENT, ambient);
    for (const GLenum feature : {GL_LIGHT0, GL_COLOR_MATERIAL, GL_DEPTH_TEST})
        glEnable(feature);
    glClearColor(1, 1, 1, 1);
    while (!glfwWindowShouldClose(window)) { // a frame: the host sets its view up, and the library reads it
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        glOrtho(-2, 2, -1.5, 1.5, -4, 4);
        glMatrixMode(GL_MODELVIEW);
        glLoadIdentity();
        glRotated(-60, 1, 0, 0);
        glRotated(20 * glfwGetTime(), 0, 0, 1);
        NglUpdateNglInfo();
        mesh.Draw();
        glfwSwapBuffers(window);
        glfwPollEvents();
    }
    mesh.Clear(); // before the context goes
    RenderGLCleanupBuffers();
}
