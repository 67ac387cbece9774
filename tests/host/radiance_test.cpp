// Radiance pictures made byte by byte: orientations, scanline forms, exact values, and files that lie.
#include <sys/resource.h>

#include <string>

#include <gtest/gtest.h>

#include "NRenderUtl/host/hostimage.h"
#include "tests/host/testfiles.h"

namespace {

const std::string kHeader = "#?RADIANCE\n# made by hand\nFORMAT=32-bit_rle_rgbe\nEXPOSURE=2\n\n";

std::string bytes(std::initializer_list<int> values) {
    return {values.begin(), values.end()};
}

DecodedFloatImage decode(const std::string& file) {
    return decodeRadiance(nrutest::bytesOf(file));
}

TEST(Radiance, EveryOrientationGivesRowsFromTheTopLeft) {
    const std::pair<const char*, const char*> rows[] = {
        // what the file holds when the picture is abc over def
        {"-Y 2 +X 3", "abcdef"}, {"-Y 2 -X 3", "cbafed"}, {"+Y 2 +X 3", "defabc"}, {"+Y 2 -X 3", "fedcba"},
        {"+X 3 -Y 2", "adbecf"}, {"-X 3 -Y 2", "cfbead"}, {"+X 3 +Y 2", "daebfc"}, {"-X 3 +Y 2", "fcebda"},
    };
    for (const auto& [resolution, order] : rows) {
        std::string file = kHeader + resolution + "\n", letters;
        for (const char* letter = order; *letter; ++letter)
            file += bytes({*letter, 7, 9, 136});
        const DecodedFloatImage image = decode(file);
        ASSERT_EQ(image.width * 10 + image.height, 32) << resolution << image.error;
        for (std::size_t i = 0; i < image.rgb.size(); i += 3)
            letters += static_cast<char>(image.rgb[i]);
        EXPECT_EQ(letters, "abcdef") << resolution;
    }
}

TEST(Radiance, FlatOldAndNewScanlinesAreTheSamePictureAndNoneMayBeCut) {
    // A scanline of 600 pixels: p, 300 times q, 299 times r. r begins with 2, 2 as a new scanline does, and p
    // too: only the third byte tells them apart.
    const std::string p = bytes({2, 2, 130, 140}), q = bytes({1, 200, 3, 136}), r = bytes({2, 2, 200, 130});
    std::string flat = p, newRuns = bytes({2, 2, 600 / 256, 600 % 256});
    for (int i = 0; i < 599; ++i)
        flat += i < 300 ? q : r;
    const std::string oldRuns =
        p + q + bytes({1, 1, 1, 43, 1, 1, 1, 1}) + r + bytes({1, 1, 1, 42, 1, 1, 1, 1});
    for (int i = 0; i < 4; ++i) {
        newRuns += bytes({3, p[i], q[i], q[i]}); // 3 literal bytes, then 298 and 171 repeated
        newRuns += bytes({255, q[i], 255, q[i], 128 + 44, q[i], 255, r[i], 128 + 44, r[i]});
        newRuns += bytes({128}) + std::string(128, r[i]); // the longest literal
    }
    const std::string start = kHeader + "-Y 2 +X 600\n";
    const DecodedFloatImage picture = decode(start + flat + flat);
    ASSERT_EQ(picture.rgb.size(), 3600U) << picture.error;
    EXPECT_EQ(picture.rgb[0], 32.0F);
    EXPECT_EQ(picture.rgb[3 * 301 + 2], 3.125F) << "the first r";
    for (const std::string& file : {start + flat + flat, start + oldRuns + flat, start + newRuns + oldRuns}) {
        EXPECT_EQ(decode(file).rgb, picture.rgb);
        for (std::size_t length = 0; length < file.size(); ++length) {
            const DecodedFloatImage cut = decode(file.substr(0, length));
            ASSERT_TRUE(!cut.error.empty() && cut.rgb.empty() && cut.width == 0) << length;
        }
    }
}

TEST(Radiance, MalformedFilesAreRefusedWithTheirReason) {
    const std::string line8 = kHeader + "-Y 1 +X 8\n", pixel = bytes({9, 9, 9, 9}), lots(100000, '\x09');
    const std::string open = line8 + bytes({2, 2, 0, 8}), flat = bytes({136, 5, 136, 5, 136, 5, 136, 5});
    std::string bomb = kHeader + "-Y 8192 +X 8192\n"; // correct, and 67 million pixels of one colour
    for (int i = 0; i < 8192; ++i)
        bomb += pixel + bytes({1, 1, 1, 255, 1, 1, 1, 31});
    const std::pair<const char*, std::string> rows[] = {
        {"not a Radiance picture", "#?SOMETHING\n\n-Y 1 +X 8\n" + lots},
        {"XYZ", "#?RADIANCE\nFORMAT=32-bit_rle_xyze\n\n-Y 1 +X 8\n" + lots},
        {"resolution", kHeader + "-Y 1 +Y 8\n" + lots},
        {"resolution", kHeader + "-Y 1 +X 8 pixels\n" + lots},
        {"out of range", kHeader + "-Y 0 +X 8\n" + lots},
        {"out of range", kHeader + "-Y 32768 +X 32768\n" + lots},
        {"too soon", kHeader + "-Y 8192 +X 32768\n" + pixel},
        {"far larger", kHeader + "-Y 8192 +X 32768\n" + lots},
        {"far larger", bomb},
        {"corrupt", line8 + bytes({1, 1, 1, 7}) + lots},         // nothing to repeat
        {"corrupt", line8 + pixel + bytes({1, 1, 1, 8}) + lots}, // one too many
        {"corrupt", line8 + bytes({2, 2, 0, 9}) + flat},         // another length
        {"corrupt", open + bytes({128 + 9, 5}) + lots},
        {"corrupt", open + bytes({128 + 7, 5, 128 + 2, 5}) + lots},
        {"corrupt", open + bytes({0}) + flat},
    };
    for (const auto& row : rows) {
        const DecodedFloatImage image = decode(row.second);
        EXPECT_NE(image.error.find(row.first), std::string::npos) << &row - rows << image.error;
    }
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    EXPECT_LT(usage.ru_maxrss / 1024, 200) << "megabytes, for sizes that the files only claim";
}

} // namespace
