// Image-based lighting: the maps of a sky with a small sun, and the sky behind the view.
#include <epoxy/gl.h>

#include <filesystem>
#include <fstream>
#include <unistd.h>

#include "bench/cases/cases.h"
#include "tests/support/radiancewriter.h"

namespace nrubench {

namespace {

using Handler = NImageBasedLightHandler;

void setSky() {
    const std::filesystem::path path =
        std::filesystem::temp_directory_path() / ("nru_bench_sky" + std::to_string(getpid()) + ".hdr");
    std::ofstream(path, std::ios::binary) << nrutest::radianceFile(kSkyWidth, kSkyHeight, skyRadiance);
    check(!Handler::SetHDRImage(path.wstring().c_str(), Handler::ImageUpZ), "no sky");
    std::atexit([] {
        std::filesystem::remove(std::filesystem::temp_directory_path() /
                                ("nru_bench_sky" + std::to_string(getpid()) + ".hdr"));
    });
}

Work buildMaps(unsigned) {
    openLibrary();
    setSky();
    return {[](unsigned) {
                Handler::Initialize();
                glFinish();
                check(Handler::IsValid(), "no maps");
            },
            false};
}

Work drawBackground(unsigned) {
    openTorusView();
    setSky();
    Handler::EnableHDRBackgroundRendering(true);
    return {[](unsigned) { Handler::DrawHDRBackground(NglGetNglInfo()); }, true, 0.99};
}

} // namespace

std::vector<Case> lightingCases() {
    return {{"ibl.build", {1}, buildMaps, "", true}, {"ibl.background", {1}, drawBackground}};
}

} // namespace nrubench
