// Mesh and field rendering: the colour scale with its texture attributes, the library's mesh record with
// picking, mesh drawing, glyphs, the mesh renderer, boundary meshes, and the element mesh.
#pragma once

#include <memory>
#include <vector>

#include "NRenderUtl/gl/ngl.h"
#include "NRenderUtl/host/nhost.h"
#include "NRenderUtl/ntypes.h"

class NShaderProgram;
class RenderGLBuffer;

// --- colour scale ------------------------------------------------------------------------------------------

/// Ordered colour bands with a value range and two out-of-range colours.
class NRENDERUTL_API RenderColorScale {
public:
    struct ColorBand {
        float min_val;     ///< inclusive
        float max_val;     ///< exclusive, but inclusive in the last band
        NgColorLong color; ///< red, green, blue; the top byte is ignored
    };

    RenderColorScale();
    RenderColorScale(const RenderColorScale&);
    RenderColorScale& operator=(const RenderColorScale&);
    virtual ~RenderColorScale();

    const std::vector<ColorBand>& GetColorBands() const;
    float GetMinValue() const;
    float GetMaxValue() const;
    NgColorLong GetOutOfRangeMinColor() const;
    NgColorLong GetOutOfRangeMaxColor() const;
    /// Packed colour of a value with the current blending alpha as top byte; 0xFFFFFFFF, as it stands,
    /// without bands. In this order: the middle band's colour where all limits are equal; below or above the
    /// range the out-of-range colour, or the end band's where that is unset (0xFFFFFFFF); white in a gap and
    /// for NaN; in smeared mode a mix with the next band's colour, truncated by channel; the band's colour.
    NgColorLong GetColor(float value) const;

    /// Takes at most 64 bands, ascending and without overlap (not checked), and their range; more are refused
    /// with a console message. Out-of-range colours and smeared mode stay.
    void SetColorBands(const std::vector<ColorBand>& bands);
    void SetOutOfRangeMinColor(NgColorLong color);
    void SetOutOfRangeMaxColor(NgColorLong color);
    void SetSmearedMode(bool smeared);
    /// Back to a new scale: no bands, minimum FLT_MAX, maximum FLT_MIN, both out-of-range colours unset, not
    /// smeared.
    void Reset();

private:
    int FindBandIndex(float value) const;

    std::vector<ColorBand> m_bands;
    float m_minValue;
    float m_maxValue;
    NgColorLong m_outOfRangeMinColor;
    NgColorLong m_outOfRangeMaxColor;
    bool m_smeared;
    bool m_even; ///< a value's band follows from the range, without a search
};

/// What the host fills for one contour texture. The field order is part of the interface.
class NRENDERUTL_API RenderTextureAttributes {
public:
    RenderTextureAttributes();
    RenderTextureAttributes(const RenderTextureAttributes&);
    RenderTextureAttributes(RenderTextureAttributes&&) noexcept;
    RenderTextureAttributes& operator=(const RenderTextureAttributes&);
    RenderTextureAttributes& operator=(RenderTextureAttributes&&) noexcept;
    ~RenderTextureAttributes();

    /// Sets the fields back to their initial values: zeros, unset out-of-range colours (0xFFFFFFFF), a new
    /// scale.
    void Reset();
    /// Installs count bands from count + 1 ascending limits and count colours, then the smeared and
    /// out-of-range settings of the fields. A count below 1 does nothing; above 64 the bands stay, with a
    /// console message.
    void UpdateColorScale(int count, const float* values, const unsigned int* colors);

    std::uint32_t texture;             ///< GL name of the contour texture; 0 = none
    void* hostData;                    ///< the host's
    std::int32_t hostWord1, hostWord2; ///< the host's
    float minValue, maxValue;          ///< value range of the texture
    std::int32_t smeared;              ///< non-zero: colours are interpolated within a band
    std::int32_t hostWord3;            ///< the host's
    std::int32_t outOfRangeMode;       ///< 0 no out-of-range colours, 2 the two below, else leave the scale's
    NgColorLong outOfRangeMinColor;
    NgColorLong outOfRangeMaxColor;
    std::int32_t hostWord4, hostWord5; ///< the host's
    RenderColorScale colorScale;

private:
    void Init();
};

