// What the hand-written programs share: small shaders, buffers, and the families of cases.
#pragma once

#include <epoxy/gl.h>

#include <cstddef>
#include <memory>
#include <vector>

#include "bench/harness/case.h"
#include "bench/harness/models.h"
#include "bench/harness/timing.h"
#include "bench/harness/window.h"

namespace nrubench {

std::vector<Case> meshCases();
std::vector<Case> bodyCases();
std::vector<Case> dotCases();
std::vector<Case> markerCases();
std::vector<Case> flatCases();

/// Compiles and links; attributes have the locations 0, 1, ... in the order of their names.
GLuint makeProgram(const char* vertex, const char* fragment, std::initializer_list<const char*> attributes);

template <class Element>
GLuint makeBuffer(GLenum target, const std::vector<Element>& content) {
    GLuint name = 0;
    glGenBuffers(1, &name);
    glBindBuffer(target, name);
    glBufferData(target, static_cast<GLsizeiptr>(content.size() * sizeof(Element)), content.data(),
                 GL_STATIC_DRAW);
    return name;
}

/// Points an attribute at a buffer, or with buffer 0 at client memory.
void setAttribute(GLuint location, GLuint buffer, GLint components, GLenum type, const void* data = nullptr);

/// A cylinder of diameter 1 from z = 0 to 1 with caps, or a sphere of diameter 1.
struct UnitShape {
    std::vector<float> positions, normals;
    std::vector<std::uint32_t> triangles;
};
UnitShape makeCylinder(unsigned slices);
UnitShape makeSphere(unsigned slices, unsigned stacks);

} // namespace nrubench
