// The GLSL program object: its life, how it is built, its use and its vertex attributes.
#include <algorithm>
#include <iterator>
#include <vector>

#include "NRenderUtl/host/hostgl.h"
#include "NRenderUtl/host/hostutl.h"
#include "NRenderUtl/shaders/gllabel.h"
#include "NRenderUtl/shaders/nshaders.h"
#include "NRenderUtl/shaders/shadernames.h"

namespace {

constexpr GLsizei kLogSize = 2048;

/// Whether the driver has stages of a type: the loader ends the process on a missing entry point, and a
/// driver complains of a type that it does not know.
bool hasStage(GLenum type) {
    if (!glContextIsCurrent() || glVersion() < 20)
        return false;
    return type != GL_GEOMETRY_SHADER || glVersion() >= 32 ||
           epoxy_has_gl_extension("GL_EXT_geometry_shader4") ||
           epoxy_has_gl_extension("GL_ARB_geometry_shader4");
}

/// Primitives of a geometry stage, for drivers that know it as an extension only. With core stages the
/// layouts of the sources say the same, and a driver may refuse the extension's parameters even if it lists
/// its name.
void setGeometryParameters(GLuint program, int inputKind) {
    struct Kind {
        int number;
        GLint input, output, verticesOut;
    };
    constexpr Kind kKinds[] = {{3, GL_TRIANGLES, GL_TRIANGLE_STRIP, 3},
                               {4, GL_LINES_ADJACENCY, GL_TRIANGLE_STRIP, 4},
                               {2, GL_LINES_ADJACENCY, GL_LINE_STRIP, 5}};
    const auto kind = std::find_if(std::begin(kKinds), std::end(kKinds),
                                   [=](const Kind& k) { return k.number == inputKind; });
    if (kind == std::end(kKinds) || glVersion() >= 32)
        return;
    glProgramParameteri(program, GL_GEOMETRY_INPUT_TYPE_EXT, kind->input);
    glProgramParameteri(program, GL_GEOMETRY_OUTPUT_TYPE_EXT, kind->output);
    glProgramParameteri(program, GL_GEOMETRY_VERTICES_OUT_EXT, kind->verticesOut);
}

void detachAndDelete(GLuint program, GLuint shader) {
    glDetachShader(program, shader);
    glDeleteShader(shader);
}

} // namespace

// --- life --------------------------------------------------------------------------------------------------

NShaderProgram::NShaderProgram() : m_program(0), m_attachedCount(0), m_attachedType(RenderShaderNone) {
    std::fill(std::begin(m_uniformLocations), std::end(m_uniformLocations), -1);
    std::fill(std::begin(m_attributeLocations), std::end(m_attributeLocations), -1);
}

NShaderProgram::NShaderProgram(const NShaderProgram&) = default;
NShaderProgram& NShaderProgram::operator=(const NShaderProgram&) = default;

NShaderProgram::~NShaderProgram() {
    DeleteProgram();
}

// Static programs are destroyed at the end of the process, with or without a context: the driver has then
// taken its objects back, or is about to. A copy may have deleted the program before.
void NShaderProgram::DeleteProgram() {
    if (m_program <= 0)
        return;
    const auto program = static_cast<GLuint>(m_program);
    if (glContextIsCurrent() && glIsProgram(program)) {
        std::vector<GLuint> shaders(static_cast<std::size_t>(m_attachedCount));
        GLsizei attached = 0;
        glGetAttachedShaders(program, m_attachedCount, &attached, shaders.data());
        for (GLsizei i = 0; i < attached; ++i)
            detachAndDelete(program, shaders[static_cast<std::size_t>(i)]);
        glDeleteProgram(program);
    }
    m_program = m_attachedCount = 0;
}

// --- queries -----------------------------------------------------------------------------------------------

bool NShaderProgram::IsProgramValid() const {
    return m_program > 0;
}

_RenderingShaderType NShaderProgram::GetShaderTypeAttached() const {
    return m_attachedType;
}

void NShaderProgram::SetShaderTypeAttached(_RenderingShaderType type) {
    m_attachedType = type;
}

int NShaderProgram::GetVertexAttributeLocation(const char* name) const {
    return m_program > 0 && name ? glGetAttribLocation(static_cast<GLuint>(m_program), name) : -1;
}

