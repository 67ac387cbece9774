// PNG pictures through libpng, strict about their data.
#include <csetjmp>
#include <cstdio>
#include <cstring>

#include <png.h>

#include "NRenderUtl/host/hostimage.h"

namespace {

// Deflate shrinks data by at most this factor (1032), plus room for headers.
constexpr std::int64_t kMaxDeflateRatio = 1032;

/// One decompression. libpng reports errors by longjmp, so the functions that it can leave hold only plain
/// values; everything that needs destruction lives here or in decodePng.
struct PngReader {
    explicit PngReader(std::span<const std::uint8_t> data) : rest(data) {}
    ~PngReader() { png_destroy_read_struct(&png, &info, nullptr); }
    PngReader(const PngReader&) = delete;
    PngReader& operator=(const PngReader&) = delete;

    std::span<const std::uint8_t> rest;
    png_structp png = nullptr;
    png_infop info = nullptr;
    char error[128] = "";
};

[[noreturn]] void onError(png_structp png, png_const_charp text) {
    auto* reader = static_cast<PngReader*>(png_get_error_ptr(png));
    std::snprintf(reader->error, sizeof(reader->error), "%s", text);
    png_longjmp(png, 1);
}

void onWarning(png_structp, png_const_charp) {}

void onRead(png_structp png, png_bytep out, std::size_t bytes) {
    auto* reader = static_cast<PngReader*>(png_get_io_ptr(png));
    if (bytes > reader->rest.size())
        png_error(png, "file ends too soon");
    std::memcpy(out, reader->rest.data(), bytes);
    reader->rest = reader->rest.subspan(bytes);
}

bool create(PngReader& reader) {
    reader.png = png_create_read_struct(PNG_LIBPNG_VER_STRING, &reader, onError, onWarning);
    reader.info = reader.png ? png_create_info_struct(reader.png) : nullptr;
    return reader.info != nullptr;
}

/// Everything before the pixels. Chunks that do not change raw sample values are skipped, so that only a
/// fault in what makes the picture refuses it; checksums are checked in all of them.
bool readHeader(PngReader& reader) {
    if (setjmp(png_jmpbuf(reader.png)) != 0)
        return false;
    png_set_read_fn(reader.png, &reader, onRead);
    png_set_keep_unknown_chunks(reader.png, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
    png_set_crc_action(reader.png, PNG_CRC_ERROR_QUIT, PNG_CRC_ERROR_QUIT);
    png_set_benign_errors(reader.png, 0);
    png_read_info(reader.png, reader.info);
    return true;
}

/// Any kind of sample to RGBA of 8 bits a channel.
void askForRgba(PngReader& reader) {
    png_set_expand(reader.png);
    png_set_strip_16(reader.png);
    png_set_gray_to_rgb(reader.png);
    png_set_add_alpha(reader.png, 0xFF, PNG_FILLER_AFTER);
    png_set_interlace_handling(reader.png);
    png_read_update_info(reader.png, reader.info);
}

bool readPixels(PngReader& reader, png_bytepp rows, std::size_t rowBytes) {
    if (setjmp(png_jmpbuf(reader.png)) != 0)
        return false;
    askForRgba(reader);
    if (png_get_rowbytes(reader.png, reader.info) != rowBytes)
        png_error(reader.png, "unexpected row size");
    png_read_image(reader.png, rows);
    png_read_end(reader.png, nullptr);
    return true;
}

/// Whether the bytes of the file could unfold to a picture of the size that its header gives.
bool couldHoldPixels(const PngReader& reader, std::size_t fileBytes, std::int64_t pixels) {
    const int bits = png_get_bit_depth(reader.png, reader.info) * png_get_channels(reader.png, reader.info);
    return pixels * bits / 8 <= static_cast<std::int64_t>(fileBytes) * kMaxDeflateRatio;
}

DecodedImage refused(std::string reason) {
    DecodedImage image;
    image.error = std::move(reason);
    return image;
}

DecodedImage corrupt(const PngReader& reader) {
    return refused(std::string("image data are corrupt (") + reader.error + ")");
}

} // namespace

DecodedImage decodePng(std::span<const std::uint8_t> data) {
    PngReader reader(data);
    if (!create(reader))
        return refused("no memory for the PNG reader");
    if (!readHeader(reader))
        return corrupt(reader);
    const std::int64_t width = png_get_image_width(reader.png, reader.info);
    const std::int64_t height = png_get_image_height(reader.png, reader.info);
    if (!imageSizeAllowed(width, height))
        return refused("image size is out of range");
    if (!couldHoldPixels(reader, data.size(), width * height))
        return refused("image data end too soon");
    DecodedImage image{static_cast<int>(width), static_cast<int>(height), {}, {}};
    const auto rowBytes = static_cast<std::size_t>(width) * 4;
    image.rgba.resize(rowBytes * height);
    std::vector<png_bytep> rows(static_cast<std::size_t>(height));
    for (std::size_t y = 0; y < rows.size(); ++y)
        rows[y] = image.rgba.data() + y * rowBytes;
    return readPixels(reader, rows.data(), rowBytes) ? std::move(image) : corrupt(reader);
}
