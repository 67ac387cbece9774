// The GL layer: the host's view record, colours, view state and conversions, framebuffers, clip planes,
// lights and host callbacks, and drawing with them. Every call comes from the thread that owns the current GL
// context.
#pragma once

#include <vector>

#include "NRenderUtl/ntypes.h"

class RenderTextureAttributes;

// --- records -----------------------------------------------------------------------------------------------

/// One fixed-function light.
struct NglLightParams {
    std::int32_t enabled; ///< what glIsEnabled returned for the light; 0 = off
    float ambient[4];
    float diffuse[4];
    float specular[4];
    float position[4];
    float constantAttenuation;
    float linearAttenuation;
    float quadraticAttenuation;
};

/// One side of a material.
struct NglMatParams {
    float emission[4];
    float ambient[4];
    float diffuse[4];
    float specular[4];
    float shininess;
};

/// The view record that host and library share. It is copied as one block, so field order and widths are part
/// of the interface.
struct _NglInfoStr {
    double modelView[4][4]; ///< column-major, as OpenGL returns it
    float modelViewF[4][4];
    double projection[4][4];
    float projectionF[4][4];
    float textureMatrix[4][4]; ///< written by NglEnableTexture
    double inverseModelView[4][4];
    std::int32_t viewport[4]; ///< x, y, width, height in pixels
    _NgPoint3Str viewY;       ///< unit vector, model space, up on the screen
    _NgPoint3Str viewX;       ///< unit vector, model space, right on the screen
    _NgPoint3Str view;        ///< unit vector, model space, of increasing window depth
    _NgPoint3Str orthoMin;    ///< current orthographic box, along the axes of the view (see ngl_get_ortho_2d)
    _NgPoint3Str orthoMax;
    float pixelSize;                   ///< model-space length of one pixel
    _NgPoint3Str screenOrigin;         ///< model point under window pixel (0, 0) at depth 0
    std::int32_t colorCount;           ///< entries of palette
    const NgColorLong* palette;        ///< the host's; null when it gave none
    NgColorLong backgroundColor;       ///< 0x00BBGGRR
    std::int32_t reserved;             ///< not used by the library
    std::int32_t colorIndex;           ///< becomes current when the record is loaded
    std::int32_t optimizedDisplayMode; ///< non-zero: ngl_mesh draws silhouette and feature edges only
    _NgPoint3Str pushDelta;            ///< depth offset of the view-point pushes
    std::int32_t transformed;          ///< 1 while a transformation lies on top of the view
    std::int32_t perspective;          ///< 1 = perspective projection
    std::int32_t noComplement;  ///< colour table: 0 complement table, 1 the palette, else the library's
    std::int32_t viewPushCount; ///< view-point pushes in force
    std::int32_t zoomedOrFit;   ///< set by the host after a zoom or fit, cleared by NglUpdateNglInfo
    NglLightParams lights[8];
    NglMatParams frontMaterial;
    NglMatParams backMaterial;
    _NgPoint3Str cameraPosition;
};

/// An off-screen framebuffer, filled by NglCreateFBO.
struct _NglFBOInfoStr {
    std::uint32_t* pixels;     ///< client buffer of width x height packed pixels, owned by the record
    std::uint32_t framebuffer; ///< GL name; 0 = none
    std::uint32_t colorTexture;
    std::uint32_t depthTexture; ///< depth and stencil
    std::uint32_t width;
    std::uint32_t height;
    std::uint32_t pixelCount; ///< width x height
};

/// Callbacks of the host.
using NglPromptFunc = int (*)(const char* message);
using NglClipPlaneFunc = int (*)();
using NglGetActiveTextureAttribProc = RenderTextureAttributes* (*)(unsigned int unit, float a, float b);

/// Text functions of the host, which alone knows fonts. A font is the host's handle, null its default one.
/// Sizes are in pixels. The two flags of the drawing functions are the host's own; the library passes them
/// on.
using NglDrawTextFunc = void (*)(const _NgPoint3Str* point, const wchar_t* text, NgColorLong color, bool flag,
                                 void* font, bool otherFlag);
using NglGetTextDimFunc = void (*)(int* width, int* height, const wchar_t* text, void* font);
using NglGetTextAscentDescentFunc = void (*)(const wchar_t* text, int* ascent, int* descent, void* font);

// --- scope objects -----------------------------------------------------------------------------------------

/// Loads the host's clip planes for the length of a block.
class NRENDERUTL_API NglLoadClipPlanes {
public:
    NglLoadClipPlanes();
    ~NglLoadClipPlanes();
    NglLoadClipPlanes(const NglLoadClipPlanes&) = delete;
    NglLoadClipPlanes& operator=(const NglLoadClipPlanes&) = delete;
};

/// Unloads the host's clip planes for the length of a block.
class NRENDERUTL_API NglUnloadClipPlanes {
public:
    NglUnloadClipPlanes();
    ~NglUnloadClipPlanes();
    NglUnloadClipPlanes(const NglUnloadClipPlanes&) = delete;
    NglUnloadClipPlanes& operator=(const NglUnloadClipPlanes&) = delete;
};

/// Installs matrices (16 doubles each, column-major) for the length of a block, in GL and in the view record.
/// It uses the save slot of NglPushNglInfo, so the two must not be nested.
class NRENDERUTL_API NglSetCustomMatrices {
public:
    NglSetCustomMatrices(const double* projection, const double* modelView);
    ~NglSetCustomMatrices();
    NglSetCustomMatrices(const NglSetCustomMatrices&) = delete;
    NglSetCustomMatrices& operator=(const NglSetCustomMatrices&) = delete;
};

/// Ends batches when a block is left: that of lines, then of points, then of screen lines, each if its flag
/// is set.
class NRENDERUTL_API NglBeginEndBatchDraw {
public:
    NglBeginEndBatchDraw(bool lines, bool points, bool screenLines);
    ~NglBeginEndBatchDraw();
    NglBeginEndBatchDraw(const NglBeginEndBatchDraw&) = delete;
    NglBeginEndBatchDraw& operator=(const NglBeginEndBatchDraw&) = delete;

private:
    const bool m_lines, m_points, m_screenLines;
};

// --- view record and initialisation ------------------------------------------------------------------------

