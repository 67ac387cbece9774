// GLSL programs and GPU memory: the program object, the catalogue with its start-up, the rendering switches,
// buffer objects with deferred deletion. Every call comes from the thread that owns the current GL context.
#pragma once

#include "NRenderUtl/ntypes.h"

class RenderColorScale;
struct NglLightParams;
struct NglMatParams;

// --- vocabulary of the library's programs ------------------------------------------------------------------

/// Vertex attributes that the library's programs share.
enum RenderingShaderAttributes : int {
    RenderAttribPosition,     ///< g_pos_attrib
    RenderAttribColor,        ///< g_col_attrib
    RenderAttribVertexNormal, ///< g_vnorm_attrib: smooth normal, in w the sharp-edge flag
    RenderAttribNormal,       ///< g_norm_attrib: normal that excludes sharp edges
    RenderAttribTexture,      ///< g_tex_attrib: texture coordinate or contour value
    RenderAttribCount
};

/// Uniforms of the library's programs, each with its GLSL name.
enum RenderingShaderUniform : int {
    RenderUniformTransparent,           ///< g_transparent: 1 = g_alphavalue is the alpha
    RenderUniformClipped,               ///< g_clipped: 1 = user clip planes apply
    RenderUniformAllVisible,            ///< g_bao: 0 = visibility is read from g_osbuff
    RenderUniformFailureTest,           ///< g_bvlf: 1 = failing elements are left out
    RenderUniformFailureMode,           ///< g_nvlf: 1, 2 or 3
    RenderUniformFailureLevel,          ///< g_ncvl
    RenderUniformContour,               ///< g_bct: 1 = contour on
    RenderUniformContourType,           ///< g_ct: 1 smeared, 2 per element
    RenderUniformUnlit,                 ///< g_bw: not 0 = no lighting
    RenderUniformElementColors,         ///< g_bem: 1 = elements' own colours
    RenderUniformUnlitVertexColor,      ///< g_bsw: 1 = unlit in the vertex colour
    RenderUniformDerivedConnectivity,   ///< g_bd: 1 = g_dbuff gives the element of a primitive
    RenderUniformDerivedVisibility,     ///< g_nvlp: 1 = visibility is read under g_bd
    RenderUniformTextureScaled,         ///< g_bts: 1 = g_tsf applies
    RenderUniformFailingConnectivity,   ///< g_nfconn: 1 = g_fpbuff gives the element of a primitive
    RenderUniformAlpha,                 ///< g_alphavalue
    RenderUniformTextureScale,          ///< g_tsf
    RenderUniformTextureOffset,         ///< g_ttf
    RenderUniformContourTexture,        ///< g_ctt: sampler
    RenderUniformElementValues,         ///< g_tbuff: float texture buffer
    RenderUniformElementColorBuffer,    ///< g_mcbuff
    RenderUniformDerivedBuffer,         ///< g_dbuff
    RenderUniformVisibilityBuffer,      ///< g_osbuff
    RenderUniformFailureLevelBuffer,    ///< g_vlbuff: level from which on an element fails, -1 = none
    RenderUniformFailureBelowBuffer,    ///< g_vlabuff: level below which an element fails, -1 = none
    RenderUniformFailingPrimitives,     ///< g_fpbuff
    RenderUniformSelectionBuffer,       ///< g_shcbuff
    RenderUniformFrontBackColors,       ///< g_bfbcol: 1 = colour by facing
    RenderUniformFrontColor,            ///< g_fcolor
    RenderUniformBackColor,             ///< g_bcolor
    RenderUniformSelection,             ///< g_behs: 1 = selection and highlight on
    RenderUniformHighlightColor,        ///< g_eh_col
    RenderUniformSelectionColor,        ///< g_es_col
    RenderUniformNormalMatrix,          ///< g_normalmat
    RenderUniformModelView,             ///< g_mvmat
    RenderUniformProjection,            ///< g_projmat
    RenderUniformTextureMatrix,         ///< g_texmat
    RenderUniformColor,                 ///< g_color
    RenderUniformFrontEmission,         ///< g_frontmat.emission
    RenderUniformFrontAmbient,          ///< g_frontmat.ambient
    RenderUniformFrontDiffuse,          ///< g_frontmat.diffuse
    RenderUniformFrontSpecular,         ///< g_frontmat.specular
    RenderUniformFrontShininess,        ///< g_frontmat.shininess
    RenderUniformBackEmission,          ///< g_backmat.emission
    RenderUniformBackAmbient,           ///< g_backmat.ambient
    RenderUniformBackDiffuse,           ///< g_backmat.diffuse
    RenderUniformBackSpecular,          ///< g_backmat.specular
    RenderUniformBackShininess,         ///< g_backmat.shininess
    RenderUniformAdvancedPoints,        ///< g_advdisp: 1 = points are lit spheres
    RenderUniformPointSizeSet,          ///< g_advparamset: 1 = g_param_size_attrib is the size
    RenderUniformPointSize,             ///< g_ptsize
    RenderUniformPointSizeScale,        ///< g_ptsize_scale
    RenderUniformTransform,             ///< g_transmat
    RenderUniformSmooth,                ///< g_smooth: 1 = vertex normals
    RenderUniformColorWithAlpha,        ///< g_colorwithalpha
    RenderUniformElementNormalBuffer,   ///< g_elnormbuff
    RenderUniformClipFlag,              ///< g_clip_flag: 1 or 3 = clip codes apply
    RenderUniformLightsOff,             ///< g_lightsOff
    RenderUniformClipCodeBuffer,        ///< g_clipelembuff
    RenderUniformUseElementNormals,     ///< g_useelemnormbuff
    RenderUniformOriginalPrimitives,    ///< g_fporgconnbuff
    RenderUniformCameraPosition,        ///< g_cameraposition
    RenderUniformMetalness,             ///< g_pbrMat.metalness
    RenderUniformRoughness,             ///< g_pbrMat.roughness
    RenderUniformReflectivity,          ///< g_pbrMat.reflectivity
    RenderUniformAmbientOcclusion,      ///< g_pbrMat.amb_occlusion
    RenderUniformPhysicallyBased,       ///< g_usepbrmat
    RenderUniformEnvironmentReflection, ///< g_hdrreflection
    RenderUniformIrradianceMap,         ///< g_irradianceMap: sampler
    RenderUniformPrefilterMap,          ///< g_prefilterMap: sampler
    RenderUniformBrdfTable,             ///< g_brdfLUT: sampler
    RenderUniformNormalWithoutSharp,    ///< g_norm_excl_sharpedge: 1 = g_norm_attrib is the smooth normal
    RenderUniformCount
};

