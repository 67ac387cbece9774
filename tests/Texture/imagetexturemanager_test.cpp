// The cache of image textures over files that change, break and go.
#include <gtest/gtest.h>

#include <cstdlib>

#include "NRenderUtl/NRenderUtl.h"
#include "tests/Texture/pictures.h"
#include "tests/host/testfiles.h"

using namespace nrutest;
namespace fs = std::filesystem;

namespace {

struct ImageTextureManager : testing::Test {
    NuImageTextureManager& manager = *NuImageTextureManager::GetInstance();
    TestFolder folder;

    /// A picture of a width, or none, in a file of a date.
    GuStringFileName write(const char* file, unsigned width, int seconds = 1) {
        fs::create_directories((folder.path / file).parent_path());
        const auto name = folder.write(file, width ? pngOf(width, 1, std::vector(width, 0xFF0000FFu)) : "no");
        fs::last_write_time(folder.path / file, fs::file_time_type(std::chrono::seconds(seconds)));
        return name;
    }
    /// 0 for no texture.
    static int widthOf(const NuTexture* texture) {
        int width = 0, height = 0;
        return texture && texture->GetTextureSize(width, height) ? width : 0;
    }
};

} // namespace

TEST_F(ImageTextureManager, ReloadsAFileByItsDateAndDropsABrokenOne) {
    const GuStringFileName name = write("a.png", 1, 10);
    NuTexture* first = manager.GetNuTexture(name);
    NuTexture* variant = manager.CreateFromTextureWithReplacedColor(first, 1, 2);
    // Other content of the same date is not looked at; any other date counts.
    for (const auto& [width, seconds, expected] : {std::tuple{2, 10, 1}, {3, 20, 3}, {5, 20, 3}, {4, 5, 4}}) {
        write("a.png", static_cast<unsigned>(width), seconds);
        EXPECT_EQ(manager.GetNuTexture(name), first);
        EXPECT_EQ(widthOf(first), expected);
    }
    EXPECT_EQ(manager.CreateFromTextureWithReplacedColor(first, 1, 9), variant);
    EXPECT_EQ(widthOf(variant), 1) << "variants keep the picture that they were made of";
    EXPECT_EQ(NHostLiveBlocks(), 2u);
    write("a.png", 0, 30);
    EXPECT_EQ(manager.GetNuTexture(name), nullptr);
    EXPECT_EQ(NHostLiveBlocks(), 0u) << "the entry stays";
    write("a.png", 7, 5); // the date of the entry that was
    EXPECT_EQ(widthOf(manager.GetNuTexture(name)), 7);
    NuImageTextureManager copy = manager;
    EXPECT_EQ(copy.GetNuTexture(name), manager.GetNuTexture(name));
    fs::remove(folder.path / "a.png");
    EXPECT_EQ(manager.GetNuTexture(name), nullptr);
    EXPECT_EQ(NHostLiveBlocks(), 1u) << "a file that has gone is no entry's end";
}

TEST_F(ImageTextureManager, FindsFilesInTheResourcesToo) {
    write("Images/icons/b.png", 5, 1);
    EXPECT_EQ(manager.GetNuTexture("icons/b.png"), nullptr);
    ::setenv("NU_RESOURCES_PATH", folder.path.c_str(), 1);
    NuTexture* texture = manager.GetNuTexture("icons/b.png");
    EXPECT_EQ(widthOf(texture), 5);
    EXPECT_EQ(manager.GetNuTexture("icons\\b.png"), texture);
    EXPECT_EQ(manager.GetNuTexture(folder.name("Images\\icons\\b.png")), texture);
    EXPECT_EQ(widthOf(manager.GetNuTexture(write("icons/b.png", 6, 1))), 6);
    for (const char* name : {"", "icons", "none.png", "Images/icons/b.png"})
        EXPECT_EQ(manager.GetNuTexture(name), nullptr) << name;
}

TEST_F(ImageTextureManager, KeepsOneVariantOfEachNewColor) {
    NuTexture* base = manager.GetNuTexture(write("c.png", 3, 1));
    NuTexture* green = manager.CreateFromTextureWithReplacedColor(base, 0x00FF00, 0x123456);
    ASSERT_TRUE(green && green != base);
    EXPECT_EQ(manager.CreateFromTextureWithReplacedColor(base, 0x00FF00, 0x0000FF), green);
    EXPECT_EQ(manager.CreateFromTextureWithReplacedColor(base, 0xFF0000, 0x0000FF), nullptr); // all is kept
    NuTexture* blue = manager.CreateFromTextureWithReplacedColor(base, 0xFF0000, 0x123456);
    EXPECT_TRUE(blue && blue != green);
    NuTexture stranger;
    for (NuTexture* other : {green, &stranger, static_cast<NuTexture*>(nullptr)})
        EXPECT_EQ(manager.CreateFromTextureWithReplacedColor(other, 0x00FF00, 0x123456), nullptr);
}
