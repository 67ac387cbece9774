// PNG and JPEG pictures written by the test's own use of libpng and libjpeg, and the loader over them.
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include <gtest/gtest.h>
#include <jpeglib.h>
#include <png.h>
#include <zlib.h>

#include "NRenderUtl/host/hostimage.h"

namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<std::uint8_t>;

// Odd, so that rows end inside a byte and every interlace pass has pixels.
constexpr int kWidth = 5, kHeight = 9;

// PNG writing

struct PngKind {
    const char* name;
    int colorType, depth, channels;
    bool transparent = false; // a tRNS chunk: the sample of pixel (1, 1), or the first two palette entries
};

unsigned sampleOf(const PngKind& kind, int x, int y, int channel) {
    // Of 16 bits, steps of 11 leave many samples with equal upper bytes.
    const unsigned value = kind.depth == 16 ? 50000 + (37 * x + 61 * y + 5 * channel) * 11
                                            : 7 * x + 13 * y + channel * (29 + 5 * x) + 3;
    return value & ((1U << kind.depth) - 1);
}

/// Bits of one row, most significant first.
Bytes packedRow(const PngKind& kind, int y) {
    Bytes row((kWidth * kind.channels * kind.depth + 7) / 8);
    std::size_t bit = 0;
    for (int x = 0; x < kWidth; ++x) {
        for (int channel = 0; channel < kind.channels; ++channel) {
            for (int i = kind.depth - 1; i >= 0; --i, ++bit) {
                row[bit / 8] |= ((sampleOf(kind, x, y, channel) >> i) & 1) << (7 - bit % 8);
            }
        }
    }
    return row;
}

png_color paletteEntry(int i) {
    return {static_cast<png_byte>(i * 40 + 1), static_cast<png_byte>(255 - i * 3), static_cast<png_byte>(i)};
}

/// A PNG file in the making.
struct PngWriter {
    PngWriter(int width, int height, int depth, int colorType, bool interlaced) {
        png_set_write_fn(png, &file, append, nullptr);
        png_set_IHDR(png, info, width, height, depth, colorType, interlaced, 0, 0);
    }
    ~PngWriter() { png_destroy_write_struct(&png, &info); }
    static void append(png_structp png, png_bytep data, std::size_t size) {
        auto& bytes = *static_cast<Bytes*>(png_get_io_ptr(png));
        bytes.insert(bytes.end(), data, data + size);
    }

    Bytes file;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
};

/// A PNG file of kWidth x kHeight pixels, with a gamma that a reader of raw samples must not apply.
Bytes pngFile(const PngKind& kind, bool interlaced) {
    PngWriter out(kWidth, kHeight, kind.depth, kind.colorType, interlaced);
    png_set_gAMA(out.png, out.info, 1.0);
    if (kind.colorType == PNG_COLOR_TYPE_PALETTE) {
        std::array<png_color, 256> palette;
        std::generate(palette.begin(), palette.end(), [i = 0]() mutable { return paletteEntry(i++); });
        png_set_PLTE(out.png, out.info, palette.data(), 1 << kind.depth);
    }
    if (kind.transparent) {
        const png_byte alphas[2] = {0, 100};
        const auto sample = [&](int channel) {
            return static_cast<png_uint_16>(sampleOf(kind, 1, 1, channel));
        };
        const png_color_16 key{0, sample(0), sample(1), sample(2), sample(0)};
        png_set_tRNS(out.png, out.info, alphas, 2, &key);
    }
    std::array<Bytes, kHeight> packed;
    std::array<png_bytep, kHeight> rows;
    for (int y = 0; y < kHeight; ++y) {
        packed[y] = packedRow(kind, y);
        rows[y] = packed[y].data();
    }
    png_set_rows(out.png, out.info, rows.data());
    png_write_png(out.png, out.info, PNG_TRANSFORM_IDENTITY, nullptr);
    return out.file;
}

