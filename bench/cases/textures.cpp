// Pictures of 24 x 24 pixels on top of the view, and what the manager takes to answer for an unchanged file.
#include <epoxy/gl.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <unistd.h>

#include "bench/cases/cases.h"

namespace nrubench {

namespace {

using Textures = std::vector<NuTexture>;

std::shared_ptr<Textures> makeTextures() {
    auto textures = std::make_shared<Textures>(kPictureKinds);
    for (int kind = 0; kind < kPictureKinds; ++kind)
        check(!(*textures)[static_cast<std::size_t>(kind)].CreateFromPixelData(
                  kPictureSize, kPictureSize, reinterpret_cast<unsigned char*>(picturePixels(kind).data()),
                  GL_RGBA),
              "no texture");
    return textures;
}

std::function<Work(unsigned)> pictures(bool circles, const NuTexture::RenderInfo& info) {
    return [=](unsigned size) {
        openPixelView();
        return Work{[=, textures = makeTextures()](unsigned) {
                        for (unsigned i = 0; i < size; ++i) {
                            const auto [x, y] = picturePlace(static_cast<int>(i));
                            NuTexture& texture = (*textures)[i % kPictureKinds];
                            if (circles)
                                texture.RenderAsCircle(x, y, 0, info);
                            else
                                texture.RenderAsRectangle(x, y, 0, 0, info);
                        }
                    },
                    true, 0.3};
    };
}

/// A folder with one picture of one grey pixel, among the resources.
std::filesystem::path makeResources() {
    const std::filesystem::path folder =
        std::filesystem::temp_directory_path() / ("nru_bench" + std::to_string(getpid()));
    static constexpr char kPng[] = "\x89PNG\r\n\x1A\n\0\0\0\rIHDR\0\0\0\1\0\0\0\1\x08\0\0\0\0\x3A\x7E\x9B"
                                   "\x55\0\0\0\nIDAT\x78\x9C\x63\x68"
                                   "\0\0\0\x82\0\x81\x77\xCD\x72\xB6\0\0\0\0IEND\xAE\x42\x60\x82";
    std::filesystem::create_directories(folder / "Images");
    std::ofstream(folder / "Images/grey.png", std::ios::binary).write(kPng, sizeof kPng - 1);
    setenv("NU_RESOURCES_PATH", folder.c_str(), 1);
    return folder;
}

struct Resources {
    Resources() : folder(makeResources()) {}
    ~Resources() { std::filesystem::remove_all(folder); }
    Resources(const Resources&) = delete;
    Resources& operator=(const Resources&) = delete;

    const std::filesystem::path folder;
};

Work lookUp(unsigned size) {
    return {[=, resources = std::make_shared<Resources>()](unsigned) {
                const GuStringFileName name("grey.png");
                for (unsigned i = 0; i < size; ++i)
                    check(NuImageTextureManager::GetInstance()->GetNuTexture(name) != nullptr, "no picture");
            },
            false};
}

} // namespace

std::vector<Case> textureCases() {
    const NuTexture::RenderInfo plain{}, both{1, 6, 1, 3, {255, 255, 0}};
    return {{"textures.rectangles", kTurns, pictures(false, plain)},
            {"textures.rounded", {kPerTurn}, pictures(false, both)},
            {"textures.circles", {kPerTurn}, pictures(true, plain)},
            {"textures.bordered_circles", {kPerTurn}, pictures(true, both)},
            {"textures.look_up", {kPerTurn}, lookUp}};
}

} // namespace nrubench
