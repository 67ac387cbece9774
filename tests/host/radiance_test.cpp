// Radiance pictures made byte by byte: orientations, scanline forms, exact values, and files that lie.
#include <sys/resource.h>

#include <cmath>
#include <string>

#include <gtest/gtest.h>

#include "NRenderUtl/host/hostimage.h"

namespace {

const std::string kHeader = "#?RADIANCE\n# made by hand\nFORMAT=32-bit_rle_rgbe\nEXPOSURE=2\n\n";

std::string bytes(std::initializer_list<int> values) {
    return {values.begin(), values.end()};
}

DecodedFloatImage decode(const std::string& file) {
    return decodeRadiance({reinterpret_cast<const std::uint8_t*>(file.data()), file.size()});
}

long peakMegabytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024;
}

TEST(Radiance, EveryOrientationGivesRowsFromTheTopLeft) {
    const struct {
        const char* resolution;
        const char* fileOrder; // the picture is abc over def
    } rows[] = {
        {"-Y 2 +X 3", "abcdef"}, {"-Y 2 -X 3", "cbafed"}, {"+Y 2 +X 3", "defabc"}, {"+Y 2 -X 3", "fedcba"},
        {"+X 3 -Y 2", "adbecf"}, {"-X 3 -Y 2", "cfbead"}, {"+X 3 +Y 2", "daebfc"}, {"-X 3 +Y 2", "fcebda"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.resolution);
        std::string file = kHeader + row.resolution + "\n";
        for (const char* letter = row.fileOrder; *letter; ++letter) {
            file += bytes({*letter, 7, 9, 136});
        }
        const DecodedFloatImage image = decode(file);
        ASSERT_EQ(image.error, "");
        ASSERT_EQ(image.width * 10 + image.height, 32);
        std::string letters;
        for (std::size_t i = 0; i < image.rgb.size(); i += 3) {
            letters += static_cast<char>(image.rgb[i]);
        }
        EXPECT_EQ(letters, "abcdef");
    }
}

TEST(Radiance, ValuesAreMantissaTimesTwoToTheExponentLess136) {
    const int mantissas[] = {1, 2, 255}, exponents[] = {0, 1, 9, 128, 136, 255};
    std::string file = "#?RGBE\r\n\r\n-Y 6 +X 1\r\n"; // without FORMAT, and passed through a text editor
    for (const int exponent : exponents) {
        file += bytes({1, 2, 255, exponent});
    }
    const DecodedFloatImage image = decode(file);
    ASSERT_EQ(image.error, "");
    for (int i = 0; i < 18; ++i) {
        const int exponent = exponents[i / 3];
        const double expected = exponent == 0 ? 0.0 : std::ldexp(mantissas[i % 3], exponent - 136);
        EXPECT_EQ(static_cast<double>(image.rgb[i]), expected) << "exponent " << exponent;
    }
}

/// One scanline of 600 pixels: p, 300 times q, 299 times r, in each of the forms, the new one with literal
/// bytes too. r begins with 2, 2 as a new scanline does, and p too: only the third byte tells them apart.
struct Forms {
    std::string flat, oldRuns, newRuns;
};
Forms sameScanline() {
    const std::string p = bytes({2, 2, 130, 140}), q = bytes({1, 200, 3, 136}), r = bytes({2, 2, 200, 130});
    Forms forms;
    forms.flat = p;
    for (int i = 0; i < 599; ++i) {
        forms.flat += i < 300 ? q : r;
    }
    const auto runOf299 = bytes({1, 1, 1, 43, 1, 1, 1, 1});
    forms.oldRuns = p + q + runOf299 + r + bytes({1, 1, 1, 42, 1, 1, 1, 1});
    forms.newRuns = bytes({2, 2, 600 / 256, 600 % 256});
    for (int i = 0; i < 4; ++i) {
        forms.newRuns += bytes({3, p[i], q[i], q[i]}); // 3 literal bytes, then 298 and 171 repeated
        forms.newRuns += bytes({255, q[i], 255, q[i], 128 + 44, q[i], 255, r[i], 128 + 44, r[i]});
        forms.newRuns += bytes({128}) + std::string(128, r[i]); // the longest literal
    }
    return forms;
}

TEST(Radiance, FlatOldAndNewScanlinesAreTheSamePicture) {
    const Forms forms = sameScanline();
    const std::string start = kHeader + "-Y 2 +X 600\n";
    const DecodedFloatImage flat = decode(start + forms.flat + forms.flat);
    ASSERT_EQ(flat.error, "");
    ASSERT_EQ(flat.rgb.size(), 3600U);
    EXPECT_EQ(flat.rgb[0], 32.0F);            // p
    EXPECT_EQ(flat.rgb[3 * 300 + 1], 200.0F); // the last q
    EXPECT_EQ(flat.rgb[3 * 301 + 2], 3.125F); // the first r
    EXPECT_EQ(decode(start + forms.oldRuns + forms.oldRuns).rgb, flat.rgb);
    EXPECT_EQ(decode(start + forms.newRuns + forms.newRuns).rgb, flat.rgb);
    EXPECT_EQ(decode(start + forms.newRuns + forms.oldRuns).rgb, flat.rgb);
}

