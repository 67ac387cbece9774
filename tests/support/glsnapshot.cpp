#include "tests/support/glsnapshot.h"

#include <algorithm>

#include "tests/support/gltest.h"

namespace nrutest {

namespace {

const std::pair<const char*, std::vector<GLenum>> kGroups[] = {
    {"fragment enable",
     {GL_ALPHA_TEST, GL_BLEND, GL_COLOR_LOGIC_OP, GL_DEPTH_TEST, GL_DITHER, GL_FRAMEBUFFER_SRGB,
      GL_SCISSOR_TEST, GL_STENCIL_TEST, GL_TEXTURE_1D, GL_TEXTURE_2D}},
    {"shape enable",
     {GL_CULL_FACE, GL_LINE_SMOOTH, GL_LINE_STIPPLE, GL_POINT_SMOOTH, GL_POLYGON_OFFSET_FILL,
      GL_POLYGON_STIPPLE, GL_CLIP_PLANE0}},
    {"lighting enable",
     {GL_LIGHTING, GL_LIGHT0, GL_LIGHT1, GL_LIGHT2, GL_COLOR_MATERIAL, GL_NORMALIZE, GL_RESCALE_NORMAL}},
    {"client array", {GL_VERTEX_ARRAY, GL_NORMAL_ARRAY, GL_COLOR_ARRAY, GL_TEXTURE_COORD_ARRAY}},
    {"binding",
     {GL_ACTIVE_TEXTURE, GL_ARRAY_BUFFER_BINDING, GL_CURRENT_PROGRAM, GL_ELEMENT_ARRAY_BUFFER_BINDING,
      GL_FRAMEBUFFER_BINDING, GL_TEXTURE_BINDING_1D, GL_TEXTURE_BINDING_2D, GL_VERTEX_ARRAY_BINDING}},
    {"current value", {GL_CURRENT_COLOR, GL_CURRENT_NORMAL, GL_CURRENT_TEXTURE_COORDS}},
    {"fragment operation",
     {GL_BLEND_SRC, GL_BLEND_DST, GL_COLOR_WRITEMASK, GL_DEPTH_FUNC, GL_DEPTH_WRITEMASK, GL_LOGIC_OP_MODE,
      GL_SCISSOR_BOX, GL_STENCIL_BACK_FAIL, GL_STENCIL_BACK_FUNC, GL_STENCIL_CLEAR_VALUE, GL_STENCIL_FAIL,
      GL_STENCIL_FUNC, GL_STENCIL_PASS_DEPTH_FAIL, GL_STENCIL_PASS_DEPTH_PASS, GL_STENCIL_REF,
      GL_STENCIL_VALUE_MASK, GL_STENCIL_WRITEMASK}},
    {"shape and shading",
     {GL_FRONT_FACE, GL_LIGHT_MODEL_AMBIENT, GL_LIGHT_MODEL_TWO_SIDE, GL_LINE_WIDTH, GL_POINT_SIZE,
      GL_POLYGON_MODE, GL_SHADE_MODEL}},
    {"buffer and pixel store", {GL_DRAW_BUFFER, GL_READ_BUFFER, GL_PACK_ALIGNMENT, GL_UNPACK_ALIGNMENT}},
    {"stack",
     {GL_ATTRIB_STACK_DEPTH, GL_CLIENT_ATTRIB_STACK_DEPTH, GL_MATRIX_MODE, GL_MODELVIEW_STACK_DEPTH,
      GL_PROJECTION_STACK_DEPTH}},
    {"modelview", {GL_MODELVIEW_MATRIX}},
    {"projection", {GL_PROJECTION_MATRIX}},
    {"texture matrix", {GL_TEXTURE_MATRIX}},
    {"viewport", {GL_VIEWPORT}}};

/// Queries that only a driver with the feature answers.
bool isAvailable(GLenum query) {
    if (query == GL_VERTEX_ARRAY_BINDING || query == GL_FRAMEBUFFER_SRGB)
        return epoxy_gl_version() >= 30;
    if (query == GL_FRAMEBUFFER_BINDING)
        return epoxy_gl_version() >= 30 || epoxy_has_gl_extension("GL_EXT_framebuffer_object");
    const bool isSinceGl20 =
        query == GL_CURRENT_PROGRAM || query == GL_STENCIL_BACK_FAIL || query == GL_STENCIL_BACK_FUNC;
    return !isSinceGl20 || epoxy_gl_version() >= 20;
}

} // namespace

GlSnapshot GlSnapshot::take() {
    GlSnapshot snapshot;
    for (const auto& [group, queries] : kGroups)
        for (const GLenum query : queries)
            if (isAvailable(query))
                glGetDoublev(query, snapshot.m_values[{group, query}].data());
    return snapshot;
}

::testing::AssertionResult GlSnapshot::equals(const GlSnapshot& other,
                                              const std::vector<std::string>& except) const {
    ::testing::AssertionResult result = ::testing::AssertionSuccess();
    for (const auto& [key, before] : m_values) {
        const auto& [group, query] = key;
        const auto& after = other.m_values.at(key);
        if (before == after || std::find(except.begin(), except.end(), group) != except.end())
            continue;
        result = result ? ::testing::AssertionFailure() << "GL state differs:" : result;
        const std::size_t i =
            std::mismatch(before.begin(), before.end(), after.begin()).first - before.begin();
        result << "\n  " << group << " " << hex(query) << "[" << i << "]: " << before[i] << " became "
               << after[i];
    }
    return result;
}

} // namespace nrutest
