// Mesh and field rendering: the colour scale with its texture attributes, the library's mesh record with
// picking, and mesh drawing.
#pragma once

#include <vector>

#include "NRenderUtl/ntypes.h"

// --- colour scale
// -------------------------------------------------------------------------------------------

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
    /// Packed colour of a value with the current blending alpha as top byte; 0xFFFFFFFF without bands.
    NgColorLong GetColor(float value) const;

    /// Takes at most 64 bands, ascending and without overlap; more are refused with a console message.
    void SetColorBands(const std::vector<ColorBand>& bands);
    void SetOutOfRangeMinColor(NgColorLong color);
    void SetOutOfRangeMaxColor(NgColorLong color);
    void SetSmearedMode(bool smeared);
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

    /// Sets the fields back to their initial values.
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

// --- mesh record
// --------------------------------------------------------------------------------------------

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

/// Makes a mesh of count vertices. With copy, coordinates and normals (null = none) are copied from count x 3
/// doubles or, when indirect, from count pointers to 3 doubles; without, the arrays are stored as given and
/// stay the caller's. The record itself is freed with NHostFree after NglDestroyMesh.
NRENDERUTL_API _NgMeshStr* ngl_create_mesh(unsigned int count, void* coords, void* normals,
                                           int coordsIndirect, int normalsIndirect, int copy);
/// Appends a connectivity block. Without copy the block takes over indices, which must come from
/// NHostAllocate.
NRENDERUTL_API void ngl_add_connect(_NgMeshStr* mesh, unsigned int elementCount, int verticesPerElement,
                                    unsigned int* indices, int copy);
/// Copies a mesh without its edge data. Returns 0; 1, with *copy untouched, for an empty source.
NRENDERUTL_API int NglCopyNgMesh(_NgMeshStr* source, _NgMeshStr** copy);
/// Frees everything the mesh owns but not the record; harmless when repeated.
NRENDERUTL_API void NglDestroyMesh(_NgMeshStr* mesh);
/// Builds edges, edge face normals and silhouette weights from the connectivity.
NRENDERUTL_API void ngl_process_mesh_edges(_NgMeshStr* mesh);

/// Hit-tests a mesh, transformed by matrix, against the line through rayStart and rayEnd: the nearest edge
/// within *tolerance (model length), its nearer end, or a whole element. *indices and *points (untransformed)
/// are allocated for every status but NgPickNothing; the caller frees them with NHostFree.
NRENDERUTL_API _NgPickStatus NglPickMesh(_NgMeshStr* mesh, _NgPoint3Str* rayStart, _NgPoint3Str* rayEnd,
                                         double (*matrix)[4][4], _NgPoint3Str** points, int** indices,
                                         double* tolerance);

// --- mesh drawing
// -------------------------------------------------------------------------------------------

/// Bits of the draw flags; 0 draws all edges.
enum NglMeshFlags : unsigned int {
    NglMeshEdges = 1,
    NglMeshFaces = 2,
    NglMeshSilhouette = 4, ///< 8 and 16 mean the same
    NglMeshFlat = 32,
};

/// Draws a mesh with the fixed-function pipeline. Edges over faces are pulled to the viewer by the push
/// delta.
NRENDERUTL_API void ngl_mesh(_NgMeshStr* mesh, unsigned int flags);
/// The same with one value per vertex as texture coordinate of the contour texture that the caller has bound.
NRENDERUTL_API void ngl_mesh_contour_draw(_NgMeshStr* mesh, unsigned int flags, float* values);