TEST(Radiance, ATruncatedFileIsRefusedAtEveryByte) {
    const Forms forms = sameScanline();
    for (const std::string& form : {forms.flat, forms.oldRuns, forms.newRuns}) {
        const std::string file = kHeader + "-Y 2 +X 600\n" + form + form;
        ASSERT_EQ(decode(file).error, "");
        for (std::size_t length = 0; length < file.size(); ++length) {
            const DecodedFloatImage image = decode(file.substr(0, length));
            ASSERT_NE(image.error, "") << length;
            ASSERT_TRUE(image.rgb.empty() && image.width == 0 && image.height == 0) << length;
        }
    }
}

TEST(Radiance, MalformedFilesAreRefusedWithTheirReason) {
    const std::string line8 = kHeader + "-Y 1 +X 8\n", pixel = bytes({9, 9, 9, 9}),
                      open = bytes({2, 2, 0, 8});
    const std::string pixels8 = pixel + pixel + pixel + pixel + pixel + pixel + pixel + pixel;
    const std::string flat8 = bytes({136, 5, 136, 5, 136, 5, 136, 5}), line600 = kHeader + "-Y 1 +X 600\n";
    std::string zeroRuns; // each doubles the next one's count eight times, and counts nothing itself
    for (int i = 0; i < 8; ++i) {
        zeroRuns += bytes({1, 1, 1, 0});
    }
    const std::string lots(100000, '\x09');
    const struct {
        const char* name;
        std::string file;
        const char* reason;
    } rows[] = {
        {"another program", "#?SOMETHING\n\n-Y 1 +X 8\n" + pixels8, "not a Radiance picture"},
        {"XYZ", "#?RADIANCE\nFORMAT=32-bit_rle_xyze\n\n-Y 1 +X 8\n" + pixels8, "XYZ"},
        {"unknown format", "#?RADIANCE\nFORMAT=16-bit\n\n-Y 1 +X 8\n" + pixels8, "unknown FORMAT"},
        {"no blank line", "#?RADIANCE\n-Y 1 +X 8\n", "no end"},
        {"same axis twice", kHeader + "-Y 1 +Y 8\n" + pixels8, "resolution"},
        {"no sign", kHeader + "Y 1 +X 8\n" + pixels8, "resolution"},
        {"one axis", kHeader + "-Y 1\n" + pixels8, "resolution"},
        {"words behind", kHeader + "-Y 1 +X 8 pixels\n" + pixels8, "resolution"},
        {"beyond int", kHeader + "-Y 1 +X 4294967304\n" + pixels8, "resolution"},
        {"zero", kHeader + "-Y 0 +X 8\n" + pixels8, "out of range"},
        {"negative", kHeader + "-Y 1 +X -8\n" + pixels8, "out of range"},
        {"too wide", kHeader + "-Y 1 +X 32769\n" + lots, "out of range"},
        {"too many pixels", kHeader + "-Y 32768 +X 32768\n" + lots, "out of range"},
        {"huge for its bytes", kHeader + "-Y 8192 +X 32768\n" + pixels8, "too soon"},
        {"huge and flat", kHeader + "-Y 8192 +X 32768\n" + lots, "too soon"},
        {"run before a pixel", line8 + bytes({1, 1, 1, 7}) + pixel + pixel, "corrupt"},
        {"old run too long", line8 + pixel + bytes({1, 1, 1, 8}) + pixel, "corrupt"},
        {"old run far too long", line8 + pixel + zeroRuns + bytes({1, 1, 1, 1}), "corrupt"},
        {"third run fits no scanline", line600 + pixel + bytes({1, 1, 1, 0, 1, 1, 1, 0, 1, 1, 1, 1}),
         "corrupt"},
        {"another length", line8 + bytes({2, 2, 0, 9}) + flat8, "corrupt"},
        {"new run too long", line8 + open + bytes({128 + 9, 5}) + pixels8, "corrupt"},
        {"second run too long", line8 + open + bytes({128 + 7, 5, 128 + 2, 5}) + pixels8, "corrupt"},
        {"literals too long", line8 + open + bytes({9}) + pixels8, "corrupt"},
        {"empty literal", line8 + open + bytes({0}) + flat8, "corrupt"},
    };
    const long before = peakMegabytes();
    for (const auto& row : rows) {
        const DecodedFloatImage image = decode(row.file);
        EXPECT_NE(image.error.find(row.reason), std::string::npos) << row.name << ": '" << image.error << "'";
        EXPECT_TRUE(image.rgb.empty()) << row.name;
    }
    EXPECT_LT(peakMegabytes() - before, 100) << "memory was taken for a size that the file only claims";
}

} // namespace
