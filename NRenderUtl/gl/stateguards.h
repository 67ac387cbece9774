// GL state that drawing changes for the length of a block.
#pragma once

#include "NRenderUtl/gl/featureguards.h"
#include "NRenderUtl/gl/ngl.h"
#include "NRenderUtl/host/hostgl.h"

/// Switches lighting on or off.
class LightingGuard {
public:
    explicit LightingGuard(bool on) : m_was(glIsEnabled(GL_LIGHTING)) { set(on); }
    ~LightingGuard() { set(m_was); }
    LightingGuard(const LightingGuard&) = delete;
    LightingGuard& operator=(const LightingGuard&) = delete;

private:
    static void set(bool on) { on ? glEnable(GL_LIGHTING) : glDisable(GL_LIGHTING); }
    const bool m_was;
};

/// On top of the scene: no depth test.
class NoDepthTestGuard {
public:
    NoDepthTestGuard() : m_was(ngl_is_depth_test_enabled() != 0) {
        if (m_was)
            ngl_disable_depth_test();
    }
    ~NoDepthTestGuard() {
        if (m_was)
            ngl_enable_depth_test();
    }
    NoDepthTestGuard(const NoDepthTestGuard&) = delete;
    NoDepthTestGuard& operator=(const NoDepthTestGuard&) = delete;

private:
    const bool m_was;
};

/// Keeps the shade model and the two-sided lighting value.
class ShadingGuard {
public:
    ShadingGuard() {
        glGetIntegerv(GL_SHADE_MODEL, &m_shadeModel);
        glGetIntegerv(GL_LIGHT_MODEL_TWO_SIDE, &m_twoSide);
    }
    ~ShadingGuard() {
        glShadeModel(static_cast<GLenum>(m_shadeModel));
        glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, m_twoSide);
    }
    ShadingGuard(const ShadingGuard&) = delete;
    ShadingGuard& operator=(const ShadingGuard&) = delete;

private:
    GLint m_shadeModel, m_twoSide;
};

/// Keeps the matrix mode.
class MatrixModeGuard {
public:
    MatrixModeGuard() { glGetIntegerv(GL_MATRIX_MODE, &m_mode); }
    ~MatrixModeGuard() { glMatrixMode(static_cast<GLenum>(m_mode)); }
    MatrixModeGuard(const MatrixModeGuard&) = delete;
    MatrixModeGuard& operator=(const MatrixModeGuard&) = delete;

private:
    GLint m_mode;
};

/// Keeps the current texture coordinate of unit 0.
class TexCoordGuard {
public:
    TexCoordGuard() {
        GLint unit;
        glGetIntegerv(GL_ACTIVE_TEXTURE, &unit);
        glActiveTexture(GL_TEXTURE0);
        glGetFloatv(GL_CURRENT_TEXTURE_COORDS, m_texCoord);
        glActiveTexture(static_cast<GLenum>(unit));
    }
    ~TexCoordGuard() { glTexCoord4fv(m_texCoord); }
    TexCoordGuard(const TexCoordGuard&) = delete;
    TexCoordGuard& operator=(const TexCoordGuard&) = delete;

private:
    GLfloat m_texCoord[4];
};

/// Keeps the matrix mode, and the current normal and texture coordinate of unit 0, which sending vertices
/// changes.
class CurrentStateGuard {
public:
    CurrentStateGuard() { glGetFloatv(GL_CURRENT_NORMAL, m_normal); }
    ~CurrentStateGuard() { glNormal3fv(m_normal); }
    CurrentStateGuard(const CurrentStateGuard&) = delete;
    CurrentStateGuard& operator=(const CurrentStateGuard&) = delete;

private:
    const MatrixModeGuard m_mode;
    const TexCoordGuard m_coordinate;
    GLfloat m_normal[3];
};

