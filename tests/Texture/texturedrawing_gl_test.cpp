// Textures on the window: their pixels one by one, corners and border against the same formula in C++, and
// circles by area.
#include <cmath>
#include <cstring>
#include <numbers>

#include "NRenderUtl/NRenderUtl.h"
#include "tests/Texture/pictures.h"
#include "tests/Texture/roundedbox.h"
#include "tests/host/testfiles.h"
#include "tests/support/librarytest.h"

using namespace nrutest;
using Info = NuTexture::RenderInfo;

namespace {

constexpr std::uint32_t kRed = 0xFF0000FF, kGreen = 0xFF00FF00, kBlue = 0xFFFF0000;
constexpr std::uint32_t kBorder = 0xFF1E140A; // of kBordered
constexpr Info kPlain{}, kRounded{1, 6, 0, 0, {}}, kBordered{0, 6, 1, 4, {10, 20, 30}},
    kBoth{1, 6, 1, 4, {10, 20, 30}};

/// What the program makes of a sample at u, v, blended over the cleared window.
std::uint32_t expected(std::uint32_t sample, float u, float v, float width, float height, const Info& info) {
    const glm::vec2 size(width, height);
    const glm::vec4 ink(glm::vec3(info.borderColor[0], info.borderColor[1], info.borderColor[2]) / 255.0f, 1);
    const glm::vec4 color =
        colorAtEdge(unpacked(sample), (glm::vec2(u, v) - 0.5f) * size, size / 2.0f,
                    {info.roundedCorners != 0, info.roundedCorners ? float(info.cornerRadius) : 0,
                     info.border ? float(info.borderThickness) : -1, ink});
    const glm::vec4 blended = glm::mix(unpacked(0xFF332211), color, color.a) * 255.0f;
    std::uint32_t result = 0xFF000000;
    for (int i = 0; i < 3; ++i)
        result |= std::uint32_t(std::lround(blended[i])) << 8 * i;
    return result;
}

class TextureDrawing : public LibraryTest {
protected:
    void SetUp() override {
        LibraryTest::SetUp();
        glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_FALSE); // nobody looks at the window's own alpha
    }
    Picture drawn(NuTexture& texture, int x, int y, int width, int height, const Info& info) {
        clear();
        texture.RenderAsRectangle(x, y, width, height, info);
        return read();
    }
    Picture circle(NuTexture& texture, int x, int y, int diameter, const Info& info) {
        clear();
        texture.RenderAsCircle(x, y, diameter, info);
        return read();
    }
    static int count(const Picture& picture, std::uint32_t color) {
        return kSize * kSize - picture.countOtherThan(color);
    }
    static int liveTextures() {
        int alive = 0;
        for (GLuint name = 1; name < 100; ++name)
            alive += glIsTexture(name);
        return alive;
    }
    TestFolder folder;
};

} // namespace

TEST_F(TextureDrawing, PutsEveryPixelWhereItBelongs) {
    const std::uint32_t other = 0xFF030201, faint = 0x00C0C0C0;
    const auto file = folder.write("2x3.png", pngOf(2, 3, {kRed, kGreen, kBlue, other, ~0u, faint}));
    NuTexture textures[4];
    ASSERT_FALSE(textures[0].CreateFromImage(file));
    fillTexture(textures[1], 2, 3, {~0u, faint, kBlue, other, kRed, kGreen}); // the bottom row first
    ASSERT_FALSE(textures[2].CreateFromImageWithTransparency(file, kGreen & 0xFFFFFF));
    ASSERT_FALSE(textures[3].CreateWithReplacedColor(textures[1], 0x00554433, kBlue & 0xFFFFFF));
    const std::uint32_t changed = 0xFF554433;
    const std::uint32_t wanted[4][6] = {{~0u, kClear, kBlue, other, kRed, kGreen},
                                        {~0u, kClear, kBlue, other, kRed, kGreen},
                                        {~0u, kClear, kBlue, other, kRed, kClear},
                                        {changed, kClear, kBlue, changed, changed, changed}};
    for (int i = 0; i < 4 * 6; ++i) {
        const Picture picture = drawn(textures[i / 6], 9, 20, 0, -1, kPlain);
        EXPECT_EQ(hex(picture.at(9 + i % 2, 20 + i % 6 / 2)), hex(wanted[i / 6][i % 6])) << i;
        EXPECT_LE(picture.countOtherThan(kClear), 5);
    }
}

