// Loading of image files: the host's own functions where it has them, else the decoders of this folder.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <new>
#include <string_view>
#include <utility>

#include "NRenderUtl/host/hostimage.h"
#include "NRenderUtl/host/hostutl.h"
#include "NRenderUtl/host/paths.h"
#include "NRenderUtl/host/services.h"

namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<std::uint8_t>;

constexpr std::uintmax_t kMaxFileBytes = std::uintmax_t{1} << 30;

enum class Format { Png, Jpeg, Radiance, Other };

struct Signature {
    std::string_view start;
    Format format;
    const char* name;
};
// Those of format Other are known only so that the refusal can say what the file is.
constexpr Signature kSignatures[] = {
    {"\x89PNG\r\n\x1a\n", Format::Png, "PNG"},
    {"\xff\xd8\xff", Format::Jpeg, "JPEG"},
    {"#?", Format::Radiance, "Radiance"},
    {"BM", Format::Other, "BMP"},
    {"GIF8", Format::Other, "GIF"},
    {"II*", Format::Other, "TIFF"},
    {{"MM\0*", 4}, Format::Other, "TIFF"},
    {"P2", Format::Other, "PGM"},
    {"P5", Format::Other, "PGM"},
    {"P3", Format::Other, "PPM"},
    {"P6", Format::Other, "PPM"},
    {"v/1\x01", Format::Other, "OpenEXR"},
};

/// Takes over what the host's loader returned; pixels of an impossible size count as a failure.
template <typename Image>
Image fromHost(const NHostServices& services, decltype(Image::pixels.get()) pixels, Image size) {
    size.pixels = {pixels, {services.freeImage, services.context}};
    return pixels != nullptr && size.width > 0 && size.height > 0 ? std::move(size) : Image();
}

/// The whole file. Gives a reason when it refuses, else null.
const char* readFile(const fs::path& path, Bytes& bytes) {
    std::error_code failure;
    if (!fs::exists(path, failure))
        return "no such file";
    if (!fs::is_regular_file(path, failure))
        return "not a file";
    const std::uintmax_t size = fs::file_size(path, failure);
    if (failure || size > kMaxFileBytes)
        return failure ? "cannot read the file" : "the file is too large";
    std::ifstream file(path, std::ios::binary);
    bytes.resize(size);
    file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(size));
    if (!file)
        return "cannot read the file";
    return bytes.empty() ? "the file is empty" : nullptr;
}

const Signature* recognise(const Bytes& bytes) {
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    const auto* found = std::find_if(std::begin(kSignatures), std::end(kSignatures),
                                     [&](const Signature& known) { return text.starts_with(known.start); });
    return found == std::end(kSignatures) ? nullptr : found;
}

std::string unsupported(const Signature* found, const char* wanted) {
    return found ? hostFormat("%s images are not supported here, only %s", found->name, wanted)
                 : hostFormat("not a %s image", wanted);
}

void decode(const Bytes& bytes, DecodedImage& image) {
    const Signature* found = recognise(bytes);
    if (found && found->format == Format::Png)
        image = decodePng(bytes);
    else if (found && found->format == Format::Jpeg)
        image = decodeJpeg(bytes);
    else
        image.error = unsupported(found, "PNG or JPEG");
}

void decode(const Bytes& bytes, DecodedFloatImage& image) {
    const Signature* found = recognise(bytes);
    if (found && found->format == Format::Radiance)
        image = decodeRadiance(bytes);
    else
        image.error = unsupported(found, "Radiance");
}

/// Rec. 601 luma, rounded; equal red, green and blue give themselves.
unsigned char luma(const unsigned char* rgb) {
    return static_cast<unsigned char>((299 * rgb[0] + 587 * rgb[1] + 114 * rgb[2] + 500) / 1000);
}

void convert(const DecodedImage& from, int channels, unsigned char* to) {
    for (std::size_t i = 0; i < from.rgba.size(); i += 4, to += channels)
        if (channels == 1)
            *to = luma(&from.rgba[i]);
        else
            std::copy_n(&from.rgba[i], channels, to);
}

void convert(const DecodedFloatImage& from, int channels, float* to) {
    for (std::size_t i = 0; i < from.rgb.size(); i += 3, to += channels) {
        std::copy_n(&from.rgb[i], 3, to);
        if (channels == 4)
            to[3] = 1.0F;
    }
}

/// Reads, decodes and converts a file into memory of the library's allocator; sets error when it refuses.
template <typename Decoded, typename Image, typename Value>
Image load(const GuStringFileName& path, int channels, std::string& error) {
    Bytes bytes;
    if (const char* reason = readFile(hostPath(path), bytes)) {
        error = reason;
        return {};
    }
    Decoded decoded;
    decode(bytes, decoded);
    if (!decoded.error.empty()) {
        error = decoded.error;
        return {};
    }
    const std::size_t values = std::size_t{1} * decoded.width * decoded.height * channels;
    auto* pixels = static_cast<Value*>(NHOST_ALLOCATE(values * sizeof(Value)));
    if (pixels == nullptr)
        throw std::bad_alloc();
    convert(decoded, channels, pixels);
    return Image{decoded.width, decoded.height, channels, {pixels, HostImageDeleter()}};
}

void tell(const GuStringFileName& path, const std::string& reason) {
    hostMessage(NHostMessageNote, hostFormat("%s: %s", path.Utf8().c_str(), reason.c_str()).c_str());
}

/// As load, with the refusal, lack of memory included, told as a console message.
template <typename Decoded, typename Image, typename Value>
Image loadOrTell(const GuStringFileName& path, int channels) {
    std::string error;
    Image image;
    try {
        image = load<Decoded, Image, Value>(path, channels, error);
    } catch (const std::bad_alloc&) {
        error = "not enough memory for the image";
    }
    if (!error.empty())
        tell(path, error);
    return image;
}

} // namespace

void HostImageDeleter::operator()(void* pixels) const {
    if (freeImage != nullptr)
        freeImage(context, pixels);
    else
        NHostFree(pixels);
}

HostImageDeleter hostImageDeleter() {
    return {hostServices().freeImage, hostServices().context};
}

HostImage hostLoadImage(const GuStringFileName& path, int channels) {
    if (channels != 1 && channels != 3 && channels != 4) {
        tell(path, hostFormat("no image has %d channels: ask for 1, 3 or 4", channels));
        return {};
    }
    const NHostServices services = hostServices();
    if (services.loadImage == nullptr)
        return loadOrTell<DecodedImage, HostImage, unsigned char>(path, channels);
    HostImage image{0, 0, channels, {}};
    auto* pixels =
        services.loadImage(services.context, path.Utf8().c_str(), channels, &image.width, &image.height);
    return fromHost(services, pixels, std::move(image));
}

HostFloatImage hostLoadFloatImage(const GuStringFileName& path, int channels) {
    if (channels != 3 && channels != 4) {
        tell(path, hostFormat("no float image has %d channels: ask for 3 or 4", channels));
        return {};
    }
    const NHostServices services = hostServices();
    if (services.loadFloatImage == nullptr)
        return loadOrTell<DecodedFloatImage, HostFloatImage, float>(path, channels);
    HostFloatImage image{0, 0, channels, {}};
    auto* pixels =
        services.loadFloatImage(services.context, path.Utf8().c_str(), channels, &image.width, &image.height);
    return fromHost(services, pixels, std::move(image));
}