// --- mesh record -------------------------------------------------------------------------------------------

/// Elements of one size.
struct _NgConnectStr {
    std::int16_t verticesPerElement;
    std::uint32_t elementCount;
    std::uint32_t* indices; ///< elementCount x verticesPerElement vertex indices, owned (host allocator)
    _NgConnectStr* next;
};

/// Polygon mesh in double precision.
struct _NgMeshStr {
    std::int32_t vertexCount; ///< 0 marks an empty or destroyed mesh
    double* coords;           ///< vertexCount x 3
    double* normals;          ///< vertexCount x 3, or null
    void* reserved;           ///< null
    alignas(void*) std::uint32_t edgeCount;
    std::uint32_t* edges;    ///< edgeCount pairs of vertex indices
    double* edgeFaceNormals; ///< edgeCount x 6: normals of the two faces at the edge
    double* edgeWeights;     ///< edgeCount: above 0 drawn as silhouette only, else always
    _NgConnectStr* blocks;   ///< first connectivity block
};

/// What NglPickMesh found.
enum _NgPickStatus { NgPickElement = 0, NgPickEdge = 1, NgPickVertex = 2, NgPickNothing = 3 };

/// Makes a mesh of count vertices without elements. With copy, coordinates and normals (null = none) are
/// copied from count x 3 doubles or, when indirect, from count pointers to 3 doubles; without, the arrays are
/// stored as given and stay the caller's: arrays that NHostAllocate did not make must be taken out before
/// NglDestroyMesh. The record itself is freed with NHostFree after NglDestroyMesh. Null for more than 2^31 -
/// 1 vertices or when memory runs out.
NRENDERUTL_API _NgMeshStr* ngl_create_mesh(unsigned int count, void* coords, void* normals,
                                           int coordsIndirect, int normalsIndirect, int copy);
/// Appends a connectivity block of elementCount x verticesPerElement vertex indices. With copy they are
/// copied, with 24 bytes of slack behind them; without, the block takes over indices, which must come from
/// NHostAllocate. Nothing is appended, and indices stay the caller's, for a size outside 1 to 32767, for null
/// indices to copy, or when memory runs out. Edge data that were built before are not updated.
NRENDERUTL_API void ngl_add_connect(_NgMeshStr* mesh, unsigned int elementCount, int verticesPerElement,
                                    unsigned int* indices, int copy);
/// Copies a mesh, its blocks in order, without its edge data. Returns 0; 1, with *copy untouched, for an
/// empty source or when memory runs out.
NRENDERUTL_API int NglCopyNgMesh(_NgMeshStr* source, _NgMeshStr** copy);
/// Frees everything the mesh owns but not the record, which is left empty; harmless when repeated. A mesh of
/// no vertices is left as it is, blocks included.
NRENDERUTL_API void NglDestroyMesh(_NgMeshStr* mesh);
/// Builds the edge data from the connectivity, in place of what was there: every edge of every block once, by
/// its vertex indices (coincident vertices are different ones), in the order of its lower, then its higher
/// index. Face normals are unit length, turned to one side where neighbours are wound against each other, and
/// zero for a face that is missing or has no area. The weight is 1 where exactly two faces meet at 30 degrees
/// or less between their normals, and 0, a feature edge, at sharper corners, borders, edges of more faces,
/// beams and faces without area. Elements with an index out of range are skipped. No edges, or no memory:
/// count 0 and null arrays.
NRENDERUTL_API void ngl_process_mesh_edges(_NgMeshStr* mesh);