TEST_F(TextureDrawing, OpaqueFormatsIgnoreAlphaAndTheHostsBlendingStays) {
    NuTexture bitmap;
    NuTextureUtilRegisterPixelGeneratorFunc([](void*, unsigned int, bool, int* width, int* height) {
        *width = *height = 2;
        return static_cast<unsigned char*>(std::memset(NHOST_ALLOCATE(16), 0, 16));
    });
    ASSERT_FALSE(bitmap.CreateFromBitmap(nullptr, 0xFFFFFFFF));
    EXPECT_EQ(count(drawn(bitmap, 0, 0, 8, 8, kPlain), 0xFF000000), 64);
    glEnable(GL_BLEND);
    glBlendFunc(GL_ZERO, GL_ONE); // of the host's, under which nothing shows
    EXPECT_EQ(drawn(bitmap, 0, 0, 8, 8, kPlain).countOtherThan(kClear), 0);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    ngl_set_blending_value(51); // a fifth, of the colour that is current
    for (const int diameter : {kSize, 2 * kSize})
        EXPECT_EQ(hex(circle(bitmap, 0, 0, diameter, kPlain).at(30, 30)), "0xFF291B0E");
    glDisable(GL_BLEND);
    ASSERT_FALSE(bitmap.CreateFromBitmap(nullptr, 0)); // now with its alpha
    EXPECT_EQ(drawn(bitmap, 0, 0, 8, 8, kPlain).countOtherThan(kClear), 0);
}

// Translucent and opaque pixels, at their own size and stretched, where corners and border stretch too.
TEST_F(TextureDrawing, CornersAndBorderAreThoseOfTheFormula) {
    NuTexture texture;
    fillTexture(texture, 24, 16, {kRed});
    const double left[] = {-1, 0, 0, 30.5}; // in pixels of the rectangle
    glClipPlane(GL_CLIP_PLANE0, left);
    glEnable(GL_CLIP_PLANE0);
    const Picture plain = drawn(texture, 3, 5, 48, 16, kPlain);
    EXPECT_EQ(count(plain, kRed), 30 * 16);
    EXPECT_TRUE(samePicture(drawn(texture, 3, 5, 48, 16, Info{1, 0, 0, 0, {}}), plain)); // by the program
    glDisable(GL_CLIP_PLANE0);
    for (const std::uint32_t color : {0x60F08030u, 0xFF20C0E0u})
        for (const Info& info : {kRounded, kBordered, kBoth})
            for (const int scale : {1, 2}) {
                fillTexture(texture, 24, 16, {color});
                const Picture picture = drawn(texture, 3, 5, 24 * scale, 16, info);
                Picture wanted = picture;
                for (int i = 0; i < 24 * scale * 16; ++i) {
                    const int x = i % (24 * scale), y = i / (24 * scale);
                    wanted.at(3 + x, 5 + y) =
                        expected(color, (x + 0.5f) / (24 * scale), (y + 0.5f) / 16, 24, 16, info);
                }
                EXPECT_TRUE(samePicture(picture, wanted, 1)) << hex(color) << scale; // 1: blending rounds
                EXPECT_GT(picture.countOtherThan(kClear), 200);
            }
}

