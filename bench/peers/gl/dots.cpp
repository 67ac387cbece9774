// Points and segments that the host narrows and copies into client arrays in each frame.
#include "bench/peers/gl/gl.h"

namespace nrubench {

namespace {

constexpr const char* kVertex = R"(#version 120
attribute vec3 position;
attribute vec4 color;
varying vec4 v_color;
void main() {
    gl_Position = gl_ModelViewProjectionMatrix * vec4(position, 1.0);
    v_color = color;
}
)";
constexpr const char* kFragment = R"(#version 120
varying vec4 v_color;
void main() {
    gl_FragColor = v_color;
}
)";

struct Arrays {
    std::vector<float> positions;
    std::vector<std::uint32_t> colors;

    void fill(const Dots& dots, bool segments) {
        positions.resize(3 * dots.points.size());
        colors.resize(dots.points.size());
        for (std::size_t i = 0; i < dots.points.size(); ++i) {
            for (std::size_t k = 0; k < 3; ++k)
                positions[3 * i + k] = static_cast<float>(dots.points[i][k]);
            colors[i] = dots.colors[segments ? i / 2 : i];
        }
    }
};

std::function<Work(unsigned)> arrays(bool segments) {
    return [=](unsigned size) {
        openWindow();
        loadBox(kPixelView);
        makeProgram(kVertex, kFragment, {"position", "color"});
        glPointSize(kDotSize);
        const auto dots = std::make_shared<Dots>(size, segments);
        return Work{[=, arrays = std::make_shared<Arrays>()](unsigned) {
                        arrays->fill(*dots, segments);
                        setAttribute(0, 0, 3, GL_FLOAT, arrays->positions.data());
                        setAttribute(1, 0, 4, GL_UNSIGNED_BYTE, arrays->colors.data());
                        glDrawArrays(segments ? GL_LINES : GL_POINTS, 0,
                                     static_cast<GLsizei>(arrays->colors.size()));
                    },
                    true, 1e-3};
    };
}

} // namespace

std::vector<Case> dotCases() {
    const std::vector<unsigned> all = {1000, 10000, 100000, 1000000};
    const char* note = "one array for all, filled in a loop without a call for each";
    return {{"lines.batch", all, arrays(true), note}, {"points.batch", all, arrays(false), note}};
}

} // namespace nrubench