/// Hit-tests a mesh, transformed by matrix (column-major), against the infinite line through rayStart and
/// rayEnd: the nearest edge within *tolerance (transformed length), one of its ends, or an element whose
/// edges in turn were each the nearest. The first ten vertices of an element count; elements with an index
/// out of range are skipped. *indices and *points (untransformed), the picked vertex first, hold the
/// element's (at most ten), an edge's two or the one vertex; the caller frees them with NHostFree. Nothing
/// picked leaves them untouched. An edge's second index is the block's entry behind the edge's start where
/// the start was picked, the entry before it where the end was (deliberate); if none, the edge's other end.
NRENDERUTL_API _NgPickStatus NglPickMesh(_NgMeshStr* mesh, _NgPoint3Str* rayStart, _NgPoint3Str* rayEnd,
                                         double (*matrix)[4][4], _NgPoint3Str** points, int** indices,
                                         double* tolerance);

// --- mesh drawing ------------------------------------------------------------------------------------------

/// Bits of the draw flags; 0 draws all edges.
enum NglMeshFlags : unsigned int {
    NglMeshEdges = 1,
    NglMeshFaces = 2,
    NglMeshSilhouette = 4, ///< 8 and 16 mean the same
    NglMeshFlat = 32,
};

/// Draws a mesh with the fixed-function pipeline from client memory; edges are unlit, in the current colour.
/// Only the low byte of flags counts. Edges over faces are pulled to the viewer by the view record's push
/// delta. Elements and edges with an index out of range are left out; a block of other than 3 vertices per
/// element is read as quads. In an optimized display mode only silhouette and feature edges are drawn. A
/// context with the view's matrices must be current. While a mesh scale factor is set, faces are drawn one by
/// one with scaled normals, and GL_FLAT remains as shade model; otherwise the GL state is left as it was.
NRENDERUTL_API void ngl_mesh(_NgMeshStr* mesh, unsigned int flags);
/// The same with one value per vertex as coordinate of the texture that the caller has bound to unit 0 and
/// enabled. Null values draw nothing; while a mesh scale factor is set, faces are drawn without the values.
NRENDERUTL_API void ngl_mesh_contour_draw(_NgMeshStr* mesh, unsigned int flags, float* values);

// --- glyphs ------------------------------------------------------------------------------------------------

/// Closed surface |x/a|^n + |y/b|^n + |z/c|^n = 1 with unit normals: 2 is an ellipsoid, more come near a box.
/// Rings of M = resolution / 4 x 4 vertices about z, at least 8, from the pole at +z (vertex 0) to that at -z
/// (the last), M/2 - 1 of them; a fan of triangles, quads, and a fan again, counter-clockwise seen from
/// outside. Of semi-axes the magnitude counts; one of 0 makes the glyph flat. The caller owns the mesh:
/// NglDestroyMesh, then NHostFree. Null for n < 2, semi-axes that are not finite, more than 2^31 - 1
/// vertices, or without memory.
NRENDERUTL_API _NgMeshStr* ngl_hyper_ellipsoid(double a, double b, double c, int n, int resolution);
/// Draws the faces of such a glyph as ngl_mesh does, under the current matrices, colour and lights. Returns
/// 0; -1, and draws nothing, where ngl_hyper_ellipsoid gives none.
NRENDERUTL_API int Ngl_Shape_Hyper_Ellipsoid(double a, double b, double c, int n, int resolution);
/// Makes the planar mesh inside |x/a|^n + |y/b|^n = 1 at z = 0, facing +z, with semiAxes a and b (null: 1 and
/// 1). `rings` rings of M vertices each, equally spaced, from the inner to the outer one, counter-clockwise
/// from +x, and the centre as last vertex; a fan of M triangles, then quads outwards. Returns 0; -1, *mesh
/// untouched, for rings < 1 and where ngl_hyper_ellipsoid gives none. The caller owns the mesh.
NRENDERUTL_API int ngl_create_elliptic_mesh(int n, int resolution, int rings, double* semiAxes,
                                            _NgMeshStr** mesh);
