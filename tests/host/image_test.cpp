// PNG files made chunk by chunk, small JPEG files, and the loader over them.
#include <sys/resource.h>

#include <array>
#include <cmath>

#include <gtest/gtest.h>
#include <zlib.h>

#include "NRenderUtl/host/hostimage.h"
#include "tests/host/testfiles.h"

using namespace nrutest;

namespace {

std::string hex(std::string_view digits) {
    std::string bytes;
    for (std::size_t i = 0; i < digits.size(); i += 2)
        bytes += static_cast<char>(std::stoi(std::string(digits.substr(i, 2)), nullptr, 16));
    return bytes;
}

std::string big(std::size_t value, int bytes = 4) {
    std::string result;
    while (bytes-- > 0)
        result += static_cast<char>(value >> (8 * bytes));
    return result;
}

/// A PNG of three pixels in a row, in hexadecimal digits: name, header (depth, colour type, two zeros,
/// interlacing), samples (a filter byte begins each row, and each pass of an interlaced picture), palette,
/// transparency and the RGBA that it stands for.
using PngKind = std::array<const char*, 6>;
constexpr PngKind kPngs[] = {
    {"RGBA", "0806000000", "00C81E3CFF0ADC820700000000", "", "", "C81E3CFF0ADC820700000000"},
    {"RGB", "0802000000", "00010203010204050607", "", "", "010203FF010204FF050607FF"},
    {"interlaced", "0806000001", "000102030400090A0B0C0005060708", "", "", "0102030405060708090A0B0C"},
    {"grey 4, transparent", "0400000000", "005AF0", "", "000A", "555555FFAAAAAA00FFFFFFFF"},
    {"grey 16, transparent", "1000000000", "00123412FF80FF", "", "1234", "12121200121212FF808080FF"},
    {"grey and alpha", "0804000000", "00010203040506", "", "", "010101020303030405050506"},
    {"palette 4", "0403000000", "002100", "010203040506070809", "0064", "070809FF0405066401020300"},
    {"RGB, transparent", "0802000000", "00010203010204050607", "", "000100020004",
     "010203FF01020400050607FF"},
};

std::string chunk(const std::string& body) {
    return big(body.size() - 4) + body + big(crc32(0, bytesOf(body).data(), static_cast<uInt>(body.size())));
}

/// The file, with any size in its header and a gamma that a reader of raw samples must not apply.
std::string pngFile(const PngKind& kind, unsigned width = 3, unsigned height = 1) {
    const auto& [name, header, samples, palette, transparency, rgba] = kind;
    const std::string raw = hex(samples);
    Bytef packed[200];
    uLongf size = sizeof packed;
    compress(packed, &size, bytesOf(raw).data(), raw.size());
    return "\x89PNG\r\n\x1A\n" + chunk("IHDR" + big(width) + big(height) + hex(header)) +
           chunk("gAMA" + big(100000)) + (*palette ? chunk("PLTE" + hex(palette)) : "") +
           (*transparency ? chunk("tRNS" + hex(transparency)) : "") +
           chunk("IDAT" + std::string(packed, packed + size)) + chunk("IEND");
}

using Decoder = DecodedImage (*)(std::span<const std::uint8_t>);

/// Decodes a file, and demands that it is refused where it is cut.
std::string rgbaOf(Decoder decode, const std::string& file) {
    for (std::size_t size = 0; size < file.size(); ++size)
        EXPECT_NE(decode(bytesOf(file).first(size)).error, "") << "cut to " << size << " bytes";
    const DecodedImage image = decode(bytesOf(file));
    EXPECT_EQ(image.error, "");
    EXPECT_EQ(image.rgba.size(), std::size_t{4} * image.width * image.height);
    return {image.rgba.begin(), image.rgba.end()};
}

TEST(Png, EveryKindBecomesRgbaAndDamagedOrMissingSamplesAreRefused) {
    for (const PngKind& kind : kPngs) {
        SCOPED_TRACE(kind[0]);
        std::string file = pngFile(kind);
        EXPECT_EQ(rgbaOf(decodePng, file), hex(kind.back()));
        file[file.size() - 20] ^= 0x10; // within the samples or their checksum
        EXPECT_NE(decodePng(bytesOf(file)).error, "");
    }
}

/// A JPEG of 16x8 pixels that libjpeg wrote, the left half of one colour and the right half of another: name,
/// RGBA of a pixel to the left and one to the right, and what follows the quantisation table, which is all
/// ones.
using JpegKind = std::array<const char*, 3>;
constexpr JpegKind kJpegs[] = {
    {"YCbCr", "C81E3CFF0ADC82FF",
     "FFC00011080008001003011100021100031100FFC4001800000203000000000000000000000000000609070A0BFFC400141001"
     "00000000000000000000000000000000FFDA000C03010002000300003F0053E83D6983F81032577FFFD9"},
    // Inks 99, 0, FF, 33 and none: 66 / FF * CC / FF of the red light comes back.
    {"YCCK of Adobe, complemented", "52CC00FFFFFFFFFF",
     "FFEE000E41646F626500640000000002FFC00014080008001004011100021100031100041100FFC40015000101000000000000"
     "0000000000000000090AFFC40014100100000000000000000000000000000000FFDA000E040100020003000400003F0015D660"
     "7014C09A746783F330FFD9"},
};

std::string jpegFile(const JpegKind& kind) {
    return hex("FFD8FFDB004300") + std::string(64, '\1') + hex(kind[2]);
}

TEST(Jpeg, EveryColourSpaceBecomesRgbaAndHalfAPictureIsRefused) {
    for (const JpegKind& kind : kJpegs) {
        SCOPED_TRACE(kind[0]);
        std::string file = jpegFile(kind);
        const std::string pixels = rgbaOf(decodeJpeg, file), expected = hex(kind[1]);
        ASSERT_EQ(pixels.size(), 4U * 16 * 8);
        for (int i = 0; i < 8; ++i) // chroma rounds
            EXPECT_NEAR(pixels[4 * (16 * 5 + 2 + i / 4 * 9) + i % 4] & 255, expected[i] & 255, 2) << i;
        file.erase(file.size() - 6, 4); // half a scan with an end marker
        EXPECT_NE(decodeJpeg(bytesOf(file)).error, "");
    }
}

TEST(Image, AFalseSizeIsRefusedAndTakesNoMemory) {
    const auto png = [](int width, int height) {
        return decodePng(bytesOf(pngFile(kPngs[0], width, height))).error;
    };
    const auto jpeg = [](int width, int height) {
        std::string file = jpegFile(kJpegs[0]);
        file.replace(file.find("\xFF\xC0") + 5, 4, big(height, 2) + big(width, 2));
        return decodeJpeg(bytesOf(file)).error;
    };
    // A row that the data lack, a pixel less than they have, and sizes at and over the limits.
    const std::pair<const char*, std::string> rows[] = {{"corrupt", png(3, 2)},
                                                        {"corrupt", png(2, 1)},
                                                        {"too soon", png(32768, 8192)},
                                                        {"out of range", png(32769, 1)},
                                                        {"out of range", png(32768, 8193)},
                                                        {"too soon", jpeg(32768, 8192)},
                                                        {"out of range", jpeg(1, 32769)}};
    for (const auto& row : rows)
        EXPECT_NE(row.second.find(row.first), std::string::npos) << &row - rows << ": '" << row.second << "'";
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    EXPECT_LT(usage.ru_maxrss / 1024, 400) << "megabytes; the pixels alone would be 1024";
}

TEST(ImageLoader, GivesTheChannelsAskedFor) {
    const TestFolder folder;
    const GuStringFileName png = folder.write("größe.jpg", pngFile(kPngs[0])); // content decides
    const std::pair<int, const char*> rows[] = {
        {1, "549300"}, {3, "C81E3C0ADC82000000"}, {4, "C81E3CFF0ADC820700000000"}}; // Rec. 601: 84.25, 146.95
    for (const auto& [channels, expected] : rows) {
        const HostImage image = hostLoadImage(png, channels);
        ASSERT_TRUE(image && image.width == 3 && image.channels == channels);
        EXPECT_EQ(std::string(image.pixels.get(), image.pixels.get() + 3 * channels), hex(expected));
    }
    const GuStringFileName hdr =
        folder.write("two.hdr", "#?RGBE\r\n\r\n-Y 1 +X 2\r\n\x80\x40\x20\x81\1\2\xFF\1");
    const float kTiny = std::ldexp(1.0F, -135); // a subnormal number
    const std::pair<int, std::vector<float>> floats[] = {
        {3, {1, 0.5, 0.25, kTiny, 2 * kTiny, 255 * kTiny}},
        {4, {1, 0.5, 0.25, 1, kTiny, 2 * kTiny, 255 * kTiny, 1}}};
    for (const auto& [channels, expected] : floats) {
        const HostFloatImage image = hostLoadFloatImage(hdr, channels);
        ASSERT_TRUE(image && NHostLiveBlocks() == 1);
        EXPECT_TRUE(std::equal(expected.begin(), expected.end(), image.pixels.get())) << channels;
    }
    EXPECT_EQ(NHostLiveBlocks(), 0U);
}

TEST(ImageLoader, ARefusalNamesTheFileAndTheReason) {
    const TestFolder folder;
    const GuStringFileName png = folder.write("whole.png", pngFile(kPngs[0]));
    const GuStringFileName hdr = folder.write("bad.hdr", "#?RADIANCE\n\n-Y 2 +X 1\n....");
    const std::tuple<GuStringFileName, int, const char*> rows[] = {
        // channels, and as many floats below 0
        {png + "missing", 4, "no such file"},
        {png + std::wstring(L"\0.png", 5), 4, "no such file"},
        {folder.write("a.bmp", "BM...."), 4, "BMP images are not supported"},
        {hdr, -3, "image data end too soon"},
        {png, -3, "PNG images are not supported here"},
        {png, 2, "2 channels"},
    };
    for (const auto& [path, channels, reason] : rows) {
        ::testing::internal::CaptureStderr();
        EXPECT_FALSE(channels < 0 ? bool(hostLoadFloatImage(path, -channels))
                                  : bool(hostLoadImage(path, channels)));
        const std::string told = ::testing::internal::GetCapturedStderr();
        EXPECT_TRUE(told.starts_with(path.Utf8().c_str())) << told;
        EXPECT_NE(told.find(reason), std::string::npos) << reason << ", not " << told;
    }
}

TEST(HostImages, AreFreedByTheirMakerAlsoAfterItWasReplaced) {
    static unsigned char bytes[6] = {1, 2, 3, 4, 5, 6};
    int users = 0;
    NHostServices services{};
    services.context = &users;
    services.loadImage = [](void* users, const char*, int, int* width, int* height) {
        ++*static_cast<int*>(users);
        *width = 2;
        *height = 1;
        return bytes;
    };
    services.loadFloatImage = [](void*, const char*, int, int*, int*) -> float* { return nullptr; };
    services.freeImage = [](void* users, void*) { --*static_cast<int*>(users); };
    ASSERT_EQ(NHostSetServices(&services), 0);
    HostImage image = hostLoadImage("no-such-file", 3), other = hostLoadImage("no-such-file", 3);
    ASSERT_TRUE(image && image.pixels.get() == bytes && image.width == 2 && image.height == 1);
    EXPECT_FALSE(hostLoadFloatImage("no-such-file", 3));
    other.pixels.reset();
    EXPECT_EQ(users, 1);
    ASSERT_EQ(NHostSetServices(nullptr), 0);
    image.pixels.reset();
    EXPECT_EQ(users, 0);
}

} // namespace
