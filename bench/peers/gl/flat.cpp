// What lies flat on the picture: shapes, boxes, pictures, symbols. State is set once for all of a frame, and
// each has a draw of its own, as they come one by one.
#include "bench/peers/gl/gl.h"

#include <cmath>
#include <numbers>

namespace nrubench {

namespace {

/// Without depth test, in units of pixels.
void openFlat() {
    openWindow();
    loadBox(kPixelView);
    glDisable(GL_DEPTH_TEST);
}

void setColor(std::uint32_t color) {
    glColor4ubv(reinterpret_cast<const GLubyte*>(&color));
}

template <class Draw>
std::function<Work(unsigned)> each(const Draw& draw, double covered) {
    return [=](unsigned size) {
        openFlat();
        return Work{[=](unsigned) {
                        for (unsigned i = 0; i < size; ++i) {
                            const Label label(i);
                            setColor(label.color | 0xFF000000);
                            draw(label);
                        }
                    },
                    true, covered};
    };
}

// --- shapes ------------------------------------------------------------------------------------------------

void drawLine(const Label& label) {
    glBegin(GL_LINES);
    glVertex2i(label.x, label.y);
    glVertex2i(label.x + Label::kLabelWidth, label.y + Label::kLabelHeight);
    glEnd();
}

void drawRectangle(const Label& label) {
    glBegin(GL_QUADS);
    glVertex2i(label.x, label.y);
    glVertex2i(label.x + Label::kLabelWidth, label.y);
    glVertex2i(label.x + Label::kLabelWidth, label.y + Label::kLabelHeight);
    glVertex2i(label.x, label.y + Label::kLabelHeight);
    glEnd();
}

/// A step for each degree, as the library's circles have.
std::vector<float> makeCircle(double radius) {
    std::vector<float> points;
    for (int i = 0; i < 360; ++i)
        for (const double value :
             {std::cos(i * std::numbers::pi / 180), std::sin(i * std::numbers::pi / 180)})
            points.push_back(static_cast<float>(radius * value));
    return points;
}

Work circles(unsigned size) {
    openFlat();
    glEnableClientState(GL_VERTEX_ARRAY);
    return {[=, circle = makeCircle(10)](unsigned) {
                glVertexPointer(2, GL_FLOAT, 0, circle.data());
                for (unsigned i = 0; i < size; ++i) {
                    const Label label(i);
                    setColor(label.color | 0xFF000000);
                    glLoadIdentity();
                    glTranslatef(static_cast<float>(label.x), static_cast<float>(label.y), 0);
                    glDrawArrays(GL_POLYGON, 0, 360);
                }
            },
            true, 0.1};
}

// --- boxes -------------------------------------------------------------------------------------------------

constexpr const char* kBoxVertex = R"(#version 120
attribute vec2 position;
varying vec2 v_at;
uniform vec4 place;
void main() {
    v_at = (position - 0.5) * place.zw;
    gl_Position = gl_ModelViewProjectionMatrix * vec4(place.xy + position * place.zw, 0.0, 1.0);
}
)";
constexpr const char* kBoxFragment = R"(#version 120
varying vec2 v_at;
uniform vec4 place, fill;
void main() {
    vec2 d = abs(v_at) - 0.5 * place.zw + 6.0;
    float outside = length(max(d, 0.0)) + min(max(d.x, d.y), 0.0) - 6.0;
    vec4 color = outside > -2.0 ? vec4(1.0, 0.0, 0.0, 1.0) : fill;
    gl_FragColor = vec4(color.rgb, color.a * clamp(0.5 - outside, 0.0, 1.0));
}
)";

void blend() {
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
}

Work plainBoxes(unsigned size) {
    openFlat();
    blend();
    return {[=](unsigned) {
                for (unsigned i = 0; i < size; ++i) {
                    const Label label(i);
                    setColor(label.color);
                    drawRectangle(label);
                }
            },
            true, 0.3};
}

Work roundedBoxes(unsigned size) {
    openFlat();
    blend();
    const GLuint program = makeProgram(kBoxVertex, kBoxFragment, {"position"});
    setAttribute(0, makeBuffer(GL_ARRAY_BUFFER, std::vector<float>{0, 0, 1, 0, 1, 1, 0, 1}), 2, GL_FLOAT);
    const GLint place = glGetUniformLocation(program, "place"), fill = glGetUniformLocation(program, "fill");
    return {[=](unsigned) {
                for (unsigned i = 0; i < size; ++i) {
                    const Label label(i);
                    glUniform4f(place, static_cast<float>(label.x), static_cast<float>(label.y),
                                Label::kLabelWidth, Label::kLabelHeight);
                    const auto channel = [&](unsigned shift) {
                        return static_cast<float>(label.color >> shift & 0xFF) / 255;
                    };
                    glUniform4f(fill, channel(0), channel(8), channel(16), channel(24));
                    glDrawArrays(GL_QUADS, 0, 4);
                }
            },
            true, 0.3};
}