/// Programs of the catalogue.
enum _RenderingShaderType : int {
    RenderShaderNone,
    RenderShaderMesh,          ///< mesh program without a geometry stage
    RenderShaderMeshTriangles, ///< with a geometry stage for triangles
    RenderShaderMeshQuads,     ///< with a geometry stage for quads as lines with adjacency
    RenderShaderPoints,        ///< points, or spheres on points
};

// --- program object ----------------------------------------------------------------------------------------

/// One GLSL program of the current context. Setters act on the program in use and never select one; a uniform
/// that the program lacks is ignored. By-name setters ask GL for the location on every call and ignore a null
/// name; those by RenderingShaderUniform ask once and keep it. Arrays are read at once and never kept.
class NRENDERUTL_API NShaderProgram {
public:
    NShaderProgram();
    /// Shallow: both objects name one GL program, and the first one destroyed deletes it.
    NShaderProgram(const NShaderProgram&);
    NShaderProgram& operator=(const NShaderProgram&);
    /// Deletes the program.
    virtual ~NShaderProgram();

    /// Whether there is a linked program.
    bool IsProgramValid() const;
    _RenderingShaderType GetShaderTypeAttached() const;
    /// Location by name, asked of GL; or as kept since CompileProgram, -1 before it and for an unknown value.
    int GetVertexAttributeLocation(const char* name) const;
    int GetVertexAttributeLocation(RenderingShaderAttributes attribute) const;

