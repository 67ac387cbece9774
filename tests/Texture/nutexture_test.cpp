// Textures without a context: what their creators take and refuse, and whose memory they free. What is in the
// pixels shows when they are drawn.
#include <gtest/gtest.h>

#include <epoxy/gl.h>

#include <array>

#include "NRenderUtl/NRenderUtl.h"
#include "tests/host/testfiles.h"
#include "tests/support/pngwriter.h"

using namespace nrutest;

namespace {

constexpr const char* kOtherSource =
    "NuTexture object is already created/initialized with a different source data!";
constexpr const char* kNothingReplaced = "No color was replaced in the texture!";

unsigned char g_pixels[4 * 4 * 3] = {};

unsigned char* makePixels(void* bitmap, unsigned int, bool flag, int* width, int* height) {
    *width = flag ? 2 : -1;
    *height = *static_cast<int*>(bitmap);
    return static_cast<unsigned char*>(NHOST_ALLOCATE(64));
}

std::string textOf(const NErrorPtr& error) {
    return error ? error->GetTextUtf8() : "";
}

std::array<int, 2> sizeOf(const NuTexture& texture) {
    std::array<int, 2> size{};
    texture.GetTextureSize(size[0], size[1]);
    return size;
}

struct NuTextureSources : testing::Test {
    TestFolder folder;
    const GuStringFileName file = folder.write("3x1.png", pngOf(3, 1, {1, 2, 3}));
    int rows = 5;

    /// By kind: bitmap 2 x 5, image file 3 x 1, pixel data 4 x 3.
    NErrorPtr create(NuTexture& texture, int kind) {
        NuTextureUtilRegisterPixelGeneratorFunc(makePixels);
        return kind == 1   ? texture.CreateFromBitmap(&rows, 0)
               : kind == 2 ? texture.CreateFromImage(file)
                           : texture.CreateFromPixelData(4, 3, g_pixels, GL_RGBA);
    }
};

} // namespace

TEST_F(NuTextureSources, OfOneKindReplaceEachOtherAndRefuseTheOthers) {
    constexpr std::array<int, 2> kSizes[] = {{0, 0}, {2, 5}, {3, 1}, {4, 3}};
    for (int kind = 1; kind <= 3; ++kind) {
        NuTexture texture;
        EXPECT_FALSE(texture.IsValid());
        for (const int second : {kind, 1, 2, 3}) {
            EXPECT_EQ(textOf(create(texture, second)), second == kind ? "" : kOtherSource);
            EXPECT_EQ(sizeOf(texture), kSizes[kind]);
            EXPECT_TRUE(texture.IsValid());
        }
        EXPECT_EQ(textOf(texture.CreateFromImageWithTransparency(file, 0)), kind == 2 ? "" : kOtherSource);
        NuTexture other;
        ASSERT_FALSE(other.CreateFromPixelData(1, 1, g_pixels, GL_RGBA));
        EXPECT_EQ(textOf(texture.CreateWithReplacedColor(other, 1, 2)), kind == 3 ? "" : kOtherSource);
    }
    EXPECT_EQ(NHostLiveBlocks(), 0u);
}

TEST_F(NuTextureSources, ThatFailLeaveThePictureAsItWas) {
    for (int kind = 1; kind <= 3; ++kind) {
        NuTexture texture;
        const bool hasPicture = !create(texture, kind);
        rows = 40000;
        const std::string name = folder.name("none").Utf8();
        const std::vector<std::pair<std::string, std::string>> rowsOfKind[] = {
            {{textOf(texture.CreateFromBitmap(&rows, 0)), "Failed to fetch pixels data from bitmap handle!"}},
            {{textOf(texture.CreateFromImage(folder.name("none"))),
              "Failed to load image file '" + name + "'!"}},
            {{textOf(texture.CreateFromPixelData(-1, 1, g_pixels, GL_RGBA)),
              "A texture cannot have -1 x 1 pixels!"},
             {textOf(texture.CreateFromPixelData(1, 40000, g_pixels, GL_RGBA)),
              "A texture cannot have 1 x 40000 pixels!"},
             {textOf(texture.CreateFromPixelData(1 << 30, 1 << 30, g_pixels, GL_RGBA)),
              "A texture cannot have 1073741824 x 1073741824 pixels!"},
             {textOf(texture.CreateFromPixelData(1, 1, nullptr, GL_RGBA)),
              "No pixels are given for the texture!"},
             {textOf(texture.CreateWithReplacedColor(NuTexture(), 1, 2)),
              "Invalid NuTexture object input!"}}};
        for (const auto& [error, expected] : rowsOfKind[kind - 1])
            EXPECT_EQ(error, expected);
        rows = 5;
        EXPECT_TRUE(hasPicture && texture.IsValid());
        EXPECT_EQ(sizeOf(texture)[0], kind + 1);
    }
    NuTextureUtilRegisterPixelGeneratorFunc(nullptr);
    EXPECT_EQ(textOf(NuTexture().CreateFromBitmap(&rows, 0)),
              "Failed to fetch pixels data from bitmap handle!");
}