/// A PNG of RGB pixels whose one data chunk holds these bytes, under a right checksum.
Bytes pngOf(int width, int height, const Bytes& data) {
    PngWriter out(width, height, 8, PNG_COLOR_TYPE_RGB, false);
    png_write_info(out.png, out.info);
    png_write_chunk(out.png, reinterpret_cast<png_const_bytep>("IDAT"), data.data(), data.size());
    png_write_chunk(out.png, reinterpret_cast<png_const_bytep>("IEND"), nullptr, 0);
    return out.file;
}

/// A PNG whose header promises a size that its few bytes of data do not hold.
Bytes pngOfSize(int width, int height) {
    return pngOf(width, height, Bytes(20, 7));
}

/// What a pixel of pngFile means, from the format's own definition.
std::array<unsigned, 4> expectedPng(const PngKind& kind, int x, int y) {
    const auto sample = [&](int channel) { return sampleOf(kind, x, y, channel); };
    if (kind.colorType == PNG_COLOR_TYPE_PALETTE) {
        const png_color color = paletteEntry(static_cast<int>(sample(0)));
        const unsigned alpha = !kind.transparent || sample(0) > 1 ? 255 : sample(0) * 100;
        return {color.red, color.green, color.blue, alpha};
    }
    const auto to8 = [&](unsigned v) {
        return kind.depth == 16 ? v >> 8 : v * 255 / ((1U << kind.depth) - 1);
    };
    const bool color = kind.channels >= 3, hasAlpha = kind.channels == 2 || kind.channels == 4;
    bool isKey = kind.transparent;
    for (int channel = 0; channel < kind.channels; ++channel) {
        isKey = isKey && sample(channel) == sampleOf(kind, 1, 1, channel);
    }
    const unsigned alpha = hasAlpha ? to8(sample(kind.channels - 1)) : isKey ? 0 : 255;
    return {to8(sample(0)), to8(sample(color ? 1 : 0)), to8(sample(color ? 2 : 0)), alpha};
}

constexpr PngKind kPngKinds[] = {
    {"grey 1", PNG_COLOR_TYPE_GRAY, 1, 1},
    {"grey 2", PNG_COLOR_TYPE_GRAY, 2, 1},
    {"grey 4", PNG_COLOR_TYPE_GRAY, 4, 1},
    {"grey 8", PNG_COLOR_TYPE_GRAY, 8, 1},
    {"grey 16", PNG_COLOR_TYPE_GRAY, 16, 1},
    {"grey 4, one transparent", PNG_COLOR_TYPE_GRAY, 4, 1, true},
    {"grey 16, one transparent", PNG_COLOR_TYPE_GRAY, 16, 1, true},
    {"grey and alpha 8", PNG_COLOR_TYPE_GRAY_ALPHA, 8, 2},
    {"grey and alpha 16", PNG_COLOR_TYPE_GRAY_ALPHA, 16, 2},
    {"palette 1", PNG_COLOR_TYPE_PALETTE, 1, 1},
    {"palette 2, two transparent", PNG_COLOR_TYPE_PALETTE, 2, 1, true},
    {"palette 4, two transparent", PNG_COLOR_TYPE_PALETTE, 4, 1, true},
    {"palette 8", PNG_COLOR_TYPE_PALETTE, 8, 1},
    {"RGB 8, one transparent", PNG_COLOR_TYPE_RGB, 8, 3, true},
    {"RGB 16", PNG_COLOR_TYPE_RGB, 16, 3},
    {"RGB 16, one transparent", PNG_COLOR_TYPE_RGB, 16, 3, true},
    {"RGBA 8", PNG_COLOR_TYPE_RGB_ALPHA, 8, 4},
    {"RGBA 16", PNG_COLOR_TYPE_RGB_ALPHA, 16, 4},
};

