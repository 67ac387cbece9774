// Generic vertex attributes beside those of the host's.
#pragma once

#include "NRenderUtl/host/hostgl.h"

/// A value for each vertex, as an attribute has it before a host draws instances from it. A negative location
/// does nothing.
inline void advanceByVertex(int location) {
    if (location >= 0 && glVersion() >= 33)
        glVertexAttribDivisor(static_cast<GLuint>(location), 0);
}

/// What the host has set of one attribute of the vertex array object that is bound.
class SavedAttribute {
public:
    explicit SavedAttribute(int location) : m_location(static_cast<GLuint>(location)) {
        for (std::size_t i = 0; i < std::size(kNames); ++i)
            glGetVertexAttribiv(m_location, kNames[i], &m_values[i]);
        if (glVersion() >= 33)
            glGetVertexAttribiv(m_location, GL_VERTEX_ATTRIB_ARRAY_DIVISOR, &m_divisor);
        glGetVertexAttribPointerv(m_location, GL_VERTEX_ATTRIB_ARRAY_POINTER, &m_pointer);
    }
    /// Changes the array buffer that is bound. Nothing happens where the host's has been deleted.
    void restore() const {
        const auto& [enabled, size, stride, type, normalized, buffer] = m_values;
        if (buffer != 0 && !glIsBuffer(static_cast<GLuint>(buffer)))
            return;
        glBindBuffer(GL_ARRAY_BUFFER, static_cast<GLuint>(buffer));
        glVertexAttribPointer(m_location, size, static_cast<GLenum>(type), static_cast<GLboolean>(normalized),
                              stride, m_pointer);
        if (glVersion() >= 33)
            glVertexAttribDivisor(m_location, static_cast<GLuint>(m_divisor));
        enabled ? glEnableVertexAttribArray(m_location) : glDisableVertexAttribArray(m_location);
    }

private:
    static constexpr GLenum kNames[] = {
        GL_VERTEX_ATTRIB_ARRAY_ENABLED,    GL_VERTEX_ATTRIB_ARRAY_SIZE,
        GL_VERTEX_ATTRIB_ARRAY_STRIDE,     GL_VERTEX_ATTRIB_ARRAY_TYPE,
        GL_VERTEX_ATTRIB_ARRAY_NORMALIZED, GL_VERTEX_ATTRIB_ARRAY_BUFFER_BINDING};
    GLuint m_location;
    GLint m_values[6] = {};
    GLint m_divisor = 0;
    void* m_pointer = nullptr;
};
