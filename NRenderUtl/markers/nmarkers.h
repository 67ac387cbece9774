// 3D markers, and the state of markers and annotations that is refreshed whenever the view record changes.
#pragma once

#include <cstdint>

#include "NRenderUtl/ntypes.h"
#include "NRenderUtl/shaders/nshaders.h"

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

// --- state that follows the view record --------------------------------------------------------------------

/// Refreshes the markers' cached matrices (16 floats each, column-major) and ortho scale (model length of a
/// pixel).
NRENDERUTL_API void UtlMarkerInit(const float* modelView, const float* projection, float pixelSize);

/// Height of managed annotation text; 0 means the default height.
NRENDERUTL_API void UtlDrawSetManagedTextDrawHeight(double height);
NRENDERUTL_API double UtlDrawGetManagedTextDrawHeight();
/// Sets the managed text height back to 0.
NRENDERUTL_API void UtlDrawInitializeManagedTextDraw();
