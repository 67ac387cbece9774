#include "bench/peers/gl/gl.h"

#include <cmath>
#include <numbers>

namespace nrubench {

namespace {

GLuint compile(GLenum kind, const char* source) {
    const GLuint shader = glCreateShader(kind);
    glShaderSource(shader, 1, &source, nullptr);
    glCompileShader(shader);
    GLint done = 0;
    glGetShaderiv(shader, GL_COMPILE_STATUS, &done);
    check(done == GL_TRUE, source);
    return shader;
}

/// A ring of normals and points at a height, its first point again at its end.
void addRing(UnitShape& shape, unsigned slices, double radius, double z, double outward, double upward) {
    for (unsigned i = 0; i <= slices; ++i) {
        const double angle = 2 * std::numbers::pi * i / slices, x = std::cos(angle), y = std::sin(angle);
        for (const double value : {radius * x, radius * y, z})
            shape.positions.push_back(static_cast<float>(value));
        for (const double value : {outward * x, outward * y, upward})
            shape.normals.push_back(static_cast<float>(value));
    }
}

void joinRings(UnitShape& shape, unsigned slices, unsigned lower, unsigned upper) {
    for (unsigned i = 0; i < slices; ++i) {
        const unsigned a = lower + i, b = a + 1, c = upper + i, d = c + 1;
        shape.triangles.insert(shape.triangles.end(), {a, b, d, a, d, c});
    }
}

} // namespace

GLuint makeProgram(const char* vertex, const char* fragment, std::initializer_list<const char*> attributes) {
    const GLuint program = glCreateProgram();
    glAttachShader(program, compile(GL_VERTEX_SHADER, vertex));
    glAttachShader(program, compile(GL_FRAGMENT_SHADER, fragment));
    GLuint location = 0;
    for (const char* name : attributes)
        glBindAttribLocation(program, location++, name);
    glLinkProgram(program);
    GLint linked = 0;
    glGetProgramiv(program, GL_LINK_STATUS, &linked);
    check(linked == GL_TRUE, "a program does not link");
    glUseProgram(program);
    return program;
}

void setAttribute(GLuint location, GLuint buffer, GLint components, GLenum type, const void* data) {
    glBindBuffer(GL_ARRAY_BUFFER, buffer);
    glEnableVertexAttribArray(location);
    glVertexAttribPointer(location, components, type, type == GL_UNSIGNED_BYTE, 0, data);
}

UnitShape makeCylinder(unsigned slices) {
    UnitShape shape;
    const unsigned ring = slices + 1;
    addRing(shape, slices, 0.5, 0, 1, 0);
    addRing(shape, slices, 0.5, 1, 1, 0);
    joinRings(shape, slices, 0, ring);
    for (const double z : {0.0, 1.0}) {
        const auto first = static_cast<unsigned>(shape.positions.size() / 3);
        addRing(shape, slices, 0, z, 0, 2 * z - 1);
        addRing(shape, slices, 0.5, z, 0, 2 * z - 1);
        for (unsigned i = 0; i < slices; ++i)
            shape.triangles.insert(shape.triangles.end(), {first, first + ring + i, first + ring + i + 1});
    }
    return shape;
}

UnitShape makeSphere(unsigned slices, unsigned stacks) {
    UnitShape shape;
    for (unsigned j = 0; j <= stacks; ++j) {
        const double angle = std::numbers::pi * j / stacks, r = std::sin(angle), z = -std::cos(angle);
        addRing(shape, slices, 0.5 * r, 0.5 * z, r, z);
        if (j > 0)
            joinRings(shape, slices, (j - 1) * (slices + 1), j * (slices + 1));
    }
    return shape;
}

} // namespace nrubench
