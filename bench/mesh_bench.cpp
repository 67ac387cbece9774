// Meshes of a million quads: a pick, the building of edge data with its peak memory, and colours of values.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "NRenderUtl/NRenderUtl.h"

namespace {

constexpr unsigned kSide = 1000; // quads along one side of the grid

/// Bytes that the library holds now and held at most.
struct Memory {
    std::size_t now = 0, peak = 0;
};

/// A host allocator that counts; the size stands in front of each block.
void countMemory(Memory& memory) {
    NHostServices services{};
    services.context = &memory;
    services.allocate = [](void* context, std::size_t bytes, const char*, int) -> void* {
        auto& memory = *static_cast<Memory*>(context);
        auto* block = static_cast<std::size_t*>(std::malloc(bytes + 16));
        if (!block)
            return nullptr;
        *block = bytes;
        memory.now += bytes;
        memory.peak = std::max(memory.peak, memory.now);
        return block + 2;
    };
    services.release = [](void* context, void* block) {
        std::size_t* head = static_cast<std::size_t*>(block) - 2;
        static_cast<Memory*>(context)->now -= *head;
        std::free(head);
    };
    NHostSetServices(&services);
}

/// A wavy sheet over the square 0..kSide, of quads or of twice as many triangles.
class Grid {
public:
    explicit Grid(int elementSize);
    ~Grid() {
        NglDestroyMesh(m_mesh);
        NHostFree(m_mesh);
    }
    Grid(const Grid&) = delete;
    Grid& operator=(const Grid&) = delete;
    _NgMeshStr* mesh() { return m_mesh; }

private:
    _NgMeshStr* m_mesh;
};

Grid::Grid(int elementSize) {
    constexpr unsigned row = kSide + 1;
    std::vector<double> coords;
    for (unsigned y = 0; y < row; ++y)
        for (unsigned x = 0; x < row; ++x)
            coords.insert(coords.end(), {double(x), double(y), 5 * std::sin(x * 0.05) * std::cos(y * 0.03)});
    std::vector<unsigned> indices;
    for (unsigned y = 0; y < kSide; ++y)
        for (unsigned x = 0; x < kSide; ++x) {
            const unsigned v = y * row + x;
            if (elementSize == 4)
                indices.insert(indices.end(), {v, v + 1, v + 1 + row, v + row});
            else
                indices.insert(indices.end(), {v, v + 1, v + 1 + row, v, v + 1 + row, v + row});
        }
    m_mesh = ngl_create_mesh(row * row, coords.data(), nullptr, 0, 0, 1);
    ngl_add_connect(m_mesh, static_cast<unsigned>(indices.size()) / elementSize, elementSize, indices.data(),
                    1);
}

_NgPickStatus pick(_NgMeshStr* mesh, double x, double y, double slant, double tolerance) {
    double matrix[4][4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}};
    _NgPoint3Str start = {x - slant, y + slant, 100}, end = {x + slant, y - slant, -100};
    _NgPoint3Str* points = nullptr;
    int* indices = nullptr;
    const _NgPickStatus status = NglPickMesh(mesh, &start, &end, &matrix, &points, &indices, &tolerance);
    NHostFree(points);
    NHostFree(indices);
    return status;
}

void pickBench(benchmark::State& state, int elementSize, double x, double y, double slant, double tolerance,
               bool expectHit) {
    Grid grid(elementSize);
    if ((pick(grid.mesh(), x, y, slant, tolerance) != NgPickNothing) != expectHit)
        state.SkipWithError("the ray no longer meets what it should");
    for (auto _ : state)
        benchmark::DoNotOptimize(pick(grid.mesh(), x, y, slant, tolerance));
}

void pickManyRays(benchmark::State& state) {
    Grid grid(4);
    unsigned i = 0;
    for (auto _ : state) {
        i += 389;
        benchmark::DoNotOptimize(pick(grid.mesh(), i % kSide + 0.4, i * 7 % kSide + 0.1, i % 90, 0.3));
    }
}

void processEdges(benchmark::State& state, int elementSize) {
    static Memory memory;
    countMemory(memory);
    {
        Grid grid(elementSize);
        const std::size_t before = memory.now;
        for (auto _ : state) {
            state.PauseTiming();
            NHostFree(grid.mesh()->edges);
            NHostFree(grid.mesh()->edgeFaceNormals);
            NHostFree(grid.mesh()->edgeWeights);
            grid.mesh()->edges = nullptr;
            grid.mesh()->edgeFaceNormals = grid.mesh()->edgeWeights = nullptr;
            memory.peak = memory.now;
            state.ResumeTiming();
            ngl_process_mesh_edges(grid.mesh());
        }
        state.counters["edges"] = grid.mesh()->edgeCount;
        state.counters["peakMB"] = static_cast<double>(memory.peak - before) / 1e6;
    }
    NHostSetServices(nullptr);
}

void getColor(benchmark::State& state) {
    RenderColorScale scale;
    std::vector<RenderColorScale::ColorBand> bands;
    for (int i = 0; i < 64; ++i)
        bands.push_back({i / 64.0f, (i + 1) / 64.0f, 0x30201u * i});
    scale.SetColorBands(bands);
    scale.SetSmearedMode(true);
    unsigned i = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(scale.GetColor(static_cast<float>(i++ * 2654435761u >> 8) / (1 << 24)));
    state.SetItemsProcessed(state.iterations());
}

} // namespace

BENCHMARK_CAPTURE(pickBench, quads_hit_in_the_middle, 4, 500.4, 500.1, 3.0, 0.3, true)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(pickBench, quads_miss, 4, -50.0, 500.1, 3.0, 0.3, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(pickBench, quads_tolerance_over_all, 4, 500.4, 500.1, 3.0, 2e3, true)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(pickBench, triangles_hit_in_the_middle, 3, 500.4, 500.1, 3.0, 0.3, true)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(pickManyRays)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(processEdges, quads, 4)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(processEdges, triangles, 3)->Unit(benchmark::kMillisecond);
BENCHMARK(getColor);
