// Image-based lighting: the one handler, its settings, and when its maps are built and deleted.
#include "NRenderUtl/lighting/imagebasedlight.h"

#include "NRenderUtl/host/hostimage.h"
#include "NRenderUtl/host/hostutl.h"
#include "NRenderUtl/lighting/lightsources.h"
#include "NRenderUtl/shaders/gllabel.h"
#include "NRenderUtl/shaders/programinuse.h"

namespace {

struct Progress {
    NImageBasedLightHandler::ProgressFunction function = nullptr;
    void* context = nullptr;
};

Progress& progress() {
    static Progress progress;
    return progress;
}

/// State of the host's that drawing into the maps needs otherwise or changes.
struct CaptureState {
    const FramebufferGuard framebuffer;
    const ProgramInUseGuard program;
    const VertexArrayGuard vertexArray;
    const TextureUnit0Guard textures;
    const NoSamplerGuard sampler;
    const SeamlessCubesGuard seamless;
    const WrittenAndClearedGuard written;
    const UnclampedColorsGuard unclamped;
    const FilledFacesGuard filled;
    const NoClipPlanesGuard clipPlanes;
    const DisabledGuard disabled{GL_ALPHA_TEST, GL_BLEND,        GL_COLOR_LOGIC_OP,
                                 GL_DEPTH_TEST, GL_SCISSOR_TEST, GL_RASTERIZER_DISCARD};
    const PlainTransferGuard transfer;
    const UnpackGuard unpack;
};

/// Samples come from a texture buffer.
bool canBuildMaps() {
    const int version = glContextIsCurrent() ? glVersion() : 0;
    return version >= 31 || (version == 30 && epoxy_has_gl_extension("GL_ARB_texture_buffer_object"));
}

} // namespace

void endOfPiece(int step, double part) {
    const auto& [function, context] = progress();
    if (!function) {
        glFlush();
        return;
    }
    glFinish();
    const auto& [name, start, end] = kBuildSteps[step];
    function(context, name, start + part * (end - start));
}

bool NImageBasedLightHandler::Program::Build(const char* label, const char* vertexSource,
                                             const char* fragmentSource) {
    if (IsProgramValid())
        return true;
    const GLuint vertex = CompileShader(GL_VERTEX_SHADER, 1, &vertexSource);
    const GLuint fragment = CompileShader(GL_FRAGMENT_SHADER, 1, &fragmentSource);
    m_program = static_cast<std::int32_t>(CreateProgram(vertex, 0, fragment));
    const bool linked = LinkProgram(m_program) != 0;
    for (const GLuint shader : {vertex, fragment}) {
        if (linked)
            glDetachShader(static_cast<GLuint>(m_program), shader);
        glDeleteShader(shader);
    }
    if (linked)
        labelGlObject(GL_PROGRAM, static_cast<GLuint>(m_program), label);
    return linked;
}

// --- life --------------------------------------------------------------------------------------------------

NImageBasedLightHandler::NImageBasedLightHandler()
    : m_initialised(false), m_cubeVertexArray(0), m_cubeVertexBuffer(0), m_quadVertexArray(0),
      m_quadVertexBuffer(0), m_captureFramebuffer(0), m_captureDepthBuffer(0), m_environmentMap(0),
      m_irradianceMap(0), m_prefilterMap(0), m_brdfTable(0), m_skyBoxVertexArray(0), m_skyBoxVertexBuffer(0),
      m_skyBoxProgram(std::make_unique<Program>()), m_equirectangularProgram(std::make_unique<Program>()),
      m_irradianceProgram(std::make_unique<Program>()), m_prefilterProgram(std::make_unique<Program>()),
      m_brdfProgram(std::make_unique<Program>()), m_imageUp(ImageUpZ), m_imageChanged(false),
      m_backgroundEnabled(false), m_buildFailed(false), m_skyBoxFailed(false) {
    InitCaptureViewMatrices();
}

NImageBasedLightHandler::~NImageBasedLightHandler() {
    CleanUpAllData();
}

// Never destroyed: at the end of the process there may be no context to delete in.
NImageBasedLightHandler& NImageBasedLightHandler::Instance() {
    static auto* const instance = new NImageBasedLightHandler;
    return *instance;
}

// --- building ----------------------------------------------------------------------------------------------