/// Draws a planar mesh in the plane of the centre, which the matrix (column-major) transforms first: vertices
/// at centre + (sx x, sy y), their own z ignored. Mode 0 draws it by ngl_mesh(mesh, drawArg), mode 2 the
/// outline that ngl_create_elliptic_mesh gives it, mode 1 both, the outline in palette colour 0, which
/// remains current; other modes draw nothing. Returns 0, also for null pointers and without
/// memory, when nothing is drawn.
NRENDERUTL_API int ngl_draw_ellip_ngmesh(_NgMeshStr* mesh, double sx, double sy, _NgPoint3Str* centre,
                                         double (*matrix)[4][4], int mode, int drawArg);

// --- mesh renderer -----------------------------------------------------------------------------------------

namespace ngl {

/// How one mesh is drawn.
struct _RenderAttributes {
    std::int32_t color = 0;          ///< palette index
    bool frontAndBackRender = false; ///< the renderer's front and back colours by facing, in place of color
    GuString materialName;           ///< row of the material table; empty or unknown: that of the draw before
    bool transparency = false;       ///< back faces first, with alpha in the transparent pass
    float alpha = 1.0f;              ///< opacity, 0 to 1
};

/// Draws meshes from client memory with one program that all renderers share: lit by the record's lights and
/// materials, or physically based where that is enabled (EnablePhysicallyBasedRendering) by a rig of five
/// lights about the viewer, or by the environment. Blending is the host's.
class NRENDERUTL_API NglMeshRenderer {
public:
    /// Every value but 1 is an opaque pass.
    enum RenderPass : int { RenderPassOpaque = 0, RenderPassTransparent = 1 };

    NglMeshRenderer();
    NglMeshRenderer(const NglMeshRenderer&);
    NglMeshRenderer& operator=(const NglMeshRenderer&);
    ~NglMeshRenderer();

    void SetRenderAttributes(const _RenderAttributes& attributes);
    void SetRenderMaterial(const wchar_t* name);
    void SetColor(int index);
    /// Transparency, 0 opaque to 255.
    void SetAlpha(int transparency);
    void EnableTransparency(bool enable);
    void EnableFrontAndBackRender(bool enable);

    /// Takes the program into use, with the view of GL and the record's lights, materials and camera. False,
    /// with a diagnostic, when there is none; the next call tries again. User clip planes do not cut. With an
    /// environment, units 1 to 3 keep its maps and unit 0 is active.
    bool RenderBegin(RenderPass pass);
    /// Draws under GL's model-view matrix, which may differ from call to call, triangles before quads:
    /// tightly packed positions and unit normals, indices of 3 and 4 vertices an element. A null array is not
    /// drawn. Outside RenderBegin and RenderEnd it posts a diagnostic, unless both counts are 0.
    void Render(const float* positions, const float* normals, unsigned int triCount,
                const unsigned int* triIndices, unsigned int quadCount, const unsigned int* quadIndices);
    void Render(const float* positions, const float* normals, unsigned int triCount,
                const unsigned int* triIndices, unsigned int quadCount, const unsigned int* quadIndices,
                const _RenderAttributes& attributes);
    /// Leaves no program in use.
    void RenderEnd();

private:
    static NShaderProgram& ShaderProgram(); ///< that in use
    void SetShaderUniforms(RenderPass pass);
    void SetPBRAndHDRUniforms();
    void SetDrawUniforms(const _RenderAttributes& attributes);

    float m_modelView[16]; ///< column-major
    float m_projection[16];
    NglLightParams m_lights[8];
    NglMatParams m_frontMaterial;
    NglMatParams m_backMaterial;
    float m_cameraPosition[3];
    NglLightParams m_pbrLights[8]; ///< status and position count
    float m_frontColor[4];
    float m_backColor[4];
    _RenderAttributes m_attributes;
    std::uint32_t m_normalLocation; ///< 0xFFFFFFFF = unknown, as of the position
    std::uint32_t m_positionLocation;

    static NShaderProgram* m_pShaderProg;
};

} // namespace ngl

// --- boundary meshes ---------------------------------------------------------------------------------------

