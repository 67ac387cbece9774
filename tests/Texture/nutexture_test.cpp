// Textures without a context: what their creators take and refuse, and whose memory they free. What is in the
// pixels shows when they are drawn.
#include <epoxy/gl.h>

#include "NRenderUtl/NRenderUtl.h"
#include "NRenderUtl/host/services.h"
#include "tests/Texture/pictures.h"
#include "tests/host/testfiles.h"

using namespace nrutest;

namespace {

constexpr const char* kOtherSource =
    "NuTexture object is already created/initialized with a different source data!";
constexpr const char* kNoBitmap = "Failed to fetch pixels data from bitmap handle!";
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

int widthOf(const NuTexture& texture) {
    int width = 0, height = 0;
    return texture.GetTextureSize(width, height) ? width : 0;
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
    for (int kind = 1; kind <= 3; ++kind) {
        NuTexture texture;
        EXPECT_FALSE(texture.IsValid());
        for (const int second : {kind, 1, 2, 3}) {
            EXPECT_EQ(textOf(create(texture, second)), second == kind ? "" : kOtherSource);
            EXPECT_EQ(widthOf(texture), kind + 1);
            EXPECT_TRUE(texture.IsValid());
        }
        EXPECT_EQ(textOf(texture.CreateFromImageWithTransparency(file, 0)), kind == 2 ? "" : kOtherSource);
        NuTexture other;
        ASSERT_FALSE(other.CreateFromPixelData(1, 1, g_pixels, GL_RGBA));
        EXPECT_EQ(textOf(texture.CreateWithReplacedColor(other, 1, 2)), kind == 3 ? "" : kOtherSource);
        EXPECT_EQ(textOf(texture.CreateScaledTexture(other, 3, 2)), kind == 3 ? "" : kOtherSource);
    }
    EXPECT_EQ(NHostLiveBlocks(), 0u);
}

TEST_F(NuTextureSources, ThatFailLeaveThePictureAsItWas) {
    NuTexture bitmap, image, data, empty;
    EXPECT_FALSE(create(bitmap, 1) || create(image, 2) || create(data, 3));
    rows = 40000;
    const auto ofPixels = [&](int width, int height, unsigned char* pixels) {
        return textOf(data.CreateFromPixelData(width, height, pixels, GL_RGBA));
    };
    const std::pair<std::string, std::string> failures[] = {
        {textOf(bitmap.CreateFromBitmap(&rows, 0)), kNoBitmap},
        {textOf(image.CreateFromImage(folder.name("none"))),
         "Failed to load image file '" + folder.name("none").Utf8() + "'!"},
        {ofPixels(-1, 1, g_pixels), "A texture cannot have -1 x 1 pixels!"},
        {ofPixels(1 << 30, 1 << 30, g_pixels), "A texture cannot have 1073741824 x 1073741824 pixels!"},
        {ofPixels(1, 1, nullptr), "No pixels are given for the texture!"},
        {textOf(data.CreateWithReplacedColor(empty, 1, 2)), "Invalid NuTexture object input!"}};
    for (const auto& [error, expected] : failures)
        EXPECT_EQ(error, expected);
    EXPECT_EQ(widthOf(bitmap) + 10 * widthOf(image) + 100 * widthOf(data), 432);
    NuTextureUtilRegisterPixelGeneratorFunc(nullptr);
    EXPECT_EQ(textOf(empty.CreateFromBitmap(&rows, 0)), kNoBitmap);
}

TEST_F(NuTextureSources, WithoutAColorToReplaceLeaveTheTextureEmpty) {
    NuTexture black, copy;
    int width = -1, height = -1;
    ASSERT_FALSE(black.CreateFromPixelData(0, 7, nullptr, GL_RGBA)); // without pixels too
    EXPECT_FALSE(black.GetTextureSize(width, height));
    EXPECT_EQ(textOf(copy.CreateWithReplacedColor(black, 1, 2)), kNothingReplaced);
    ASSERT_FALSE(black.CreateFromPixelData(7, 0, nullptr, GL_RGBA));
    EXPECT_TRUE(black.GetTextureSize(width, height)); // no rows count as a size
    ASSERT_FALSE(black.CreateFromPixelData(4, 3, g_pixels, GL_RGBA));
    EXPECT_EQ(textOf(copy.CreateWithReplacedColor(black, 0xFF, 0xFF000000)), kNothingReplaced);
    EXPECT_FALSE(copy.IsValid() || widthOf(copy) != 0);
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
    static int live;
    NHostServices host{};
    host.loadImage = [](void*, const char*, int, int* width, int* height) {
        ++live;
        *width = *height = 2;
        return static_cast<unsigned char*>(std::calloc(16, 1));
    };
    host.loadFloatImage = [](void*, const char*, int, int*, int*) -> float* { return nullptr; };
    host.freeImage = [](void*, void* pixels) {
        std::free(pixels);
        --live;
    };
    ASSERT_EQ(NHostSetServices(&host), 0);
    NuTextureUtilRegisterPixelGeneratorFunc([](void*, unsigned int, bool, int* width, int* height) {
        return hostServices().loadImage(nullptr, nullptr, 4, width, height);
    });
    {
        NuTexture bitmap, image;
        EXPECT_FALSE(bitmap.CreateFromBitmap(nullptr, 0) || bitmap.CreateFromBitmap(nullptr, 0));
        EXPECT_FALSE(image.CreateFromImage("any"));
        EXPECT_EQ(live, 2);
    }
    EXPECT_EQ(live, 0);
}