void NImageBasedLightHandler::InitializeIBL() {
    if ((m_initialised && !m_imageChanged) || m_buildFailed || !canBuildMaps())
        return;
    if (m_initialised)
        CleanUpPersistentData();
    m_initialised = InitShaderPrograms();
    m_buildFailed = !m_initialised;
    if (!m_initialised)
        return;
    m_imageChanged = false;
    BuildMaps();
}

void NImageBasedLightHandler::BuildMaps() {
    const CaptureState state;
    glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
    endOfPiece(EnvironmentStep, 0.0);
    CreateFrameBuffers();
    CreateTextureMaps();
    if (!CanDrawMaps()) {
        CleanUpAllData();
        m_buildFailed = true;
        return;
    }
    GenerateEnvironmentTextureCubeMap();
    CaptureIrradicaeMap();
    CapturePreFilterMap();
    CaptureBRDFLUTTexture();
    CleanUpTransientData();
}

bool NImageBasedLightHandler::InitShaderPrograms() {
    return m_equirectangularProgram->Build("NRenderUtl environment", kCubeFaceVertexMain,
                                           kEquirectangularFragmentMain) &&
           m_irradianceProgram->Build("NRenderUtl irradiance", kCubeFaceVertexMain, kConvolveFragmentMain) &&
           m_prefilterProgram->Build("NRenderUtl reflections", kCubeFaceVertexMain, kConvolveFragmentMain) &&
           m_brdfProgram->Build("NRenderUtl reflectance", kQuadVertexMain, kBrdfTableFragmentMain);
}

// --- deleting ----------------------------------------------------------------------------------------------

void NImageBasedLightHandler::CleanUpAllData() {
    CleanUpTransientData();
    CleanUpPersistentData();
    CleanUpSkyBoxData();
    for (Program* program : {m_skyBoxProgram.get(), m_equirectangularProgram.get(), m_irradianceProgram.get(),
                             m_prefilterProgram.get(), m_brdfProgram.get()})
        program->DeleteProgram();
    m_initialised = m_buildFailed = m_skyBoxFailed = false;
}

// --- the interface -----------------------------------------------------------------------------------------

void NImageBasedLightHandler::Initialize() {
    Instance().InitializeIBL();
}

bool NImageBasedLightHandler::IsValid() {
    const NImageBasedLightHandler& handler = Instance();
    return handler.m_irradianceMap != 0 && handler.m_prefilterMap != 0 && handler.m_brdfTable != 0;
}

unsigned int NImageBasedLightHandler::GetIrradianceMapTextureID() {
    return Instance().m_irradianceMap;
}

unsigned int NImageBasedLightHandler::GetPrefilterMapTextureID() {
    return Instance().m_prefilterMap;
}

unsigned int NImageBasedLightHandler::GetBRDFLUTTextureID() {
    return Instance().m_brdfTable;
}

NErrorPtr NImageBasedLightHandler::SetHDRImage(const wchar_t* file, ImageUpVector up) {
    const GuStringFileName name(file);
    if (name.IsEmpty() || !hostLoadFloatImage(name, 3))
        return hostError("Failed to load HDR image file!");
    NImageBasedLightHandler& handler = Instance();
    handler.m_imageChanged = handler.m_initialised;
    handler.m_buildFailed = false;
    handler.m_imageFile = name.Wide();
    handler.m_imageUp = up;
    return nullptr;
}

void NImageBasedLightHandler::GetHDRImage(GuString& file, ImageUpVector& up) {
    file = GuString(Instance().m_imageFile);
    up = Instance().m_imageUp;
}

void NImageBasedLightHandler::EnableHDRBackgroundRendering(bool enable) {
    Instance().m_backgroundEnabled = enable;
}

bool NImageBasedLightHandler::IsHDRBackgroundRenderingEnabled() {
    return Instance().m_backgroundEnabled;
}

void NImageBasedLightHandler::SetProgressFunction(ProgressFunction function, void* context) {
    progress() = {function, context};
}

void NImageBasedLightHandler::DrawHDRBackground(_NglInfoStr* info) {
    if (info && IsHDRBackgroundRenderingEnabled())
        Instance().RenderHDRBackground(*info);
}

void NImageBasedLightHandler::CleanUpBuffers() {
    Instance().CleanUpAllData();
}