/// Reads what the current context can do. Returns 0. Call it once the first context is current.
NRENDERUTL_API int NglInitGLExtensions();
/// Whether the driver has framebuffer objects (EXT form), buffer objects, or all that the shader paths need:
/// shader objects with GLSL 1.50, buffer objects and texture buffers. 0 before NglInitGLExtensions.
NRENDERUTL_API int NglIsFBOSupported();
NRENDERUTL_API int NglIsVBOSupported();
NRENDERUTL_API int NglIsShaderSupported();
/// Whether the context has one of the capabilities that start-up asks for, by number: 0 geometry stages of
/// core GLSL 1.50 or ARB_geometry_shader4, 1 those of EXT_geometry_shader4 or core, 2 vertex shaders, 3
/// fragment shaders with GLSL 1.50, 4 and 5 framebuffer objects (EXT, ARB), 6 OpenGL 3.0, 7 buffer objects, 8
/// texture buffer objects. 0 for any other number and before NglInitGLExtensions.
NRENDERUTL_API int NglHasCapability(int number);
/// Loads a record (not null): it is copied and its colour index becomes current. NglSetMatrices first loads
/// its matrices and viewport into the current context and leaves the model-view mode selected;
/// NglInitMatrices needs no context. Both return 0.
NRENDERUTL_API int NglInitMatrices(_NglInfoStr* info);
NRENDERUTL_API int NglSetMatrices(_NglInfoStr* info);
/// The live record, to read and to write; valid for the life of the process.
NRENDERUTL_API _NglInfoStr* NglGetNglInfo();
/// Copies the live record into the one save slot, which a second push overwrites. Returns the live record.
NRENDERUTL_API _NglInfoStr* NglPushNglInfo();
/// Copies the save slot (zeros before the first push) back. GL's matrices stay as they are, but the line
/// width becomes 1 and markers and managed text are refreshed.
NRENDERUTL_API void NglPopNglInfo();
/// Reads the record back from the current context: matrices, viewport, view vectors, box, pixel size, push
/// delta, enabled lights and both materials. A disabled light keeps its values, a singular matrix its view
/// vectors zero. Sets the colour index to -1, the zoom mark to 0 and the line width to 1; markers and managed
/// text are refreshed.
NRENDERUTL_API void NglUpdateNglInfo();
/// Loads an identity model-view and an orthographic projection of one unit a pixel. Right and top edges are
/// the viewport's width and height, also when it lies off the origin. Without both planes: near 0, far -1.
/// Returns 0 and leaves the model-view mode selected.
NRENDERUTL_API int ngl_initialize_view(double* nearPlane, double* farPlane);

/// While set, matrix operations leave the record's model-view alone.
NRENDERUTL_API void NglSetBeingDrawnState(bool beingDrawn);
NRENDERUTL_API bool NglIsBeingDrawn();
/// The record's marks: transformation on top of the view, perspective (exactly 1), after a zoom or fit.
NRENDERUTL_API void NglSetTransformedState();
NRENDERUTL_API void NglClearTransformedState();
NRENDERUTL_API int NglIsTransformed();
NRENDERUTL_API int NglIsPerspective();
NRENDERUTL_API int NglIsZoomedOrFit();
/// Mode numbers of the host. The view-operation mode is not part of the record.
NRENDERUTL_API void NglSetOptimizedDisplayMode(int mode);
NRENDERUTL_API int NglCheckOptimizedDisplayMode();
NRENDERUTL_API void NglSetViewOperationMode(int mode);
NRENDERUTL_API int NglIsViewOperationMode();
/// Stores a mesh scale factor; its flag is 1 from a magnitude of 1e-7 on, else 0.
NRENDERUTL_API void NglSetMeshScaleFactor(double factor);
/// Writes the factor and returns the flag; sets both as given, without a threshold.
NRENDERUTL_API int NglGetScaleFactorAndFlag(double* factor);
NRENDERUTL_API void NglResetScaleFactorAndFlag(int flag, double factor);

/// Prompt callbacks of the host; null keeps the one that is registered.
NRENDERUTL_API void NglRegisterPromptFunction(NglPromptFunc func);
NRENDERUTL_API void NglRegisterNoPumpPromptFunction(NglPromptFunc func);
/// Pass a message to the prompt function and to the one that does not pump events. Nothing happens without
/// one or while prompts are blocked.
NRENDERUTL_API void PromptSetSimple(const char* message);
NRENDERUTL_API void SetPromptNoUpdate(const char* message);
NRENDERUTL_API void NglBlockPrompts();
NRENDERUTL_API void NglUnBlockPrompts();

// --- colours -----------------------------------------------------------------------------------------------
//
// A colour is a palette index or a packed value. Index 32 is always the highlight colour and 33 the selection
// colour. An index that the table in use does not have takes the entry of the library table, and from 256 on
// white.

/// Number of entries that NglSetColorScheme copies into the library table; 64 at start.
extern NRENDERUTL_API std::int32_t NglMaxColor;

