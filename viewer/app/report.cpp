// The driver's own words and the library's; nothing here guesses.
#include "viewer/app/report.h"

#include <epoxy/gl.h>
#include <sys/utsname.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <utility>
#include <vector>

#include "viewer/app/messages.h"
#include "viewer/app/offscreen.h"
#include "viewer/contract/frames.h"
#include "viewer/contract/routes.h"
#include "viewer/error.h"
#include "viewer/scene/frame.h"

extern char** environ;

namespace nruview {

namespace {

constexpr std::array<const char*, 9> kCapabilities = {
    "geometry stages (GLSL 1.50 or ARB_geometry_shader4)",
    "geometry stages (EXT_geometry_shader4 or core)",
    "vertex shaders",
    "fragment shaders with GLSL 1.50",
    "EXT_framebuffer_object",
    "ARB_framebuffer_object",
    "OpenGL 3.0",
    "buffer objects",
    "texture buffer objects",
};

void reportMachine(std::ostream& out) {
    utsname system{};
    uname(&system);
    out << "nruview " NRUVIEW_VERSION "\nsystem " << system.sysname << " " << system.release << " "
        << system.machine << "\n";
}

const char* textOf(GLenum name) {
    const GLubyte* text = glGetString(name);
    return text ? reinterpret_cast<const char*>(text) : "(none)";
}

/// Where a name is newer than the context, the query leaves an error and the value is told as missing.
void reportLimit(std::ostream& out, const char* name, GLenum query, int values) {
    std::array<GLfloat, 2> found{};
    glGetFloatv(query, found.data());
    const bool isKnown = glGetError() == GL_NO_ERROR;
    out << "  " << name << (isKnown ? "" : " (none)");
    for (int i = 0; isKnown && i < values; ++i)
        out << " " << found[static_cast<std::size_t>(i)];
    out << "\n";
}

void reportDriver(std::ostream& out) {
    out << "vendor " << textOf(GL_VENDOR) << "\nrenderer " << textOf(GL_RENDERER) << "\nOpenGL "
        << textOf(GL_VERSION) << "\nGLSL " << textOf(GL_SHADING_LANGUAGE_VERSION) << "\nlimits\n";
    struct Limit {
        const char* name;
        GLenum query;
        int values = 1;
    };
    const Limit limits[] = {{"texture size", GL_MAX_TEXTURE_SIZE},
                            {"texture buffer texels", GL_MAX_TEXTURE_BUFFER_SIZE},
                            {"texture units of programs", GL_MAX_COMBINED_TEXTURE_IMAGE_UNITS},
                            {"clip planes", GL_MAX_CLIP_PLANES},
                            {"lights", GL_MAX_LIGHTS},
                            {"samples", GL_MAX_SAMPLES},
                            {"viewport", GL_MAX_VIEWPORT_DIMS, 2},
                            {"line width", GL_ALIASED_LINE_WIDTH_RANGE, 2},
                            {"point size", GL_ALIASED_POINT_SIZE_RANGE, 2}};
    out.precision(10);
    for (const Limit& limit : limits)
        reportLimit(out, limit.name, limit.query, limit.values);
}

/// Settings that change what is drawn or by whom.
void reportEnvironment(std::ostream& out) {
    constexpr std::array kPrefixes = {"NU_",
                                      "DISPLAY_OPTIMIZED_SPH",
                                      "OPTIMIZED_3D_MARKER_RENDERING",
                                      "LIBGL_",
                                      "MESA_",
                                      "GALLIUM_",
                                      "LP_",
                                      "__GL_",
                                      "vblank_mode"};
    std::vector<std::string> found;
    for (char** entry = environ; *entry != nullptr; ++entry)
        if (std::any_of(kPrefixes.begin(), kPrefixes.end(), [&](const char* prefix) {
                return std::strncmp(*entry, prefix, std::strlen(prefix)) == 0;
            }))
            found.emplace_back(*entry);
    std::sort(found.begin(), found.end());
    out << "environment" << (found.empty() ? " (nothing that matters)\n" : "\n");
    for (const std::string& entry : found)
        out << "  " << entry << "\n";
}

void reportCapabilities(std::ostream& out) {
    out << "capabilities\n";
    for (std::size_t i = 0; i < kCapabilities.size(); ++i)
        out << "  " << i << " " << (NglHasCapability(static_cast<int>(i)) ? "yes" : "no ") << " "
            << kCapabilities[i] << "\n";
}

void reportDecision(std::ostream& out, const std::vector<std::string>& messages) {
    out << "start-up\n";
    for (const std::string& message : messages)
        out << "  said: " << message << "\n";
    const std::pair<const char*, int> switches[] = {
        {"fast renderer", IsFastRendererEnabled()},
        {"geometry-stage programs", IsGeometryShaderRenderingEnabled()},
        {"spheres on points", CanUseOptimizedSPH()}};
    for (const auto& [name, on] : switches)
        out << "  " << name << (on ? " on\n" : " off\n");
    const std::pair<const char*, _RenderingShaderType> programs[] = {
        {"mesh", RenderShaderMesh},
        {"mesh of triangles with a geometry stage", RenderShaderMeshTriangles},
        {"mesh of quads with a geometry stage", RenderShaderMeshQuads},
        {"points", RenderShaderPoints}};
    for (const auto& [name, type] : programs)
        out << "  program " << name
            << (RenderingGetShaderProgram(type)->IsProgramValid() ? ": built\n" : ": not there\n");
}

/// Why what could use programs does not.
const char* reasonAgainstPrograms(bool fixed) {
    const char* mode = std::getenv("NU_RENDERING_MODE");
    if (IsFastRendererEnabled() == 0 && (fixed || (mode != nullptr && std::atoi(mode) == 1)))
        return fixed ? "--fixed asks for it" : "NU_RENDERING_MODE=1 asks for it";
    return "the driver lacks what its programs need";
}

void reportRoutes(std::ostream& out, bool fixed) {
    out << "drawn by\n";
    for (const FamilyRoute& family : familyRoutes()) {
        const bool byPrograms = family.route == Route::Programs;
        out << "  " << family.name << ": "
            << (byPrograms                             ? "GLSL"
                : family.route == Route::FixedFunction ? "fixed function"
                                                       : "nothing");
        if (family.couldUsePrograms && !byPrograms)
            out << ", as " << reasonAgainstPrograms(fixed);
        out << "\n";
    }
}

} // namespace

void reportStartUp(std::ostream& out, bool fixed) {
    OffscreenContext context;
    if (const std::string reason = context.create(Frames::kSize, Frames::kSize); !reason.empty())
        throw ViewerError("off-screen drawing", reason);
    routeMessages(true);
    const HeldMessages messages;
    const LibrarySession session(fixed);
    reportMachine(out);
    reportDriver(out);
    reportEnvironment(out);
    reportCapabilities(out);
    reportDecision(out, messages.all());
    reportRoutes(out, fixed);
}

} // namespace nruview