/// Client memory as the only source of vertices: no vertex array object, no buffers, all arrays off, unit 0.
class ClientArraysGuard {
public:
    ClientArraysGuard()
        : m_hasObjects(glVersion() >= 30 || epoxy_has_gl_extension("GL_ARB_vertex_array_object")) {
        if (m_hasObjects) {
            glGetIntegerv(GL_VERTEX_ARRAY_BINDING, &m_object);
            glBindVertexArray(0);
        }
        glPushClientAttrib(GL_CLIENT_VERTEX_ARRAY_BIT);
        const int version = glVersion();
        if (version >= 15) {
            glBindBuffer(GL_ARRAY_BUFFER, 0);
            glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
        }
        // Generic attribute 0 would take the place of the vertex array.
        if (version >= 20)
            glDisableVertexAttribArray(0);
        for (GLenum array : {GL_VERTEX_ARRAY, GL_NORMAL_ARRAY, GL_COLOR_ARRAY, GL_INDEX_ARRAY,
                             GL_EDGE_FLAG_ARRAY, GL_SECONDARY_COLOR_ARRAY, GL_FOG_COORD_ARRAY})
            glDisableClientState(array);
        GLint units;
        glGetIntegerv(GL_MAX_TEXTURE_UNITS, &units);
        while (--units >= 0) {
            glClientActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(units));
            glDisableClientState(GL_TEXTURE_COORD_ARRAY);
        }
    }
    ~ClientArraysGuard() {
        glPopClientAttrib();
        if (m_hasObjects)
            glBindVertexArray(static_cast<GLuint>(m_object));
    }
    ClientArraysGuard(const ClientArraysGuard&) = delete;
    ClientArraysGuard& operator=(const ClientArraysGuard&) = delete;

private:
    const bool m_hasObjects;
    GLint m_object = 0;
};

/// Fixed function draws, whatever program or program pipeline the host has in use.
class NoProgramGuard {
public:
    NoProgramGuard() {
        const int version = glVersion();
        if (version >= 20)
            glGetIntegerv(GL_CURRENT_PROGRAM, &m_program);
        if (version >= 41)
            glGetIntegerv(GL_PROGRAM_PIPELINE_BINDING, &m_pipeline);
        if (m_program != 0)
            glUseProgram(0);
        if (m_pipeline != 0)
            glBindProgramPipeline(0);
    }
    ~NoProgramGuard() {
        if (m_pipeline != 0)
            glBindProgramPipeline(static_cast<GLuint>(m_pipeline));
        if (m_program != 0)
            glUseProgram(static_cast<GLuint>(m_program));
    }
    NoProgramGuard(const NoProgramGuard&) = delete;
    NoProgramGuard& operator=(const NoProgramGuard&) = delete;

private:
    GLint m_program = 0, m_pipeline = 0;
};

/// Every index as it is: none restarts a primitive.
class NoRestartGuard {
public:
    NoRestartGuard() : m_restarts(glVersion() >= 31 && glIsEnabled(GL_PRIMITIVE_RESTART)) {
        if (m_restarts)
            glDisable(GL_PRIMITIVE_RESTART);
    }
    ~NoRestartGuard() {
        if (m_restarts)
            glEnable(GL_PRIMITIVE_RESTART);
    }
    NoRestartGuard(const NoRestartGuard&) = delete;
    NoRestartGuard& operator=(const NoRestartGuard&) = delete;

private:
    const bool m_restarts;
};

/// Every index as it is, and the last vertex of a primitive as the one that provokes.
class PlainIndicesGuard {
public:
    PlainIndicesGuard() {
        if (glVersion() >= 32)
            glGetIntegerv(GL_PROVOKING_VERTEX, &m_provoking);
        if (m_provoking != GL_LAST_VERTEX_CONVENTION)
            glProvokingVertex(GL_LAST_VERTEX_CONVENTION);
    }
    ~PlainIndicesGuard() {
        if (m_provoking != GL_LAST_VERTEX_CONVENTION)
            glProvokingVertex(static_cast<GLenum>(m_provoking));
    }
    PlainIndicesGuard(const PlainIndicesGuard&) = delete;
    PlainIndicesGuard& operator=(const PlainIndicesGuard&) = delete;

private:
    const NoRestartGuard m_indices;
    GLint m_provoking = GL_LAST_VERTEX_CONVENTION;
};

/// Keeps groups of GL's attribute stack.
class AttributesGuard {
public:
    explicit AttributesGuard(GLbitfield groups) { glPushAttrib(groups); }
    ~AttributesGuard() { glPopAttrib(); }
    AttributesGuard(const AttributesGuard&) = delete;
    AttributesGuard& operator=(const AttributesGuard&) = delete;
};

/// Blending adds. Kept apart from the attribute stack, in which Mesa loses the equation of alpha.
class AddingGuard {
public:
    AddingGuard() {
        if (glVersion() < 20)
            return;
        glGetIntegerv(GL_BLEND_EQUATION_RGB, &m_color);
        glGetIntegerv(GL_BLEND_EQUATION_ALPHA, &m_alpha);
        if (isOther())
            glBlendEquation(GL_FUNC_ADD);
    }
    ~AddingGuard() {
        if (isOther())
            glBlendEquationSeparate(static_cast<GLenum>(m_color), static_cast<GLenum>(m_alpha));
    }
    AddingGuard(const AddingGuard&) = delete;
    AddingGuard& operator=(const AddingGuard&) = delete;

private:
    bool isOther() const { return m_color != GL_FUNC_ADD || m_alpha != GL_FUNC_ADD; }
    GLint m_color = GL_FUNC_ADD, m_alpha = GL_FUNC_ADD;
};