    void SetShaderTypeAttached(_RenderingShaderType type);
    void SetUniformValue(const char* name, int value);
    void SetUniformValue(RenderingShaderUniform uniform, int value);
    void SetUniformValue(const char* name, float value);
    void SetUniformValue(RenderingShaderUniform uniform, float value);
    void SetUniformValue(const char* name, int count, int* values);
    void SetUniformValue(RenderingShaderUniform uniform, int count, int* values);
    void SetUniformValue(RenderingShaderUniform uniform, int count, float* values);
    void SetVec3UniformValue(const char* name, float* xyz);
    void SetVec3UniformValue(RenderingShaderUniform uniform, float* xyz);
    void SetVec4UniformValue(const char* name, float* xyzw);
    void SetVec4UniformValue(RenderingShaderUniform uniform, float* xyzw);
    /// 16 floats, column-major.
    void SetUniform4x4Matrix(const char* name, float* matrix);
    void SetUniform4x4Matrix(RenderingShaderUniform uniform, float* matrix);
    /// g_projmat (null leaves it), g_mvmat and, when asked for, the inverse transpose of the model-view as
    /// g_normalmat.
    void SetMVPMatrices(float* projection, float* modelView, bool normalMatrix);
    /// g_lights: at most eight; of a light that is off only the status.
    void SetLightUniforms(int count, NglLightParams* lights);
    /// g_pbrlights: status and position of at most eight.
    void SetPBRLightUniforms(int count, NglLightParams* lights);
    /// g_frontmat and g_backmat, neither null. The spelling is the interface's own.
    void SetMateiralUniforms(NglMatParams* front, NglMatParams* back);
    /// The colour bands with range and out-of-range colours; null does nothing.
    void SetColorScaleUniforms(const RenderColorScale* scale);

    /// Builds the program, once for an object: one vertex string, fragment and (count above 0) geometry
    /// strings joined in their order. geometryInputKind: 3 triangles to triangles, 4 four-vertex adjacency to
    /// a strip of 4, 2 the same to a line strip of 5; layouts in the sources win. False, without a message,
    /// when the program does not link, the driver lacks a stage or no context is current.
    bool CompileProgram(const char* vertexSource, int fragmentCount, const char** fragmentSources,
                        int geometryCount, const char** geometrySources, int geometryInputKind);
    /// Writes the driver's log as console message when the program cannot run in the present state.
    void ValidateProgram();
    /// Deletes the program and its shaders.
    void DeleteProgram();
    /// Makes the program current, or none.
    void UseProgram(bool on);
    /// A negative index, as of an attribute that the program lacks, does nothing.
    void EnableDisableVertexAttribute(int index, bool enable);
    /// Enables array index and points it at tightly packed vertices of `components` floats: client memory, or
    /// an offset into the buffer bound. A negative index does nothing.
    void SetVertexAttribute(int index, int components, const float* data);

protected:
    unsigned int CompileShader(unsigned int shaderType, int count, const char* const* sources);
    /// Attaches what is a shader; 0 when there is no program.
    unsigned int CreateProgram(unsigned int vertexShader, unsigned int geometryShader,
                               unsigned int fragmentShader);
    /// Link status; a program that fails is deleted and set to 0.
    unsigned int LinkProgram(int& program);

    std::int32_t m_program;
    std::int32_t m_attachedCount;
    _RenderingShaderType m_attachedType;
    std::int32_t m_uniformLocations[RenderUniformCount];  ///< -1 = not asked for yet
    std::int32_t m_attributeLocations[RenderAttribCount]; ///< -1 until compiled

private:
    int uniformLocation(RenderingShaderUniform uniform);
};

// --- catalogue and rendering switches ----------------------------------------------------------------------

/// Reads the setting "DISPLAY_OPTIMIZED_SPH" and the environment variable "NU_RENDERING_MODE" (1: fast
/// renderer and geometry stages off, 2: on) into the switches, once.
NRENDERUTL_API void InitRenderDefaults();
/// Decides optimized rendering and builds the catalogue, once; tells its decision on the console. Needs a
/// current context after NglInitGLExtensions. Returns 0 whatever the decision.
NRENDERUTL_API int RenderingInitShaders();
/// The catalogue's program of a type, valid or not; it stays the catalogue's. Null for any other value.
NRENDERUTL_API NShaderProgram* RenderingGetShaderProgram(_RenderingShaderType type);

