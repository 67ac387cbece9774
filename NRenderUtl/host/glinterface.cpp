// The GL interface: which capabilities the current context has, by number.
#include <array>
#include <charconv>
#include <cstdio>
#include <string_view>

#include "NRenderUtl/host/hostgl.h"
#include "NRenderUtl/host/hostutl.h"

namespace {

/// Versions as major * 10 + minor, for GLSL major * 100 + minor; 0 when there is none.
struct ContextVersions {
    int gl = 0, glsl = 0;
};

bool has(const char* extension) {
    return epoxy_has_gl_extension(extension);
}

bool hasCoreGeometryStage(const ContextVersions& v) {
    return v.gl >= 32 && v.glsl >= 150;
}

bool hasGeometryStage(const ContextVersions& v) {
    return hasCoreGeometryStage(v) || has("GL_ARB_geometry_shader4");
}

// Drivers without the extension run the same programs through the core stages.
bool hasGeometryStageExt(const ContextVersions& v) {
    return has("GL_EXT_geometry_shader4") || hasCoreGeometryStage(v);
}

bool hasVertexShader(const ContextVersions& v) {
    return v.gl >= 20 || (has("GL_ARB_shader_objects") && has("GL_ARB_vertex_shader"));
}

bool hasFragmentShader(const ContextVersions& v) {
    const bool objects = v.gl >= 20 || (has("GL_ARB_shader_objects") && has("GL_ARB_fragment_shader"));
    return objects && v.glsl >= 150;
}

bool hasFramebufferExt(const ContextVersions&) {
    return has("GL_EXT_framebuffer_object");
}

bool hasFramebufferArb(const ContextVersions& v) {
    return v.gl >= 30 || has("GL_ARB_framebuffer_object");
}

bool hasGL30(const ContextVersions& v) {
    return v.gl >= 30;
}

bool hasBufferObjects(const ContextVersions& v) {
    return v.gl >= 15 || has("GL_ARB_vertex_buffer_object");
}

bool hasTextureBufferObjects(const ContextVersions& v) {
    return v.gl >= 31 || has("GL_ARB_texture_buffer_object") || has("GL_EXT_texture_buffer_object");
}

using Predicate = bool (*)(const ContextVersions&);
constexpr std::array<Predicate, GLeeCapabilityCount> kPredicates = {
    hasGeometryStage,  hasGeometryStageExt, hasVertexShader,
    hasFragmentShader, hasFramebufferExt,   hasFramebufferArb,
    hasGL30,           hasBufferObjects,    hasTextureBufferObjects,
};

struct GLInterfaceState {
    std::array<bool, GLeeCapabilityCount> enabled{};
};

GLInterfaceState& state() {
    static GLInterfaceState state;
    return state;
}

// Asked only where the name exists: elsewhere the query would leave a GL error behind.
int glslVersion(int version) {
    if (version < 20 && !has("GL_ARB_shading_language_100"))
        return 0;
    const GLubyte* text = glGetString(GL_SHADING_LANGUAGE_VERSION);
    int major = 0, minor = 0;
    if (text == nullptr || std::sscanf(reinterpret_cast<const char*>(text), "%d.%d", &major, &minor) != 2)
        return 0;
    return major * 100 + minor;
}

} // namespace

int glVersion() {
    const auto* text = reinterpret_cast<const char*>(glGetString(GL_VERSION));
    if (text == nullptr)
        return 0;
    const std::string_view version(text);
    const char* end = version.data() + version.size();
    int major = 0, minor = 0;
    const auto [dot, failure] = std::from_chars(version.data(), end, major);
    if (failure == std::errc() && dot != end)
        std::from_chars(dot + 1, end, minor);
    return major * 10 + minor;
}

int GLeeInit() {
    GLInterfaceState& gl = state();
    gl.enabled = {};
    if (!glContextIsCurrent())
        return 0;
    ContextVersions versions;
    versions.gl = glVersion();
    versions.glsl = glslVersion(versions.gl);
    for (std::size_t i = 0; i < kPredicates.size(); ++i)
        gl.enabled[i] = kPredicates[i](versions);
    return 0;
}

bool GLeeEnabled(int capability) {
    return capability >= 0 && capability < GLeeCapabilityCount && state().enabled[capability];
}

bool glContextIsCurrent() {
    return !hostThreadIsEnding() && glVersion() != 0;
}