/// A view of one unit a pixel, y upward.
class PixelViewGuard {
public:
    PixelViewGuard() {
        ngl_push_view_matrices(0);
        ngl_initialize_view(nullptr, nullptr);
    }
    ~PixelViewGuard() { ngl_pop_view_matrices(0); }
    PixelViewGuard(const PixelViewGuard&) = delete;
    PixelViewGuard& operator=(const PixelViewGuard&) = delete;

private:
    const MatrixModeGuard m_mode;
};

/// Replaces the matrix of a mode, outside its stack, which may be full. The matrix mode is kept.
class MatrixGuard {
public:
    MatrixGuard(GLenum mode, const double matrix[16]) : m_mode(mode) {
        glGetDoublev(query(), m_matrix);
        load(matrix);
    }
    ~MatrixGuard() { load(m_matrix); }
    MatrixGuard(const MatrixGuard&) = delete;
    MatrixGuard& operator=(const MatrixGuard&) = delete;

private:
    GLenum query() const {
        return m_mode == GL_MODELVIEW    ? GL_MODELVIEW_MATRIX
               : m_mode == GL_PROJECTION ? GL_PROJECTION_MATRIX
                                         : GL_TEXTURE_MATRIX;
    }
    void load(const double* matrix) {
        GLint mode;
        glGetIntegerv(GL_MATRIX_MODE, &mode);
        glMatrixMode(m_mode);
        glLoadMatrixd(matrix);
        glMatrixMode(static_cast<GLenum>(mode));
    }
    const GLenum m_mode;
    GLdouble m_matrix[16];
};

/// Replaces projection and model-view, outside their stacks, which may be full, and keeps the matrix mode.
class ViewGuard {
public:
    ViewGuard(const double projection[16], const double modelView[16]) {
        glGetDoublev(GL_PROJECTION_MATRIX, m_projection);
        glGetDoublev(GL_MODELVIEW_MATRIX, m_modelView);
        load(projection, modelView);
    }
    ~ViewGuard() { load(m_projection, m_modelView); }
    ViewGuard(const ViewGuard&) = delete;
    ViewGuard& operator=(const ViewGuard&) = delete;

private:
    static void load(const double* projection, const double* modelView) {
        glMatrixMode(GL_PROJECTION);
        glLoadMatrixd(projection);
        glMatrixMode(GL_MODELVIEW);
        glLoadMatrixd(modelView);
    }
    const MatrixModeGuard m_mode;
    GLdouble m_projection[16], m_modelView[16];
};

/// The active texture unit without a sampler object, which would override the texture's own parameters.
class NoSamplerGuard {
public:
    NoSamplerGuard() {
        if (glVersion() < 33)
            return;
        GLint unit;
        glGetIntegerv(GL_ACTIVE_TEXTURE, &unit);
        m_unit = static_cast<GLuint>(unit - GL_TEXTURE0);
        glGetIntegerv(GL_SAMPLER_BINDING, &m_sampler);
        if (m_sampler != 0)
            glBindSampler(m_unit, 0);
    }
    ~NoSamplerGuard() {
        if (m_sampler != 0)
            glBindSampler(m_unit, static_cast<GLuint>(m_sampler));
    }
    NoSamplerGuard(const NoSamplerGuard&) = delete;
    NoSamplerGuard& operator=(const NoSamplerGuard&) = delete;

private:
    GLuint m_unit = 0;
    GLint m_sampler = 0;
};

/// Pixels are read from client memory, tightly packed.
class UnpackGuard {
public:
    UnpackGuard() {
        glPushClientAttrib(GL_CLIENT_PIXEL_STORE_BIT);
        if (glVersion() >= 21)
            glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
        glPixelStorei(GL_UNPACK_SWAP_BYTES, GL_FALSE);
        for (const GLenum value : {GL_UNPACK_ROW_LENGTH, GL_UNPACK_SKIP_ROWS, GL_UNPACK_SKIP_PIXELS})
            glPixelStorei(value, 0);
    }
    ~UnpackGuard() { glPopClientAttrib(); }
    UnpackGuard(const UnpackGuard&) = delete;
    UnpackGuard& operator=(const UnpackGuard&) = delete;
};