/// Makes the colour of an index current in GL, with the blending alpha; index 15 is issued as 63, a negative
/// one does nothing. The table is the complement table or, in no-complement mode, the record's palette; in
/// any other mode, or where there is none, the library's.
NRENDERUTL_API void ngl_set_color(int index);
/// ngl_set_color with the record's palette, whatever the mode.
NRENDERUTL_API void ngl_set_color_no_complement(int index);
/// The same as ngl_set_color.
NRENDERUTL_API void ngl_set_color_based_on_win_color(int index);
/// The index issued last (15 at start); NglResetLastColor makes it -1.
NRENDERUTL_API int ngl_get_color();
NRENDERUTL_API void NglResetLastColor();
/// Entry of the record's palette; 0 for index 0 and for one that the palette does not have.
NRENDERUTL_API NgColorLong NglGetColorGivenIndex(int index);
/// First index of the record's palette with exactly this colour, alpha included; -1 when there is none.
NRENDERUTL_API int NglGetIndexGivenColor(NgColorLong color);
/// The library table of 256 entries, to read and to write.
NRENDERUTL_API NgColorLong* NglGetColors();
/// Copies a scheme, 0 to 3, over the first NglMaxColor entries of the library table (at most 256). Any other
/// number is remembered only. A change makes the next NglUpdateColor compute the complement table afresh.
NRENDERUTL_API void NglSetColorScheme(int scheme);
/// Installs the host's palette, which stays the host's and must live on, and computes the complement table:
/// up to 256 entries, of which those within 13 of the window background in every channel are inverted. The
/// same pointer, count and background as last time keep the table, even when the entries changed.
NRENDERUTL_API void NglUpdateColor(int count, const NgColorLong* colors);
/// Uses a table of the host's as complement table as it is; null goes back to none.
NRENDERUTL_API void NglUpdateComplementColor(int count, const NgColorLong* colors);
/// Makes the next NglUpdateColor compute the complement table even when nothing seems changed.
NRENDERUTL_API void NglSetForceComplement();
NRENDERUTL_API void NglBeginNoComplementMode();
NRENDERUTL_API void NglEndNoComplementMode();
/// Red, green and blue of an index from the complement table, as bytes or as 0 to 1, whatever the mode.
/// Without a complement table the library table first becomes the record's palette. Return 0.
NRENDERUTL_API int ngl_get_rgb(int index, unsigned char& red, unsigned char& green, unsigned char& blue);
NRENDERUTL_API int ngl_get_rgb_floats(int index, float& red, float& green, float& blue);
/// The colours of index 32 and 33. NglSetHighlightColor returns the previous one.
NRENDERUTL_API NgColorLong NglSetHighlightColor(NgColorLong color);
NRENDERUTL_API void NglSetSelectionColor(NgColorLong color);
/// The record's window background; its alpha is ignored. Setting returns the previous one and does not touch
/// the complement table before the next NglUpdateColor.
NRENDERUTL_API NgColorLong NglSetWindowBackGroundColor(NgColorLong color);
NRENDERUTL_API NgColorLong NglGetWindowBackGroundColor();
/// 1 when the background's red + green + blue is below 382, and always when the record has no palette.
NRENDERUTL_API int NglIsWinBGBlackish();
/// The colour on a dark background (sum below 382), its inverse with the same alpha on a light one.
NRENDERUTL_API NgColorLong NglGetColorBasedOnWinColor(NgColorLong color);
/// Chooses the colour of hidden lines: entry 15 on a light background (0 where the palette is shorter), else
/// index and colour 0. The two getters return what was chosen last.
NRENDERUTL_API void NglUpdateHiddenColor();
NRENDERUTL_API int NglGetHiddenColor();
NRENDERUTL_API NgColorLong NglGetHiddenColorRGB();
/// Colour indices of shaded wireframes, kept for the host; the second has no setter and is 0.
NRENDERUTL_API void NglSetShadedWFColor1(int index);
NRENDERUTL_API int NglGetShadedWFColor1();
NRENDERUTL_API int NglGetShadedWFColor2();

/// Make a packed colour current in GL: as it is, or with the blending alpha. The current index stays.
NRENDERUTL_API void ngl_set_color_long(NgColorLong color);
NRENDERUTL_API void ngl_set_color_rgb(NgColorLong color);
/// The packed colour issued last; after ngl_set_color with the alpha of its table.
NRENDERUTL_API NgColorLong ngl_get_color_long();
/// Packed colour from bytes, with alpha 255, and back as bytes or as 0 to 1.
NRENDERUTL_API NgColorLong ngl_get_color_long_from_rgb(unsigned char red, unsigned char green,
                                                       unsigned char blue);
NRENDERUTL_API void ngl_get_rgb_from_color_long(NgColorLong color, unsigned char& red, unsigned char& green,
                                                unsigned char& blue);
NRENDERUTL_API void ngl_get_floats_from_color_long(NgColorLong color, float& red, float& green, float& blue);
/// The colour with the blending alpha.
NRENDERUTL_API NgColorLong ngl_add_transparency_into_rgb_color(NgColorLong color);
/// Alpha of every issued colour, 0 to 255; only the low 8 bits count. 127 at start.
NRENDERUTL_API void ngl_set_blending_value(int alpha);
/// The whole blending word, with the alpha in bits 24 to 31; not the value that was set.
NRENDERUTL_API int ngl_get_blending_value();
/// Packed colour with alpha 255. Values above 255 spill into the higher bytes.
NRENDERUTL_API NgColorLong VbNglGetColorFromRGB(int red, int green, int blue);
NRENDERUTL_API void VbNglGetRGBAFromColor(NgColorLong color, int* red, int* green, int* blue, int* alpha);

// --- matrix stack and view point ---------------------------------------------------------------------------
// Matrices are 16 doubles in OpenGL's column-major order. What touches GL needs the host's context and leaves
// model-view mode selected. "The record follows" means that the record's model-view takes part, which it does
// only while the being-drawn flag is clear and the setting NU_UPDATE_NGLMAT_ON_PICK (default true, read when
// the library is loaded) is on; its inverse and single-precision copies never follow.

/// Push and pop GL's model-view matrix, counted by NglGetPushCount. The record follows through a shadow
/// stack, so that a pop also restores its model-view; pushes and pops must pair, also across changes of the
/// being-drawn flag. A pop without a push is GL's error, and leaves the record's matrix as it is.
NRENDERUTL_API void ngl_push_3d_matrix();
NRENDERUTL_API void ngl_pop_3d_matrix();
/// Push and pop GL's projection and model-view matrices. Non-zero flag: the record's matrices count as no
/// longer current in GL.
NRENDERUTL_API void ngl_push_view_matrices(int flag);
NRENDERUTL_API void ngl_pop_view_matrices(int flag);
/// Change GL's model-view matrix, and the record's with it where it follows: times a matrix; the record's
/// model-view times a matrix; times the record's inverse model-view, which cancels the view.
/// ngl_init_3d_matrix loads the record's model-view into GL. The argument may be the record's own matrix.
NRENDERUTL_API void ngl_mult_3d_matrix(double matrix[4][4]);
NRENDERUTL_API void ngl_set_3d_matrix(double matrix[4][4]);
NRENDERUTL_API void ngl_init_3d_matrix();
NRENDERUTL_API void ngl_nullify_view();
/// Multiply GL's model-view matrix alone; the record does not follow. The angle is in degrees about the axis
/// 'X', 'Y' or 'Z' (or lower case); for any other letter GL is given a zero axis.
NRENDERUTL_API void ngl_rotate_3d(double angle, int axis);
NRENDERUTL_API void ngl_scale_3d(double x, double y, double z);
NRENDERUTL_API void ngl_translate_3d(double x, double y, double z);
/// Write out, in this order: the record's model-view; the same without its translation; the view matrix,
/// which stays the identity; GL's live model-view (the spelling is the interface's own).
NRENDERUTL_API void ngl_get_3d_matrix(double matrix[4][4]);
NRENDERUTL_API void ngl_get_global_matrix(double matrix[4][4]);
NRENDERUTL_API void ngl_get_view_matrix(double matrix[4][4]);
NRENDERUTL_API void nglGetSilhoutteMatrix(double matrix[4][4]);
/// Pushes of ngl_push_3d_matrix in force since a record was loaded.
NRENDERUTL_API int NglGetPushCount();
/// The record's push delta: the model-space offset of one view-point push.
NRENDERUTL_API void NglGetPushDelta(_NgPoint3Str* delta);

