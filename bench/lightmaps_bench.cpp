// Image-based lighting off-screen: building the maps from a picture of 1024 x 512 pixels with a small sun,
// with the milliseconds of each pass, and a frame of the background at 1024 x 768.
#include <benchmark/benchmark.h>

#include <epoxy/gl.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>

#include "NRenderUtl/NRenderUtl.h"
#include "bench/timing.h"
#include "tests/support/radiancewriter.h"
#include "viewer/app/offscreen.h"

namespace {

constexpr int kWidth = 1024, kHeight = 768;

/// Time of the passes by their names, from the progress that they tell.
struct Passes {
    Times last = now();
    std::map<std::string, Times> sums;

    static void add(void* context, const char* step, double fraction) {
        auto& passes = *static_cast<Passes*>(context);
        const Times time = since(passes.last);
        passes.last = now();
        if (fraction == 0.0) // what comes before is the compiler's
            step = "programs";
        passes.sums[step].wall += time.wall;
        passes.sums[step].cpu += time.cpu;
    }
};

/// The picture's file, which every build reads.
struct Sky {
    const std::filesystem::path path =
        std::filesystem::temp_directory_path() / ("lightmaps-bench-" + std::to_string(getpid()) + ".hdr");

    Sky() {
        std::ofstream(path, std::ios::binary) << nrutest::radianceFile(1024, 512, [](int x, int y) {
            const bool isSun = x > 300 && x < 308 && y > 100 && y < 108;
            return isSun ? nrutest::Radiance{2e4f, 1.8e4f, 1.5e4f}
                         : nrutest::Radiance{0.3f, 0.5f, 1.0f - static_cast<float>(y) / 512};
        });
    }
    ~Sky() { std::filesystem::remove(path); }
    bool use() const {
        return !NImageBasedLightHandler::SetHDRImage(path.wstring().c_str(),
                                                     NImageBasedLightHandler::ImageUpZ);
    }
};

void buildMaps(benchmark::State& state) {
    Passes passes;
    NImageBasedLightHandler::SetProgressFunction(Passes::add, &passes);
    double cpu = 0;
    for (auto _ : state) {
        NImageBasedLightHandler::CleanUpBuffers();
        glFinish();
        const Times start = passes.last = now();
        NImageBasedLightHandler::Initialize();
        glFinish();
        cpu += since(start).cpu;
    }
    if (!NImageBasedLightHandler::IsValid())
        state.SkipWithError("no maps");
    for (const auto& [name, time] : passes.sums) {
        state.counters[name + " ms"] = time.wall / static_cast<double>(state.iterations());
        state.counters[name + " cpu"] = time.cpu / static_cast<double>(state.iterations());
    }
    state.counters["all cpu"] = cpu / static_cast<double>(state.iterations());
    NImageBasedLightHandler::SetProgressFunction(nullptr, nullptr);
}

void drawBackground(benchmark::State& state) {
    NImageBasedLightHandler::EnableHDRBackgroundRendering(true);
    _NglInfoStr info{};
    info.modelView[0][1] = info.modelView[1][2] = info.modelView[2][0] = info.modelView[3][3] = 1.0;
    info.viewport[2] = kWidth;
    info.viewport[3] = kHeight;
    for (auto _ : state) {
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        NImageBasedLightHandler::DrawHDRBackground(&info);
        glFinish();
    }
}

} // namespace

BENCHMARK(buildMaps)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(drawBackground)->Unit(benchmark::kMillisecond)->UseRealTime();

int main(int count, char** arguments) {
    benchmark::Initialize(&count, arguments);
    nruview::OffscreenContext context;
    const std::string error = context.create(kWidth, kHeight);
    const Sky sky;
    if (!error.empty() || !sky.use()) {
        std::fprintf(stderr, "%s: %s\n", arguments[0], error.empty() ? "no sky" : error.c_str());
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    NImageBasedLightHandler::CleanUpBuffers();
    return 0;
}
