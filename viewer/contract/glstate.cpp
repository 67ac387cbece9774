#include "viewer/contract/glstate.h"

#include <epoxy/gl.h>

#include <algorithm>
#include <cstdint>
#include <sstream>

namespace nruview {

namespace {

struct Group {
    std::string_view name;
    std::vector<GLenum> queries;
    int version = 0; ///< 10 times major plus minor
};

const Group kGroups[] = {
    {"fragment enable",
     {GL_ALPHA_TEST, GL_BLEND, GL_COLOR_LOGIC_OP, GL_DEPTH_TEST, GL_DITHER, GL_FOG, GL_INDEX_LOGIC_OP,
      GL_SCISSOR_TEST, GL_STENCIL_TEST}},
    {"fragment enable",
     {GL_COLOR_SUM, GL_MULTISAMPLE, GL_SAMPLE_ALPHA_TO_COVERAGE, GL_SAMPLE_ALPHA_TO_ONE, GL_SAMPLE_COVERAGE},
     14},
    {"fragment enable", {GL_FRAMEBUFFER_SRGB, GL_RASTERIZER_DISCARD}, 30},
    {"fragment enable", {GL_DEPTH_CLAMP, GL_SAMPLE_MASK, GL_TEXTURE_CUBE_MAP_SEAMLESS}, 32},
    {"shape enable",
     {GL_CULL_FACE, GL_LINE_SMOOTH, GL_LINE_STIPPLE, GL_POINT_SMOOTH, GL_POLYGON_OFFSET_FILL,
      GL_POLYGON_OFFSET_LINE, GL_POLYGON_OFFSET_POINT, GL_POLYGON_SMOOTH, GL_POLYGON_STIPPLE,
      GL_AUTO_NORMAL}},
    {"shape enable", {GL_POINT_SPRITE, GL_PROGRAM_POINT_SIZE, GL_VERTEX_PROGRAM_TWO_SIDE}, 20},
    {"lighting enable", {GL_LIGHTING, GL_COLOR_MATERIAL, GL_NORMALIZE, GL_RESCALE_NORMAL}},
    {"binding",
     {GL_ACTIVE_TEXTURE, GL_ARRAY_BUFFER_BINDING, GL_ELEMENT_ARRAY_BUFFER_BINDING, GL_CLIENT_ACTIVE_TEXTURE},
     15},
    {"binding", {GL_CURRENT_PROGRAM, GL_PIXEL_PACK_BUFFER_BINDING, GL_PIXEL_UNPACK_BUFFER_BINDING}, 21},
    {"binding",
     {GL_DRAW_FRAMEBUFFER_BINDING, GL_READ_FRAMEBUFFER_BINDING, GL_RENDERBUFFER_BINDING,
      GL_VERTEX_ARRAY_BINDING, GL_TRANSFORM_FEEDBACK_BUFFER_BINDING},
     30},
    {"binding",
     {GL_PRIMITIVE_RESTART, GL_PRIMITIVE_RESTART_INDEX, GL_TEXTURE_BUFFER, GL_UNIFORM_BUFFER_BINDING,
      GL_COPY_READ_BUFFER, GL_COPY_WRITE_BUFFER},
     31},
    {"binding", {GL_PROVOKING_VERTEX}, 32},
    {"binding", {GL_PROGRAM_PIPELINE_BINDING, GL_TRANSFORM_FEEDBACK_BINDING}, 41},
    {"binding", {GL_PRIMITIVE_RESTART_FIXED_INDEX}, 43},
    {"current value", {GL_CURRENT_COLOR, GL_CURRENT_NORMAL, GL_EDGE_FLAG, GL_CURRENT_RASTER_POSITION}},
    {"current value", {GL_CURRENT_SECONDARY_COLOR, GL_CURRENT_FOG_COORD}, 14},
    {"fragment operation",
     {GL_ALPHA_TEST_FUNC,
      GL_ALPHA_TEST_REF,
      GL_COLOR_CLEAR_VALUE,
      GL_COLOR_WRITEMASK,
      GL_DEPTH_CLEAR_VALUE,
      GL_DEPTH_FUNC,
      GL_DEPTH_RANGE,
      GL_DEPTH_WRITEMASK,
      GL_LOGIC_OP_MODE,
      GL_SCISSOR_BOX,
      GL_STENCIL_CLEAR_VALUE,
      GL_STENCIL_FAIL,
      GL_STENCIL_FUNC,
      GL_STENCIL_PASS_DEPTH_FAIL,
      GL_STENCIL_PASS_DEPTH_PASS,
      GL_STENCIL_REF,
      GL_STENCIL_VALUE_MASK,
      GL_STENCIL_WRITEMASK,
      GL_FOG_COLOR,
      GL_FOG_DENSITY,
      GL_FOG_END,
      GL_FOG_MODE,
      GL_FOG_START}},
    {"fragment operation",
     {GL_BLEND_COLOR, GL_BLEND_SRC_RGB, GL_BLEND_DST_RGB, GL_BLEND_SRC_ALPHA, GL_BLEND_DST_ALPHA,
      GL_BLEND_EQUATION_RGB, GL_BLEND_EQUATION_ALPHA, GL_SAMPLE_COVERAGE_INVERT, GL_SAMPLE_COVERAGE_VALUE,
      GL_STENCIL_BACK_FAIL, GL_STENCIL_BACK_FUNC, GL_STENCIL_BACK_PASS_DEPTH_FAIL,
      GL_STENCIL_BACK_PASS_DEPTH_PASS, GL_STENCIL_BACK_REF, GL_STENCIL_BACK_VALUE_MASK,
      GL_STENCIL_BACK_WRITEMASK},
     20},
    {"fragment operation", {GL_CLAMP_FRAGMENT_COLOR, GL_CLAMP_READ_COLOR, GL_CLAMP_VERTEX_COLOR}, 30},
    {"shape and shading",
     {GL_COLOR_MATERIAL_FACE, GL_COLOR_MATERIAL_PARAMETER, GL_CULL_FACE_MODE, GL_FRONT_FACE,
      GL_LIGHT_MODEL_AMBIENT, GL_LIGHT_MODEL_COLOR_CONTROL, GL_LIGHT_MODEL_LOCAL_VIEWER,
      GL_LIGHT_MODEL_TWO_SIDE, GL_LINE_STIPPLE_PATTERN, GL_LINE_STIPPLE_REPEAT, GL_LINE_WIDTH, GL_POINT_SIZE,
      GL_POLYGON_MODE, GL_POLYGON_OFFSET_FACTOR, GL_POLYGON_OFFSET_UNITS, GL_SHADE_MODEL}},
    {"shape and shading",
     {GL_POINT_DISTANCE_ATTENUATION, GL_POINT_FADE_THRESHOLD_SIZE, GL_POINT_SIZE_MAX, GL_POINT_SIZE_MIN},
     14},
    {"shape and shading", {GL_POINT_SPRITE_COORD_ORIGIN}, 20},
    {"buffer and pixel store",
     {GL_DRAW_BUFFER, GL_READ_BUFFER, GL_RENDER_MODE, GL_PACK_ALIGNMENT, GL_PACK_IMAGE_HEIGHT,
      GL_PACK_LSB_FIRST, GL_PACK_ROW_LENGTH, GL_PACK_SKIP_IMAGES, GL_PACK_SKIP_PIXELS, GL_PACK_SKIP_ROWS,
      GL_PACK_SWAP_BYTES, GL_UNPACK_ALIGNMENT, GL_UNPACK_IMAGE_HEIGHT, GL_UNPACK_LSB_FIRST,
      GL_UNPACK_ROW_LENGTH, GL_UNPACK_SKIP_IMAGES, GL_UNPACK_SKIP_PIXELS, GL_UNPACK_SKIP_ROWS,
      GL_UNPACK_SWAP_BYTES}},
    {"pixel transfer",
     {GL_ALPHA_BIAS, GL_ALPHA_SCALE, GL_BLUE_BIAS, GL_BLUE_SCALE, GL_DEPTH_BIAS, GL_DEPTH_SCALE,
      GL_GREEN_BIAS, GL_GREEN_SCALE, GL_INDEX_OFFSET, GL_INDEX_SHIFT, GL_MAP_COLOR, GL_MAP_STENCIL,
      GL_RED_BIAS, GL_RED_SCALE, GL_ZOOM_X, GL_ZOOM_Y}},
    {"stack",
     {GL_ATTRIB_STACK_DEPTH, GL_CLIENT_ATTRIB_STACK_DEPTH, GL_MATRIX_MODE, GL_MODELVIEW_STACK_DEPTH,
      GL_PROJECTION_STACK_DEPTH, GL_NAME_STACK_DEPTH}},
    {"modelview", {GL_MODELVIEW_MATRIX}},
    {"projection", {GL_PROJECTION_MATRIX}},
    {"viewport", {GL_VIEWPORT}},
    {"list", {GL_LIST_BASE, GL_LIST_INDEX}}};

int version() {
    return epoxy_gl_version();
}

int integer(GLenum name) {
    GLint value = 0;
    glGetIntegerv(name, &value);
    return value;
}

/// Bindings and, as far as fixed function has the unit, enables of one kind of texture.
struct TextureTarget {
    GLenum enable; ///< 0: known to programs alone
    GLenum binding;
    int version;
};

constexpr TextureTarget kTargets[] = {{GL_TEXTURE_1D, GL_TEXTURE_BINDING_1D, 0},
                                      {GL_TEXTURE_2D, GL_TEXTURE_BINDING_2D, 0},
                                      {GL_TEXTURE_3D, GL_TEXTURE_BINDING_3D, 12},
                                      {GL_TEXTURE_CUBE_MAP, GL_TEXTURE_BINDING_CUBE_MAP, 13},
                                      {GL_TEXTURE_RECTANGLE, GL_TEXTURE_BINDING_RECTANGLE, 31},
                                      {0, GL_TEXTURE_BINDING_1D_ARRAY, 30},
                                      {0, GL_TEXTURE_BINDING_2D_ARRAY, 30},
                                      {0, GL_TEXTURE_BINDING_BUFFER, 31},
                                      {0, GL_SAMPLER_BINDING, 33}};

constexpr GLenum kEnvironment[] = {GL_TEXTURE_ENV_MODE, GL_TEXTURE_ENV_COLOR, GL_COMBINE_RGB,
                                   GL_COMBINE_ALPHA,    GL_SRC0_RGB,          GL_OPERAND0_RGB,
                                   GL_RGB_SCALE,        GL_ALPHA_SCALE};
constexpr GLenum kClientArrays[] = {GL_VERTEX_ARRAY,   GL_NORMAL_ARRAY,    GL_COLOR_ARRAY,
                                    GL_INDEX_ARRAY,    GL_EDGE_FLAG_ARRAY, GL_SECONDARY_COLOR_ARRAY,
                                    GL_FOG_COORD_ARRAY};
constexpr GLenum kArrayPointers[] = {GL_VERTEX_ARRAY_POINTER, GL_NORMAL_ARRAY_POINTER, GL_COLOR_ARRAY_POINTER,
                                     GL_EDGE_FLAG_ARRAY_POINTER};
constexpr GLenum kArrayFormats[] = {GL_VERTEX_ARRAY_SIZE,
                                    GL_VERTEX_ARRAY_TYPE,
                                    GL_VERTEX_ARRAY_STRIDE,
                                    GL_NORMAL_ARRAY_TYPE,
                                    GL_COLOR_ARRAY_SIZE,
                                    GL_COLOR_ARRAY_TYPE,
                                    GL_COLOR_ARRAY_STRIDE,
                                    GL_VERTEX_ARRAY_BUFFER_BINDING,
                                    GL_NORMAL_ARRAY_BUFFER_BINDING,
                                    GL_COLOR_ARRAY_BUFFER_BINDING};
constexpr GLenum kAttributes[] = {GL_VERTEX_ATTRIB_ARRAY_ENABLED,    GL_VERTEX_ATTRIB_ARRAY_SIZE,
                                  GL_VERTEX_ATTRIB_ARRAY_STRIDE,     GL_VERTEX_ATTRIB_ARRAY_TYPE,
                                  GL_VERTEX_ATTRIB_ARRAY_NORMALIZED, GL_VERTEX_ATTRIB_ARRAY_BUFFER_BINDING,
                                  GL_CURRENT_VERTEX_ATTRIB};
constexpr GLenum kLight[] = {GL_AMBIENT,
                             GL_DIFFUSE,
                             GL_SPECULAR,
                             GL_POSITION,
                             GL_SPOT_CUTOFF,
                             GL_CONSTANT_ATTENUATION,
                             GL_LINEAR_ATTENUATION,
                             GL_QUADRATIC_ATTENUATION};
constexpr GLenum kMaterial[] = {GL_AMBIENT, GL_DIFFUSE, GL_SPECULAR, GL_EMISSION, GL_SHININESS};

double addressOf(const void* pointer) {
    return static_cast<double>(reinterpret_cast<std::uintptr_t>(pointer));
}

} // namespace

std::string GlStateChange::text() const {
    std::ostringstream out;
    out << key.group << " 0x" << std::hex << std::uppercase << key.name << std::dec;
    if (key.index != 0)
        out << " of " << key.index;
    if (component != 0)
        out << '[' << component << ']';
    out << ": " << before << " became " << after;
    return out.str();
}

GlState GlState::take() {
    GlState state;
    state.readValues();
    state.readLights();
    state.readPlanes();
    state.readArrays();
    state.readUnits();
    state.readClientUnits();
    state.readAttributes();
    return state;
}

std::vector<GlStateChange> GlState::changesTo(const GlState& after) const {
    std::vector<GlStateChange> changes;
    for (const auto& [key, was] : m_values) {
        const Values& is = after.m_values.at(key);
        const auto [a, b] = std::mismatch(was.begin(), was.end(), is.begin());
        if (a != was.end())
            changes.push_back({key, static_cast<int>(a - was.begin()), *a, *b});
    }
    return changes;
}

void GlState::readValues() {
    for (const auto& [group, queries, since] : kGroups)
        if (version() >= since)
            for (const GLenum query : queries)
                glGetDoublev(query, at(group, query).data());
}

void GlState::readLights() {
    for (GLuint i = 0; i < 8; ++i) {
        glGetDoublev(GL_LIGHT0 + i, at("lighting enable", GL_LIGHT0, i).data());
        for (const GLenum name : kLight) {
            GLfloat values[4] = {};
            glGetLightfv(GL_LIGHT0 + i, name, values);
            std::copy_n(values, 4, at("light", name, i).begin());
        }
    }
    for (const GLenum face : {GL_FRONT, GL_BACK})
        for (const GLenum name : kMaterial) {
            GLfloat values[4] = {};
            glGetMaterialfv(face, name, values);
            std::copy_n(values, 4, at("material", name, face == GL_BACK).begin());
        }
}

void GlState::readPlanes() {
    for (GLuint i = 0, count = static_cast<GLuint>(integer(GL_MAX_CLIP_PLANES)); i < count; ++i) {
        glGetDoublev(GL_CLIP_PLANE0 + i, at("shape enable", GL_CLIP_PLANE0, i).data());
        glGetClipPlane(GL_CLIP_PLANE0 + i, at("clip plane", GL_CLIP_PLANE0, i).data());
    }
}

void GlState::readArrays() {
    for (const GLenum array : kClientArrays)
        glGetDoublev(array, at("client array", array).data());
    for (const GLenum format : kArrayFormats)
        glGetDoublev(format, at("client array", format).data());
    for (const GLenum query : kArrayPointers) {
        GLvoid* pointer = nullptr;
        glGetPointerv(query, &pointer);
        at("client array", query)[0] = addressOf(pointer);
    }
}

void GlState::readUnits() {
    const int active = integer(GL_ACTIVE_TEXTURE);
    const int fixed = integer(GL_MAX_TEXTURE_UNITS);
    const int coordinates = version() >= 20 ? integer(GL_MAX_TEXTURE_COORDS) : fixed;
    const int images = version() >= 20 ? integer(GL_MAX_TEXTURE_IMAGE_UNITS) : fixed;
    for (GLuint unit = 0; unit < static_cast<GLuint>(std::max(fixed, images)); ++unit) {
        glActiveTexture(GL_TEXTURE0 + unit);
        const bool isFixed = unit < static_cast<GLuint>(fixed);
        for (const auto& [enable, binding, since] : kTargets) {
            if (version() < since)
                continue;
            glGetDoublev(binding, at("binding", binding, unit).data());
            if (enable != 0 && isFixed)
                glGetDoublev(enable, at("fragment enable", enable, unit).data());
        }
        if (unit < static_cast<GLuint>(coordinates)) {
            glGetDoublev(GL_CURRENT_TEXTURE_COORDS,
                         at("current value", GL_CURRENT_TEXTURE_COORDS, unit).data());
            glGetDoublev(GL_TEXTURE_MATRIX, at("texture matrix", GL_TEXTURE_MATRIX, unit).data());
            glGetDoublev(GL_TEXTURE_STACK_DEPTH, at("stack", GL_TEXTURE_STACK_DEPTH, unit).data());
            for (const GLenum generated :
                 {GL_TEXTURE_GEN_S, GL_TEXTURE_GEN_T, GL_TEXTURE_GEN_R, GL_TEXTURE_GEN_Q})
                glGetDoublev(generated, at("fragment enable", generated, unit).data());
        }
        if (isFixed)
            for (const GLenum name : kEnvironment) {
                GLfloat values[4] = {};
                glGetTexEnvfv(GL_TEXTURE_ENV, name, values);
                std::copy_n(values, 4, at("texture environment", name, unit).begin());
            }
    }
    glActiveTexture(static_cast<GLenum>(active));
}

void GlState::readClientUnits() {
    const int active = integer(GL_CLIENT_ACTIVE_TEXTURE);
    for (GLuint unit = 0, count = static_cast<GLuint>(integer(GL_MAX_TEXTURE_UNITS)); unit < count; ++unit) {
        glClientActiveTexture(GL_TEXTURE0 + unit);
        glGetDoublev(GL_TEXTURE_COORD_ARRAY, at("client array", GL_TEXTURE_COORD_ARRAY, unit).data());
        GLvoid* pointer = nullptr;
        glGetPointerv(GL_TEXTURE_COORD_ARRAY_POINTER, &pointer);
        at("client array", GL_TEXTURE_COORD_ARRAY_POINTER, unit)[0] = addressOf(pointer);
    }
    glClientActiveTexture(static_cast<GLenum>(active));
}

/// Attribute 0 has no current value of its own: it is the vertex.
void GlState::readAttributes() {
    if (version() < 20)
        return;
    for (GLuint i = 0, count = static_cast<GLuint>(integer(GL_MAX_VERTEX_ATTRIBS)); i < count; ++i) {
        for (const GLenum name : kAttributes)
            if (i != 0 || name != GL_CURRENT_VERTEX_ATTRIB)
                glGetVertexAttribdv(i, name, at("attribute", name, i).data());
        if (version() >= 33)
            glGetVertexAttribdv(i, GL_VERTEX_ATTRIB_ARRAY_DIVISOR,
                                at("attribute", GL_VERTEX_ATTRIB_ARRAY_DIVISOR, i).data());
        GLvoid* pointer = nullptr;
        glGetVertexAttribPointerv(i, GL_VERTEX_ATTRIB_ARRAY_POINTER, &pointer);
        at("attribute", GL_VERTEX_ATTRIB_ARRAY_POINTER, i)[0] = addressOf(pointer);
    }
}

} // namespace nruview
