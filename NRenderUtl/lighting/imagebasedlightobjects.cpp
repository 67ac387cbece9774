// GL objects of image-based lighting: the maps, the capture framebuffer, what is drawn into them, and their
// end.
#include <initializer_list>

#include "NRenderUtl/lighting/imagebasedlight.h"
#include "NRenderUtl/shaders/gllabel.h"

namespace {

// --- textures ----------------------------------------------------------------------------------------------

void setParameters(GLenum target, GLint minification) {
    glTexParameteri(target, GL_TEXTURE_MIN_FILTER, minification);
    glTexParameteri(target, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    for (const GLenum axis : {GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T, GL_TEXTURE_WRAP_R})
        glTexParameteri(target, axis, GL_CLAMP_TO_EDGE);
}

/// The programs that sample the cube need not switch the filtering across edges on, where the driver can keep
/// that with the texture.
void filterAcrossEdges() {
    if (epoxy_has_gl_extension("GL_ARB_seamless_cubemap_per_texture") ||
        epoxy_has_gl_extension("GL_AMD_seamless_cubemap_per_texture"))
        glTexParameteri(GL_TEXTURE_CUBE_MAP, GL_TEXTURE_CUBE_MAP_SEAMLESS, GL_TRUE);
}

/// A cube map with storage in every level, bound. Only one of several levels is minified between them.
GLuint makeCube(int size, int levels, const char* label) {
    GLuint cube = 0;
    glGenTextures(1, &cube);
    glBindTexture(GL_TEXTURE_CUBE_MAP, cube);
    for (int level = 0; level < levels; ++level)
        for (GLenum face = 0; face < kCubeFaces; ++face)
            glTexImage2D(GL_TEXTURE_CUBE_MAP_POSITIVE_X + face, level, GL_RGB16F, size >> level,
                         size >> level, 0, GL_RGB, GL_FLOAT, nullptr);
    setParameters(GL_TEXTURE_CUBE_MAP, levels > 1 ? GL_LINEAR_MIPMAP_LINEAR : GL_LINEAR);
    glTexParameteri(GL_TEXTURE_CUBE_MAP, GL_TEXTURE_MAX_LEVEL, levels - 1);
    filterAcrossEdges();
    labelGlObject(GL_TEXTURE, cube, label);
    return cube;
}

// --- geometry ----------------------------------------------------------------------------------------------

/// The cube from -1 to 1: of each of its faces two triangles.
constexpr GLfloat kCube[kCubeVertices * 3] = {
    -1, -1, -1, 1,  1,  -1, 1,  -1, -1, 1,  1,  -1, -1, -1, -1, -1, 1,  -1, // z = -1
    -1, -1, 1,  1,  -1, 1,  1,  1,  1,  1,  1,  1,  -1, 1,  1,  -1, -1, 1,  // z = 1
    -1, 1,  1,  -1, 1,  -1, -1, -1, -1, -1, -1, -1, -1, -1, 1,  -1, 1,  1,  // x = -1
    1,  1,  1,  1,  -1, -1, 1,  1,  -1, 1,  -1, -1, 1,  1,  1,  1,  -1, 1,  // x = 1
    -1, -1, -1, 1,  -1, -1, 1,  -1, 1,  1,  -1, 1,  -1, -1, 1,  -1, -1, -1, // y = -1
    -1, 1,  -1, 1,  1,  1,  1,  1,  -1, 1,  1,  1,  -1, 1,  -1, -1, 1,  1,  // y = 1
};
constexpr GLfloat kQuad[] = {-1, 1, 0, -1, -1, 0, 1, 1, 0, 1, -1, 0};

/// Positions of three floats as attribute 0. Made once; the vertex array is bound afterwards.
void bindPositions(GLuint& array, GLuint& buffer, const GLfloat* positions, GLsizeiptr bytes) {
    if (array != 0) {
        glBindVertexArray(array);
        return;
    }
    glGenVertexArrays(1, &array);
    glGenBuffers(1, &buffer);
    glBindVertexArray(array);
    glBindBuffer(GL_ARRAY_BUFFER, buffer);
    glBufferData(GL_ARRAY_BUFFER, bytes, positions, GL_STATIC_DRAW);
    glEnableVertexAttribArray(0);
    glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, 0, nullptr);
}

void drawCube(GLuint& array, GLuint& buffer) {
    bindPositions(array, buffer, kCube, sizeof kCube);
    glDrawArrays(GL_TRIANGLES, 0, kCubeVertices);
}

// --- deleting ----------------------------------------------------------------------------------------------

/// Deletes an object unless it has gone with its context, and sets its name to 0.
void remove(void (*deleteObjects)(GLsizei, const GLuint*), GLuint& name) {
    if (name != 0 && deleteObjects)
        deleteObjects(1, &name);
    name = 0;
}

/// An entry point, which the loader looks up only where there is a context.
template <class Function>
void removeAll(Function entryPoint, std::initializer_list<GLuint*> names) {
    const bool current = glContextIsCurrent();
    for (GLuint* name : names)
        remove(current ? entryPoint : nullptr, *name);
}

} // namespace

