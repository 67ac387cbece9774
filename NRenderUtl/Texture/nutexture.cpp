// Textures: their life and what their pixels are made from.
#include "NRenderUtl/Texture/ntexture.h"

#include <algorithm>
#include <cstring>

#include "NRenderUtl/host/hostgl.h"
#include "NRenderUtl/host/hostimage.h"
#include "NRenderUtl/host/hostutl.h"
#include "NRenderUtl/shaders/pendingnames.h"

/// Pixels in hand, before they become a texture's.
struct NuTexture::NewPixels {
    int width, height;
    std::unique_ptr<unsigned char, HostImageDeleter> bytes;
};

namespace {

constexpr NgColorLong kOpaque = 0xFFFFFFFF;
constexpr NgColorLong kRgbMask = 0x00FFFFFF;
constexpr int kPixelBytes = 4;

NuTexturePixelGeneratorFunc& pixelGenerator() {
    static NuTexturePixelGeneratorFunc generator = nullptr;
    return generator;
}

std::size_t bytesOf(int width, int height) {
    return std::size_t{kPixelBytes} * static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
}

/// A picture may have no pixels, in one direction or both.
bool sizeIsAllowed(int width, int height) {
    return width >= 0 && height >= 0 && imageSizeAllowed(std::max(width, 1), std::max(height, 1));
}

/// Images come with the top row first, GL draws the first row at the bottom.
void turnRows(unsigned char* pixels, int width, int height) {
    const std::size_t row = bytesOf(width, 1);
    for (int y = 0; y < height / 2; ++y) {
        unsigned char* low = pixels + row * static_cast<std::size_t>(y);
        std::swap_ranges(low, low + row, pixels + row * static_cast<std::size_t>(height - 1 - y));
    }
}

NgColorLong rgbOf(const unsigned char* pixel) {
    return pixel[0] | NgColorLong{pixel[1]} << 8 | NgColorLong{pixel[2]} << 16;
}

void setRgb(unsigned char* pixel, NgColorLong color) {
    for (int channel = 0; channel < 3; ++channel)
        pixel[channel] = static_cast<unsigned char>(color >> 8 * channel);
}

} // namespace

// Never freed: textures of the host's that are static delete the program as the last.
NShaderProgram& NuTexture::m_ShaderProgram = *new NShaderProgram;

// --- life --------------------------------------------------------------------------------------------------

NuTexture::NuTexture()
    : m_pixels(nullptr), m_width(0), m_height(0), m_pixelFormat(GL_RGBA), m_texture(0),
      m_rebuildNeeded(false), m_sourceKind(Empty), m_freeImage(nullptr), m_freeContext(nullptr) {}

NuTexture::~NuTexture() {
    m_ShaderProgram.DeleteProgram();
    DeleteGLTexture();
    FreePixels();
}

bool NuTexture::IsValid() const {
    return m_sourceKind != Empty;
}

bool NuTexture::GetTextureSize(int& width, int& height) const {
    width = m_width;
    height = m_height;
    return width >= 1 && height >= 0;
}

void NuTexture::FreePixels() {
    if (m_pixels)
        HostImageDeleter{m_freeImage, m_freeContext}(m_pixels);
    m_pixels = nullptr;
}

void NuTexture::DeleteGLTexture() {
    if (m_texture != 0)
        deleteTextureOrQueue(m_texture);
    m_texture = 0;
}

void NuTexture::Reset(bool deleteNow) {
    m_ShaderProgram.DeleteProgram();
    if (deleteNow)
        DeleteGLTexture();
    m_rebuildNeeded = m_texture != 0;
    FreePixels();
    m_width = m_height = 0;
    m_sourceKind = Empty;
}

void NuTexture::ReplacePixels(SourceKind kind, NewPixels& pixels) {
    Reset(false);
    const HostImageDeleter deleter = pixels.bytes.get_deleter();
    m_freeImage = deleter.freeImage;
    m_freeContext = deleter.context;
    m_pixels = pixels.bytes.release();
    m_width = pixels.width;
    m_height = pixels.height;
    m_sourceKind = kind;
}

NErrorPtr NuTexture::RefuseOtherThan(SourceKind kind) const {
    if (m_sourceKind == Empty || m_sourceKind == kind)
        return nullptr;
    return hostError("NuTexture object is already created/initialized with a different source data!");
}

