#include "tests/support/glsnapshot.h"

#include <epoxy/gl.h>

#include <algorithm>
#include <array>
#include <sstream>

namespace nrutest {

namespace {

struct NamedValue {
    const char* name;
    GLenum query;
    int count;
};

constexpr NamedValue kEnables[] = {
    {"alpha test", GL_ALPHA_TEST, 1},
    {"blend", GL_BLEND, 1},
    {"color logic op", GL_COLOR_LOGIC_OP, 1},
    {"color material", GL_COLOR_MATERIAL, 1},
    {"cull face", GL_CULL_FACE, 1},
    {"depth test", GL_DEPTH_TEST, 1},
    {"dither", GL_DITHER, 1},
    {"lighting", GL_LIGHTING, 1},
    {"line smooth", GL_LINE_SMOOTH, 1},
    {"line stipple", GL_LINE_STIPPLE, 1},
    {"normalize", GL_NORMALIZE, 1},
    {"point smooth", GL_POINT_SMOOTH, 1},
    {"polygon offset fill", GL_POLYGON_OFFSET_FILL, 1},
    {"polygon stipple", GL_POLYGON_STIPPLE, 1},
    {"rescale normal", GL_RESCALE_NORMAL, 1},
    {"scissor test", GL_SCISSOR_TEST, 1},
    {"stencil test", GL_STENCIL_TEST, 1},
    {"texture 1D", GL_TEXTURE_1D, 1},
    {"texture 2D", GL_TEXTURE_2D, 1},
    {"vertex array", GL_VERTEX_ARRAY, 1},
    {"normal array", GL_NORMAL_ARRAY, 1},
    {"color array", GL_COLOR_ARRAY, 1},
    {"texture coordinate array", GL_TEXTURE_COORD_ARRAY, 1},
    {"light 0", GL_LIGHT0, 1},
    {"light 1", GL_LIGHT1, 1},
    {"light 2", GL_LIGHT2, 1},
    {"clip plane 0", GL_CLIP_PLANE0, 1},
};

constexpr NamedValue kValues[] = {
    {"active texture", GL_ACTIVE_TEXTURE, 1},
    {"array buffer", GL_ARRAY_BUFFER_BINDING, 1},
    {"attribute stack depth", GL_ATTRIB_STACK_DEPTH, 1},
    {"blend source", GL_BLEND_SRC, 1},
    {"blend destination", GL_BLEND_DST, 1},
    {"client attribute stack depth", GL_CLIENT_ATTRIB_STACK_DEPTH, 1},
    {"color mask", GL_COLOR_WRITEMASK, 4},
    {"current color", GL_CURRENT_COLOR, 4},
    {"current normal", GL_CURRENT_NORMAL, 3},
    {"current texture coordinate", GL_CURRENT_TEXTURE_COORDS, 4},
    {"depth function", GL_DEPTH_FUNC, 1},
    {"depth mask", GL_DEPTH_WRITEMASK, 1},
    {"draw buffer", GL_DRAW_BUFFER, 1},
    {"element array buffer", GL_ELEMENT_ARRAY_BUFFER_BINDING, 1},
    {"framebuffer", GL_FRAMEBUFFER_BINDING, 1},
    {"light model ambient", GL_LIGHT_MODEL_AMBIENT, 4},
    {"light model two side", GL_LIGHT_MODEL_TWO_SIDE, 1},
    {"line width", GL_LINE_WIDTH, 1},
    {"logic op mode", GL_LOGIC_OP_MODE, 1},
    {"matrix mode", GL_MATRIX_MODE, 1},
    {"modelview", GL_MODELVIEW_MATRIX, 16},
    {"modelview depth", GL_MODELVIEW_STACK_DEPTH, 1},
    {"pack alignment", GL_PACK_ALIGNMENT, 1},
    {"point size", GL_POINT_SIZE, 1},
    {"polygon mode", GL_POLYGON_MODE, 2},
    {"program", GL_CURRENT_PROGRAM, 1},
    {"projection", GL_PROJECTION_MATRIX, 16},
    {"projection depth", GL_PROJECTION_STACK_DEPTH, 1},
    {"read buffer", GL_READ_BUFFER, 1},
    {"scissor box", GL_SCISSOR_BOX, 4},
    {"shade model", GL_SHADE_MODEL, 1},
    {"stencil function", GL_STENCIL_FUNC, 1},
    {"texture matrix", GL_TEXTURE_MATRIX, 16},
    {"texture 1D binding", GL_TEXTURE_BINDING_1D, 1},
    {"texture 2D binding", GL_TEXTURE_BINDING_2D, 1},
    {"unpack alignment", GL_UNPACK_ALIGNMENT, 1},
    {"vertex array object", GL_VERTEX_ARRAY_BINDING, 1},
    {"viewport", GL_VIEWPORT, 4},
};

/// Queries that only a driver with the feature answers.
bool isAvailable(GLenum query) {
    if (query == GL_VERTEX_ARRAY_BINDING)
        return epoxy_gl_version() >= 30;
    if (query == GL_FRAMEBUFFER_BINDING)
        return epoxy_gl_version() >= 30 || epoxy_has_gl_extension("GL_EXT_framebuffer_object");
    return query != GL_CURRENT_PROGRAM || epoxy_gl_version() >= 20;
}

} // namespace

GlSnapshot GlSnapshot::take() {
    GlSnapshot snapshot;
    for (const NamedValue& enable : kEnables)
        snapshot.m_values[enable.name] = {static_cast<double>(glIsEnabled(enable.query))};
    for (const NamedValue& value : kValues) {
        if (!isAvailable(value.query))
            continue;
        std::array<double, 16> read{};
        glGetDoublev(value.query, read.data());
        snapshot.m_values[value.name] = std::vector<double>(read.begin(), read.begin() + value.count);
    }
    return snapshot;
}

::testing::AssertionResult GlSnapshot::equals(const GlSnapshot& other,
                                              const std::vector<std::string>& except) const {
    std::ostringstream differences;
    for (const auto& [name, values] : m_values) {
        const auto found = other.m_values.find(name);
        if (found == other.m_values.end() || found->second == values ||
            std::find(except.begin(), except.end(), name) != except.end())
            continue;
        differences << "\n  " << name << ":";
        for (double v : values)
            differences << ' ' << v;
        differences << " became";
        for (double v : found->second)
            differences << ' ' << v;
    }
    if (differences.str().empty())
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "GL state differs:" << differences.str();
}

} // namespace nrutest
