// Physically based lighting: image-based lighting from HDR environment images, and the table of named
// material appearances. Maps are built and drawn by the thread that owns the current GL context.
#pragma once

#include <map>
#include <memory>
#include <string>

#include "NRenderUtl/gl/ngl.h"
#include "NRenderUtl/host/nhost.h"

struct LightSamples;

// --- image-based lighting ----------------------------------------------------------------------------------

/// Makes of one equirectangular HDR image the maps by which surroundings light a mesh, and draws it behind
/// the view. One instance serves the process.
class NRENDERUTL_API NImageBasedLightHandler {
public:
    /// Direction of model space that the upward direction of the image becomes. A sideways direction of the
    /// image that lies on the axis of the turn stays.
    enum ImageUpVector : int {
        ImageUpMinusX = 0,
        ImageUpX = 1,
        ImageUpY = 2, ///< the image as it is
        ImageUpMinusY = 3,
        ImageUpZ = 4, ///< at the start
        ImageUpMinusZ = 5,
    };
    /// What is being built, and how much of all is done, from 0 to 1.
    using ProgressFunction = void (*)(void* context, const char* step, double fraction);

    virtual ~NImageBasedLightHandler();
    NImageBasedLightHandler(const NImageBasedLightHandler&) = delete;
    NImageBasedLightHandler& operator=(const NImageBasedLightHandler&) = delete;

    /// Whether the maps are there. The names are 0 before.
    static bool IsValid();
    /// Cube map of the irradiance divided by pi, by the direction of the normal; linear radiance.
    static unsigned int GetIrradianceMapTextureID();
    /// Cube map of mirrored radiance, by the mirrored direction; level = 4 x roughness.
    static unsigned int GetPrefilterMapTextureID();
    /// 2D texture of the factor (red) and the addend (green) of the reflectivity, by the cosine to the eye
    /// and the roughness.
    static unsigned int GetBRDFLUTTextureID();

    /// Uses a Radiance image from the next Initialize or background on. An unreadable one changes nothing and
    /// gives "Failed to load HDR image file!". Values above 65504 count as that. Needs no context.
    static NErrorPtr SetHDRImage(const wchar_t* file, ImageUpVector up);
    /// The image in force; an empty name, which stands for black surroundings, before the first.
    static void GetHDRImage(GuString& file, ImageUpVector& up);
    static void EnableHDRBackgroundRendering(bool enable);
    static bool IsHDRBackgroundRenderingEnabled();
    /// Called during a build, which the driver then finishes piece by piece; it must not call GL or this
    /// class. Null: none.
    static void SetProgressFunction(ProgressFunction function, void* context);

    /// Builds the maps unless those of the image in force are there, seconds of work for a software driver.
    /// Where a program fails, or GL lacks version 3.0, there are none; that a program failed is remembered
    /// until the next image or CleanUpBuffers. Needs a current context. GL state stays.
    static void Initialize();
    /// Draws the surroundings on the far plane, by the record's model-view and viewport, if that is enabled
    /// and the maps can be built; a null record draws nothing. The surroundings are turned by half a turn
    /// about z against those that light meshes. Needs a current context. GL state stays.
    static void DrawHDRBackground(_NglInfoStr* info);
    /// Deletes every GL object of the class. Without a current context they count as gone with theirs.
    static void CleanUpBuffers();

private:
    class Program;

    NImageBasedLightHandler();
    static NImageBasedLightHandler& Instance();

    void InitializeIBL();
    bool InitShaderPrograms();
    bool InitSkyBoxShaderProgram();
    void InitCaptureViewMatrices();
    void CreateFrameBuffers();
    void CreateTextureMaps();
    void GenerateEnvironmentTextureCubeMap();
    void CaptureEnvironmentCubeMap(unsigned int sourceTexture);
    void CaptureIrradicaeMap(); ///< the spelling is the interface's own
    void CapturePreFilterMap();
    void CaptureBRDFLUTTexture();
    void RenderEnvCube();
    void RenderQuad();
    void RenderSkyBox();
    void RenderHDRBackground(const _NglInfoStr& info);
    void GetModelMatrix(float (&matrix)[16]) const;
    static void GetProjectionMatrix(float (&matrix)[16]);
    void CleanUpTransientData();
    void CleanUpPersistentData();
    void CleanUpSkyBoxData();
    void CleanUpAllData();

    void BuildMaps();
    bool CanDrawMaps() const;
    static void SetPassSize(int width, int height);
    void SetFaceMatrices(Program& program, int face, const float* model);
    void ConvolveFaces(Program& program, int step, unsigned int cube, int level, int size,
                       const LightSamples& samples);

    bool m_initialised;
    unsigned int m_cubeVertexArray, m_cubeVertexBuffer;
    unsigned int m_quadVertexArray, m_quadVertexBuffer;
    unsigned int m_captureFramebuffer, m_captureDepthBuffer;
    unsigned int m_environmentMap, m_irradianceMap, m_prefilterMap, m_brdfTable;
    unsigned int m_skyBoxVertexArray, m_skyBoxVertexBuffer;
    std::unique_ptr<Program> m_skyBoxProgram, m_equirectangularProgram, m_irradianceProgram,
        m_prefilterProgram, m_brdfProgram;
    float m_captureViews[6][16]; ///< row by row
    ImageUpVector m_imageUp;
    std::wstring m_imageFile;
    bool m_imageChanged;
    bool m_backgroundEnabled;
    bool m_buildFailed, m_skyBoxFailed; ///< for a reason that will not go by itself
};

// --- material table ----------------------------------------------------------------------------------------

/// How a material looks under physically based shading; its colour is the mesh's own. All from 0 to 1.
struct _RenderMaterialApperance {
    float metalness;        ///< 1 for bare metal, 0 for everything else
    float roughness;        ///< 0 mirror to 1 matt
    float ambientOcclusion; ///< share of the surroundings' light that reaches the surface
    float reflectivity;     ///< at right angles to a surface that is not metal
};

/// The process-wide table of material appearances by name. The spelling is the interface's own.
class NRENDERUTL_API NRenderMaterialApperanceHandler {
public:
    NRenderMaterialApperanceHandler();
    NRenderMaterialApperanceHandler(const NRenderMaterialApperanceHandler&);
    NRenderMaterialApperanceHandler& operator=(const NRenderMaterialApperanceHandler&);
    virtual ~NRenderMaterialApperanceHandler();

    /// Reads Resources/NuStudio/Rendering/RenderMaterialApperance.xml under the setting "NU_COMMON_PATH", at
    /// the first call alone: the start-up's. Whatever is missing or malformed leaves the table as it was.
    static void InitDefaultMaterials();
    /// Inserts or overwrites; false for an empty name. Values are not checked.
    static bool Add(const GuString& name, const _RenderMaterialApperance& appearance);
    /// False, with the appearance unchanged, for an empty or unknown name.
    static bool Get(const GuString& name, _RenderMaterialApperance& appearance);
    /// Whether there was such an entry.
    static bool Remove(const GuString& name);
    /// Replaces the map by a copy of the table.
    static void GetAllData(std::map<GuString, _RenderMaterialApperance, GuStringPredicate>& table);

private:
    static std::map<GuString, _RenderMaterialApperance, GuStringPredicate> m_mapApperanceMat;
    static bool m_bDefMatInitialised;
};
