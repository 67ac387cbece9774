// Pictures and boxes on top of the view: textures from files, bitmaps and pixels. Every call comes from the
// thread that owns the current GL context.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "NRenderUtl/host/nhost.h"
#include "NRenderUtl/shaders/nshaders.h"

// --- textures ----------------------------------------------------------------------------------------------

/// One picture in client memory: four bytes a pixel (red, green, blue, alpha), rows from bottom to top. Its
/// pixels come from one kind of source, and the creators of the other kinds refuse with "NuTexture object is
/// already created/initialized with a different source data!"; those of the same kind replace the picture.
/// Creators return null on success; whatever they refuse or cannot load leaves the picture that was.
class NRENDERUTL_API NuTexture {
public:
    /// How a texture is drawn. Flags are on when not 0.
    struct RenderInfo {
        std::int32_t roundedCorners = 0; ///< flag; rectangles only
        std::int32_t cornerRadius = 0;   ///< pixels of the texture, as all corners have it
        std::int32_t border = 0; ///< flag; in circles any value but 1 leaves the filling its full size
        std::int32_t borderThickness = 0;  ///< pixels, in rectangles those of the texture
        unsigned char borderColor[3] = {}; ///< red, green, blue; opaque
    };

    NuTexture();
    /// Without a declared context (SetRenderingContextActive) the GL texture is left to
    /// RenderGLCleanupBuffers.
    ~NuTexture();
    NuTexture(const NuTexture&) = delete;
    NuTexture& operator=(const NuTexture&) = delete;

    /// Whether it has a source.
    bool IsValid() const;
    /// True when the width is at least 1 and the height at least 0.
    bool GetTextureSize(int& width, int& height) const;

    /// The pixels that the registered generator makes of a bitmap of the host's, which are then freed by the
    /// host's image function. The colour 0xFFFFFFFF makes the picture opaque.
    NErrorPtr CreateFromBitmap(void* bitmap, unsigned int colour);
    /// A PNG or JPEG file, by the host's image functions where it has them.
    NErrorPtr CreateFromImage(const GuStringFileName& path);
    /// The same, with pixels of the packed colour (its alpha does not count) fully transparent.
    NErrorPtr CreateFromImageWithTransparency(const GuStringFileName& path, unsigned int colour);
    /// Copies width * height * 4 bytes. format is GL_RGBA, or GL_RGB for an opaque picture. Null pixels and
    /// sizes below 0 or above 32768, or 2^28 pixels in all, are refused; a picture without pixels is not.
    NErrorPtr CreateFromPixelData(int width, int height, unsigned char* pixels, int format);
    /// A copy of source in which every colour but keepColour (packed, without alpha) is newColour; alpha
    /// stays. Where nothing is to be replaced there is an error, and the texture is left without a source.
    NErrorPtr CreateWithReplacedColor(const NuTexture& source, unsigned int newColour,
                                      unsigned int keepColour);

    /// A copy of source in another size, from 1 pixel to the limits of pixel data: averaged where it shrinks,
    /// interpolated where it grows. Colours of transparent pixels do not bleed. A source without pixels is
    /// refused.
    NErrorPtr CreateScaledTexture(const NuTexture& source, int width, int height);

    /// Draw in a rectangle or circle of the window (y upward), on top of the scene, with alpha unless the
    /// format is GL_RGB; sizes of 0 or less are the texture's own, the smaller one for a circle. A GL
    /// texture is made at the first draw after a change, in the current context; nothing is drawn without
    /// one, without pixels, or beyond the driver's size of textures. GL state stays but for the current
    /// colour, which is index 63 or, of a circle with border, the border's.
    void RenderAsRectangle(int x, int y, int width, int height, const RenderInfo& info);
    void RenderAsCircle(int x, int y, int diameter, const RenderInfo& info);
    /// What they draw, from the origin of the current matrices, in the GL state that is current: a rectangle
    /// by the program, which is made where there is none (false where it cannot be) and samples the texture
    /// of unit 0, or as a plain quad; and a textured disc or a line around (centre, centre).
    bool DrawAsRectangleWithVAMode(int width, int height, const RenderInfo& info);
    void DrawAsRectangleWithImmediateMode(int width, int height, const RenderInfo& info);
    static void DrawCircle(int centre, int radius, bool filled);

private:
    enum SourceKind : std::int32_t { Empty = 0, Bitmap = 1, ImageFile = 2, PixelData = 3 };
    struct NewPixels;

    NErrorPtr RefuseOtherThan(SourceKind kind) const;
    void ReplacePixels(SourceKind kind, NewPixels& pixels);
    void FreePixels();
    void Reset(bool deleteNow);

    void CreateGLTexture();
    void DeleteGLTexture();
    static bool BuildProgram();

    unsigned char* m_pixels;
    std::int32_t m_width, m_height;
    std::uint32_t m_pixelFormat;
    std::uint32_t m_texture; ///< GL name, 0 = none
    bool m_rebuildNeeded;
    SourceKind m_sourceKind;
    void (*m_freeImage)(void* context, void* pixels); ///< null: the library's own memory
    void* m_freeContext;