TEST(Png, EveryKindOfSampleBecomesRgba) {
    for (const PngKind& kind : kPngKinds) {
        for (const bool interlaced : {false, true}) {
            SCOPED_TRACE(std::string(kind.name) + (interlaced ? ", interlaced" : ""));
            const DecodedImage image = decodePng(pngFile(kind, interlaced));
            ASSERT_EQ(image.error, "");
            ASSERT_EQ(image.width * 100 + image.height, kWidth * 100 + kHeight);
            for (int i = 0; i < kWidth * kHeight; ++i) {
                const auto expected = expectedPng(kind, i % kWidth, i / kWidth);
                ASSERT_TRUE(std::equal(expected.begin(), expected.end(), &image.rgba[4 * i]))
                    << "pixel " << i;
            }
        }
    }
}

TEST(Png, AnyDamagedOrMissingByteIsRefused) {
    const PngKind kind{"palette 4, two transparent", PNG_COLOR_TYPE_PALETTE, 4, 1, true};
    const Bytes whole = pngFile(kind, true);
    ASSERT_EQ(decodePng(whole).error, "");
    for (std::size_t i = 0; i < whole.size(); ++i) {
        Bytes damaged = whole;
        damaged[i] ^= 0x10;
        EXPECT_NE(decodePng(damaged).error, "") << "byte " << i << " changed";
        EXPECT_NE(decodePng({whole.data(), i}).error, "") << "cut to " << i << " bytes";
    }
}

TEST(Png, PixelDataThatDoNotAddUpAreRefused) {
    const auto deflated = [](std::size_t rawBytes) {
        const Bytes raw(rawBytes);
        Bytes out(compressBound(raw.size()));
        uLongf size = out.size();
        compress(out.data(), &size, raw.data(), raw.size());
        out.resize(size);
        return out;
    };
    constexpr std::size_t kRaw = (1 + 3 * 20) * 20; // rows of a filter byte and 20 pixels
    ASSERT_EQ(decodePng(pngOf(20, 20, deflated(kRaw))).error, "");
    EXPECT_NE(decodePng(pngOf(20, 20, deflated(kRaw - 1))).error, "");
    EXPECT_NE(decodePng(pngOf(20, 20, deflated(kRaw + 1))).error, "");
    Bytes wrongSum = deflated(kRaw);
    wrongSum.back() ^= 1;
    EXPECT_NE(decodePng(pngOf(20, 20, wrongSum)).error, "");
}

// JPEG writing

struct JpegKind {
    const char* name;
    J_COLOR_SPACE input, stored;
    bool adobe;
    bool progressive = false;
};

/// A 32x16 JPEG: the left half of one colour, the right half of another, so that every block is flat.
Bytes jpegFile(const JpegKind& kind, const Bytes& left, const Bytes& right) {
    jpeg_compress_struct info{};
    jpeg_error_mgr errors{};
    info.err = jpeg_std_error(&errors);
    jpeg_create_compress(&info);
    unsigned char* out = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&info, &out, &size);
    info.image_width = 32;
    info.image_height = 16;
    info.in_color_space = kind.input;
    info.input_components = static_cast<int>(left.size());
    jpeg_set_defaults(&info);
    jpeg_set_colorspace(&info, kind.stored);
    jpeg_set_quality(&info, 100, TRUE);
    info.write_Adobe_marker = kind.adobe;
    if (kind.progressive) {
        jpeg_simple_progression(&info);
    }
    jpeg_start_compress(&info, TRUE);
    Bytes row;
    for (int x = 0; x < 32; ++x) {
        const Bytes& pixel = x < 16 ? left : right;
        row.insert(row.end(), pixel.begin(), pixel.end());
    }
    for (JSAMPROW line = row.data(); info.next_scanline < 16;) {
        jpeg_write_scanlines(&info, &line, 1);
    }
    jpeg_finish_compress(&info);
    jpeg_destroy_compress(&info);
    const Bytes file(out, out + size);
    std::free(out);
    return file;
}

const Bytes kRed{200, 30, 60}, kGreen{10, 220, 130};
const Bytes kInk{153, 0, 255, 51}, kNoInk{0, 0, 0, 0}, kInkOfAdobe{102, 255, 0, 204}, kNoInkOfAdobe(4, 255);
const Bytes kInkLight{82, 204, 0}, kWhite(3, 255); // 102/255 * 204/255 of the red light comes back