/// Move GL's model-view towards the viewer by the record's push delta, so that what is drawn next lies on
/// top, and back again; the record counts the pushes in force. NglResetViewPush undoes all of them.
NRENDERUTL_API void UtlPushViewPoint();
NRENDERUTL_API void UtlPopViewPoint();
NRENDERUTL_API void NglResetViewPush();
/// The same by a model-space offset of the caller's, uncounted.
NRENDERUTL_API void UtlPushViewPointDelta(_NgPoint3Str* delta);
NRENDERUTL_API void UtlPopViewPointDelta(_NgPoint3Str* delta);
/// Writes n times the push delta of the live GL matrices, viewport and depth buffer.
NRENDERUTL_API void UtlComputeViewDelta(_NgPoint3Str* delta, int n);

// --- view queries and conversions --------------------------------------------------------------------------
// The record's viewport (x, y, w, h): the third and fourth values are the right and top edges throughout this
// group, so that widths are w - x, heights h - y, and the window y of a screen point is h - sy. Screen points
// are in pixels, y downward; window points are OpenGL's, y upward, with depth 0 to 1 (GLU is given the
// viewport as it is); view (or ortho) space is model space after the model-view matrix. Nothing here needs a
// context but what says "live", which reads GL's matrices and viewport, and ngl_set_viewport. A point without
// an image (on the eye plane, singular matrices) is projected to window (0, 0, 0). A viewport without width
// or height divides by zero. In and out may be the same point.

/// The record's orthographic box: model space turned by the model-view's rotation, without its translation.
/// Its z falls from orthoMin, at the near plane, to orthoMax.
NRENDERUTL_API void ngl_get_ortho_2d(double* minX, double* minY, double* maxX, double* maxY);
NRENDERUTL_API void ngl_get_ortho_3d(double* minX, double* minY, double* minZ, double* maxX, double* maxY,
                                     double* maxZ);
NRENDERUTL_API void ngl_get_ortho_3d_p(_NgPoint3Str* minCorner, _NgPoint3Str* maxCorner);
/// Model-space length of one pixel by the record.
NRENDERUTL_API void ngl_get_ortho_scale(double* scale);
/// The same at a model point. In a perspective view with a camera: a thousandth of the view's height at the
/// point's distance from the camera. A camera within 9.87654321e-36 of that value in each coordinate is
/// unset.
NRENDERUTL_API double ngl_get_ortho_scale_given_point(_NgPoint3Str* point);
/// Model-space distance between the window points (1, 0, 0) and (distance, 0, 0), by the record's
/// single-precision matrices. 0 or NaN counts as 10.
NRENDERUTL_API double ngl_get_model_dist_for_screen_distance(double distance);
/// Writes such a box of the live matrices; meaningful for orthographic projections. Returns 0.
NRENDERUTL_API int ngl_compute_current_ortho_3d(_NgPoint3Str* minCorner, _NgPoint3Str* maxCorner);
/// Writes a tenth of the live model-space distance from window (1, 0, 0) to (10, 0, 0), rounded to float:
/// nine tenths of a pixel.
NRENDERUTL_API void UtlRecomputeOrthoScale(double* scale);
/// The record's unit vectors, model space: of increasing depth, rightward, upward.
NRENDERUTL_API void ngl_get_view_vector(_NgPoint3Str* vector);
NRENDERUTL_API void ngl_get_view_x_vector(_NgPoint3Str* vector);
NRENDERUTL_API void ngl_get_view_y_vector(_NgPoint3Str* vector);
/// The record's viewport.
NRENDERUTL_API void ngl_get_viewport(int* x, int* y, int* width, int* height);
/// Sets GL's viewport, in pixels, from two corners; the record keeps its own. Without width or height nothing
/// happens; a negative size is GL's to refuse.
NRENDERUTL_API void ngl_set_viewport(int x0, int y0, int x1, int y1);
/// The record's camera position, model space.
NRENDERUTL_API void ngl_get_camera_position(_NgPoint3Str* position);
NRENDERUTL_API void ngl_set_camera_position(_NgPoint3Str* position);
/// The live matrices, column-major, and viewport.
NRENDERUTL_API void ngl_get_std_matrices(double modelView[16], double projection[16], int viewport[4]);

/// Model point to screen point (y downward) by the record, with window depth or without.
NRENDERUTL_API void ngl_transform_33(double x, double y, double z, double* sx, double* sy, double* sz);
NRENDERUTL_API void ngl_transform_33_s(_NgPoint3Str* point, _NgPoint3Str* screen);
NRENDERUTL_API void ngl_transform_32(double x, double y, double z, double* sx, double* sy);
NRENDERUTL_API void ngl_transform_32_s(_NgPoint3Str* point, _NgPoint2Str* screen);
/// Model point to window point (y upward, the viewport's width and height as OpenGL means them) by given
/// column-major matrices.
NRENDERUTL_API void ngl_transform_33_s_with_mat(_NgPoint3Str* point, double modelView[16],
                                                double projection[16], int viewport[4], _NgPoint3Str* screen);
/// The z of a point transformed by a column-major matrix.
NRENDERUTL_API double UtlTransform33Zp(_NgPoint3Str* point, double matrix[4][4]);
/// Model space to view space by the record's model-view, and back by its inverse, computed on each call.
NRENDERUTL_API void ngl_convert_model_to_ortho(_NgPoint3Str* model, _NgPoint3Str* ortho);
NRENDERUTL_API void ngl_convert_ortho_to_model(_NgPoint3Str* ortho, _NgPoint3Str* model);
/// Live window point (y upward, sz a depth of 0 or 1) to model space.
NRENDERUTL_API void ngl_convert_screen_to_model(int sx, int sy, int sz, _NgPoint3Str* model);
/// Screen point to the record's orthographic box and back; the way back truncates towards zero.
NRENDERUTL_API void ngl_convert_screen_to_view(int sx, int sy, double* vx, double* vy);
NRENDERUTL_API void ngl_convert_view_to_screen(double vx, double vy, int* sx, int* sy);
/// The ray through a screen point by the record, in model space: p at depth 0, and q at depth 1 in a
/// perspective view or p plus the unit view vector in an orthographic one. Returns 0.
NRENDERUTL_API int NglGetViewVector(int sx, int sy, double* px, double* py, double* pz, double* qx,
                                    double* qy, double* qz);