/// Elements of one kind of a boundary mesh.
struct _NskBdryElemStr {
    std::int16_t kind; ///< 3 triangles, 4 quads
    std::uint32_t elementCount;
    std::uint32_t* indices; ///< elementCount x kind vertex indices
    _NskBdryElemStr* next;
};

/// The host's boundary mesh, in single precision; everything in it stays the host's.
struct _NskBdryMeshStr {
    std::int32_t vertexCount;
    float* vertices;           ///< vertexCount x 3
    float* normals;            ///< vertexCount x 3, or 3 for the whole mesh
    _NskBdryElemStr* elements; ///< first block
};

/// GPU buffers of a boundary mesh, owned and made with new; null = missing.
struct _RenderFMeshVboStr {
    RenderGLBuffer* vertices;
    RenderGLBuffer* normals;
    RenderGLBuffer* indices;
};

/// Draws boundary meshes with fixed function under the matrices, lights and materials in force. Colours are
/// palette indices. Drawing needs a context; it leaves the vertex and normal arrays disabled, and elements
/// with an index out of range out. Null pointers and meshes without vertices do nothing.
class NRENDERUTL_API NRenderNgMeshRenderer {
public:
    /// A new record without buffers, for DeleteVboInfo to free; null without memory.
    static void CreateVboInfo(_RenderFMeshVboStr*& vbo);
    /// Makes the buffers that are missing: vertices, a normal for each of them, and three indices for each
    /// element of the first block. Those that exist stay, also when the mesh has changed or their creation
    /// failed: DeleteBuffers first. A mesh without one of the three, or with one of 2 GiB, gets none.
    static void UpdateBuffers(const _NskBdryMeshStr* mesh, _RenderFMeshVboStr* vbo);
    /// Smooth shading, and the valid buffers as vertex and normal arrays and as indices.
    static void BindBuffers(_RenderFMeshVboStr* vbo);
    static void UnbindBuffers(_RenderFMeshVboStr* vbo);
    /// Draws the first block, lit, from its buffers, as triangles whatever its kind. True when nothing was
    /// drawn: a buffer is missing or not valid, or the block is without elements. Leaves smooth shading.
    static bool BindAndDrawMesh(_RenderFMeshVboStr* vbo, const _NskBdryMeshStr* mesh);
    /// The same, lit or not as it is, front faces in one colour and back faces in another. Leaves filled
    /// polygons, culling enabled, of front faces, and backColor as current colour too.
    static bool BindAndDrawMesh(_RenderFMeshVboStr* vbo, const _NskBdryMeshStr* mesh, int frontColor,
                                int backColor);
    /// Draws the blocks of triangles and quads from the vertex arrays that the caller has set up.
    static void DrawMesh(const _NskBdryMeshStr* mesh);
    /// Draws them from the mesh's own memory. With singleNormal its first normal is for all vertices and
    /// stays the current one; without normals the current one holds.
    static void DrawWithoutVBO(const _NskBdryMeshStr* mesh, bool singleNormal);
    /// The same by facing as BindAndDrawMesh, but leaves culling disabled.
    static void DrawWithoutVBO(const _NskBdryMeshStr* mesh, bool singleNormal, int frontColor, int backColor);
    /// Two-sided lighting, flat or smooth shading, a current colour and, if wanted, a transparency from 0 to
    /// 255 as blending value, until ResetShadingProperties: in pairs, not nested. Blending itself is the
    /// caller's to switch.
    static void SetShadingProperties(int flat, int color, bool transparency, int transparencyValue);
    static void ResetShadingProperties();
    /// Deletes the buffers; the record stays.
    static void DeleteBuffers(_RenderFMeshVboStr* vbo);
    static void DeleteVboInfo(_RenderFMeshVboStr*& vbo);

    /// What ResetShadingProperties restores.
    static int m_iOrgTwoSidedColor;
    static int m_iOrgShadeModel;
    static int m_iOrgLighting;
    static bool m_bEnableTransparency;
    static int m_iOrgBlendingValue; ///< 0 to 255
    static int m_iOrgColor;         ///< palette index

private:
    static bool AreVbosAndMeshNotValid(const _RenderFMeshVboStr* vbo, const _NskBdryMeshStr* mesh);
};

