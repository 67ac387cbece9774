// The cache of image textures over files that change, break and go.
#include <gtest/gtest.h>

#include <cstdlib>

#include "NRenderUtl/NRenderUtl.h"
#include "tests/host/testfiles.h"
#include "tests/support/pngwriter.h"

using namespace nrutest;
namespace fs = std::filesystem;

namespace {

/// A picture of a width, and the date that its file is to have.
struct Version {
    int width; ///< 0: no picture
    int seconds;
};

struct ImageTextureManager : testing::Test {
    NuImageTextureManager& manager = *NuImageTextureManager::GetInstance();
    TestFolder folder;

    GuStringFileName write(const char* file, const Version& version) {
        const auto width = static_cast<unsigned>(version.width);
        fs::create_directories((folder.path / file).parent_path());
        const GuStringFileName name =
            folder.write(file, width ? pngOf(width, 1, std::vector(width, 0xFF0000FFu)) : "no");
        fs::last_write_time(folder.path / file, fs::file_time_type(std::chrono::seconds(version.seconds)));
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
    const GuStringFileName name = write("a.png", {1, 10});
    NuTexture* first = manager.GetNuTexture(name);
    NuTexture* variant = manager.CreateFromTextureWithReplacedColor(first, 1, 2);
    const std::tuple<const char*, Version, int> rows[] = {
        {"other content of the same date is not looked at", {2, 10}, 1},
        {"a later date", {3, 20}, 3},
        {"other content of that date", {5, 20}, 3},
        {"an earlier date", {4, 5}, 4},
    };
    for (const auto& [what, version, width] : rows) {
        write("a.png", version);
        EXPECT_EQ(manager.GetNuTexture(name), first) << what;
        EXPECT_EQ(widthOf(first), width) << what;
    }
    EXPECT_EQ(manager.CreateFromTextureWithReplacedColor(first, 1, 9), variant);
    EXPECT_EQ(widthOf(variant), 1) << "variants keep the picture that they were made of";
    EXPECT_EQ(NHostLiveBlocks(), 2u);
    write("a.png", {0, 30});
    EXPECT_EQ(manager.GetNuTexture(name), nullptr);
    EXPECT_EQ(NHostLiveBlocks(), 0u) << "the entry stays";
    write("a.png", {7, 5}); // the date of the entry that was
    EXPECT_EQ(widthOf(manager.GetNuTexture(name)), 7);
    NuImageTextureManager copy = manager;
    EXPECT_EQ(copy.GetNuTexture(name), manager.GetNuTexture(name));
    fs::remove(folder.path / "a.png");
    EXPECT_EQ(manager.GetNuTexture(name), nullptr);
    EXPECT_EQ(NHostLiveBlocks(), 1u) << "a file that has gone is no entry's end";
}

TEST_F(ImageTextureManager, FindsFilesInTheResourcesToo) {
    write("Images/icons/b.png", {5, 1});
    EXPECT_EQ(manager.GetNuTexture("icons/b.png"), nullptr);
    ::setenv("NU_RESOURCES_PATH", folder.path.c_str(), 1);
    NuTexture* texture = manager.GetNuTexture("icons/b.png");
    EXPECT_EQ(widthOf(texture), 5);
    EXPECT_EQ(manager.GetNuTexture("icons\\b.png"), texture);
    EXPECT_EQ(manager.GetNuTexture(folder.name("Images\\icons\\b.png")), texture);
    EXPECT_EQ(widthOf(manager.GetNuTexture(write("icons/b.png", {6, 1}))), 6);
    for (const char* name : {"", "icons", "none.png", "Images/icons/b.png"})
        EXPECT_EQ(manager.GetNuTexture(name), nullptr) << name;
}

TEST_F(ImageTextureManager, KeepsOneVariantOfEachNewColor) {
    NuTexture* base = manager.GetNuTexture(write("c.png", {3, 1}));
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