/// Colours go to and from textures as they are.
class PlainTransferGuard {
public:
    PlainTransferGuard() {
        GLfloat* value = m_values;
        for (const GLenum scale : kScales)
            replace(scale, 1.0f, *value++);
        for (const GLenum bias : kBiases)
            replace(bias, 0.0f, *value++);
        replace(GL_MAP_COLOR, 0.0f, *value);
    }
    ~PlainTransferGuard() {
        const GLfloat* value = m_values;
        for (const GLenum scale : kScales)
            glPixelTransferf(scale, *value++);
        for (const GLenum bias : kBiases)
            glPixelTransferf(bias, *value++);
        glPixelTransferf(GL_MAP_COLOR, *value);
    }
    PlainTransferGuard(const PlainTransferGuard&) = delete;
    PlainTransferGuard& operator=(const PlainTransferGuard&) = delete;

private:
    static constexpr GLenum kScales[] = {GL_RED_SCALE, GL_GREEN_SCALE, GL_BLUE_SCALE, GL_ALPHA_SCALE};
    static constexpr GLenum kBiases[] = {GL_RED_BIAS, GL_GREEN_BIAS, GL_BLUE_BIAS, GL_ALPHA_BIAS};
    static void replace(GLenum name, GLfloat plain, GLfloat& was) {
        glGetFloatv(name, &was);
        glPixelTransferf(name, plain);
    }
    GLfloat m_values[9];
};

/// All channels of the first colour buffer and the depth are written; clearing gives black and the far plane.
/// Needs GL 3.0.
class WrittenAndClearedGuard {
public:
    WrittenAndClearedGuard() {
        glGetBooleani_v(GL_COLOR_WRITEMASK, 0, m_colorMask);
        glGetBooleanv(GL_DEPTH_WRITEMASK, &m_depthMask);
        glGetFloatv(GL_COLOR_CLEAR_VALUE, m_color);
        glGetDoublev(GL_DEPTH_CLEAR_VALUE, &m_depth);
        glColorMaski(0, GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
        glDepthMask(GL_TRUE);
        glClearColor(0.0f, 0.0f, 0.0f, 0.0f);
        glClearDepth(1.0);
    }
    ~WrittenAndClearedGuard() {
        glColorMaski(0, m_colorMask[0], m_colorMask[1], m_colorMask[2], m_colorMask[3]);
        glDepthMask(m_depthMask);
        glClearColor(m_color[0], m_color[1], m_color[2], m_color[3]);
        glClearDepth(m_depth);
    }
    WrittenAndClearedGuard(const WrittenAndClearedGuard&) = delete;
    WrittenAndClearedGuard& operator=(const WrittenAndClearedGuard&) = delete;

private:
    GLboolean m_colorMask[4], m_depthMask;
    GLfloat m_color[4];
    GLdouble m_depth;
};

/// Floating-point colours are drawn and read as they are. Needs GL 3.0.
class UnclampedColorsGuard {
public:
    UnclampedColorsGuard() {
        glGetIntegerv(GL_CLAMP_FRAGMENT_COLOR, &m_fragment);
        glGetIntegerv(GL_CLAMP_READ_COLOR, &m_read);
        set(GL_FIXED_ONLY, GL_FIXED_ONLY);
    }
    ~UnclampedColorsGuard() { set(static_cast<GLenum>(m_fragment), static_cast<GLenum>(m_read)); }
    UnclampedColorsGuard(const UnclampedColorsGuard&) = delete;
    UnclampedColorsGuard& operator=(const UnclampedColorsGuard&) = delete;

private:
    static void set(GLenum fragment, GLenum read) {
        glClampColor(GL_CLAMP_FRAGMENT_COLOR, fragment);
        glClampColor(GL_CLAMP_READ_COLOR, read);
    }
    GLint m_fragment, m_read;
};

/// Keeps the vertex array object and the array buffer. Needs GL 3.0.
class VertexArrayGuard {
public:
    VertexArrayGuard() {
        glGetIntegerv(GL_VERTEX_ARRAY_BINDING, &m_object);
        glGetIntegerv(GL_ARRAY_BUFFER_BINDING, &m_buffer);
    }
    ~VertexArrayGuard() {
        glBindVertexArray(static_cast<GLuint>(m_object));
        glBindBuffer(GL_ARRAY_BUFFER, static_cast<GLuint>(m_buffer));
    }
    VertexArrayGuard(const VertexArrayGuard&) = delete;
    VertexArrayGuard& operator=(const VertexArrayGuard&) = delete;

private:
    GLint m_object, m_buffer;
};

/// Keeps the active texture unit; makes unit 0 active, and keeps its 2D and cube map textures. Needs GL 1.3.
class TextureUnit0Guard {
public:
    TextureUnit0Guard() {
        glGetIntegerv(GL_ACTIVE_TEXTURE, &m_unit);
        glActiveTexture(GL_TEXTURE0);
        glGetIntegerv(GL_TEXTURE_BINDING_2D, &m_texture);
        glGetIntegerv(GL_TEXTURE_BINDING_CUBE_MAP, &m_cube);
    }
    ~TextureUnit0Guard() {
        glBindTexture(GL_TEXTURE_2D, static_cast<GLuint>(m_texture));
        glBindTexture(GL_TEXTURE_CUBE_MAP, static_cast<GLuint>(m_cube));
        glActiveTexture(static_cast<GLenum>(m_unit));
    }
    TextureUnit0Guard(const TextureUnit0Guard&) = delete;
    TextureUnit0Guard& operator=(const TextureUnit0Guard&) = delete;

private:
    GLint m_unit, m_texture, m_cube;
};

/// Keeps the framebuffers drawn to and read from, the renderbuffer, the viewport and the scissor box. Needs
/// GL 3.0.
class FramebufferGuard {
public:
    FramebufferGuard() {
        glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &m_draw);
        glGetIntegerv(GL_READ_FRAMEBUFFER_BINDING, &m_read);
        glGetIntegerv(GL_RENDERBUFFER_BINDING, &m_renderbuffer);
        glGetIntegerv(GL_VIEWPORT, m_viewport);
        glGetIntegerv(GL_SCISSOR_BOX, m_scissor);
    }
    ~FramebufferGuard() {
        glBindFramebuffer(GL_DRAW_FRAMEBUFFER, static_cast<GLuint>(m_draw));
        glBindFramebuffer(GL_READ_FRAMEBUFFER, static_cast<GLuint>(m_read));
        glBindRenderbuffer(GL_RENDERBUFFER, static_cast<GLuint>(m_renderbuffer));
        glViewport(m_viewport[0], m_viewport[1], m_viewport[2], m_viewport[3]);
        glScissor(m_scissor[0], m_scissor[1], m_scissor[2], m_scissor[3]);
    }
    FramebufferGuard(const FramebufferGuard&) = delete;
    FramebufferGuard& operator=(const FramebufferGuard&) = delete;

private:
    GLint m_draw, m_read, m_renderbuffer, m_viewport[4], m_scissor[4];
};

