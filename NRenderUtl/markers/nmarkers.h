// 3D markers, symbols and annotations, with the state that is refreshed whenever the view record changes.
#pragma once

#include <cstddef>
#include <cstdint>

#include "NRenderUtl/ntypes.h"
#include "NRenderUtl/shaders/nshaders.h"

class MarkerArrayDraw; // of the library's own

// --- 3D marker shapes --------------------------------------------------------------------------------------

/// Shape of a 3D marker. All but the sphere run along +z from the start of their line to its end.
enum _Render3DMarkerType : std::int32_t {
    RENDER_3D_MARKER_NONE = 0,
    RENDER_3D_MARKER_CYLINDER = 1,
    RENDER_3D_MARKER_RIVET = 2, ///< a cylinder with two flanges
    RENDER_3D_MARKER_CONE = 3,
    RENDER_3D_MARKER_SPHERE = 4,
    RENDER_3D_MARKER_ARROW_ONE_WAY = 5,
};

/// Slices about the axis. The sphere has its own.
enum _Render3DMarkerShape : std::int32_t {
    RENDER_3D_MARKER_SHAPE_SMOOTH = 0, ///< 16
    RENDER_3D_MARKER_SHAPE_NORMAL = 1, ///< 8
    RENDER_3D_MARKER_SHAPE_COARSE = 2, ///< 4
};

/// A shape of which one unit instance, kept in client memory and on the GPU, is drawn many times. The
/// position of a vertex is its normal too. Copies are shallow: the first one destroyed takes the geometry of
/// all.
class NRENDERUTL_API N3DMarker {
public:
    N3DMarker(const N3DMarker&);
    N3DMarker& operator=(const N3DMarker&);
    /// Frees the geometry.
    virtual ~N3DMarker();
    /// Builds the geometry of a resolution; the one now built is kept. An unknown resolution has no
    /// triangles.
    virtual void CreateUnitInstance(_Render3DMarkerShape shape) = 0;
    /// Draws one marker with the program in use, between Begin and End, or without a program by fixed
    /// function in the current colour. a is the start and b the vector to the end; of a sphere the centre and
    /// the three diameters. lengthScale stretches the vector if above 0; widthRatio is the diameter by the
    /// drawn length, 0 for 1/6. A line shorter than 1e-5 draws nothing. rgba is the colour unless contoured,
    /// which takes texCoord1 for the first half of the vertices and texCoord2 for the rest (fixed function
    /// only the first), or the colour of selection or highlight. Only reads what the pointers name.
    virtual void Draw(NShaderProgram* program, _NgFPoint3Str* a, _NgFPoint3Str* b, float lengthScale,
                      float widthRatio, float* rgba, bool contoured, float texCoord1, float texCoord2,
                      int selected, int highlighted);

    /// Builds the geometry and, for a program, which must be in use, binds it.
    void Begin(NShaderProgram* program, _Render3DMarkerShape shape);
    void End(NShaderProgram* program);
    _Render3DMarkerType GetType() const;

protected:
    explicit N3DMarker(_Render3DMarkerType type = RENDER_3D_MARKER_NONE);
    /// 16, 8 or 4; 0 for an unknown resolution.
    int GetSliceCount(_Render3DMarkerShape shape) const;
    /// Frees the geometry; the slice count stays.
    void Initialize();
    /// Makes the buffers that have something to hold. What the host has bound stays so.
    void CreateVBOs();

    /// Starts another instance with arrays to fill; false when it is the one now built, or without memory.
    bool startInstance(int sliceCount, int vertexCount, int triangleCount);
    struct Look;
    void drawByProgram(NShaderProgram& program, const double (&transform)[4][4], const Look& look) const;
    void drawByFixedFunction(const Look& look) const;