/// Model point that the live view shows where it shows `point`, at window depth *depth. Returns 0.
NRENDERUTL_API int ngl_get_3D_clip_pt_at_given_depth(_NgPoint3Str* point, double* depth, _NgPoint3Str* out);
/// Model point dx pixels left of and dy pixels above a model point on the screen, which is taken at whole
/// pixels, and in the plane through that point across the ray.
NRENDERUTL_API void ngl_get_offset_pt_in_screen(_NgPoint3Str* point, int dx, int dy, _NgPoint3Str* out);

// --- framebuffers ------------------------------------------------------------------------------------------

/// Makes a framebuffer of width x height pixels with an RGBA8 colour texture (format and type as of
/// glTexImage2D) and a depth-stencil texture, and leaves it bound; the 2D texture binding becomes 0. Returns
/// -1, with a zeroed record, when the driver has no framebuffer objects or NglInitGLExtensions was not
/// called; else 0. An incomplete framebuffer (such as 0 x 0) is removed again: framebuffer is then 0 and the
/// window is bound. The record need not be initialised; NglDestroyFBO frees what it holds.
NRENDERUTL_API int NglCreateFBO(unsigned int width, unsigned int height, unsigned int format,
                                unsigned int type, _NglFBOInfoStr* info);
/// Deletes the framebuffer, its textures and its pixels and zeroes the record; harmless on a zeroed one.
/// Without framebuffer objects nothing happens. Returns 0.
NRENDERUTL_API int NglDestroyFBO(_NglFBOInfoStr* info);
/// Binds a framebuffer by name, 0 = the window, and returns the one that is bound. Without framebuffer
/// objects nothing is bound and 0 is returned.
NRENDERUTL_API void NglBindFrameBuffer(unsigned int framebuffer);
NRENDERUTL_API int NglGetBoundFBO();
/// Reads a rectangle of the current read buffer under the current pixel pack state. Returns GL's error code,
/// 0 = none; an error that was pending before the call counts too.
NRENDERUTL_API int NglReadPixelsFromFBO(int x, int y, int width, int height, unsigned int format,
                                        unsigned int type, void* pixels);

// --- clip planes, lights, depth ----------------------------------------------------------------------------

/// The host's callbacks that load its clip planes into GL and take them out; null keeps the one registered.
NRENDERUTL_API void NglRegisterLoadClipPlaneFunc(NglClipPlaneFunc func);
NRENDERUTL_API void NglRegisterUnloadClipPlaneFunc(NglClipPlaneFunc func);
/// Call the host's callback and return its result; 0 when there is none.
NRENDERUTL_API int ngl_load_clip_planes();
NRENDERUTL_API int ngl_unload_clip_planes();

/// Fixed-function lighting as a whole.
NRENDERUTL_API void ngl_enable_light();
NRENDERUTL_API void ngl_disable_light();
NRENDERUTL_API int ngl_is_light_enabled();
/// One light: 0 and 1 are lights 0 and 1, any other number is light 2. Enabling returns 0; disabling returns
/// whether the light was enabled.
NRENDERUTL_API int ngl_enable_given_light(int light);
NRENDERUTL_API int ngl_disable_given_light(int light);
NRENDERUTL_API void ngl_enable_depth_test();
NRENDERUTL_API void ngl_disable_depth_test();
NRENDERUTL_API int ngl_is_depth_test_enabled();

// --- contour texture ---------------------------------------------------------------------------------------

// A texture target is GL's; a negative one means GL_TEXTURE_2D.

/// The host's provider of contour texture attributes; null takes it away.
NRENDERUTL_API void NglRegisterGetActiveTextureAttribProc(NglGetActiveTextureAttribProc proc);
/// Makes the attributes that the provider returns for the arguments active. They stay the host's and must
/// live while active. Without a provider there is a console message and none are active.
NRENDERUTL_API void NglSetActiveTextureInfo(unsigned int unit, float a, float b);
/// The active attributes; null when there are none.
NRENDERUTL_API RenderTextureAttributes* NglGetActiveTextureInfo();
/// Binds and enables the active contour texture and loads the texture matrix, in GL and in the record, that
/// maps its value range to s = 0 to 1 (only shifted when the range has no width). Leaves the model-view mode
/// selected, and a sampler object of the unit unbound until NglDisableTexture. Returns 1; 0 when GL reported
/// an error; -1, with nothing changed, without active attributes or texture.
NRENDERUTL_API int NglEnableTexture(int target);
/// Unbinds the target's texture and disables the target; the texture matrix stays.
NRENDERUTL_API void NglDisableTexture(int target);
/// Selects the texture unit: GL_TEXTURE0 + n, or just n.
NRENDERUTL_API void NglSetActiveTextureUnit(unsigned int unit);
/// GL's own bind, enable, disable and texture coordinate.
NRENDERUTL_API void NglWrapBindTexture(int target, unsigned int texture);
NRENDERUTL_API void NglWrapEnableTexture(int target);
NRENDERUTL_API void NglWrapDisableTexture(int target);
NRENDERUTL_API void NglWrapSetTextureColor(float s, float t);

// --- line attributes ---------------------------------------------------------------------------------------

/// Line width in pixels; below 1 counts as 1. A width or style that is current already is not issued again.
/// The width is 0 until one is set, here or by NglUpdateNglInfo and NglPopNglInfo. What others issue to GL is
/// not noticed, nor a change of the context: set another value before the same one again.
NRENDERUTL_API void ngl_set_line_width(int width);
NRENDERUTL_API int ngl_get_line_width();
/// GL's stipple pattern: 1 dash-dot, 2 dashes, 4 sparse dots, 5 fine dashes, anything else solid. Stippling
/// itself is the caller's to enable. The style is 0 until one is set.
NRENDERUTL_API void ngl_set_line_style(int style);
NRENDERUTL_API int ngl_get_line_style();