const struct {
    JpegKind kind;
    Bytes left, right;       // as stored
    Bytes leftRgb, rightRgb; // as light
} kJpegs[] = {
    {{"YCbCr", JCS_RGB, JCS_YCbCr, false}, kRed, kGreen, kRed, kGreen},
    {{"progressive", JCS_RGB, JCS_YCbCr, false, true}, kRed, kGreen, kRed, kGreen},
    {{"RGB", JCS_RGB, JCS_RGB, true}, kRed, kGreen, kRed, kGreen},
    {{"grey", JCS_GRAYSCALE, JCS_GRAYSCALE, false}, {40}, {200}, Bytes(3, 40), Bytes(3, 200)},
    {{"CMYK", JCS_CMYK, JCS_CMYK, false}, kInk, kNoInk, kInkLight, kWhite},
    {{"CMYK of Adobe", JCS_CMYK, JCS_CMYK, true}, kInkOfAdobe, kNoInkOfAdobe, kInkLight, kWhite},
    {{"YCCK of Adobe", JCS_CMYK, JCS_YCCK, true}, kInkOfAdobe, kNoInkOfAdobe, kInkLight, kWhite},
};

TEST(Jpeg, EveryColourSpaceBecomesRgba) {
    for (const auto& row : kJpegs) {
        SCOPED_TRACE(row.kind.name);
        const DecodedImage image = decodeJpeg(jpegFile(row.kind, row.left, row.right));
        ASSERT_EQ(image.error, "");
        ASSERT_EQ(image.width * 100 + image.height, 3216);
        for (const int x : {3, 28}) {
            const unsigned char* pixel = &image.rgba[4 * (32 * 5 + x)];
            const Bytes& expected = x < 16 ? row.leftRgb : row.rightRgb;
            for (int channel = 0; channel < 3; ++channel) {
                EXPECT_NEAR(pixel[channel], expected[channel], 2)
                    << "x " << x << " channel " << channel; // chroma rounds
            }
            EXPECT_EQ(pixel[3], 255);
        }
    }
}

TEST(Jpeg, HalfAPictureIsRefusedButPaddingIsNot) {
    for (const auto& row : kJpegs) {
        SCOPED_TRACE(row.kind.name);
        const Bytes whole = jpegFile(row.kind, row.left, row.right);
        for (std::size_t size = 0; size < whole.size(); ++size) {
            ASSERT_NE(decodeJpeg({whole.data(), size}).error, "") << "cut to " << size << " bytes";
        }
        Bytes ended(whole.begin(), whole.end() - 6); // without the end of the scan, but with the end marker
        ended.insert(ended.end(), {0xff, 0xd9});
        EXPECT_NE(decodeJpeg(ended).error, "");
        Bytes padded = whole; // as some cameras write it
        padded.insert(padded.end() - 2, 64, 0);
        EXPECT_EQ(decodeJpeg(padded).rgba, decodeJpeg(whole).rgba);
        padded.resize(padded.size() - 2);
        EXPECT_NE(decodeJpeg(padded).error, "") << "no end marker";
    }
}

/// The JPEG with another size in its frame header.
Bytes jpegOfSize(int width, int height) {
    Bytes file = jpegFile(kJpegs[0].kind, kRed, kGreen);
    const std::uint8_t frame[] = {0xff, 0xc0};
    auto size = std::search(file.begin(), file.end(), std::begin(frame), std::end(frame)) + 5;
    for (const int value : {height >> 8, height, width >> 8, width}) {
        *size++ = static_cast<std::uint8_t>(value);
    }
    return file;
}

