// Picking on element meshes of a million quads: preparing, in the first pick, and picks.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <random>
#include <vector>

#include "NRenderUtl/NRenderUtl.h"

namespace {

constexpr unsigned kSide = 1000; // quads along one side of the sheet
constexpr unsigned kRow = kSide + 1;
constexpr int kRays = 1 << 12;

enum Order { Rows, Shuffled };

/// A wavy sheet over the square 0..kSide.
struct Sheet {
    std::vector<double> nodes;
    std::vector<std::array<unsigned, 4>> quads;
};

Sheet makeSheet(Order order) {
    Sheet sheet;
    for (unsigned y = 0; y < kRow; ++y)
        for (unsigned x = 0; x < kRow; ++x)
            sheet.nodes.insert(sheet.nodes.end(),
                               {double(x), double(y), 5 * std::sin(x * 0.05) * std::cos(y * 0.03)});
    for (unsigned v = 0; v < kSide * kRow; ++v)
        if (v % kRow < kSide)
            sheet.quads.push_back({v, v + 1, v + 1 + kRow, v + kRow});
    if (order == Shuffled)
        std::shuffle(sheet.quads.begin(), sheet.quads.end(), std::mt19937(1));
    return sheet;
}

void create(ngl::NglElementMesh& mesh, const Sheet& sheet) {
    ngl::NglElementMeshInput input;
    input.nodeCount = static_cast<unsigned>(sheet.nodes.size() / 3);
    input.nodes = sheet.nodes.data();
    input.quadCount = static_cast<unsigned>(sheet.quads.size());
    input.quads = sheet.quads.data()->data();
    mesh.Create(input);
}

/// From above through places of the sheet, or beside it; slanted up to so many lengths to both sides.
std::vector<std::array<_NgPoint3Str, 2>> makeRays(double slant, bool beside) {
    std::mt19937 random(3);
    std::uniform_real_distribution<double> place(beside ? kSide : 0, beside ? 2 * kSide : kSide),
        side(-slant, slant);
    std::vector<std::array<_NgPoint3Str, 2>> rays(kRays);
    for (auto& [start, end] : rays) {
        const double x = place(random), y = place(random), dx = side(random), dy = side(random);
        start = {x + dx, y + dy, 100};
        end = {x - dx, y - dy, -100};
    }
    return rays;
}

void prepare(benchmark::State& state, Order order) {
    const Sheet sheet = makeSheet(order);
    const _NgPoint3Str start = {500.4, 500.1, 100}, end = {500.4, 500.1, -100};
    for (auto _ : state) {
        state.PauseTiming();
        ngl::NglElementMesh mesh;
        create(mesh, sheet);
        ngl::NglElementPick picked;
        state.ResumeTiming();
        if (!mesh.Pick(&start, &end, &picked))
            state.SkipWithError("the ray no longer meets the sheet");
        state.PauseTiming();
        mesh.Clear();
        state.ResumeTiming();
    }
}

/// Picks through other rays in turn, of elements of which one in `shown` is not hidden.
void pick(benchmark::State& state, Order order, double slant, bool beside, unsigned shown) {
    ngl::NglElementMesh mesh;
    create(mesh, makeSheet(order));
    std::vector<unsigned> hidden;
    std::mt19937 random(9);
    for (unsigned element = 0; element < mesh.ElementCount(); ++element)
        if (random() % shown != 0)
            hidden.push_back(element);
    mesh.SetVisible(ngl::NglElements::List(hidden.data(), static_cast<unsigned>(hidden.size())), false);
    const auto rays = makeRays(slant, beside);
    ngl::NglElementPick picked;
    mesh.Pick(&rays[0][0], &rays[0][1], &picked);
    std::size_t next = 0, hits = 0;
    for (auto _ : state) {
        const auto& [start, end] = rays[next++ % kRays];
        hits += mesh.Pick(&start, &end, &picked);
    }
    state.counters["hits"] =
        benchmark::Counter(static_cast<double>(hits), benchmark::Counter::kAvgIterations);
}

} // namespace

BENCHMARK_CAPTURE(prepare, in_rows, Rows)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(prepare, shuffled, Shuffled)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(pick, steep, Rows, 30, false, 1)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(pick, grazing, Rows, 2000, false, 1)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(pick, shuffled, Shuffled, 30, false, 1)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(pick, miss, Rows, 30, true, 1)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(pick, nine_of_ten_hidden, Rows, 30, false, 10)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(pick, grazing_nine_of_ten_hidden, Rows, 2000, false, 10)->Unit(benchmark::kMicrosecond);