// --- primitives --------------------------------------------------------------------------------------------
// Drawn at once with all that is current in GL: colour, texture coordinate, matrices, lighting, textures,
// stipple, program. Doubles are narrowed to float where nothing else is said. _s takes arrays of points, _p
// arrays of pointers to points. Without points, or where an array is null, nothing happens.

NRENDERUTL_API void ngl_point_2d(double x, double y);
NRENDERUTL_API void ngl_point_2d_s(const _NgPoint2Str* point);
NRENDERUTL_API void ngl_point_3d(double x, double y, double z);
NRENDERUTL_API void ngl_point_3d_s(const _NgPoint3Str* point);
/// These set GL's point size, in pixels above 0, and leave it. The arrays are sent as they are, doubles as
/// doubles; a count of 0 or less does nothing.
NRENDERUTL_API void ngl_point_3dGivenSize(double x, double y, double z, float size);
NRENDERUTL_API void ngl_point_3d_given_size(int count, const _NgPoint3Str* points, float size);
NRENDERUTL_API void ngl_point_3f_given_size(int count, const _NgFPoint3Str* points, float size);

NRENDERUTL_API void ngl_line_2d(double x0, double y0, double x1, double y1);
NRENDERUTL_API void ngl_line_2d_s(const _NgPoint2Str* p, const _NgPoint2Str* q);
NRENDERUTL_API void ngl_line_3d(double x0, double y0, double z0, double x1, double y1, double z1);
NRENDERUTL_API void ngl_line_3d_s(const _NgPoint3Str* p, const _NgPoint3Str* q);
NRENDERUTL_API void ngl_line_3f_s(const _NgFPoint3Str* p, const _NgFPoint3Str* q);
/// Lines between points 0 and 1, 2 and 3, ... A last point without partner is paired with what stands behind
/// it: give an even count.
NRENDERUTL_API void ngl_lines_2d_s(const _NgPoint2Str* points, std::uint64_t count);
NRENDERUTL_API void ngl_lines_2d_p(const _NgPoint2Str* const* points, std::uint64_t count);
NRENDERUTL_API void ngl_lines_3d_s(const _NgPoint3Str* points, std::uint64_t count);
NRENDERUTL_API void ngl_lines_3d_p(const _NgPoint3Str* const* points, std::uint64_t count);
NRENDERUTL_API void ngl_polyline_2d_s(const _NgPoint2Str* points, std::uint64_t count);
NRENDERUTL_API void ngl_polyline_2d_p(const _NgPoint2Str* const* points, std::uint64_t count);
NRENDERUTL_API void ngl_polyline_3d_s(const _NgPoint3Str* points, std::uint64_t count);
NRENDERUTL_API void ngl_polyline_3d_p(const _NgPoint3Str* const* points, std::uint64_t count);

/// Filled convex polygons.
NRENDERUTL_API void ngl_polygon_2d_s(const _NgPoint2Str* points, std::uint64_t count);
NRENDERUTL_API void ngl_polygon_2d_p(const _NgPoint2Str* const* points, std::uint64_t count);
NRENDERUTL_API void ngl_polygon_3d_s(const _NgPoint3Str* points, std::uint64_t count);
NRENDERUTL_API void ngl_polygon_3d_p(const _NgPoint3Str* const* points, std::uint64_t count);
/// The same with a normal for each vertex; GL's current normal is as before afterwards.
NRENDERUTL_API void ngl_polygon_3d_s_with_vertex_array(const _NgPoint3Str* points,
                                                       const _NgPoint3Str* normals, std::uint64_t count);
/// Any plane polygon of at least 3 points, seen from either side, filled where its outline encloses a pixel
/// an odd number of times. Needs a stencil buffer, which it clears; without one holes and notches are filled
/// too. It is drawn as a fan about the first point, so blending may mix a pixel more than once. Afterwards
/// the stencil test is off, and all else as before. The second sends doubles as doubles.
NRENDERUTL_API void ngl_concave_polygon_3d(const double* x, const double* y, const double* z,
                                           std::uint64_t count);
NRENDERUTL_API void ngl_concave_polygon_3d_s(const _NgPoint3Str* points, std::uint64_t count);

/// A convex polygon or a polyline with a packed colour for each point, mixed smoothly in between. GL's colour
/// and shade model are as before afterwards.
NRENDERUTL_API void ngl_shade_polygon_3d(const _NgPoint3Str* points, const NgColorLong* colors,
                                         std::uint64_t count);
NRENDERUTL_API void ngl_shade_polyline_3d(const _NgPoint3Str* points, const NgColorLong* colors,
                                          std::uint64_t count);
/// An unlit polyline with a value of the contour for each point, as its texture coordinate (value, 0): in the
/// colours of NglEnableTexture. Points as three arrays, records, pointers to records, or float records. GL's
/// lighting and texture coordinate are as before afterwards.
NRENDERUTL_API void ngl_curve_contour_draw(const double* x, const double* y, const double* z,
                                           const float* values, std::uint64_t count);
NRENDERUTL_API void ngl_curve_contour_draw_s(const _NgPoint3Str* points, const float* values,
                                             std::uint64_t count);
NRENDERUTL_API void ngl_curve_contour_draw_p(const _NgPoint3Str* const* points, const float* values,
                                             std::uint64_t count);
NRENDERUTL_API void ngl_curve_contour_draw_f(const _NgFPoint3Str* points, const float* values,
                                             std::uint64_t count);
/// One segment in the colours of NglEnableTexture: its ends have the texture coordinates (s0, 0) and (s1, 0),
/// or both that of a flag: (0, 0.25) for the first, (0, 0.5) for the second, which counts when both are set.
/// What is drawn at once by this group leaves its last texture coordinate current.
NRENDERUTL_API void RenderingDrawLine(const _NgPoint3Str* p, const _NgPoint3Str* q, float s0, float s1, int a,
                                      int b);
/// The same; while the model-space line batch is active the segment is added to it.
NRENDERUTL_API void RenderingDrawLineF(const _NgFPoint3Str* p, const _NgFPoint3Str* q, float s0, float s1,
                                       int a, int b);
/// Points in GL's point size with such texture coordinates: one, or `count` with a value each (null: 0).
/// While the point batch is active those of floats are added to it, in its size.
NRENDERUTL_API void RenderingDrawPointF(const _NgFPoint3Str* point, float s, int a, int b);
NRENDERUTL_API void RenderingDrawPointList(int count, const _NgPoint3Str* points, const float* values, int a,
                                           int b);
