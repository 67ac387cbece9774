#include "NRenderUtl/markers/markerinstances.h"

#include <cstddef>
#include <cstdint>

#include "NRenderUtl/gl/stateguards.h"
#include "NRenderUtl/host/hostgl.h"

namespace {

struct Instance {
    Matrix4 matrix;
    MarkerLook look;
};

struct InstancePart {
    const char* name;
    int components;
    std::size_t offset;
};

constexpr InstancePart kParts[] = {
    {"g_colorwithalpha", 4, offsetof(Instance, look) + offsetof(MarkerLook, rgba)},
    {"g_texcoord1", 1, offsetof(Instance, look) + offsetof(MarkerLook, value1)},
    {"g_texcoord2", 1, offsetof(Instance, look) + offsetof(MarkerLook, value2)},
    {"g_values", 1, offsetof(Instance, look) + offsetof(MarkerLook, showsValues)},
};

GLuint instanceBuffer() {
    static const GLuint made = [] {
        GLuint name;
        glGenBuffers(1, &name);
        return name;
    }();
    return made;
}

/// The generic arrays of a draw, off again at the end of the block.
class InstanceArrays {
public:
    explicit InstanceArrays(const NShaderProgram& program) : m_program(program) {}
    ~InstanceArrays() {
        for (const GLuint location : m_enabled) {
            setDivisor(location, 0);
            glDisableVertexAttribArray(location);
        }
    }
    InstanceArrays(const InstanceArrays&) = delete;
    InstanceArrays& operator=(const InstanceArrays&) = delete;

    void set(const char* name, int column, int components, int size, const void* data, GLuint divisor) {
        const int location = m_program.GetVertexAttributeLocation(name);
        if (location < 0)
            return;
        const auto attribute = static_cast<GLuint>(location + column);
        glEnableVertexAttribArray(attribute);
        glVertexAttribPointer(attribute, components, GL_FLOAT, GL_FALSE, size, data);
        setDivisor(attribute, divisor);
        m_enabled.push_back(attribute);
    }

private:
    static void setDivisor(GLuint attribute, GLuint divisor) {
        glVersion() >= 33 ? glVertexAttribDivisor(attribute, divisor)
                          : glVertexAttribDivisorARB(attribute, divisor);
    }
    const NShaderProgram& m_program;
    std::vector<GLuint> m_enabled;
};

std::vector<Instance> placeAll(const MarkerShape& shape, const MarkerArray& markers) {
    std::vector<Instance> instances;
    instances.reserve(markers.count);
    Matrix4 matrix;
    for (std::size_t i = 0; i < markers.count; ++i)
        if (shape.place(markers, i, matrix))
            instances.push_back({matrix, markers.look(i)});
    return instances;
}

const void* offsetOf(std::size_t bytes) {
    return reinterpret_cast<const void*>(bytes);
}

} // namespace

bool canDrawInstances() {
    return glVersion() >= 33 || (glVersion() >= 31 && epoxy_has_gl_extension("GL_ARB_instanced_arrays"));
}

void drawMarkerInstances(const NShaderProgram& program, const MarkerBuffers& buffers,
                         const MarkerShape& shape, const MarkerArray& markers) {
    const std::vector<Instance> instances = placeAll(shape, markers);
    const ClientArraysGuard hostArrays;
    InstanceArrays arrays(program);
    glBindBuffer(GL_ARRAY_BUFFER, buffers.vertices);
    arrays.set("g_pos_attrib", 0, 3, 0, buffers.vertices ? nullptr : buffers.clientVertices, 0);
    glBindBuffer(GL_ARRAY_BUFFER, instanceBuffer());
    glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(instances.size() * sizeof(Instance)),
                 instances.data(), GL_STREAM_DRAW);
    for (int column = 0; column < 4; ++column)
        arrays.set("g_transmat", column, 4, sizeof(Instance),
                   offsetOf(offsetof(Instance, matrix) + 16 * static_cast<std::size_t>(column)), 1);
    for (const InstancePart& part : kParts)
        arrays.set(part.name, 0, part.components, sizeof(Instance), offsetOf(part.offset), 1);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, buffers.indices);
    glDrawElementsInstanced(GL_TRIANGLES, buffers.indexCount, GL_UNSIGNED_INT,
                            buffers.indices ? nullptr : buffers.clientIndices,
                            static_cast<GLsizei>(instances.size()));
}