    _Render3DMarkerType m_type;
    std::int32_t m_vertexCount;
    float* m_vertices; ///< x, y, z of each
    std::int32_t m_triangleCount;
    std::uint32_t* m_indices;
    std::int32_t m_sliceCount;
    RenderGLBuffer m_vertexBuffer;
    RenderGLBuffer m_indexBuffer;

private:
    friend class MarkerArrayDraw;
    void drawTriangles() const;
};

class NRENDERUTL_API N3DCylinder : public N3DMarker {
public:
    /// The one instance, made by the first call and never destroyed.
    static N3DCylinder* GetInstance();
    N3DCylinder(const N3DCylinder&);
    N3DCylinder& operator=(const N3DCylinder&);
    void CreateUnitInstance(_Render3DMarkerShape shape) override;

private:
    N3DCylinder();
    static N3DCylinder* m_pInstance;
};

class NRENDERUTL_API N3DRivet : public N3DMarker {
public:
    static N3DRivet* GetInstance();
    N3DRivet(const N3DRivet&);
    N3DRivet& operator=(const N3DRivet&);
    void CreateUnitInstance(_Render3DMarkerShape shape) override;

private:
    N3DRivet();
    static N3DRivet* m_pInstance;
};

class NRENDERUTL_API N3DCone : public N3DMarker {
public:
    static N3DCone* GetInstance();
    N3DCone(const N3DCone&);
    N3DCone& operator=(const N3DCone&);
    void CreateUnitInstance(_Render3DMarkerShape shape) override;

private:
    N3DCone();
    static N3DCone* m_pInstance;
};

/// Of 32 slices and 32 stacks, whatever the resolution asked for.
class NRENDERUTL_API N3DSphere : public N3DMarker {
public:
    static N3DSphere* GetInstance();
    N3DSphere(const N3DSphere&);
    N3DSphere& operator=(const N3DSphere&);
    void CreateUnitInstance(_Render3DMarkerShape shape) override;
    void Draw(NShaderProgram* program, _NgFPoint3Str* a, _NgFPoint3Str* b, float lengthScale,
              float widthRatio, float* rgba, bool contoured, float texCoord1, float texCoord2, int selected,
              int highlighted) override;

private:
    N3DSphere();
    static N3DSphere* m_pInstance;
};

class NRENDERUTL_API N3DArrowOneWay : public N3DMarker {
public:
    static N3DArrowOneWay* GetInstance();
    N3DArrowOneWay(const N3DArrowOneWay&);
    N3DArrowOneWay& operator=(const N3DArrowOneWay&);
    void CreateUnitInstance(_Render3DMarkerShape shape) override;

private:
    N3DArrowOneWay();
    static N3DArrowOneWay* m_pInstance;
};

// --- 3D marker sections ------------------------------------------------------------------------------------

/// What draws the sections below: the marker program, or fixed function where optimized rendering is off or
/// the driver refuses the program. Copies share the program, which each would delete.
class NRENDERUTL_API N3DMarkerRenderer {
public:
    /// The one instance, made by the first call, which needs a current context for the program.
    static N3DMarkerRenderer* GetInstance();
    N3DMarkerRenderer(const N3DMarkerRenderer&);
    N3DMarkerRenderer& operator=(const N3DMarkerRenderer&);
    virtual ~N3DMarkerRenderer();

    /// The shape of the section; null outside one and for an unknown type.
    N3DMarker* GetMarker() const;
    /// Whether the program is clipped by user planes from the next Begin on.
    void SetClipFlag(bool clip);
    /// A section of one shape: the program in use, with view, lights, materials and texture matrix of now.
    /// forceFixedFunction holds until End.
    void Begin(_Render3DMarkerType type, _Render3DMarkerShape shape, bool forceFixedFunction);
    /// As N3DMarker::Draw; a null colour is the current one of GL. 1, or 0 without a shape.
    int Draw(const _NgFPoint3Str* start, const _NgFPoint3Str* vector, float lengthScale, float widthRatio,
             const NgColorLong* color, bool contoured, float texCoord1, float texCoord2, int selected,
             int highlighted);
    /// Leaves no program in use and no buffer bound.
    void End();

protected:
    static N3DMarker* GetMarkerInstance(_Render3DMarkerType type);

private:
    friend class MarkerArrayDraw;
    N3DMarkerRenderer();
    void beginProgram();
    void leaveShape();