NRENDERUTL_API void RenderingDrawPointListF(int count, const _NgFPoint3Str* points, const float* values,
                                            int a, int b);

// --- batches -----------------------------------------------------------------------------------------------
// Points and segments collected in client memory and drawn with one call for many: when a batch ends, is
// full, or the line style, line width or point size changes. Modes: 1 points, 2 segments, 3 segments in
// screen space (pixels, y upward); another mode does nothing. Option 2 collects texture coordinates of the
// contour texture, any other the current packed colour of each vertex. A batch that finds no memory ignores
// what is added. Points and segments in model space are drawn by a program where the driver has GLSL 1.50 and
// neither a view-point push nor a 3D matrix nor a transformation is in force: in the record's view, unlit,
// without fog or line style, clipped only while ngl_load_clip_planes counts. The rest is drawn by fixed
// function as GL is set up. A textured batch leaves texture unit 0 as NglDisableTexture does, its matrix the
// contour's.

NRENDERUTL_API void NglBatchBegin(int mode, int option);
/// Draws what is left.
NRENDERUTL_API void NglBatchEnd(int mode);
/// Without an active batch these draw at once. Sizes are in pixels; screen: non-zero takes mode 3.
NRENDERUTL_API void ngl_batch_point_3d_given_size(int count, const _NgPoint3Str* points, float size);
NRENDERUTL_API void ngl_batch_point_3f_given_size(int count, const _NgFPoint3Str* points, float size);
NRENDERUTL_API void ngl_batch_line_3d_s(const _NgPoint3Str* p, const _NgPoint3Str* q, int screen);
NRENDERUTL_API void ngl_batch_line_3f_s(const _NgFPoint3Str* p, const _NgFPoint3Str* q);
NRENDERUTL_API void ngl_batch_polyline_3d_s(const _NgPoint3Str* points, std::uint64_t count, int screen);

/// A batch of any GL primitive but points, of at most 120,000 vertices; a full one is flushed. Option: 1 a
/// packed colour for each vertex, 2 one texture coordinate, 0 neither. All return 0; the flush -1 without a
/// primitive and -2 without vertices. Drawn with all that is current in GL, a program of the host's too.
NRENDERUTL_API int NglBatchRenderBegin(int primitive, int option);
NRENDERUTL_API int NglBatchRenderAddVertex(const float position[3], const float normal[3], float texcoord,
                                           int color);
NRENDERUTL_API int NglBatchRenderFlush();

// --- text --------------------------------------------------------------------------------------------------
// Drawn and measured by the host's functions. Narrow text is UTF-8. Without the function that a call needs,
// or with a null narrow text, nothing happens. Points are in model space, colours packed.

/// Null keeps the function that is registered.
NRENDERUTL_API void NglRegisterDrawTextFunc(NglDrawTextFunc func);
NRENDERUTL_API void NglRegisterDrawMultiLineTextFunc(NglDrawTextFunc func);
NRENDERUTL_API void NglRegisterGetTextDimFunc(NglGetTextDimFunc func);
NRENDERUTL_API void NglRegisterGetTextAscentDescentFunc(NglGetTextAscentDescentFunc func);

/// In the current packed colour, or in that of the current index by its contrast to the window.
NRENDERUTL_API void ngl_text_3d(double x, double y, double z, const char* text);
NRENDERUTL_API void ngl_text_3d_p(const _NgPoint3Str* point, const char* text);
NRENDERUTL_API void ngl_text_3d_p_based_on_win_color(const _NgPoint3Str* point, const char* text);
NRENDERUTL_API void ngl_text_3d_p_nocolor(const _NgPoint3Str* point, NgColorLong color, const char* text,
                                          int flag);
NRENDERUTL_API void ngl_draw_text_given_font(const _NgPoint3Str* point, void* font, NgColorLong color,
                                             const char* text, int flag);
NRENDERUTL_API void ngl_draw_text(const _NgPoint3Str* point, const wchar_t* text, NgColorLong color,
                                  bool flag, void* font, bool otherFlag);
/// The same without the scissor test, which is as before afterwards.
NRENDERUTL_API void ngl_draw_text_unclipped(const _NgPoint3Str* point, const wchar_t* text, NgColorLong color,
                                            bool flag, void* font, bool otherFlag);
NRENDERUTL_API void ngl_text_multi_line(const _NgPoint3Str* point, const char* text, void* font,
                                        NgColorLong color);
NRENDERUTL_API void ngl_text_multi_line(const _NgPoint3Str* point, const wchar_t* text, NgColorLong color,
                                        bool flag, void* font, bool otherFlag);
/// Width and height in pixels. Both return 0; without a measuring function the results stay as they are.
NRENDERUTL_API int ngl_get_text_dimension(int* width, int* height, const char* text, void* font);
NRENDERUTL_API int ngl_get_text_dim(int* width, int* height, const char* text);
NRENDERUTL_API void ngl_get_text_size(int* width, int* height, const wchar_t* text, void* font);
/// Extents above and below the base line, in pixels.
NRENDERUTL_API void ngl_get_text_ascent_descent(const wchar_t* text, int* ascent, int* descent, void* font);

// --- screen picking ----------------------------------------------------------------------------------------
// From a screen point (pixels, y downward) to model space, by the record and its viewport as in the
// conversions above. Planes are a x + b y + c z + d = 0, of any length of normal. Inputs may be outputs.

/// Ray through a screen point: the same as NglGetViewVector.
NRENDERUTL_API int MathGetViewVector(int sx, int sy, double* px, double* py, double* pz, double* qx,
                                     double* qy, double* qz);
/// Where that ray's line meets a plane. Return 0; -1, out unchanged, when they are parallel or the plane has
/// no normal.
NRENDERUTL_API int MathGetPlanePoint(_NgPoint3Str* out, double a, double b, double c, double d, int sx,
                                     int sy);
NRENDERUTL_API int MathPickPointOnPlaneEqn(double a, double b, double c, double d, int sx, int sy,
                                           _NgPoint3Str* out);
/// Where it meets the plane through an array of three points; also -1, with a message on standard output,
/// when they lie on one line.
NRENDERUTL_API int MathGetPointOnPlane(const _NgPoint3Str* points, int sx, int sy, _NgPoint3Str* out);
/// Where it meets the plane through a reference point across the ray itself. Returns 1; 0, with the reference
/// point as result, when the ray has no direction.
NRENDERUTL_API int MathGet3dPtFromClickPtGivenRefPt(const _NgPoint3Str* reference, int sx, int sy,
                                                    _NgPoint3Str* out);
