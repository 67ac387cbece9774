#include "viewer/contract/resetstate.h"

#include <epoxy/gl.h>

#include <algorithm>
#include <array>
#include <initializer_list>

namespace nruview {

namespace {

int version() {
    return epoxy_gl_version();
}

int integer(GLenum name) {
    GLint value = 0;
    glGetIntegerv(name, &value);
    return value;
}

void disable(std::initializer_list<GLenum> features, int since = 0) {
    if (version() >= since)
        for (const GLenum feature : features)
            glDisable(feature);
}

void emptyStacks() {
    for (int left = integer(GL_ATTRIB_STACK_DEPTH); left > 0; --left)
        glPopAttrib();
    for (int left = integer(GL_CLIENT_ATTRIB_STACK_DEPTH); left > 0; --left)
        glPopClientAttrib();
    for (const auto& [mode, depth] : {std::pair{GL_PROJECTION, GL_PROJECTION_STACK_DEPTH},
                                      std::pair{GL_MODELVIEW, GL_MODELVIEW_STACK_DEPTH}}) {
        glMatrixMode(static_cast<GLenum>(mode));
        for (int left = integer(static_cast<GLenum>(depth)); left > 1; --left)
            glPopMatrix();
        glLoadIdentity();
    }
}

void resetFragments() {
    disable({GL_ALPHA_TEST, GL_BLEND, GL_COLOR_LOGIC_OP, GL_COLOR_SUM, GL_DEPTH_TEST, GL_FOG, GL_SCISSOR_TEST,
             GL_STENCIL_TEST, GL_SAMPLE_ALPHA_TO_COVERAGE, GL_SAMPLE_COVERAGE});
    disable({GL_FRAMEBUFFER_SRGB, GL_RASTERIZER_DISCARD}, 30);
    disable({GL_DEPTH_CLAMP, GL_SAMPLE_MASK, GL_TEXTURE_CUBE_MAP_SEAMLESS}, 32);
    glEnable(GL_DITHER);
    glEnable(GL_MULTISAMPLE);
    glSampleCoverage(1, GL_FALSE);
    if (version() >= 32)
        glSampleMaski(0, ~0u);
    glAlphaFunc(GL_ALWAYS, 0);
    glBlendColor(0, 0, 0, 0);
    glBlendEquation(GL_FUNC_ADD);
    glBlendFunc(GL_ONE, GL_ZERO);
    glLogicOp(GL_COPY);
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    glDepthMask(GL_TRUE);
    glDepthFunc(GL_LESS);
    glDepthRange(0, 1);
    glStencilMask(~0u);
    glStencilFunc(GL_ALWAYS, 0, ~0u);
    glStencilOp(GL_KEEP, GL_KEEP, GL_KEEP);
    glFogi(GL_FOG_MODE, GL_EXP);
    glFogf(GL_FOG_START, 0);
    glFogf(GL_FOG_END, 1);
    if (version() < 30)
        return;
    glClampColor(GL_CLAMP_VERTEX_COLOR, GL_TRUE);
    glClampColor(GL_CLAMP_FRAGMENT_COLOR, GL_FIXED_ONLY);
    glClampColor(GL_CLAMP_READ_COLOR, GL_FIXED_ONLY);
}

void resetShapes() {
    disable({GL_CULL_FACE, GL_LINE_SMOOTH, GL_LINE_STIPPLE, GL_POINT_SMOOTH, GL_POLYGON_OFFSET_FILL,
             GL_POLYGON_OFFSET_LINE, GL_POLYGON_OFFSET_POINT, GL_POLYGON_SMOOTH, GL_POLYGON_STIPPLE});
    disable({GL_POINT_SPRITE, GL_PROGRAM_POINT_SIZE, GL_VERTEX_PROGRAM_TWO_SIDE}, 20);
    glFrontFace(GL_CCW);
    glCullFace(GL_BACK);
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    glPolygonOffset(0, 0);
    glLineStipple(1, 0xFFFF);
    glLineWidth(1);
    glPointSize(1);
    constexpr std::array<GLfloat, 3> attenuation = {1, 0, 0};
    glPointParameterfv(GL_POINT_DISTANCE_ATTENUATION, attenuation.data());
    glPointParameterf(GL_POINT_SIZE_MIN, 0);
    glPointParameteri(GL_POINT_SPRITE_COORD_ORIGIN, GL_UPPER_LEFT);
    for (GLenum plane = GL_CLIP_PLANE0; plane < GL_CLIP_PLANE0 + 6; ++plane) {
        constexpr std::array<GLdouble, 4> none = {0, 0, 0, 0};
        glClipPlane(plane, none.data());
        glDisable(plane);
    }
}

void resetLighting() {
    disable({GL_LIGHTING, GL_LIGHT0, GL_LIGHT1, GL_COLOR_MATERIAL, GL_NORMALIZE, GL_RESCALE_NORMAL});
    constexpr std::array<GLfloat, 4> black = {0, 0, 0, 1}, ahead = {0, 0, 1, 0};
    glLightfv(GL_LIGHT1, GL_DIFFUSE, black.data());
    glLightfv(GL_LIGHT1, GL_POSITION, ahead.data());
    glColorMaterial(GL_FRONT_AND_BACK, GL_AMBIENT_AND_DIFFUSE);
    glMaterialfv(GL_FRONT_AND_BACK, GL_EMISSION, black.data());
    glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, GL_FALSE);
    glLightModeli(GL_LIGHT_MODEL_LOCAL_VIEWER, GL_FALSE);
    glLightModeli(GL_LIGHT_MODEL_COLOR_CONTROL, GL_SINGLE_COLOR);
    glShadeModel(GL_SMOOTH);
    glColor4f(1, 1, 1, 1);
    glSecondaryColor3f(0, 0, 0);
    glNormal3f(0, 0, 1);
    glEdgeFlag(GL_TRUE);
}

void resetUnit() {
    disable({GL_TEXTURE_1D, GL_TEXTURE_2D, GL_TEXTURE_3D, GL_TEXTURE_CUBE_MAP, GL_TEXTURE_GEN_S,
             GL_TEXTURE_GEN_T, GL_TEXTURE_GEN_R, GL_TEXTURE_GEN_Q});
    disable({GL_TEXTURE_RECTANGLE}, 31);
    for (const GLenum target : {GL_TEXTURE_1D, GL_TEXTURE_2D, GL_TEXTURE_3D, GL_TEXTURE_CUBE_MAP})
        glBindTexture(target, 0);
    if (version() >= 31)
        for (const GLenum target : {GL_TEXTURE_RECTANGLE, GL_TEXTURE_BUFFER})
            glBindTexture(target, 0);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    glTexEnvi(GL_TEXTURE_ENV, GL_COMBINE_RGB, GL_MODULATE);
    glTexEnvf(GL_TEXTURE_FILTER_CONTROL, GL_TEXTURE_LOD_BIAS, 0);
    glTexEnvi(GL_POINT_SPRITE, GL_COORD_REPLACE, GL_FALSE);
    for (int left = integer(GL_TEXTURE_STACK_DEPTH); left > 1; --left)
        glPopMatrix();
    glLoadIdentity();
    glTexCoord4f(0, 0, 0, 1);
}

void resetUnits() {
    glMatrixMode(GL_TEXTURE);
    for (GLuint unit = static_cast<GLuint>(integer(GL_MAX_TEXTURE_UNITS)); unit-- > 0;) {
        glActiveTexture(GL_TEXTURE0 + unit);
        glMultiTexCoord4f(GL_TEXTURE0 + unit, 0, 0, 0, 1);
        resetUnit();
        if (version() >= 33)
            glBindSampler(unit, 0);
    }
    glMatrixMode(GL_MODELVIEW);
}

void resetPixels() {
    for (const GLenum name : {GL_UNPACK_ALIGNMENT, GL_PACK_ALIGNMENT})
        glPixelStorei(name, 4);
    for (const GLenum name :
         {GL_UNPACK_ROW_LENGTH, GL_UNPACK_SKIP_ROWS, GL_UNPACK_SKIP_PIXELS, GL_UNPACK_IMAGE_HEIGHT,
          GL_UNPACK_SWAP_BYTES, GL_UNPACK_LSB_FIRST, GL_PACK_ROW_LENGTH, GL_PACK_SKIP_ROWS,
          GL_PACK_SKIP_PIXELS, GL_PACK_IMAGE_HEIGHT, GL_PACK_SWAP_BYTES, GL_PACK_LSB_FIRST})
        glPixelStorei(name, 0);
    for (const GLenum scale : {GL_RED_SCALE, GL_GREEN_SCALE})
        glPixelTransferf(scale, 1);
    glPixelTransferf(GL_BLUE_BIAS, 0);
    glPixelTransferi(GL_MAP_COLOR, GL_FALSE);
    glPixelZoom(1, 1);
}

void resetClientArrays() {
    glVertexPointer(4, GL_FLOAT, 0, nullptr);
    glNormalPointer(GL_FLOAT, 0, nullptr);
    glColorPointer(4, GL_FLOAT, 0, nullptr);
    glSecondaryColorPointer(3, GL_FLOAT, 0, nullptr);
    glFogCoordPointer(GL_FLOAT, 0, nullptr);
    glEdgeFlagPointer(0, nullptr);
    for (const GLenum array : {GL_VERTEX_ARRAY, GL_NORMAL_ARRAY, GL_COLOR_ARRAY, GL_INDEX_ARRAY,
                               GL_EDGE_FLAG_ARRAY, GL_SECONDARY_COLOR_ARRAY, GL_FOG_COORD_ARRAY})
        glDisableClientState(array);
    for (GLuint unit = static_cast<GLuint>(integer(GL_MAX_TEXTURE_UNITS)); unit-- > 0;) {
        glClientActiveTexture(GL_TEXTURE0 + unit);
        glTexCoordPointer(4, GL_FLOAT, 0, nullptr);
        glDisableClientState(GL_TEXTURE_COORD_ARRAY);
    }
}

void resetAttributes() {
    for (GLuint i = 0, count = static_cast<GLuint>(integer(GL_MAX_VERTEX_ATTRIBS)); i < count; ++i) {
        glDisableVertexAttribArray(i);
        glVertexAttribPointer(i, 4, GL_FLOAT, GL_FALSE, 0, nullptr);
        if (version() >= 33)
            glVertexAttribDivisor(i, 0);
        if (i > 0)
            glVertexAttrib4f(i, 0, 0, 0, 1);
    }
}

void unbind() {
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    if (version() >= 20)
        glUseProgram(0);
    if (version() >= 21)
        for (const GLenum target : {GL_PIXEL_PACK_BUFFER, GL_PIXEL_UNPACK_BUFFER})
            glBindBuffer(target, 0);
    if (version() >= 30)
        glBindVertexArray(0);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
    if (version() >= 31) {
        for (const GLenum target :
             {GL_TEXTURE_BUFFER, GL_UNIFORM_BUFFER, GL_COPY_READ_BUFFER, GL_COPY_WRITE_BUFFER})
            glBindBuffer(target, 0);
        glDisable(GL_PRIMITIVE_RESTART);
        glPrimitiveRestartIndex(0);
    }
    if (version() >= 32)
        glProvokingVertex(GL_LAST_VERTEX_CONVENTION);
    if (version() >= 41) {
        glBindProgramPipeline(0);
        glBindTransformFeedback(GL_TRANSFORM_FEEDBACK, 0);
    }
    disable({GL_PRIMITIVE_RESTART_FIXED_INDEX}, 43);
}

} // namespace

void resetState() {
    glRenderMode(GL_RENDER);
    emptyStacks();
    unbind();
    resetClientArrays();
    if (version() >= 20)
        resetAttributes();
    resetFragments();
    resetShapes();
    resetUnits();
    resetPixels();
    resetLighting(); // last: attributes may be colours and normals under another name
}

} // namespace nruview