    NShaderProgram* m_pShader;
    NShaderProgram* m_pParkedShader; ///< out of use while a section is drawn by fixed function
    std::int32_t m_bShaderActive;
    N3DMarker* m_pMarker;
    bool m_bClip;
    static N3DMarkerRenderer* m_pInstance;
};

/// Sections of 3D markers: Begin, any number of draws, End. All does nothing where the setting
/// "OPTIMIZED_3D_MARKER_RENDERING", read once, is false. Without a program, or with forceFixedFunction,
/// markers are drawn by fixed function in the current colour, contoured ones with the texture enabled.
/// Beginning again without an end just begins again. Needs a current context.
NRENDERUTL_API void RenderBegin3DMarkerDraw(_Render3DMarkerType type, _Render3DMarkerShape shape,
                                            bool forceFixedFunction);
/// Draws one marker that is no sphere, as N3DMarker::Draw. A null color is GL's current one; the alpha byte
/// of another does not count. With GL_BLEND the alpha is the blending value. 1, or 0 with a diagnostic for a
/// call outside a section or in one of spheres.
NRENDERUTL_API int RenderDraw3DMarker(const _NgFPoint3Str* start, const _NgFPoint3Str* vector,
                                      float lengthScale, float widthRatio, const NgColorLong* color,
                                      bool contoured, float texCoord1, float texCoord2, int selected,
                                      int highlighted);
/// The same for a sphere, with its three diameters.
NRENDERUTL_API int RenderDraw3DSphere(const _NgFPoint3Str* centre, const _NgFPoint3Str* diameters,
                                      NgColorLong color, bool contoured, float texCoord, int selected,
                                      int highlighted);
/// Whether user clip planes cut the markers of the sections to come; nothing happens outside a section.
NRENDERUTL_API void RenderClip3DMarkerDraw(bool clip);
NRENDERUTL_API void RenderEnd3DMarkerDraw();

// --- arrays of 3D markers ----------------------------------------------------------------------------------

/// Markers that are no spheres, as RenderDraw3DMarker takes them one by one. Arrays have count entries, are
/// read at once and never kept; where one is null, the value beside it is that of all.
struct Render3DMarkerArray {
    std::size_t count = 0;
    const _NgFPoint3Str* starts = nullptr;  ///< not null
    const _NgFPoint3Str* vectors = nullptr; ///< not null
    const float* lengthScales = nullptr;
    float lengthScale = 0;
    const float* widthRatios = nullptr;
    float widthRatio = 0;
    const NgColorLong* colors = nullptr;
    const NgColorLong* color = nullptr; ///< null: GL's current colour
    bool contoured = false;
    const float* texCoords1 = nullptr;
    float texCoord1 = 0;
    const float* texCoords2 = nullptr;
    float texCoord2 = 0;
    const std::uint8_t* selected = nullptr;    ///< null: none
    const std::uint8_t* highlighted = nullptr; ///< null: none
    bool exact = false;                        ///< always the triangles of the shape
};

/// Spheres, as RenderDraw3DSphere takes them one by one. Arrays as those of Render3DMarkerArray.
struct Render3DSphereArray {
    std::size_t count = 0;
    const _NgFPoint3Str* centres = nullptr; ///< not null
    const _NgFPoint3Str* diameters = nullptr;
    _NgFPoint3Str diameter = {1, 1, 1};
    const NgColorLong* colors = nullptr;
    NgColorLong color = 0;
    bool contoured = false;
    const float* texCoords = nullptr;
    float texCoord = 0;
    const std::uint8_t* selected = nullptr;
    const std::uint8_t* highlighted = nullptr;
    bool exact = false;
};

