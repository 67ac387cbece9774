// Mesh and field rendering: the colour scale with its texture attributes, the library's mesh record with
// picking, and mesh drawing.
#pragma once

#include <vector>

#include "NRenderUtl/ntypes.h"

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