/// Where it meets a plane within a box. Return 0; 24, out unchanged, when the ray is less than 2 degrees from
/// parallel to the plane; 24, with the point, when that is not strictly inside the box; -1 as above.
NRENDERUTL_API int MathDblGetPlanePoint(int sx, int sy, const double* a, const double* b, const double* c,
                                        const double* d, const _NgPoint3Str* min, const _NgPoint3Str* max,
                                        _NgPoint3Str* out);
NRENDERUTL_API int __MathGetPlanePoint(int sx, int sy, double a, double b, double c, double d,
                                       const _NgPoint3Str* min, const _NgPoint3Str* max, _NgPoint3Str* out);
/// Plane through a point across the viewing direction, its unit normal towards the viewer.
NRENDERUTL_API void MathGetViewPlaneFromPoint(const _NgPoint3Str* p, double* a, double* b, double* c,
                                              double* d);
/// Point of the line through a and b nearest to a screen point: found on the screen and taken over as a
/// fraction, which is exact in orthographic views. It may lie beyond a or b. Returns 0; 1, with a as result,
/// when a and b are less than a pixel apart in both directions.
NRENDERUTL_API int MathGetNearestPointOnLineFromScreenPt(const _NgPoint3Str* a, const _NgPoint3Str* b, int sx,
                                                         int sy, _NgPoint3Str* out);
/// The line across the record's orthographic box under a screen point, from its near to its far side.
NRENDERUTL_API void NglGetLineFromScreenPt(int sx, int sy, _NgPoint3Str* p, _NgPoint3Str* q);
/// Model space turned by the record's view, without its translation.
NRENDERUTL_API void MathTransformWorldToView(const _NgPoint3Str* in, _NgPoint3Str* out);

// --- overlays ----------------------------------------------------------------------------------------------
// Shapes in window pixels (y upward; where the viewport lies off the origin, in the units of
// ngl_initialize_view) on top of the scene, or at the depth of a model point where one is given: its window
// depth w when the record's box goes from z = 1 to -1, else 1 - 2 (min - w) / (min - max).
// In the current GL colour, as the host's lighting, textures and clip planes leave it, but through no program
// of the host's; return 0.

/// A convex polygon or an open chain of lines; nothing from fewer than 2 points. Translucent polygons have
/// alpha 50, which the current packed colour keeps; blending is off, with factors one and zero, and depth
/// writes are on afterwards.
NRENDERUTL_API int ngl_draw_poly_on_screen(int count, const _NgPoint2Str* points, bool filled,
                                           bool translucent, const _NgPoint3Str* depthAt);
NRENDERUTL_API int ngl_draw_line_on_screen(int x0, int y0, int x1, int y1, const _NgPoint3Str* depthAt);
NRENDERUTL_API int ngl_draw_circle_on_screen(const _NgPoint2Str* center, float radius, bool filled,
                                             bool translucent, const _NgPoint3Str* depthAt);

/// A line (kind 0) or a rectangle along the model's x and y axes (kind 1) between two screen points (y
/// downward), by XOR into the front buffer, or into the framebuffer object that is bound: drawing it again
/// erases it (but not in floating-point colours, which GL has no XOR for). Afterwards the back buffer is
/// drawn to, if the window has one, the logic operation is off, the colour index is 63 and the line width 2.
NRENDERUTL_API void ngl_draw_rubber(int kind, int x0, int y0, int x1, int y1);

/// Arc in model space about the line from center to center + axis, of sweep degrees in n steps (n above 0)
/// from the direction that twist, in degrees, turns to. A zero axis counts as the model's z.
NRENDERUTL_API void NglDrawArc(const _NgPoint3Str* center, const _NgPoint3Str* axis, double radius,
                               double twist, double sweep, int n);
/// Spheres of radii in pixels around model points: centres as 3 floats each, or as points. textured: in the
/// colours of NglEnableTexture, at the texture coordinate (value, 0), or at that of a flag: (0, 0.25) for the
/// first, (0, 0.5) for the second, which counts when both are set. What an array lacks, or a null one, is 0.
/// Smooth shading, normalisation and the last texture coordinate stay in force.
NRENDERUTL_API void NglDrawSpheresWithRadius(int count, const float* centers, const float* radii,
                                             const float* values, int textured, int a, int b);
NRENDERUTL_API void NglDrawSpheres(const std::vector<_NgFPoint3Str>& centers, const std::vector<float>& radii,
                                   const std::vector<float>& values, int textured, int a, int b);
/// The same with one radius for all.
NRENDERUTL_API void NglDrawSpheres(int count, const _NgFPoint3Str* centers, float radius, const float* values,
                                   int textured, int a, int b);

// --- face shading ------------------------------------------------------------------------------------------

/// Until NglEndMeshRenderShader a program gives what the host draws one colour a face. Kind: 4, triangles, or
/// 10, quads sent as GL_LINES_ADJACENCY with their corners in order. Lights 0 and 1 count, also while off, as
/// point lights; from the material the front's emission, specular colour and shininess; ambient and diffuse
/// light take the first corner's colour. Normals stay in object space, by the first three corners. While
/// blending is on, alpha is the blending value. Returns 0; -1 for another kind, and, with a console message,
/// where the driver lacks geometry stages or refuses the program. One that did not link is not built again:
/// later calls return 0 and change nothing.
NRENDERUTL_API int NglInitMeshRenderShader(int kind);
/// Makes no program current, whichever was before. Returns 0.
NRENDERUTL_API int NglEndMeshRenderShader();

// --- tubes -------------------------------------------------------------------------------------------------
// GLE's own functions of these names, found in libgle.so.3 at the first call; GL/gle.h may be included too.
// Without that library there is one console message, nothing is drawn and the join style is 0.

extern "C" {
/// A tube of a radius along a polyline, in model-view mode: the first and the last of count points only give
/// the directions of its ends. colors: red, green and blue of each point, or null for the current colour.
NRENDERUTL_API void glePolyCylinder(int count, double points[][3], float colors[][3], double radius);
/// How segments join, the ends close and normals lie: the sum of one TUBE_JN_ and one TUBE_NORM_ value of
/// GL/gle.h, and TUBE_JN_CAP.
NRENDERUTL_API void gleSetJoinStyle(int style);
NRENDERUTL_API int gleGetJoinStyle();
}