TEST_F(NuTextureSources, MayHaveNoPixels) {
    NuTexture none, copy;
    EXPECT_FALSE(none.CreateFromPixelData(0, 7, nullptr, GL_RGBA));
    int width = -1, height = -1;
    EXPECT_FALSE(none.GetTextureSize(width, height));
    EXPECT_EQ(height, 7);
    EXPECT_FALSE(none.CreateFromPixelData(7, 0, nullptr, GL_RGBA));
    EXPECT_TRUE(none.GetTextureSize(width, height)); // no rows count as a size
    EXPECT_EQ(textOf(copy.CreateWithReplacedColor(none, 1, 2)), kNothingReplaced);
}

TEST_F(NuTextureSources, WithoutAColorToReplaceLeaveTheTextureEmpty) {
    NuTexture black, copy;
    ASSERT_FALSE(black.CreateFromPixelData(4, 3, g_pixels, GL_RGBA));
    EXPECT_EQ(textOf(copy.CreateWithReplacedColor(black, 0xFF, 0xFF000000)), kNothingReplaced);
    EXPECT_FALSE(copy.IsValid());
    EXPECT_EQ(sizeOf(copy), (std::array<int, 2>{}));
    EXPECT_FALSE(copy.CreateWithReplacedColor(black, 0xFF, 0x01));
    EXPECT_FALSE(copy.CreateWithReplacedColor(copy, 0xFF00, 0x00)); // also of itself
    EXPECT_EQ(textOf(copy.CreateWithReplacedColor(copy, 0xFF, 0xFF00)), kNothingReplaced);
}

// The GL loader ends a process that calls it without a context.
TEST_F(NuTextureSources, AreNotDrawnWithoutAContext) {
    NuTexture texture;
    ASSERT_FALSE(texture.CreateFromPixelData(4, 3, g_pixels, GL_RGBA));
    texture.RenderAsRectangle(0, 0, 0, 0, {1, 1, 1, 1, {}});
    texture.RenderAsCircle(0, 0, 0, {0, 0, 1, 1, {}});
    EXPECT_TRUE(texture.IsValid());
}

TEST_F(NuTextureSources, FreeBitmapsAndImagesThroughTheHost) {
    static int freed;
    NHostServices host{};
    host.loadImage = [](void*, const char*, int, int* width, int* height) {
        *width = *height = 2;
        return static_cast<unsigned char*>(std::calloc(16, 1));
    };
    host.loadFloatImage = [](void*, const char*, int, int*, int*) -> float* { return nullptr; };
    host.freeImage = [](void*, void* pixels) {
        std::free(pixels);
        ++freed;
    };
    ASSERT_EQ(NHostSetServices(&host), 0);
    NuTextureUtilRegisterPixelGeneratorFunc([](void*, unsigned int, bool, int* width, int* height) {
        *width = *height = 2;
        return static_cast<unsigned char*>(std::calloc(16, 1));
    });
    {
        NuTexture bitmap, image, data;
        ASSERT_FALSE(bitmap.CreateFromBitmap(nullptr, 0));
        ASSERT_FALSE(bitmap.CreateFromBitmap(nullptr, 0));
        EXPECT_EQ(freed, 1);
        ASSERT_FALSE(image.CreateFromImage("any"));
        ASSERT_FALSE(data.CreateFromPixelData(1, 1, g_pixels, GL_RGBA));
        EXPECT_EQ(NHostLiveBlocks(), 1u);
    }
    EXPECT_EQ(freed, 3);
    EXPECT_EQ(NHostLiveBlocks(), 0u);
}