TEST(Image, AFalseSizeTakesNoMemory) {
    const struct {
        const char* name;
        std::string error, reason;
    } rows[] = {
        {"PNG", decodePng(pngOfSize(32768, 8192)).error, "too soon"},
        {"wide PNG", decodePng(pngOfSize(32769, 1)).error, "out of range"},
        {"large PNG", decodePng(pngOfSize(32768, 8193)).error, "out of range"},
        {"JPEG", decodeJpeg(jpegOfSize(32768, 8192)).error, "too soon"},
        {"tall JPEG", decodeJpeg(jpegOfSize(1, 32769)).error, "out of range"},
    };
    for (const auto& row : rows) {
        EXPECT_NE(row.error.find(row.reason), std::string::npos) << row.name << ": '" << row.error << "'";
    }
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    EXPECT_LT(usage.ru_maxrss / 1024, 400) << "megabytes; the pixels alone would be 1024";
}

// The loader

/// A folder of its own, and the console messages of the case.
class ImageLoader : public ::testing::Test {
protected:
    void SetUp() override {
        fs::create_directories(m_folder);
        NHostServices services{};
        services.context = this;
        services.message = [](void* self, int kind, const char* text) {
            static_cast<ImageLoader*>(self)->m_messages.push_back(std::to_string(kind) + " " + text);
        };
        NHostSetServices(&services);
    }
    void TearDown() override {
        fs::remove_all(m_folder);
        EXPECT_EQ(NHostLiveBlocks(), 0U);
        NHostSetServices(nullptr);
    }
    GuStringFileName write(const char* name, const Bytes& bytes) {
        std::ofstream(m_folder / name, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()), bytes.size());
        return pathOf(name);
    }
    GuStringFileName pathOf(const char* name) { return GuStringFileName((m_folder / name).c_str()); }

    fs::path m_folder = fs::temp_directory_path() / ("image_test_" + std::to_string(getpid()));
    std::vector<std::string> m_messages;
};

Bytes text(std::string_view bytes) {
    return {bytes.begin(), bytes.end()};
}

TEST_F(ImageLoader, GivesTheChannelsAskedFor) {
    const PngKind kind{"RGBA 8", PNG_COLOR_TYPE_RGB_ALPHA, 8, 4};
    const GuStringFileName png = write("größe.jpg", pngFile(kind, false)); // content decides
    for (const int channels : {1, 3, 4}) {
        const HostImage image = hostLoadImage(png, channels);
        ASSERT_TRUE(image);
        ASSERT_EQ(image.channels, channels);
        for (int i = 0; i < kWidth * kHeight; ++i) {
            const auto rgba = expectedPng(kind, i % kWidth, i / kWidth);
            const double grey = 0.299 * rgba[0] + 0.587 * rgba[1] + 0.114 * rgba[2];
            const unsigned char* pixel = image.pixels.get() + i * channels;
            if (channels == 1) {
                EXPECT_NEAR(pixel[0], grey, 0.5001); // rounded to nearest
            } else {
                EXPECT_TRUE(std::equal(pixel, pixel + channels, rgba.begin())) << i;
            }
        }
    }
    const GuStringFileName hdr =
        write("two.hdr", text("#?RGBE\n\n-Y 1 +X 2\n\x80\x40\x20\x81\x01\x02\x03\x88"));
    const float expected[] = {1, 0.5, 0.25, 1, 1, 2, 3, 1};
    const HostFloatImage three = hostLoadFloatImage(hdr, 3), four = hostLoadFloatImage(hdr, 4);
    ASSERT_TRUE(three && four);
    EXPECT_TRUE(std::equal(expected, expected + 8, four.pixels.get()));
    EXPECT_TRUE(std::equal(expected, expected + 3, three.pixels.get()));
    EXPECT_TRUE(std::equal(expected + 4, expected + 7, three.pixels.get() + 3));
    EXPECT_EQ(NHostLiveBlocks(), 2U);
    EXPECT_TRUE(m_messages.empty());
}

