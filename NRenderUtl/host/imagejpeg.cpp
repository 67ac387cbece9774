// JPEG pictures through libjpeg-turbo, strict about their data.
#include <csetjmp>
#include <cstddef>
#include <cstdio>
#include <cstring>

#include <jpeglib.h>

#include <jerror.h>

#include "NRenderUtl/host/hostimage.h"

namespace {

// A Huffman-coded block of 8x8 pixels takes at least one bit and a component may be halved or quartered both
// ways only where another is not: a byte holds at most this many pixels. Arithmetic coding may shrink flat
// blocks further.
constexpr std::int64_t kMaxPixelsPerByte = 1024;
constexpr std::int64_t kArithmeticGain = 64;

// Progressive pictures have about ten scans; each costs a pass over the whole picture, however few its bytes.
constexpr int kMaxScans = 256;

/// One decompression. libjpeg reports errors by a call that must not return: it jumps, so the functions that
/// it can leave hold only plain values; everything that needs destruction lives here or in decodeJpeg.
struct JpegReader {
    JpegReader();
    ~JpegReader() { jpeg_destroy_decompress(&info); }
    JpegReader(const JpegReader&) = delete;
    JpegReader& operator=(const JpegReader&) = delete;

    jpeg_decompress_struct info{};
    jpeg_error_mgr errors{};
    jpeg_progress_mgr progress{};
    std::jmp_buf jump{};
    char error[JMSG_LENGTH_MAX] = "";
};

[[noreturn]] void onError(j_common_ptr info) {
    auto* reader = static_cast<JpegReader*>(info->client_data);
    info->err->format_message(info, reader->error);
    std::longjmp(reader->jump, 1);
}

/// Warnings of libjpeg are damage that it would paint over. Those here leave every pixel as it was written.
bool isHarmless(int code) {
    return code == JWRN_EXTRANEOUS_DATA || code == JWRN_JFIF_MAJOR || code == JWRN_ADOBE_XFORM;
}

void onMessage(j_common_ptr info, int level) {
    if (level < 0 && !isHarmless(info->err->msg_code))
        onError(info);
}

void onOutput(j_common_ptr) {}

void onProgress(j_common_ptr info) {
    auto* reader = static_cast<JpegReader*>(info->client_data);
    if (reader->info.input_scan_number > kMaxScans) {
        std::snprintf(reader->error, sizeof(reader->error), "more than %d scans", kMaxScans);
        std::longjmp(reader->jump, 1);
    }
}

JpegReader::JpegReader() {
    info.err = jpeg_std_error(&errors);
    info.client_data = this;
    errors.error_exit = onError;
    errors.emit_message = onMessage;
    errors.output_message = onOutput;
    progress.progress_monitor = onProgress;
}

bool readHeader(JpegReader& reader, std::span<const std::uint8_t> data) {
    if (setjmp(reader.jump) != 0)
        return false;
    jpeg_create_decompress(&reader.info);
    reader.info.progress = &reader.progress;
    jpeg_mem_src(&reader.info, data.data(), static_cast<unsigned long>(data.size()));
    jpeg_read_header(&reader.info, TRUE);
    return true;
}

bool couldHoldPixels(const JpegReader& reader, std::size_t fileBytes) {
    const std::int64_t gain = reader.info.arith_code ? kArithmeticGain : 1;
    return std::int64_t{reader.info.image_width} * reader.info.image_height <=
           static_cast<std::int64_t>(fileBytes) * kMaxPixelsPerByte * gain;
}

/// Rows as RGBA, or as CMYK where the file has four components.
bool readRows(JpegReader& reader, unsigned char* pixels) {
    if (setjmp(reader.jump) != 0)
        return false;
    reader.info.out_color_space = reader.info.num_components == 4 ? JCS_CMYK : JCS_EXT_RGBA;
    jpeg_start_decompress(&reader.info);
    while (reader.info.output_scanline < reader.info.output_height) {
        JSAMPROW row = pixels + std::size_t{reader.info.output_scanline} * reader.info.output_width * 4;
        jpeg_read_scanlines(&reader.info, &row, 1);
    }
    jpeg_finish_decompress(&reader.info);
    return true;
}

/// Ink coverage to RGBA in place. Adobe's programs store the complement, 255 for no ink.
void cmykToRgba(std::vector<unsigned char>& pixels, bool complemented) {
    const auto light = [&](unsigned ink) { return complemented ? ink : 255 - ink; };
    for (std::size_t i = 0; i < pixels.size(); i += 4) {
        const unsigned paper = light(pixels[i + 3]);
        for (std::size_t channel = i; channel < i + 3; ++channel)
            pixels[channel] = static_cast<unsigned char>((light(pixels[channel]) * paper + 127) / 255);
        pixels[i + 3] = 255;
    }
}

DecodedImage refused(std::string reason) {
    DecodedImage image;
    image.error = std::move(reason);
    return image;
}

DecodedImage corrupt(const JpegReader& reader) {
    return refused(std::string("image data are corrupt (") + reader.error + ")");
}

} // namespace

DecodedImage decodeJpeg(std::span<const std::uint8_t> data) {
    JpegReader reader;
    if (!readHeader(reader, data))
        return corrupt(reader);
    const jpeg_decompress_struct& info = reader.info;
    if (!imageSizeAllowed(info.image_width, info.image_height))
        return refused("image size is out of range");
    if (!couldHoldPixels(reader, data.size()))
        return refused("image data end too soon");
    DecodedImage image{static_cast<int>(info.image_width), static_cast<int>(info.image_height), {}, {}};
    image.rgba.resize(std::size_t{info.image_width} * info.image_height * 4);
    if (!readRows(reader, image.rgba.data()))
        return corrupt(reader);
    if (info.out_color_space == JCS_CMYK)
        cmykToRgba(image.rgba, info.saw_Adobe_marker);
    return image;
}