/// The switches. Before start-up they hold what it would like to reach.
NRENDERUTL_API int IsFastRendererEnabled();
NRENDERUTL_API int IsGeometryShaderRenderingEnabled();
NRENDERUTL_API int CanUseOptimizedSPH();
/// Always 0.
NRENDERUTL_API int IsSphereShaderRenderingEnabled();
/// Stores the mode as given in the fast-renderer switch.
NRENDERUTL_API void SetUserDefinedFastRenderingMode(int mode);
NRENDERUTL_API void EnablePhysicallyBasedRendering(bool enable);
NRENDERUTL_API bool IsPhysicallyBasedRenderingEnabled();
NRENDERUTL_API void EnableEnvironmentReflection(bool enable);
NRENDERUTL_API bool IsEnvironmentReflectionEnabled();
/// The host says whether a context of the library is current; GL names are made and deleted only then.
NRENDERUTL_API void SetRenderingContextActive(bool active);
NRENDERUTL_API bool IsRenderingContextActive();

// --- GPU buffers -------------------------------------------------------------------------------------------

/// One GL buffer object. Its name is 0 before Create, 0xFFFFFFFF after one that failed, else alive. Copies
/// name the same buffer. Without a declared context (SetRenderingContextActive) nothing is created, and what
/// is destroyed is queued for RenderGLCleanupBuffers.
class NRENDERUTL_API RenderGLBuffer {
public:
    RenderGLBuffer();
    RenderGLBuffer(const RenderGLBuffer&);
    RenderGLBuffer& operator=(const RenderGLBuffer&);
    /// Destroys the buffer.
    virtual ~RenderGLBuffer();

    /// The name, as it stands.
    unsigned int GetBufferID() const;
    /// 1 for a buffer that is alive, else 0; both are the same test.
    int IsValid() const;
    int IsCreated() const;

    /// Makes the buffer with size bytes from data (null: undefined content). Nothing happens when one was
    /// made or failed before; failure is silent.
    void Create(unsigned int target, int size, const void* data, unsigned int usage);
    /// Replaces the whole content, or size bytes from offset on; a part that reaches beyond it changes
    /// nothing.
    void Update(const void* data);
    void Update(int offset, int size, const void* data);
    void Bind();
    /// Enables a generic attribute of `components` tightly packed floats, read from the buffer or, without a
    /// valid one, from client memory. A negative index does nothing.
    void Bind(int attributeIndex, int components, const void* clientData);
    /// Binds no buffer to the target and disables the attribute that Bind enabled.
    void Unbind();
    /// Deletes or queues the buffer. With reset a failed creation may be tried again.
    void Destroy(bool reset);

private:
    std::uint32_t m_buffer;
    std::uint32_t m_target;
    std::int32_t m_size; ///< bytes
    std::int32_t m_attributeIndex;
};

/// A texture buffer: a buffer with the texture through which programs read it. Names as in RenderGLBuffer.
class NRENDERUTL_API RenderGLTBO {
public:
    RenderGLTBO();
    RenderGLTBO(const RenderGLTBO&);
    RenderGLTBO& operator=(const RenderGLTBO&);
    /// Destroys texture and buffer.
    virtual ~RenderGLTBO();

    /// 1 for a texture that is alive, else 0; both are the same test.
    int IsValid() const;
    int IsCreated() const;

    /// Makes buffer and texture of size bytes of internalFormat texels (GL_R32F, GL_R32I, GL_R8UI,
    /// GL_RGBA8UI, ...) for texture unit unitOffset. target is GL_TEXTURE_BUFFER.
    void Create(unsigned int target, const void* data, int size, unsigned int usage,
                unsigned int internalFormat, unsigned int unitOffset);
    /// Replace the content as those of RenderGLBuffer.
    void Update(const void* data);
    void Update(int offset, int size, const void* data);
    /// Binds the texture, on its own unit when that is to be made active first.
    void Bind(bool activateUnit);
    /// Unbinds buffer and texture; the active unit stays.
    void Unbind();
    /// As that of RenderGLBuffer; the texture unit is 0 again.
    void Destroy(bool reset);

private:
    RenderGLBuffer m_buffer;
    std::uint32_t m_texture;
    std::uint32_t m_target;
    std::uint32_t m_unit;
};

/// Deletes what was destroyed without a declared context, and posts how many thirds of buffers it were. Needs
/// a declared context, else it posts a diagnostic and keeps the queue.
NRENDERUTL_API void RenderGLCleanupBuffers();