/// Draws markers of the open section as so many single calls would, with their diagnostics, but faster. The
/// sum of what these would return. Unless exact is set, opaque spheres and cylinders that no plane cuts may
/// be drawn as the round shapes that they stand for, where that moves their outline by half a pixel at most.
/// Exact markers show the pixels of single calls, but that on a rim the side behind may give way to the one
/// in front where both have the same depth.
NRENDERUTL_API int RenderDraw3DMarkers(const Render3DMarkerArray* markers);
NRENDERUTL_API int RenderDraw3DSpheres(const Render3DSphereArray* spheres);

// --- state that follows the view record --------------------------------------------------------------------

/// Refreshes the markers' cached matrices (16 floats each, column-major) and ortho scale (model length of a
/// pixel), and the symbols' with them (UtlSymInit).
NRENDERUTL_API void UtlMarkerInit(const float* modelView, const float* projection, float pixelSize);

/// Height of managed annotation text; 0 means the default height.
NRENDERUTL_API void UtlDrawSetManagedTextDrawHeight(double height);
NRENDERUTL_API double UtlDrawGetManagedTextDrawHeight();
/// Sets the managed text height back to 0.
NRENDERUTL_API void UtlDrawInitializeManagedTextDraw();

// --- symbols -----------------------------------------------------------------------------------------------
//
// Small drawings that the host defines as data and that keep their size on the screen. A symbol is a chain of
// parts; each has a scale of its own, one of the parameters that the function which places it passes, times
// the ortho scale. Part i starts at an offset, in units of part i - 1 (model units for the first), from where
// part i - 1 started.

/// One primitive, in units of its part.
struct utl_symbol_primitive_s {
    /// 0 stores points[0] in offset register `count`, 1 line points[0] to points[1], 2 polyline of the array,
    /// 3 and 4 filled convex polygon of it; others are ignored.
    std::int16_t kind;
    std::int16_t count; ///< points of array, or the register
    union {
        _NgPoint3Str points[2];
        const _NgPoint3Str* array; ///< of a polygon count + 1 points: its first one again behind the last
    } data;
};

struct utl_parametric_symbol_data_s {
    std::int16_t parameter;      ///< which parameter scales the part; one that is not passed leaves it out
    std::int16_t offsetRegister; ///< register with the part's offset; 0 is always no offset
    std::int16_t primitiveCount;
    const utl_symbol_primitive_s* primitives;
    double nominalLength; ///< unscaled length, by which line symbols are fitted between their points
    void* hostData;       ///< the host's
};

struct utl_symbols {
    void* hostData; ///< the host's
    std::int16_t partCount;
    const utl_parametric_symbol_data_s* parts;
};

/// Refreshes the symbols' matrix (16 doubles) and ortho scale, the model length of a pixel. UtlMarkerInit
/// does it. The int is not read; a null pointer leaves its value as it was.
NRENDERUTL_API void UtlSymInit(const double* matrix, int unused, const float* scale);
/// The host's symbols by slot; they must outlive their use.
NRENDERUTL_API void UtlSetSymbolList(utl_symbols* list, std::uint16_t count);
NRENDERUTL_API utl_symbols* UtlGetSymbolList();
/// The ortho scale, kept as float; 1 at start.
NRENDERUTL_API void UtlSymSetOrthoScale(double scale);
NRENDERUTL_API double UtlSymGetOrthoScale();
/// How near a pick must be to a segment, in pixels; 3 at start.
NRENDERUTL_API void UtlSetSymPickSnapValue(int pixels);
/// Non-zero: springs are drawn also where they do not fit between their points.
NRENDERUTL_API void UtlSetSpringDrawMode(int mode);

/// Draws a symbol's parts at the current matrix in the current colour. parameters must have all that the
/// parts refer to. Registers that kind 0 stores keep their values for later symbols.
NRENDERUTL_API void utl_symbol_draw(const double* parameters, int partCount,
                                    const utl_parametric_symbol_data_s* parts);