// --- sources -----------------------------------------------------------------------------------------------

NErrorPtr NuTexture::CreateFromBitmap(void* bitmap, unsigned int colour) {
    if (NErrorPtr refusal = RefuseOtherThan(Bitmap))
        return refusal;
    NewPixels made{0, 0, {nullptr, hostImageDeleter()}};
    made.bytes.reset(NuTextureUtilGetPixelsGivenBitmap(bitmap, colour, true, &made.width, &made.height));
    if (!made.bytes || !imageSizeAllowed(made.width, made.height))
        return hostError("Failed to fetch pixels data from bitmap handle!");
    ReplacePixels(Bitmap, made);
    m_pixelFormat = colour == kOpaque ? GL_RGB : GL_RGBA;
    return nullptr;
}

NErrorPtr NuTexture::CreateFromImage(const GuStringFileName& path) {
    if (NErrorPtr refusal = RefuseOtherThan(ImageFile))
        return refusal;
    HostImage image = hostLoadImage(path, kPixelBytes);
    if (!image)
        return hostError(hostFormat("Failed to load image file '%s'!", path.Utf8().c_str()));
    NewPixels loaded{image.width, image.height, std::move(image.pixels)};
    turnRows(loaded.bytes.get(), loaded.width, loaded.height);
    ReplacePixels(ImageFile, loaded);
    return nullptr;
}

NErrorPtr NuTexture::CreateFromImageWithTransparency(const GuStringFileName& path, unsigned int colour) {
    if (NErrorPtr error = CreateFromImage(path))
        return error;
    const unsigned char* end = m_pixels + bytesOf(m_width, m_height);
    for (unsigned char* pixel = m_pixels; pixel != end; pixel += kPixelBytes)
        if (rgbOf(pixel) == (colour & kRgbMask))
            pixel[3] = 0;
    return nullptr;
}

NErrorPtr NuTexture::CreateFromPixelData(int width, int height, unsigned char* pixels, int format) {
    if (NErrorPtr refusal = RefuseOtherThan(PixelData))
        return refusal;
    if (!sizeIsAllowed(width, height))
        return hostError(hostFormat("A texture cannot have %d x %d pixels!", width, height));
    const std::size_t bytes = bytesOf(width, height);
    if (bytes > 0 && !pixels)
        return hostError("No pixels are given for the texture!");
    NewPixels copy{width, height, {}};
    if (bytes > 0) {
        copy.bytes.reset(static_cast<unsigned char*>(NHOST_ALLOCATE(bytes)));
        if (!copy.bytes)
            return hostError(hostFormat("Not enough memory for a texture of %d x %d pixels!", width, height));
        std::memcpy(copy.bytes.get(), pixels, bytes);
    }
    ReplacePixels(PixelData, copy);
    m_pixelFormat = static_cast<std::uint32_t>(format);
    return nullptr;
}

NErrorPtr NuTexture::CreateWithReplacedColor(const NuTexture& source, unsigned int newColour,
                                             unsigned int keepColour) {
    if (!source.IsValid())
        return hostError("Invalid NuTexture object input!");
    if (NErrorPtr error = CreateFromPixelData(source.m_width, source.m_height, source.m_pixels,
                                              static_cast<int>(source.m_pixelFormat)))
        return error;
    bool changed = false;
    const unsigned char* end = m_pixels + bytesOf(m_width, m_height);
    for (unsigned char* pixel = m_pixels; pixel != end; pixel += kPixelBytes)
        if (rgbOf(pixel) != (keepColour & kRgbMask)) {
            setRgb(pixel, newColour);
            changed = true;
        }
    if (changed)
        return nullptr;
    Reset(false);
    return hostError("No color was replaced in the texture!");
}

// --- bitmaps -----------------------------------------------------------------------------------------------

void NuTextureUtilRegisterPixelGeneratorFunc(NuTexturePixelGeneratorFunc func) {
    pixelGenerator() = func;
}

unsigned char* NuTextureUtilGetPixelsGivenBitmap(void* bitmap, unsigned int colour, bool flag, int* width,
                                                 int* height) {
    return pixelGenerator() ? pixelGenerator()(bitmap, colour, flag, width, height) : nullptr;
}