/// Filtering across the edges of cube maps. Needs GL 3.2 to do anything.
class SeamlessCubesGuard {
public:
    SeamlessCubesGuard() : m_changes(glVersion() >= 32 && !glIsEnabled(GL_TEXTURE_CUBE_MAP_SEAMLESS)) {
        if (m_changes)
            glEnable(GL_TEXTURE_CUBE_MAP_SEAMLESS);
    }
    ~SeamlessCubesGuard() {
        if (m_changes)
            glDisable(GL_TEXTURE_CUBE_MAP_SEAMLESS);
    }
    SeamlessCubesGuard(const SeamlessCubesGuard&) = delete;
    SeamlessCubesGuard& operator=(const SeamlessCubesGuard&) = delete;

private:
    const bool m_changes;
};

/// Lets fragments through up to the depth that is there, where the depth test is on.
class LessOrEqualGuard {
public:
    LessOrEqualGuard() {
        glGetIntegerv(GL_DEPTH_FUNC, &m_function);
        glDepthFunc(GL_LEQUAL);
    }
    ~LessOrEqualGuard() { glDepthFunc(static_cast<GLenum>(m_function)); }
    LessOrEqualGuard(const LessOrEqualGuard&) = delete;
    LessOrEqualGuard& operator=(const LessOrEqualGuard&) = delete;

private:
    GLint m_function;
};

/// Pulls what is drawn towards the viewer.
class DepthOffset {
public:
    enum Kind {
        None,
        ViewPush,  ///< by the record's push delta, counted as a view-point push
        ViewDelta, ///< by the delta of the live view; the push count stays
    };
    explicit DepthOffset(Kind kind) : m_kind(kind) {
        if (m_kind == ViewPush)
            UtlPushViewPoint();
        if (m_kind == ViewDelta) {
            UtlComputeViewDelta(&m_delta, 1);
            UtlPushViewPointDelta(&m_delta);
        }
    }
    ~DepthOffset() {
        if (m_kind == ViewPush)
            UtlPopViewPoint();
        if (m_kind == ViewDelta)
            UtlPopViewPointDelta(&m_delta);
    }
    DepthOffset(const DepthOffset&) = delete;
    DepthOffset& operator=(const DepthOffset&) = delete;

private:
    const Kind m_kind;
    _NgPoint3Str m_delta{};
};