    static NShaderProgram& m_ShaderProgram; ///< draws rectangles; deleted when any changes its pixels
};

// --- image files -------------------------------------------------------------------------------------------

/// The process-wide cache of textures of image files. They stay the manager's, at their addresses. Copies of
/// the manager share the textures.
class NRENDERUTL_API NuImageTextureManager {
public:
    static NuImageTextureManager* GetInstance();
    NuImageTextureManager(const NuImageTextureManager&);
    NuImageTextureManager(NuImageTextureManager&&) noexcept;
    NuImageTextureManager& operator=(const NuImageTextureManager&);
    NuImageTextureManager& operator=(NuImageTextureManager&&) noexcept;
    ~NuImageTextureManager();

    /// The texture of a file, loaded at the first call and, into the same object, when the file's date has
    /// changed. A name that is no file is looked for in the folder Images under the setting
    /// "NU_RESOURCES_PATH"; both separators are accepted. Null where there is no file, and where it cannot be
    /// loaded: a texture that the manager had of it is then destroyed, with its variants.
    NuTexture* GetNuTexture(const GuStringFileName& name);
    /// A texture of the manager's with every colour but keepColour replaced by newColour (see NuTexture). It
    /// is made once for a new colour, whatever the other colour and later pictures of the file. Null for any
    /// other texture, and where nothing is to be replaced.
    NuTexture* CreateFromTextureWithReplacedColor(NuTexture* base, unsigned int newColour,
                                                  unsigned int keepColour);

private:
    struct Entry {
        std::shared_ptr<NuTexture> texture;
        std::optional<std::int64_t> date; ///< of the file when it was loaded
        std::vector<std::pair<std::shared_ptr<NuTexture>, unsigned int>> variants; ///< with their new colours
    };

    NuImageTextureManager();
    GuStringFileName BuildFullPath(const GuStringFileName& name);
    NuTexture* Insert(const GuStringFileName& path, std::optional<std::int64_t> date);

    std::map<GuStringFileName, Entry, GuStringPredicate> m_entries; ///< by full path
    static NuImageTextureManager m_Instance;
};

// --- boxes -------------------------------------------------------------------------------------------------

/// Draws boxes in window pixels on top of the view, for labels and panels. It holds no state.
class NRENDERUTL_API N2DBoxDrawer {
public:
    /// One box. Pixels, y upward. By default a white rectangle without size.
    struct RenderInfo {
        std::int32_t x = 0, y = 0; ///< lower left corner
        std::int32_t width = 0, height = 0;
        NgColorLong fillColor = 0xFFFFFFFF; ///< 0xFFFFFFFF: not filled, drawn white
        std::int32_t roundedCorners = 0;    ///< non-zero: cornerRadii count
        float cornerRadii[4] = {};          ///< right top, right bottom, left top, left bottom
        std::int32_t border = 0;            ///< non-zero: a border along the edge
        std::int32_t borderThickness = 0;
        std::uint8_t borderColor[3] = {}; ///< red, green, blue; opaque
    };

    N2DBoxDrawer();
    N2DBoxDrawer(const N2DBoxDrawer&) = default;
    ~N2DBoxDrawer();
    N2DBoxDrawer& operator=(const N2DBoxDrawer&);

    /// Draws a box by its alpha over what is there, without depth test, lighting, textures and fog; the
    /// host's clip planes, scissor, masks and polygon mode apply. Sizes of 0 or less draw nothing. Corners
    /// and border need GLSL 1.50; without it the box is plain. Only the current colour may be another
    /// afterwards.
    void Render(const RenderInfo& info);
    /// The two ways of drawing, in the matrices and the viewport that are current: by the program, which is
    /// made at the first call (false where it cannot be), and as a plain quad.
    bool DrawWithVAMode(const RenderInfo& info);
    void DrawWithImmediateMode(const RenderInfo& info);
    /// Makes the program of all boxes, unless there is one. It lives as long as the process.
    void CreateShaderProgram();
};

// --- bitmaps -----------------------------------------------------------------------------------------------

/// Makes pixels of a host's bitmap: four bytes each, rows from bottom to top, freed by the host's image
/// function or, where it has none, NHostFree. Null on failure.
using NuTexturePixelGeneratorFunc = unsigned char* (*)(void* bitmap, unsigned int colour, bool flag,
                                                       int* width, int* height);

/// The generator of CreateFromBitmap, which passes its colour and true; null takes it away.
NRENDERUTL_API void NuTextureUtilRegisterPixelGeneratorFunc(NuTexturePixelGeneratorFunc func);
/// Calls the generator; null where there is none.
NRENDERUTL_API unsigned char* NuTextureUtilGetPixelsGivenBitmap(void* bitmap, unsigned int colour, bool flag,
                                                                int* width, int* height);
