#include "NRenderUtl/markers/markerstream.h"

#include "NRenderUtl/host/hostgl.h"
#include "NRenderUtl/shaders/vertexattribute.h"

namespace {

struct Buffers {
    GLuint vertices, indices;
};

/// Made once and given back with the context, as the shapes' own.
const Buffers& buffers() {
    static const Buffers made = [] {
        GLuint names[2];
        glGenBuffers(2, names);
        return Buffers{names[0], names[1]};
    }();
    return made;
}

} // namespace

MarkerStream::MarkerStream(const NShaderProgram& program, std::size_t vertexSize,
                           std::span<const VertexPart> parts)
    : m_vertexSize(vertexSize) {
    glBindBuffer(GL_ARRAY_BUFFER, buffers().vertices);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, buffers().indices);
    for (const VertexPart& part : parts) {
        const int location = program.GetVertexAttributeLocation(part.name);
        if (location < 0)
            continue;
        const auto attribute = static_cast<GLuint>(location);
        glEnableVertexAttribArray(attribute);
        glVertexAttribPointer(attribute, part.components, GL_FLOAT, GL_FALSE,
                              static_cast<GLsizei>(vertexSize), reinterpret_cast<const void*>(part.offset));
        advanceByVertex(location);
        m_enabled |= 1u << attribute;
    }
}

MarkerStream::~MarkerStream() {
    for (GLuint attribute = 0; attribute < 32; ++attribute)
        if (m_enabled >> attribute & 1)
            glDisableVertexAttribArray(attribute);
}

void MarkerStream::drawPoints(const void* vertices, std::size_t count) {
    if (count == 0)
        return;
    glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(count * m_vertexSize), vertices, GL_STREAM_DRAW);
    glDrawArrays(GL_POINTS, 0, static_cast<GLsizei>(count));
}

void MarkerStream::drawTriangles(const void* vertices, std::size_t count,
                                 std::span<const std::uint16_t> indices) {
    if (indices.empty())
        return;
    glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(count * m_vertexSize), vertices, GL_STREAM_DRAW);
    glBufferData(GL_ELEMENT_ARRAY_BUFFER, static_cast<GLsizeiptr>(indices.size_bytes()), indices.data(),
                 GL_STREAM_DRAW);
    glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(indices.size()), GL_UNSIGNED_SHORT, nullptr);
}
