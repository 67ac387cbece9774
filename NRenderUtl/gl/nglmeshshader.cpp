// Flat shading of what the host draws, face by face in a geometry stage.
#include "NRenderUtl/gl/nglmeshshader.h"

#include <string>

#include "NRenderUtl/gl/meshshadersources.h"
#include "NRenderUtl/gl/ngl.h"
#include "NRenderUtl/host/hostgl.h"
#include "NRenderUtl/host/hostutl.h"

namespace {

constexpr GLsizei kLogSize = 1024, kShortLogSize = 256;

/// A kind of face, numbered as GL numbers the primitive that it is sent as.
struct FaceKind {
    const char* geometryMain;
    GLint primitive;
    GLint vertices;
    GLuint program = 0; ///< 0 until built; of the process, never deleted
};

struct MeshShaderState {
    FaceKind triangles{kFaceShadeTriangleGeometryMain, GL_TRIANGLES, 3};
    FaceKind quads{kFaceShadeQuadGeometryMain, GL_LINES_ADJACENCY, 4};
};

FaceKind* faceKind(int primitive) {
    static MeshShaderState state;
    for (FaceKind* kind : {&state.triangles, &state.quads})
        if (kind->primitive == primitive)
            return kind;
    return nullptr;
}

// --- what the driver speaks --------------------------------------------------------------------------------

/// How the sources of the stages begin. Drivers with geometry stages as an extension take their primitives as
/// parameters of the program, those of the core find them in the sources.
struct Dialect {
    const char *vertex, *geometry, *fragment;
    bool hasParameters;
};

const Dialect& dialect() {
    static constexpr Dialect kExtension{"", "#version 120\n#extension GL_EXT_geometry_shader4 : enable\n", "",
                                        true};
    static constexpr const char* kVersion = "#version 150 compatibility\n";
    static constexpr Dialect kCore{kVersion, kVersion, kVersion, false};
    return epoxy_has_gl_extension("GL_EXT_geometry_shader4") ? kExtension : kCore;
}

void setGeometryParameters(const FaceKind& kind) {
    glProgramParameteri(kind.program, GL_GEOMETRY_INPUT_TYPE_EXT, kind.primitive);
    glProgramParameteri(kind.program, GL_GEOMETRY_VERTICES_OUT_EXT, kind.vertices);
    glProgramParameteri(kind.program, GL_GEOMETRY_OUTPUT_TYPE_EXT, GL_TRIANGLE_STRIP);
}

// --- building ----------------------------------------------------------------------------------------------

void tell(const char* what, const char* log) {
    hostMessage(NHostMessageNote, hostFormat("%s%s", what, hostNarrow(hostWiden(log)).c_str()).c_str());
}

GLuint makeShader(GLenum stage, const char* source) {
    const GLuint shader = glCreateShader(stage);
    glShaderSource(shader, 1, &source, nullptr);
    return shader;
}

bool compile(GLuint shader, const char* complaint) {
    GLint compiled = 0;
    glCompileShader(shader);
    glGetShaderiv(shader, GL_COMPILE_STATUS, &compiled);
    if (compiled)
        return true;
    char log[kLogSize] = {};
    glGetShaderInfoLog(shader, kLogSize, nullptr, log);
    tell(complaint, log);
    return false;
}

/// Deletes a program that does not link.
bool link(GLuint program, GLsizei logSize) {
    GLint linked = 0;
    glLinkProgram(program);
    glGetProgramiv(program, GL_LINK_STATUS, &linked);
    if (linked)
        return true;
    char log[kLogSize] = {};
    glGetProgramInfoLog(program, logSize, nullptr, log);
    tell("Failed to link program:\n", (std::string(log) + "\n").c_str());
    glDeleteProgram(program);
    return false;
}

GLuint buildFaces(const FaceKind& kind) {
    const Dialect& begin = dialect();
    const std::string vertex = std::string(begin.vertex) + kMeshShadeVertexMain;
    const std::string geometry = std::string(begin.geometry) + kind.geometryMain + kFaceShadeLibrary;
    const std::string fragment = std::string(begin.fragment) + kMeshShadeFragmentMain;
    return buildMeshShader(vertex.c_str(), geometry.c_str(), fragment.c_str());
}

bool linkFaces(const FaceKind& kind) {
    if (dialect().hasParameters)
        setGeometryParameters(kind);
    return link(kind.program, kLogSize);
}

// --- use ---------------------------------------------------------------------------------------------------

bool isSupported() {
    return GLeeEnabled(GLeeGeometryStageExt) && GLeeEnabled(GLeeVertexShader) &&
           GLeeEnabled(GLeeFragmentShader);
}

void use(GLuint program) {
    glUseProgram(program);
    glUniform1i(glGetUniformLocation(program, "numLights"), 1);
    const bool blends = glIsEnabled(GL_BLEND);
    if (blends) {
        const unsigned alpha = static_cast<unsigned>(ngl_get_blending_value()) >> 24;
        glUniform1f(glGetUniformLocation(program, "alphaValue"), static_cast<GLfloat>(alpha / 255.0));
    }
    glUniform1i(glGetUniformLocation(program, "bTransparent"), blends);
}

} // namespace

// Deliberate: shaders are never deleted, nor detached from their program; a failure leaves them too.
unsigned int buildMeshShader(const char* vertexSource, const char* geometrySource,
                             const char* fragmentSource) {
    const GLuint vertex = makeShader(GL_VERTEX_SHADER, vertexSource);
    const GLuint fragment = makeShader(GL_FRAGMENT_SHADER, fragmentSource);
    GLuint geometry = 0;
    if (!compile(vertex, "Compile Error: Vertex Shader: "))
        return 0;
    if (geometrySource) {
        geometry = makeShader(GL_GEOMETRY_SHADER, geometrySource);
        if (!compile(geometry, "Compile Error: Geom Shader: "))
            return 0;
    }
    if (!compile(fragment, "Compile Error: Fragment Shader: "))
        return 0;
    const GLuint program = glCreateProgram();
    glAttachShader(program, vertex);
    if (geometrySource)
        glAttachShader(program, geometry);
    glAttachShader(program, fragment);
    return geometrySource || link(program, kShortLogSize) ? program : 0;
}

int NglInitMeshRenderShader(int kind) {
    if (!isSupported()) {
        hostMessage(NHostMessageNote, "Optimized Rendering not supported!");
        return -1;
    }
    FaceKind* faces = faceKind(kind);
    if (!faces)
        return -1;
    if (faces->program == 0) {
        faces->program = buildFaces(*faces);
        if (faces->program == 0)
            return -1;
        if (!linkFaces(*faces)) {
            glUseProgram(0);
            return -1;
        }
    }
    // Deliberate: a program that did not link keeps its name, so that it is not built again for every frame.
    // GL would take the name for an error.
    if (glIsProgram(faces->program))
        use(faces->program);
    return 0;
}

int NglEndMeshRenderShader() {
    if (glContextIsCurrent() && glVersion() >= 20)
        glUseProgram(0);
    return 0;
}
