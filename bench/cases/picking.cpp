// Picks of elements: through pixels, along rays, the first one, and from a library mesh.
#include <memory>

#include "bench/cases/cases.h"

namespace nrubench {

namespace {

using ngl::NglElementMesh;
using ngl::NglElementPick;

struct Model {
    explicit Model(unsigned size) : sheet(size) {
        openSheetView();
        check(mesh.Create(inputOf(sheet)) == 0, "no mesh");
    }
    Sheet sheet;
    NglElementMesh mesh;
};

_NgPoint3Str pointOf(const std::array<double, 3>& p) {
    return {p[0], p[1], p[2]};
}

/// Along other rays in turn; with `hidden`, nine of ten elements are not met.
std::function<Work(unsigned)> alongRays(bool hidden) {
    return [=](unsigned size) {
        const auto model = std::make_shared<Model>(size);
        for (std::uint32_t i = 0; hidden && i < model->sheet.elementCount(); ++i)
            if (i * 2654435761u >> 8 & 0xF)
                model->mesh.SetVisible(ngl::NglElements::One(i), false);
        return Work{[=, rays = sheetRays(kPerTurn)](unsigned) {
                        unsigned hits = 0;
                        NglElementPick picked;
                        for (const auto& [from, to] : rays) {
                            const _NgPoint3Str start = pointOf(from), end = pointOf(to);
                            hits += model->mesh.Pick(&start, &end, &picked);
                        }
                        check(hidden ? hits > 0 : hits == kPerTurn, "the rays no longer meet the sheet");
                    },
                    false};
    };
}

Work throughPixels(unsigned size) {
    const auto model = std::make_shared<Model>(size);
    return {[=](unsigned) {
                unsigned hits = 0;
                NglElementPick picked;
                for (unsigned i = 0; i < kPerTurn; ++i)
                    hits += model->mesh.PickPixel(static_cast<int>(100 + i * 389 % 800),
                                                  static_cast<int>(100 + i * 211 % 500), &picked);
                check(hits == kPerTurn, "the pixels no longer show the sheet");
            },
            false};
}

/// Prepares the tree over the faces.
Work firstPick(unsigned size) {
    return {[model = std::make_shared<Model>(size)](unsigned) {
                const _NgPoint3Str start = {0.01, 0.02, 1}, end = {0.01, 0.02, -1};
                NglElementPick picked;
                check(model->mesh.Pick(&start, &end, &picked), "the ray no longer meets the sheet");
            },
            false, 0};
}

// --- library meshes ----------------------------------------------------------------------------------------

_NgMeshStr* makeLibraryMesh(unsigned size) {
    Sheet sheet(size);
    _NgMeshStr* mesh = ngl_create_mesh(sheet.nodeCount(), sheet.nodes.data(), nullptr, 0, 0, 1);
    ngl_add_connect(mesh, sheet.elementCount(), 3, sheet.triangles.data(), 1);
    return mesh;
}

Work fromLibraryMesh(unsigned size) {
    return {[mesh = makeLibraryMesh(size)](unsigned turn) {
                double matrix[4][4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}};
                const double x = 0.01 * (turn % 50), y = 0.013 * (turn % 40);
                _NgPoint3Str start = {x - 0.01, y, 1}, end = {x + 0.01, y, -1};
                _NgPoint3Str* points = nullptr;
                int* indices = nullptr;
                double tolerance = 0.001;
                check(NglPickMesh(mesh, &start, &end, &matrix, &points, &indices, &tolerance) !=
                          NgPickNothing,
                      "the ray no longer meets the sheet");
                NHostFree(points);
                NHostFree(indices);
            },
            false};
}

Work findEdges(unsigned size) {
    return {[mesh = makeLibraryMesh(size)](unsigned) {
                ngl_process_mesh_edges(mesh);
                check(mesh->edgeCount > 0, "no edges");
            },
            false};
}

} // namespace

std::vector<Case> pickCases() {
    const std::vector<unsigned> all = {1000, 10000, 100000, 1000000}, million = {1000000};
    return {{"pick.pixels", all, throughPixels},
            {"pick.rays", all, alongRays(false)},
            {"pick.rays_mostly_hidden", million, alongRays(true)},
            {"pick.first", all, firstPick, "", true},
            {"pick.library_mesh", million, fromLibraryMesh},
            {"edges.library_mesh", {100000, 1000000}, findEdges}};
}

} // namespace nrubench