// --- pictures ----------------------------------------------------------------------------------------------

std::vector<GLuint> makePictures() {
    std::vector<GLuint> names(kPictureKinds);
    glGenTextures(kPictureKinds, names.data());
    for (int kind = 0; kind < kPictureKinds; ++kind) {
        glBindTexture(GL_TEXTURE_2D, names[static_cast<std::size_t>(kind)]);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, kPictureSize, kPictureSize, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                     picturePixels(kind).data());
    }
    return names;
}

constexpr const char* kPictureVertex = R"(#version 120
varying vec2 v_at;
void main() {
    v_at = gl_MultiTexCoord0.xy;
    gl_Position = gl_ModelViewProjectionMatrix * gl_Vertex;
}
)";
/// Rounded by 6 pixels with a border of 3, or a disc with or without one.
constexpr const char* kPictureFragment = R"(#version 120
varying vec2 v_at;
uniform sampler2D picture;
uniform float radius, border;
void main() {
    vec2 d = abs(v_at - 0.5) * 24.0 - 12.0 + radius;
    float outside = length(max(d, 0.0)) + min(max(d.x, d.y), 0.0) - radius;
    vec4 color = outside > -border ? vec4(1.0, 1.0, 0.0, 1.0) : texture2D(picture, v_at);
    gl_FragColor = vec4(color.rgb, color.a * clamp(0.5 - outside, 0.0, 1.0));
}
)";

void drawPicture(int x, int y) {
    glBegin(GL_QUADS);
    for (const auto& [s, t] : {std::pair{0, 0}, {1, 0}, {1, 1}, {0, 1}}) {
        glTexCoord2i(s, t);
        glVertex2i(x + s * kPictureSize, y + t * kPictureSize);
    }
    glEnd();
}

/// A radius of 0 is plain.
std::function<Work(unsigned)> pictures(float radius, float border) {
    return [=](unsigned size) {
        openFlat();
        blend();
        if (radius > 0) {
            const GLuint program = makeProgram(kPictureVertex, kPictureFragment, {});
            glUniform1f(glGetUniformLocation(program, "radius"), radius);
            glUniform1f(glGetUniformLocation(program, "border"), border);
        } else {
            glEnable(GL_TEXTURE_2D);
        }
        return Work{[=, names = makePictures()](unsigned) {
                        for (unsigned i = 0; i < size; ++i) {
                            const auto [x, y] = picturePlace(static_cast<int>(i));
                            glBindTexture(GL_TEXTURE_2D, names[i % kPictureKinds]);
                            drawPicture(x, y);
                        }
                    },
                    true, 0.3};
    };
}

// --- symbols -----------------------------------------------------------------------------------------------

/// Springs whose leads fit between two points.
void drawSpring(unsigned i) {
    const double x = 10 + i % 20 * 50.0, y = 10 + i / 20 % 50 * 15.0, rise = i % 7 - 3.0;
    const double length = std::hypot(30, rise), lead = (length - 16) / 2, c = 30 / length, s = rise / length;
    glBegin(GL_LINE_STRIP);
    const auto point = [&](double along, double across) {
        glVertex2d(x + c * along - s * across, y + s * along + c * across);
    };
    point(0, 0);
    for (const auto& [along, across] : {std::pair{0, 0}, {3, 4}, {8, -4}, {13, 4}, {16, 0}})
        point(lead + along, across);
    point(length, 0);
    glEnd();
}

Work springs(unsigned size) {
    openFlat();
    return {[=](unsigned) {
                setColor(0xFFFFFFFF);
                for (unsigned i = 0; i < size; ++i)
                    drawSpring(i);
            },
            true, 0.01};
}

} // namespace

std::vector<Case> flatCases() {
    const char* note = "state is set once for all";
    const std::vector<unsigned> turns = {1000, 10000};
    return {{"symbols.draw", turns, springs, "one symbol, fitted by hand in a known parallel view"},
            {"overlay.lines", turns, each(drawLine, 0.01), note},
            {"overlay.polygons", {1000}, each(drawRectangle, 0.3), note},
            {"overlay.circles", {1000}, circles, "state is set once for all, the circle computed once"},
            {"boxes.plain", turns, plainBoxes, note},
            {"boxes.rounded", {1000}, roundedBoxes, "state is set once for all, one radius for all corners"},
            {"textures.rectangles", turns, pictures(0, 0), note},
            {"textures.rounded", {1000}, pictures(6, 3), note},
            {"textures.circles", {1000}, pictures(12, 0), "state is set once for all; a quad cut round"},
            {"textures.bordered_circles",
             {1000},
             pictures(12, 3),
             "state is set once for all; a quad cut round"}};
}

} // namespace nrubench