int NShaderProgram::GetVertexAttributeLocation(RenderingShaderAttributes attribute) const {
    return static_cast<unsigned>(attribute) < RenderAttribCount ? m_attributeLocations[attribute] : -1;
}

// --- building ----------------------------------------------------------------------------------------------

unsigned int NShaderProgram::CompileShader(unsigned int shaderType, int count, const char* const* sources) {
    const GLuint shader = hasStage(shaderType) ? glCreateShader(shaderType) : 0;
    if (shader == 0)
        return 0;
    glShaderSource(shader, count, sources, nullptr);
    glCompileShader(shader);
    return shader; // a shader that did not compile shows when it is linked
}

unsigned int NShaderProgram::CreateProgram(unsigned int vertexShader, unsigned int geometryShader,
                                           unsigned int fragmentShader) {
    const GLuint program = glCreateProgram();
    if (!glIsProgram(program))
        return 0;
    labelGlObject(GL_PROGRAM, program, "NRenderUtl program");
    m_attachedCount = 0;
    for (const GLuint shader : {vertexShader, geometryShader, fragmentShader})
        if (glIsShader(shader)) {
            glAttachShader(program, shader);
            ++m_attachedCount;
        }
    return program;
}

unsigned int NShaderProgram::LinkProgram(int& program) {
    if (program < 1)
        return 0;
    const auto name = static_cast<GLuint>(program);
    GLint linked = 0;
    glLinkProgram(name);
    glGetProgramiv(name, GL_LINK_STATUS, &linked);
    if (linked == 0) {
        glDeleteProgram(name);
        program = 0;
    }
    return static_cast<unsigned>(linked);
}

// Deliberate: a failure leaves the shaders made so far to the driver, and writes nothing.
bool NShaderProgram::CompileProgram(const char* vertexSource, int fragmentCount, const char** fragmentSources,
                                    int geometryCount, const char** geometrySources, int geometryInputKind) {
    const bool hasGeometry = geometryCount > 0;
    const GLuint vertex = CompileShader(GL_VERTEX_SHADER, 1, &vertexSource);
    if (vertex == 0)
        return false;
    const GLuint geometry =
        hasGeometry ? CompileShader(GL_GEOMETRY_SHADER, geometryCount, geometrySources) : 0;
    if (hasGeometry && geometry == 0)
        return false;
    const GLuint fragment = CompileShader(GL_FRAGMENT_SHADER, fragmentCount, fragmentSources);
    if (fragment == 0)
        return false;
    m_program = static_cast<std::int32_t>(CreateProgram(vertex, geometry, fragment));
    if (m_program == 0)
        return false;
    const auto program = static_cast<GLuint>(m_program);
    if (hasGeometry)
        setGeometryParameters(program, geometryInputKind);
    if (LinkProgram(m_program) == 0)
        return false;
    for (int i = 0; i < RenderAttribCount; ++i)
        m_attributeLocations[i] = glGetAttribLocation(program, kAttributeNames[i]);
    detachAndDelete(program, vertex);
    detachAndDelete(program, fragment);
    if (hasGeometry)
        detachAndDelete(program, geometry);
    return true;
}

void NShaderProgram::ValidateProgram() {
    if (m_program <= 0)
        return;
    const auto program = static_cast<GLuint>(m_program);
    GLint valid = 0;
    glValidateProgram(program);
    glGetProgramiv(program, GL_VALIDATE_STATUS, &valid);
    if (valid)
        return;
    char log[kLogSize] = {};
    glGetProgramInfoLog(program, kLogSize, nullptr, log);
    hostMessage(NHostMessageStatus, hostNarrow(hostWiden(log)).c_str());
}

// --- use and attributes ------------------------------------------------------------------------------------

void NShaderProgram::UseProgram(bool on) {
    glUseProgram(on ? static_cast<GLuint>(m_program) : 0);
}

void NShaderProgram::EnableDisableVertexAttribute(int index, bool enable) {
    if (index < 0)
        return;
    const auto attribute = static_cast<GLuint>(index);
    enable ? glEnableVertexAttribArray(attribute) : glDisableVertexAttribArray(attribute);
}

void NShaderProgram::SetVertexAttribute(int index, int components, const float* data) {
    if (index < 0)
        return;
    EnableDisableVertexAttribute(index, true);
    glVertexAttribPointer(static_cast<GLuint>(index), components, GL_FLOAT, GL_FALSE, 0, data);
}