TEST_F(TextureDrawing, CirclesHaveTheirAreaAndTheirHalves) {
    NuTexture texture;
    std::vector<std::uint32_t> halves(30, kRed);
    halves.resize(60, kBlue);
    fillTexture(texture, 60, 1, halves);
    const Picture whole = circle(texture, 2, 4, 60, kPlain);
    EXPECT_NEAR(whole.countOtherThan(kClear), 30 * 30 * std::numbers::pi, 20);
    EXPECT_EQ(whole.at(2 + 18, 30), kRed);
    EXPECT_EQ(whole.at(2 + 42, 30), kBlue);
    fillTexture(texture, 60, 64, {kGreen});
    const Picture framed = circle(texture, 2, 4, 0, kBordered); // the smaller side
    // The line takes two pixels of the disc's 26 and two outside. GL measures its width along an axis.
    const double widthAcross = 4 * std::numbers::sqrt2 / 2 / (std::numbers::pi / 4);
    EXPECT_NEAR(count(framed, kGreen), std::pow(26 - widthAcross / 2, 2) * std::numbers::pi, 40);
    EXPECT_NEAR(count(framed, kBorder), 2 * 26 * std::numbers::pi * widthAcross, 40);
    const Picture overlapped = circle(texture, 2, 4, 60, Info{0, 0, 2, 20, {10, 20, 30}});
    EXPECT_EQ(overlapped.at(32, 4 + 5), kGreen); // only 1 takes the border off the filling
    EXPECT_EQ(overlapped.at(32, 34), kBorder);
}

TEST_F(TextureDrawing, CirclesShowThePixelsOfTheirPolygons) {
    NuTexture texture;
    fillTexture(texture, 1, 1, {kGreen});
    for (int diameter = 2; diameter <= kSize; ++diameter) {
        const Picture rows = circle(texture, 0, 0, diameter, kPlain);
        clear();
        glDisable(GL_DEPTH_TEST);
        glLoadIdentity();
        glOrtho(0, kSize, 0, kSize, -1, 1);
        glColor4ub(0, 0xFF, 0, 0xFF);
        NuTexture::DrawCircle(diameter / 2, diameter / 2, true);
        EXPECT_TRUE(samePicture(rows, read())) << diameter;
    }
}

TEST_F(TextureDrawing, IsPlainWhereTheProgramDoesNotLink) {
    NuTexture texture;
    fillTexture(texture, 16, 16, {kGreen});
    const auto query = epoxy_glGetProgramiv;
    epoxy_glGetProgramiv = [](GLuint, GLenum, GLint* value) { *value = 0; };
    EXPECT_EQ(count(drawn(texture, 0, 0, 0, 0, kBoth), kGreen), 256);
    NuTexture colorful;
    std::vector<std::uint32_t> colors;
    for (std::uint32_t i = 0; i < 50 * 50; ++i)
        colors.push_back(0xFF000000 | i * 0x10F5B3);
    fillTexture(colorful, 50, 50, colors);
    const Picture rows = circle(colorful, 3, 5, 0, kBordered);
    epoxy_glGetProgramiv = query;
    EXPECT_TRUE(samePicture(circle(colorful, 3, 5, 0, kBordered), rows, 1)); // 1: filtering rounds
    EXPECT_LT(count(drawn(texture, 0, 0, 0, 0, kBoth), kGreen), 200);        // it is tried again
}

TEST_F(TextureDrawing, MakesItsTextureOnceAgainForNewPixelsAndDeletesItUnderAContext) {
    auto texture = std::make_unique<NuTexture>();
    fillTexture(*texture, 4, 4, {kRed});
    EXPECT_EQ(liveTextures(), 0);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(count(drawn(*texture, 0, 0, 0, 0, kBoth), kRed), 0);
    SetRenderingContextActive(false);
    fillTexture(*texture, 16, 2, {kGreen});
    EXPECT_EQ(count(drawn(*texture, 0, 0, 0, 0, kPlain), kGreen), 32);
    EXPECT_EQ(liveTextures(), 1);
    EXPECT_TRUE(texture->CreateWithReplacedColor(*texture, 0, kGreen)); // nothing to replace: empty now
    EXPECT_EQ(drawn(*texture, 0, 0, 0, 0, kPlain).countOtherThan(kClear), 0);
    texture.reset();
    EXPECT_EQ(liveTextures(), 1);
    SetRenderingContextActive(true);
    RenderGLCleanupBuffers();
    EXPECT_EQ(liveTextures(), 0);
    NuTexture large;
    fillTexture(large, 20000, 1, {kRed}); // more than the driver takes
    EXPECT_EQ(drawn(large, 0, 0, 9, 9, kPlain).countOtherThan(kClear), 0);
}