// --- making ------------------------------------------------------------------------------------------------

void NImageBasedLightHandler::CreateFrameBuffers() {
    glGenFramebuffers(1, &m_captureFramebuffer);
    glGenRenderbuffers(1, &m_captureDepthBuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, m_captureFramebuffer);
    glBindRenderbuffer(GL_RENDERBUFFER, m_captureDepthBuffer);
    SetPassSize(kEnvironmentSize, kEnvironmentSize);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_RENDERBUFFER, m_captureDepthBuffer);
}

void NImageBasedLightHandler::CreateTextureMaps() {
    m_environmentMap = makeCube(kEnvironmentSize, 1, "NRenderUtl environment");
    m_irradianceMap = makeCube(kIrradianceSize, 1, "NRenderUtl irradiance");
    m_prefilterMap = makeCube(kPrefilterSize, kPrefilterLevels, "NRenderUtl reflections");
    glGenTextures(1, &m_brdfTable);
    glBindTexture(GL_TEXTURE_2D, m_brdfTable);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RG16F, kBrdfTableSize, kBrdfTableSize, 0, GL_RG, GL_FLOAT, nullptr);
    setParameters(GL_TEXTURE_2D, GL_LINEAR);
    labelGlObject(GL_TEXTURE, m_brdfTable, "NRenderUtl reflectance");
}

/// GL leaves it to the driver whether textures of three half floats can be drawn into.
bool NImageBasedLightHandler::CanDrawMaps() const {
    const auto isComplete = [](GLenum target, GLuint texture) {
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, target, texture, 0);
        return glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
    };
    return isComplete(GL_TEXTURE_CUBE_MAP_POSITIVE_X, m_environmentMap) &&
           isComplete(GL_TEXTURE_2D, m_brdfTable);
}

void NImageBasedLightHandler::SetPassSize(int width, int height) {
    glRenderbufferStorage(GL_RENDERBUFFER, GL_DEPTH_COMPONENT24, width, height);
    glViewport(0, 0, width, height);
}

// --- drawing -----------------------------------------------------------------------------------------------

void NImageBasedLightHandler::RenderEnvCube() {
    drawCube(m_cubeVertexArray, m_cubeVertexBuffer);
}

void NImageBasedLightHandler::RenderQuad() {
    bindPositions(m_quadVertexArray, m_quadVertexBuffer, kQuad, sizeof kQuad);
    glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
}

void NImageBasedLightHandler::RenderSkyBox() {
    drawCube(m_skyBoxVertexArray, m_skyBoxVertexBuffer);
}

// --- deleting ----------------------------------------------------------------------------------------------

void NImageBasedLightHandler::CleanUpTransientData() {
    removeAll(glDeleteFramebuffers, {&m_captureFramebuffer});
    removeAll(glDeleteRenderbuffers, {&m_captureDepthBuffer});
    removeAll(glDeleteVertexArrays, {&m_cubeVertexArray, &m_quadVertexArray});
    removeAll(glDeleteBuffers, {&m_cubeVertexBuffer, &m_quadVertexBuffer});
}

void NImageBasedLightHandler::CleanUpPersistentData() {
    removeAll(glDeleteTextures, {&m_environmentMap, &m_irradianceMap, &m_prefilterMap, &m_brdfTable});
}

void NImageBasedLightHandler::CleanUpSkyBoxData() {
    removeAll(glDeleteVertexArrays, {&m_skyBoxVertexArray});
    removeAll(glDeleteBuffers, {&m_skyBoxVertexBuffer});
}