TEST_F(ImageLoader, ARefusalNamesTheFileAndTheReason) {
    fs::create_directory(m_folder / "folder");
    const Bytes png = pngFile(kPngKinds[0], false);
    write("empty", {});
    write("cut.png", {png.begin(), png.end() - 5});
    write("whole.png", png);
    write("map.bmp", text("BM......"));
    write("letter", text("Dear reader"));
    write("grey.pgm", text("P5 1 1 255 x"));
    write("sky.hdr", text("#?RADIANCE\n\n-Y 1 +X 1\n...."));
    write("bad.hdr", text("#?RADIANCE\n\n-Y 2 +X 1\n...."));
    const struct {
        const char* name;
        const char* reason;
        bool floats = false;
        int channels = 4;
    } rows[] = {
        {"missing", "no such file"},
        {"folder", "not a file"},
        {"empty", "the file is empty"},
        {"cut.png", "image data are corrupt"},
        {"map.bmp", "BMP images are not supported"},
        {"grey.pgm", "PGM images are not supported"},
        {"letter", "not a PNG or JPEG image"},
        {"sky.hdr", "Radiance images are not supported here"},
        {"whole.png", "PNG images are not supported here", true},
        {"bad.hdr", "image data end too soon", true},
        {"whole.png", "2 channels", false, 2},
        {"sky.hdr", "1 channels", true, 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        m_messages.clear();
        const GuStringFileName path = pathOf(row.name);
        const bool loaded = row.floats ? static_cast<bool>(hostLoadFloatImage(path, row.channels))
                                       : static_cast<bool>(hostLoadImage(path, row.channels));
        EXPECT_FALSE(loaded);
        ASSERT_EQ(m_messages.size(), 1U);
        EXPECT_EQ(m_messages[0].find("0 " + path.Utf8() + ": "), 0U) << m_messages[0];
        EXPECT_NE(m_messages[0].find(row.reason), std::string::npos) << m_messages[0];
    }
}

/// A host with image functions of its own: every image is 2x1, all bytes or floats 7, counted while alive.
struct ImageHost {
    int alive = 0;
    int width = 2;
    template <typename Value>
    static Value* make(void* self, int channels, int* width, int* height) {
        auto& host = *static_cast<ImageHost*>(self);
        ++host.alive;
        *width = host.width;
        *height = 1;
        auto* pixels = new Value[static_cast<std::size_t>(2 * channels)];
        std::fill_n(pixels, 2 * channels, Value(7));
        return pixels;
    }
    NHostServices services() {
        NHostServices services{};
        services.context = this;
        services.loadImage = [](void* self, const char* path, int channels, int* w, int* h) {
            return *path == 'x' ? nullptr : make<unsigned char>(self, channels, w, h);
        };
        services.loadFloatImage = [](void* self, const char*, int channels, int* w, int* h) {
            return make<float>(self, channels, w, h);
        };
        services.freeImage = [](void* self, void* pixels) {
            --static_cast<ImageHost*>(self)->alive;
            ::operator delete[](pixels);
        };
        return services;
    }
};

TEST(HostImages, TheHostsFunctionsLoadAndFreeEvenAfterTheyWereReplaced) {
    ImageHost host;
    const NHostServices services = host.services();
    ASSERT_EQ(NHostSetServices(&services), 0);
    HostImage image = hostLoadImage("no-such-file", 3);
    HostFloatImage floats = hostLoadFloatImage("no-such-file", 4);
    ASSERT_TRUE(image && floats);
    EXPECT_EQ(image.width * 10 + image.height, 21);
    EXPECT_EQ(image.pixels.get()[5] + floats.pixels.get()[7], 14);
    EXPECT_FALSE(hostLoadImage("x", 3));
    host.width = 0;
    EXPECT_FALSE(hostLoadImage("empty", 3));
    EXPECT_EQ(host.alive, 2) << "the image of no size went back to the host";
    floats.pixels.reset();
    ASSERT_EQ(NHostSetServices(nullptr), 0);
    hostFreeImage(image.pixels.release());
    EXPECT_EQ(host.alive, 0);
    EXPECT_EQ(NHostLiveBlocks(), 0U);
}

} // namespace