// --- element mesh ------------------------------------------------------------------------------------------

namespace ngl {

/// Nodes and faces as NglElementMesh::Create takes them. The arrays are read during the call and not kept.
struct NglElementMeshInput {
    std::uint32_t nodeCount = 0;
    const double* nodes = nullptr;  ///< nodeCount x 3, model space
    const float* normals = nullptr; ///< nodeCount x 3, unit; null: made from the faces
    std::uint32_t triangleCount = 0;
    const std::uint32_t* triangles = nullptr;        ///< triangleCount x 3 node indices, counter-clockwise
    const std::uint32_t* triangleElements = nullptr; ///< element number of each; null: 0, 1, 2, ...
    std::uint32_t quadCount = 0;
    const std::uint32_t* quads = nullptr;        ///< quadCount x 4 node indices, counter-clockwise
    const std::uint32_t* quadElements = nullptr; ///< null: triangleCount, triangleCount + 1, ...
    std::uint32_t elementCount = 0;              ///< 0: one more than the largest element number
    /// Faces that meet at a larger angle do not share a made normal; 180 and more: all about a node do.
    double creaseDeg = 30.0;
};

/// The elements that a change is for. A list is read during the call and not kept.
struct NglElements {
    std::uint32_t first = 0;
    std::uint32_t count = 0;
    const std::uint32_t* list = nullptr; ///< count element numbers; null: first, first + 1, ...

    static NglElements One(std::uint32_t element) { return {element, 1, nullptr}; }
    static NglElements Range(std::uint32_t first, std::uint32_t count) { return {first, count, nullptr}; }
    /// No list stands for elements out of range, which every setter refuses.
    static NglElements List(const std::uint32_t* list, std::uint32_t count) {
        return {list ? 0 : 0xFFFFFFFFu, count, list};
    }
};

enum NglElementShading : int {
    NglElementSmooth,  ///< normals of the nodes
    NglElementFlat,    ///< a normal for each triangle
    NglElementNormals, ///< a normal for each face as given: both halves of a warped quad in one shade
};

enum NglElementSelection : int {
    NglElementNotSelected = 0,
    NglElementSelected = 1,
    NglElementHighlighted = 2
};

/// Which programs draw. What is wanted and not to be had falls back to the next possible, down to the last.
enum NglElementRoute : int {
    NglElementRouteAutomatic, ///< the fastest that gives the picture
    NglElementRouteMesh,      ///< RenderShaderMesh
    NglElementRouteGeometry,  ///< RenderShaderMeshTriangles and RenderShaderMeshQuads
    NglElementRouteFixed,     ///< fixed function
};

/// How an element mesh is drawn.
struct NglElementAttributes {
    NglElementShading shading = NglElementSmooth;
    NglElementRoute route = NglElementRouteAutomatic;
    NgColorLong color = 0xFFC0C0C0; ///< where nothing else colours; its alpha is ignored
    bool frontAndBack = false;      ///< the next two by facing, in place of color
    NgColorLong frontColor = 0xFFC0C0C0, backColor = 0xFF808080;
    bool lit = true;
    bool contour = true;  ///< values in the colours of the scale, where there are both
    float opacity = 1.0f; ///< below 1: transparent, back faces first, without writing depth
    int clipFlag = 0;     ///< 1 leaves out elements of clip code 2 and above, 3 those of 2 and below
    int failureMode = 0;  ///< 1 level >= lower fails, 2 level < upper fails, 3 both; see SetFailureLevels
    int failureLevel = 0;
};

/// What NglElementMesh::Pick found. Distances are in model units.
struct NglElementPick {
    std::uint32_t element; ///< element number
    std::uint32_t face;    ///< triangles first, then quads, as given
    std::uint32_t edge[2]; ///< nodes of the nearest edge of that face
    std::uint32_t node;    ///< nearest node of that face
    _NgPoint3Str point;    ///< where the ray meets the face, model space
    double distance;       ///< from the ray's start to point
    double edgeDistance;   ///< from point to the edge
    double nodeDistance;   ///< from point to the node
};

/// A finite-element surface on the GPU: geometry in buffers, what is known of each element (shown, selected,
/// coloured, clipped, failing) in texture buffers or in the indices, of which a change uploads only the part
/// that it changes. It draws with the
/// catalogue's mesh programs, or the same picture through fixed function where IsFastRendererEnabled is 0.
/// Positions are kept in single precision about an origin of the mesh's own, and drawn with the record's
/// double-precision model-view where GL holds the same: coordinates may lie far from zero.
/// Only Draw calls GL, and what frees a surface, Create and assignment included, as RenderGLBuffer does.
/// Setters return 0; -1, with nothing changed, for an element, selection or code out of range, a null array
/// or a call before Create, which attributes and scale need not wait for; -2 without memory.
class NRENDERUTL_API NglElementMesh {
public:
    NglElementMesh();
    ~NglElementMesh();
    NglElementMesh(NglElementMesh&&) noexcept;
    NglElementMesh& operator=(NglElementMesh&&) noexcept;

