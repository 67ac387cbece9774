#include "viewer/contract/hoststates.h"

#include <epoxy/gl.h>

#include <array>
#include <vector>

namespace nruview {

namespace {

using Host = const HostObjects&;
using enum StateGroup;

constexpr int kStackRoom = 2; ///< of each stack is left free

void replaceMatrix(GLenum mode, const GLdouble* matrix) {
    glMatrixMode(mode);
    matrix ? glLoadMatrixd(matrix) : glLoadIdentity();
    glMatrixMode(GL_MODELVIEW);
}

/// Binds and enables a texture of a unit.
void enableTexture(GLenum target, GLuint texture, GLenum unit = GL_TEXTURE0) {
    glActiveTexture(unit);
    glBindTexture(target, texture);
    glEnable(target);
    glActiveTexture(GL_TEXTURE0);
}

void setSamplers(GLuint sampler) {
    for (GLuint unit = 0; unit < 8; ++unit)
        glBindSampler(unit, sampler);
}

void setPixelStore(const std::array<GLenum, 7>& names) {
    constexpr std::array<GLint, 7> values = {1, 5, 1, 3, 7, 1, 1};
    for (std::size_t i = 0; i < names.size(); ++i)
        glPixelStorei(names[i], values[i]);
}

void bindBuffers(std::initializer_list<GLenum> targets, GLuint buffer) {
    for (const GLenum target : targets)
        glBindBuffer(target, buffer);
}

/// Every array of client memory, all over the place.
void enableClientArrays() {
    static const std::vector<GLfloat> junk(1 << 14, 0.37f);
    glVertexPointer(3, GL_FLOAT, 0, junk.data());
    glNormalPointer(GL_FLOAT, 0, junk.data());
    glColorPointer(4, GL_FLOAT, 0, junk.data());
    glSecondaryColorPointer(3, GL_FLOAT, 0, junk.data());
    glFogCoordPointer(GL_FLOAT, 0, junk.data());
    glEdgeFlagPointer(1, junk.data());
    for (const GLenum array : {GL_VERTEX_ARRAY, GL_NORMAL_ARRAY, GL_COLOR_ARRAY, GL_SECONDARY_COLOR_ARRAY,
                               GL_FOG_COORD_ARRAY, GL_EDGE_FLAG_ARRAY})
        glEnableClientState(array);
    for (GLenum unit = 0; unit < 3; ++unit) {
        glClientActiveTexture(GL_TEXTURE0 + unit);
        glEnableClientState(GL_TEXTURE_COORD_ARRAY);
        glTexCoordPointer(2, GL_FLOAT, 0, junk.data());
    }
    glClientActiveTexture(GL_TEXTURE0);
}

void enableAttributes(GLuint buffer, GLuint divisor) {
    glBindBuffer(GL_ARRAY_BUFFER, buffer);
    for (GLuint attribute = 0; attribute < 12; ++attribute) {
        glEnableVertexAttribArray(attribute);
        glVertexAttribPointer(attribute, 4, GL_FLOAT, GL_FALSE, 0, nullptr);
        if (divisor != 0)
            glVertexAttribDivisor(attribute, divisor);
    }
    glBindBuffer(GL_ARRAY_BUFFER, 0);
}

int integer(GLenum name) {
    GLint value = 0;
    glGetIntegerv(name, &value);
    return value;
}

/// Fills a stack of matrices up to the room that is left.
void fillMatrixStack(GLenum mode, GLenum depth, GLenum limit) {
    glMatrixMode(mode);
    for (int left = integer(limit) - kStackRoom - integer(depth); left > 0; --left)
        glPushMatrix();
    glMatrixMode(GL_MODELVIEW);
}

void fillAttributeStacks() {
    for (int left = integer(GL_MAX_ATTRIB_STACK_DEPTH) - kStackRoom - integer(GL_ATTRIB_STACK_DEPTH);
         left > 0; --left)
        glPushAttrib(GL_ALL_ATTRIB_BITS);
    for (int left =
             integer(GL_MAX_CLIENT_ATTRIB_STACK_DEPTH) - kStackRoom - integer(GL_CLIENT_ATTRIB_STACK_DEPTH);
         left > 0; --left)
        glPushClientAttrib(GL_CLIENT_PIXEL_STORE_BIT);
}

void startFeedback(GLenum mode) {
    static std::array<GLfloat, 1 << 12> fed;
    static std::array<GLuint, 1 << 12> selected;
    glFeedbackBuffer(1 << 12, GL_3D, fed.data());
    glSelectBuffer(1 << 12, selected.data());
    glRenderMode(mode);
}

void setStipple() {
    std::array<GLubyte, 128> pattern;
    for (std::size_t i = 0; i < pattern.size(); ++i)
        pattern[i] = i / 4 % 2 == 0 ? 0xCC : 0x33;
    glPolygonStipple(pattern.data());
    glEnable(GL_POLYGON_STIPPLE);
}

void generateCoordinates() {
    for (const GLenum axis : {GL_S, GL_T, GL_R})
        glTexGeni(axis, GL_TEXTURE_GEN_MODE, GL_OBJECT_LINEAR);
    for (const GLenum enable : {GL_TEXTURE_GEN_S, GL_TEXTURE_GEN_T, GL_TEXTURE_GEN_R})
        glEnable(enable);
}

void setLight(GLenum light) {
    const GLfloat red[4] = {1, 0.2f, 0.1f, 1}, place[4] = {-3, 2, 1, 0};
    glLightfv(light, GL_DIFFUSE, red);
    glLightfv(light, GL_POSITION, place);
    glEnable(light);
}

void setEmission() {
    const GLfloat color[4] = {0, 0, 0.7f, 1};
    glMaterialfv(GL_FRONT_AND_BACK, GL_EMISSION, color);
}

void setPlane(GLenum plane, GLdouble x, GLdouble y) {
    const GLdouble equation[4] = {x, y, 0, 0.13};
    glClipPlane(plane, equation);
    glEnable(plane);
}

void setFog() {
    glFogi(GL_FOG_MODE, GL_LINEAR);
    glFogf(GL_FOG_START, -3);
    glFogf(GL_FOG_END, 3);
    glEnable(GL_FOG);
}

void setStencil() {
    glEnable(GL_STENCIL_TEST);
    glStencilFunc(GL_EQUAL, 1, 1);
}

void blend(GLenum equation, GLenum source, GLenum destination) {
    glEnable(GL_BLEND);
    glBlendColor(0.3f, 0.6f, 0.2f, 0.5f);
    glBlendEquation(equation);
    glBlendFunc(source, destination);
}

const HostState kStates[] = {
    // --- region
    {"scissor", Region, [](Host) { glEnable(GL_SCISSOR_TEST), glScissor(9, 11, 40, 30); }},
    {"stencil test", Region, [](Host) { setStencil(); }},
    {"stencil operations", Region,
     [](Host) {
         glEnable(GL_STENCIL_TEST);
         glStencilFuncSeparate(GL_FRONT, GL_ALWAYS, 2, 0xF0);
         glStencilFuncSeparate(GL_BACK, GL_NOTEQUAL, 1, 1);
         glStencilOpSeparate(GL_BACK, GL_INCR, GL_DECR, GL_INVERT);
     }},
    {"stencil mask and clear value", Region, [](Host) { glStencilMask(0), glClearStencil(3); }},
    {"colour mask", Region, [](Host) { glColorMask(GL_TRUE, GL_FALSE, GL_TRUE, GL_FALSE); }},
    {"clear values", Region, [](Host) { glClearColor(1, 0, 1, 0), glClearDepth(0.2); }},
    {"no draw buffer", Region, [](Host) { glDrawBuffer(GL_NONE); }},
    {"no read buffer", Region, [](Host) { glReadBuffer(GL_NONE); }},
    {"rasterizer discard", Region, [](Host) { glEnable(GL_RASTERIZER_DISCARD); }, 30},
    {"conditional render", Region, [](Host host) { glBeginConditionalRender(host.query, GL_QUERY_WAIT); }, 30,
     Target::Window, [] { glEndConditionalRender(); }},
    {"render mode feedback", Region, [](Host) { startFeedback(GL_FEEDBACK); }},
    {"render mode select", Region, [](Host) { startFeedback(GL_SELECT); }},
    {"framebuffer sRGB", Region, [](Host) { glEnable(GL_FRAMEBUFFER_SRGB); }, 30, Target::Encoding},
    {"multisample off", Region, [](Host) { glDisable(GL_MULTISAMPLE); }, 30, Target::Multisampled},
    {"sample coverage", Region, [](Host) { glEnable(GL_SAMPLE_COVERAGE), glSampleCoverage(0.5f, GL_TRUE); },
     30, Target::Multisampled},
    {"alpha to coverage", Region, [](Host) { glEnable(GL_SAMPLE_ALPHA_TO_COVERAGE); }, 30,
     Target::Multisampled},
    {"sample mask", Region, [](Host) { glEnable(GL_SAMPLE_MASK), glSampleMaski(0, 5); }, 32,
     Target::Multisampled},
    // --- depth
    {"depth test off", Depth, [](Host) { glDisable(GL_DEPTH_TEST); }},
    {"depth function greater", Depth, [](Host) { glDepthFunc(GL_GREATER); }},
    {"depth function always", Depth, [](Host) { glDepthFunc(GL_ALWAYS); }},
    {"depth mask", Depth, [](Host) { glDepthMask(GL_FALSE); }},
    {"depth range", Depth, [](Host) { glDepthRange(0.9, 0.2); }},
    {"depth clamp", Depth, [](Host) { glEnable(GL_DEPTH_CLAMP); }, 32},
    {"polygon offset", Depth,
     [](Host) {
         for (const GLenum of : {GL_POLYGON_OFFSET_FILL, GL_POLYGON_OFFSET_LINE, GL_POLYGON_OFFSET_POINT})
             glEnable(of);
         glPolygonOffset(-1, -3e6f);
     }},
    // --- mixing
    {"blending: add", Mixing, [](Host) { blend(GL_FUNC_ADD, GL_ONE, GL_ONE); }},
    {"blending: reverse subtract", Mixing,
     [](Host) { blend(GL_FUNC_REVERSE_SUBTRACT, GL_CONSTANT_COLOR, GL_SRC_COLOR); }},
    {"blending: functions apart", Mixing,
     [](Host) {
         glEnable(GL_BLEND);
         glBlendEquationSeparate(GL_FUNC_ADD, GL_MAX);
         glBlendFuncSeparate(GL_ONE_MINUS_DST_COLOR, GL_ZERO, GL_ONE, GL_ONE);
     }},
    {"blend equation min, off", Mixing,
     [](Host) { glBlendEquation(GL_MIN), glBlendFunc(GL_ZERO, GL_SRC_ALPHA); }},
    {"logic operation", Mixing, [](Host) { glEnable(GL_COLOR_LOGIC_OP), glLogicOp(GL_INVERT); }},
    {"alpha test", Mixing, [](Host) { glEnable(GL_ALPHA_TEST), glAlphaFunc(GL_LESS, 0.9f); }},
    {"dither off", Plumbing, [](Host) { glDisable(GL_DITHER); }},
    {"colours unclamped", Plumbing,
     [](Host) {
         glClampColor(GL_CLAMP_FRAGMENT_COLOR, GL_FALSE);
         glClampColor(GL_CLAMP_READ_COLOR, GL_FALSE);
     },
     30},
    // --- faces
    {"polygon mode line", Faces, [](Host) { glPolygonMode(GL_FRONT_AND_BACK, GL_LINE); }},
    {"polygon mode point", Faces, [](Host) { glPolygonMode(GL_FRONT_AND_BACK, GL_POINT), glPointSize(2); }},
    {"front face clockwise", Faces, [](Host) { glFrontFace(GL_CW); }},
    {"cull front", Faces, [](Host) { glEnable(GL_CULL_FACE), glCullFace(GL_FRONT); }},
    {"cull back", Faces, [](Host) { glEnable(GL_CULL_FACE), glCullFace(GL_BACK); }},
    {"cull mode front, off", Faces, [](Host) { glCullFace(GL_FRONT); }},
    {"polygon stipple", Faces, [](Host) { setStipple(); }},
    {"polygon smooth", Faces, [](Host) { glEnable(GL_POLYGON_SMOOTH); }},
    {"provoking vertex first", Plumbing, [](Host) { glProvokingVertex(GL_FIRST_VERTEX_CONVENTION); }, 32},
    // --- strokes
    {"line width", Strokes, [](Host) { glLineWidth(5); }},
    {"line stipple", Strokes, [](Host) { glEnable(GL_LINE_STIPPLE), glLineStipple(2, 0x5A5A); }},
    {"line smooth", Strokes, [](Host) { glEnable(GL_LINE_SMOOTH); }},
    {"point size", Strokes, [](Host) { glPointSize(7); }},
    {"point smooth", Strokes, [](Host) { glEnable(GL_POINT_SMOOTH); }},
    {"point sprite", Strokes,
     [](Host) {
         glEnable(GL_POINT_SPRITE);
         glPointParameteri(GL_POINT_SPRITE_COORD_ORIGIN, GL_LOWER_LEFT);
         glTexEnvi(GL_POINT_SPRITE, GL_COORD_REPLACE, GL_TRUE);
     }},
    {"point size of programs", Strokes, [](Host) { glEnable(GL_PROGRAM_POINT_SIZE); }},
    {"point parameters", Strokes,
     [](Host) {
         const GLfloat attenuation[3] = {0, 0, 0.01f};
         glPointParameterfv(GL_POINT_DISTANCE_ATTENUATION, attenuation);
         glPointParameterf(GL_POINT_SIZE_MIN, 6);
     }},
    // --- clipping
    {"clip plane 0", Clipping, [](Host) { setPlane(GL_CLIP_PLANE0, 1, 0.4); }},
    {"clip plane 5", Clipping, [](Host) { setPlane(GL_CLIP_PLANE5, -0.3, 1); }},
    // --- lighting
    {"lighting off", Lighting, [](Host) { glDisable(GL_LIGHTING); }},
    {"light off", Lighting, [](Host) { glDisable(GL_LIGHT0); }},
    {"another light", Lighting, [](Host) { setLight(GL_LIGHT1); }},
    {"light model two side", Lighting, [](Host) { glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, GL_TRUE); }},
    {"light model local viewer", Lighting, [](Host) { glLightModeli(GL_LIGHT_MODEL_LOCAL_VIEWER, GL_TRUE); }},
    {"light model separate specular", Lighting,
     [](Host) { glLightModeli(GL_LIGHT_MODEL_COLOR_CONTROL, GL_SEPARATE_SPECULAR_COLOR); }},
    {"colour material off", Lighting, [](Host) { glDisable(GL_COLOR_MATERIAL); }},
    {"colour material emission", Lighting, [](Host) { glColorMaterial(GL_FRONT, GL_EMISSION); }},
    {"material", Lighting, [](Host) { setEmission(); }},
    {"normalize off", Lighting, [](Host) { glDisable(GL_NORMALIZE); }},
    {"rescale normal", Lighting, [](Host) { glDisable(GL_NORMALIZE), glEnable(GL_RESCALE_NORMAL); }},
    {"flat shading", Lighting, [](Host) { glShadeModel(GL_FLAT); }},
    {"colours of vertices unclamped", Lighting, [](Host) { glClampColor(GL_CLAMP_VERTEX_COLOR, GL_FALSE); },
     30},
    // --- textures
    {"texture 1D on", Textures, [](Host host) { enableTexture(GL_TEXTURE_1D, host.texture1D); }},
    {"texture 2D on", Textures, [](Host host) { enableTexture(GL_TEXTURE_2D, host.texture2D); }},
    {"texture 3D on", Textures, [](Host host) { enableTexture(GL_TEXTURE_3D, host.texture3D); }},
    {"texture cube on", Textures, [](Host host) { enableTexture(GL_TEXTURE_CUBE_MAP, host.cube); }},
    {"texture rectangle on", Textures, [](Host host) { enableTexture(GL_TEXTURE_RECTANGLE, host.rectangle); },
     31},
    {"texture of unit 1 on", Textures,
     [](Host host) { enableTexture(GL_TEXTURE_2D, host.texture2D, GL_TEXTURE1); }},
    {"texture environment decal", Textures,
     [](Host) { glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_DECAL); }},
    {"texture environment combine", Textures,
     [](Host host) {
         enableTexture(GL_TEXTURE_2D, host.texture2D);
         glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_COMBINE);
         glTexEnvi(GL_TEXTURE_ENV, GL_COMBINE_RGB, GL_ADD_SIGNED);
     }},
    {"texture level bias", Plumbing,
     [](Host) { glTexEnvf(GL_TEXTURE_FILTER_CONTROL, GL_TEXTURE_LOD_BIAS, 4); }},
    {"coordinates generated", Textures, [](Host) { generateCoordinates(); }},
    {"texture matrix", Textures,
     [](Host) {
         constexpr GLdouble matrix[16] = {-3, 1, 0, 0, 2, 5, 0, 0, 0, 0, 1, 0, 0.7, 0.2, 0, 1};
         replaceMatrix(GL_TEXTURE, matrix);
     }},
    // --- fog and current values
    {"fog", Fog, [](Host) { setFog(); }},
    {"colour sum", Fog, [](Host) { glEnable(GL_COLOR_SUM), glSecondaryColor3f(0.1f, 0.5f, 0.2f); }},
    {"current colour", Current, [](Host) { glColor4f(0.9f, 0.1f, 0.3f, 0.6f); }},
    {"current normal", Current, [](Host) { glNormal3f(0.7f, -0.6f, 0.4f); }},
    {"current coordinates", Current,
     [](Host) {
         glTexCoord4f(0.3f, 0.8f, 0.5f, 2);
         glMultiTexCoord2f(GL_TEXTURE1, 0.4f, 0.9f);
         glEdgeFlag(GL_FALSE);
     }},
    // --- programs
    {"program", Programs, [](Host host) { glUseProgram(host.program); }, 20},
    {"program pipeline", Programs, [](Host host) { glBindProgramPipeline(host.pipeline); }, 41},
    {"two sides of programs", Plumbing, [](Host) { glEnable(GL_VERTEX_PROGRAM_TWO_SIDE); }, 20},
    {"transform feedback object", Plumbing,
     [](Host host) { glBindTransformFeedback(GL_TRANSFORM_FEEDBACK, host.feedback); }, 40},
    // --- plumbing
    {"active unit 1", Plumbing, [](Host) { glActiveTexture(GL_TEXTURE1); }},
    {"active unit 5, textured", Plumbing,
     [](Host host) {
         glActiveTexture(GL_TEXTURE5);
         glBindTexture(GL_TEXTURE_2D, host.texture2D);
         glBindTexture(GL_TEXTURE_CUBE_MAP, host.cube);
     }},
    {"client active unit 1", Plumbing, [](Host) { glClientActiveTexture(GL_TEXTURE1); }},
    {"textures bound", Plumbing,
     [](Host host) {
         for (GLenum unit = 8; unit-- > 0;) {
             glActiveTexture(GL_TEXTURE0 + unit);
             glBindTexture(GL_TEXTURE_1D, host.texture1D);
             glBindTexture(GL_TEXTURE_2D, host.texture2D);
             glBindTexture(GL_TEXTURE_CUBE_MAP, host.cube);
         }
     }},
    {"samplers", Plumbing, [](Host host) { setSamplers(host.sampler); }, 33},
    {"matrix mode texture", Plumbing, [](Host) { glMatrixMode(GL_TEXTURE); }},
    {"matrix mode projection", Plumbing, [](Host) { glMatrixMode(GL_PROJECTION); }},
    {"unpack parameters", Plumbing,
     [](Host) {
         setPixelStore({GL_UNPACK_ALIGNMENT, GL_UNPACK_ROW_LENGTH, GL_UNPACK_SKIP_ROWS, GL_UNPACK_SKIP_PIXELS,
                        GL_UNPACK_IMAGE_HEIGHT, GL_UNPACK_SWAP_BYTES, GL_UNPACK_LSB_FIRST});
     }},
    {"pack parameters", Plumbing,
     [](Host) {
         setPixelStore({GL_PACK_ALIGNMENT, GL_PACK_ROW_LENGTH, GL_PACK_SKIP_ROWS, GL_PACK_SKIP_PIXELS,
                        GL_PACK_IMAGE_HEIGHT, GL_PACK_SWAP_BYTES, GL_PACK_LSB_FIRST});
     }},
    {"unpack buffer", Plumbing, [](Host host) { bindBuffers({GL_PIXEL_UNPACK_BUFFER}, host.buffer); }, 21},
    {"pack buffer", Plumbing, [](Host host) { bindBuffers({GL_PIXEL_PACK_BUFFER}, host.buffer); }, 21},
    {"array buffer", Plumbing, [](Host host) { bindBuffers({GL_ARRAY_BUFFER}, host.buffer); }, 15},
    {"element array buffer", Plumbing, [](Host host) { bindBuffers({GL_ELEMENT_ARRAY_BUFFER}, host.buffer); },
     15},
    {"texture, uniform and copy buffers", Plumbing,
     [](Host host) {
         bindBuffers({GL_TEXTURE_BUFFER, GL_UNIFORM_BUFFER, GL_COPY_READ_BUFFER, GL_COPY_WRITE_BUFFER},
                     host.buffer);
     },
     31},
    {"vertex array object", Plumbing, [](Host host) { glBindVertexArray(host.arrays); }, 30},
    {"client arrays", Plumbing, [](Host) { enableClientArrays(); }},
    {"attributes", Plumbing, [](Host host) { enableAttributes(host.buffer, 0); }, 20},
    {"attributes of instances", Plumbing, [](Host host) { enableAttributes(host.buffer, 1); }, 33},
    {"attribute values", Plumbing,
     [](Host) {
         for (GLuint attribute = 1; attribute < 12; ++attribute)
             glVertexAttrib4f(attribute, 0.3f, 0.9f, 0.1f, 0.4f);
     },
     20},
    {"primitive restart", Plumbing, [](Host) { glEnable(GL_PRIMITIVE_RESTART), glPrimitiveRestartIndex(2); },
     31},
    {"primitive restart, fixed index", Plumbing, [](Host) { glEnable(GL_PRIMITIVE_RESTART_FIXED_INDEX); },
     43},
    {"seamless cube maps", Plumbing, [](Host) { glEnable(GL_TEXTURE_CUBE_MAP_SEAMLESS); }, 32},
    {"pixel transfer", Plumbing,
     [](Host) {
         glPixelTransferf(GL_RED_SCALE, 0.3f);
         glPixelTransferf(GL_GREEN_SCALE, 2);
         glPixelTransferf(GL_BLUE_BIAS, 0.4f);
     }},
    {"pixel maps", Plumbing, [](Host) { glPixelTransferi(GL_MAP_COLOR, GL_TRUE); }},
    {"pixel zoom", Plumbing, [](Host) { glPixelZoom(2, -3); }},
    {"attribute stacks almost full", Plumbing, [](Host) { fillAttributeStacks(); }},
    {"model-view stack almost full", Plumbing,
     [](Host) { fillMatrixStack(GL_MODELVIEW, GL_MODELVIEW_STACK_DEPTH, GL_MAX_MODELVIEW_STACK_DEPTH); }},
    {"projection stack almost full", Plumbing,
     [](Host) { fillMatrixStack(GL_PROJECTION, GL_PROJECTION_STACK_DEPTH, GL_MAX_PROJECTION_STACK_DEPTH); }},
    {"texture stack almost full", Plumbing,
     [](Host) { fillMatrixStack(GL_TEXTURE, GL_TEXTURE_STACK_DEPTH, GL_MAX_TEXTURE_STACK_DEPTH); }},
};

} // namespace

std::span<const HostState> hostStates() {
    return kStates;
}

} // namespace nruview