// Symbols at model points, facing the viewer, in the current colour. The pick functions test the outlines of
// what the others draw against a pixel, y downward as ngl_transform_32 gives it, by the view record; both
// need the current context. They return 0 when drawn or hit; -1 without list or point, and when missed; -2
// for a kind, direction or size mode that is not known; -3 (point symbols: -2) when the list does not reach
// to the slot. GL's state and the record are left as they were, the record's matrices as no longer current.

/// Kind 8 and 16: slot 6; 9: 5; 10: 4; 17: 9; 18: 10; 19: 11; 21: 13. Parameters (0.5). Drawn at z = 0 of the
/// view, or at the point's own depth where the view's depth range leaves that out.
NRENDERUTL_API int utl_disp_point_symbol(const _NgPoint3Str* point, int kind);
NRENDERUTL_API int utl_pick_point_symbol(const _NgPoint3Str* point, int kind, int x, int y);
/// Between two points. Kind 1: slot 3; 11: 0; 12: 1; 13: 2; 14: 14; 15: 8; 20: 12; 22: 15. With the length L
/// between the points in pixels, L0 and L1 the nominal lengths of parts 0 and 1 and s = (L - L1) / (2 L0) the
/// parameters are (s, 1, s), for slot 8 (L / L0), for slot 12 (1, 1) and for slot 15 (0, 1, 0). Slot 14 takes
/// L in model units, as its own lengths are, and is not scaled with the pixel. The symbol's x axis runs from
/// the first point to the second. The springs, slots 0 to 2, are drawn with the line between the points and
/// about its middle, but picked from the first point on: to pick one, hand in the middle, and beyond it a
/// point as far away as the second is from the first. A spring with L < L1 is drawn in spring draw mode only,
/// with s = -L1 / (2 L0). Points that coincide in the view return 0 and draw nothing, also when picked.
NRENDERUTL_API int utl_disp_line_symbol(const _NgPoint3Str points[2], int kind);
NRENDERUTL_API int utl_pick_line_symbol(const _NgPoint3Str points[2], int kind, int x, int y);
/// The same; the line of slots 0 to 2 carries c1 and c2 as RenderingDrawLine does.
NRENDERUTL_API int utl_disp_line_symbol_WithContour(const _NgPoint3Str points[2], int kind, float c1,
                                                    float c2);
/// The symbol's x axis along a model axis: direction 2 to 7 is +x, -x, +y, -y, +z, -z. Size mode 0: slot 7
/// with parameters (1.5, 1.5), 1: slot 3 with (1, 1, 1). An axis that points at the viewer, or away, is drawn
/// along the view.
NRENDERUTL_API int utl_disp_axis_symbol(const _NgPoint3Str* point, int direction, int sizeMode);
NRENDERUTL_API int utl_pick_axis_symbol(const _NgPoint3Str* point, int direction, int sizeMode, int x, int y);
/// Turned, from the view's axes, by anglesDeg[k] about axes[k] (0 x, 1 y, 2 z; others turn nothing) for k =
/// last, last - 1, ... 0. Sizes as for axis symbols.
NRENDERUTL_API int utl_disp_orient_symbol(const _NgPoint3Str* point, int last, const int axes[],
                                          const double anglesDeg[], int sizeMode);
NRENDERUTL_API int utl_pick_orient_symbol(const _NgPoint3Str* point, int last, const int axes[],
                                          const double anglesDeg[], int sizeMode, int x, int y);

/// 0 when (px, py) is within tol of the segment in screen coordinates, else -1. *fx, *fy (null: not wanted):
/// the foot of the point on the segment's line. A horizontal segment must run from left to right.
NRENDERUTL_API int UtlCheckLineSnap(double tol, double px, double py, double x1, double y1, double x2,
                                    double y2, double* fx, double* fy);