    std::uint32_t ElementCount() const;
    std::uint32_t NodeCount() const;
    const NglElementAttributes& Attributes() const;
    /// Whether the element is drawn under the attributes: neither clipped nor failing, and visible, selected
    /// or highlighted.
    bool IsElementShown(std::uint32_t element) const;

    void SetAttributes(const NglElementAttributes& attributes);
    /// The scale for the values, copied; null or one without bands: no contour.
    int SetColorScale(const RenderColorScale* scale);
    /// One value for each node, or for each element; NaN takes the out-of-range minimum colour, in a scale of
    /// one value that of its middle band. The last call counts; null takes the values away.
    int SetNodeValues(const float* values);
    int SetElementValues(const float* values);
    /// The values of some elements, in their order.
    int SetElementValues(const NglElements& elements, const float* values);

    int SetVisible(const NglElements& elements, bool visible);
    int SetSelection(const NglElements& elements, NglElementSelection selection);
    /// Elements' own colours (alpha ignored); one for all, or one each in their order. ClearColors takes them
    /// away.
    int SetColor(const NglElements& elements, NgColorLong color);
    int SetColors(const NglElements& elements, const NgColorLong* colors);
    int ClearColors(const NglElements& elements);
    /// Clip code 0 to 255; 0 at start.
    int SetClipCode(const NglElements& elements, int code);
    /// The two failure levels, -1 = none, as at start. In mode 1 an element fails when the current level is
    /// at or above lower, in mode 2 when it is below upper; mode 3 joins them, and with lower < upper only
    /// the second counts. lower and upper of SetFailureLevels hold a level for each element in turn.
    int SetFailureLevel(const NglElements& elements, int lower, int upper);
    int SetFailureLevels(const NglElements& elements, const int* lower, const int* upper);

    /// Takes over a surface; facts and values start anew, attributes and scale stay. -1 for missing arrays, a
    /// node or element out of range, or positions that are not finite; -2 without memory: what was there
    /// stays then.
    int Create(const NglElementMeshInput& input);
    /// Frees everything that Create made.
    void Clear();
    /// Draws with the record's view, lights and materials under GL's current state; changes it only while
    /// drawing. Returns 0, also when there is nothing to draw or no context is current; -2 without memory.
    int Draw();
    /// The first shown face that the ray from start through end meets; of several at one distance the one
    /// with the lowest number. False, *picked untouched, when it meets none, has no direction or is not
    /// finite, and without memory. The first pick prepares a tree over the faces.
    bool Pick(const _NgPoint3Str* start, const _NgPoint3Str* end, NglElementPick* picked);
    /// The same through the centre of a window pixel, y from the top as NglGetViewVector takes it, with the
    /// record's view; not before its near plane nor behind its far plane.
    bool PickPixel(int x, int y, NglElementPick* picked);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace ngl
