#include "tests/mesh/pickoracle.h"

#include "NRenderUtl/host/hostmath.h"
#include "NRenderUtl/host/nhost.h"

namespace nrutest {

namespace {

_NgPoint3Str pointOf(const _NgMeshStr& mesh, std::uint32_t index) {
    return {mesh.coords[index * 3], mesh.coords[index * 3 + 1], mesh.coords[index * 3 + 2]};
}

PickResult report(const _NgMeshStr& mesh, _NgPickStatus status, const std::vector<std::uint32_t>& vertices) {
    PickResult result{status, {}, {}};
    for (std::uint32_t v : vertices) {
        result.indices.push_back(static_cast<int>(v));
        result.points.insert(result.points.end(), mesh.coords + v * 3, mesh.coords + v * 3 + 3);
    }
    return result;
}

} // namespace

PickResult pickPlainly(const _NgMeshStr& mesh, const _NgPoint3Str& start, const _NgPoint3Str& end,
                       const double matrix[4][4], double tolerance) {
    double best = 1e30;
    _NgPickStatus status = NgPickNothing;
    const _NgConnectStr* bestBlock = nullptr;
    std::size_t bestFlat = 0;
    std::uint32_t picked = 0, otherEnd = 0;
    for (const _NgConnectStr* block = mesh.blocks; block; block = block->next) {
        const int n = block->verticesPerElement < 10 ? block->verticesPerElement : 10;
        for (std::uint32_t e = 0; e < block->elementCount; ++e) {
            const std::uint32_t* element = block->indices + e * block->verticesPerElement;
            int edgeHits = 0, pickedAt = 0;
            for (int i = 0; i < n; ++i) {
                _NgPoint3Str a, b;
                NglTransform33p(pointOf(mesh, element[i]), matrix, a);
                NglTransform33p(pointOf(mesh, element[(i + 1) % n]), matrix, b);
                const NgSegmentNearest near = MathNearestPointOnSegmentFromLine(a, b, start, end);
                if (!(near.distance <= tolerance) || !(near.distance < best))
                    continue;
                best = near.distance;
                bestBlock = block;
                bestFlat = e * block->verticesPerElement + i;
                bool atStart = near.spot == NgSegmentSpot::Start;
                status = NgPickVertex;
                if (near.spot == NgSegmentSpot::Inside) {
                    status = NgPickEdge;
                    atStart = near.t < 0.5;
                    ++edgeHits;
                }
                pickedAt = atStart ? i : (i + 1) % n;
                picked = element[pickedAt];
                otherEnd = element[atStart ? (i + 1) % n : i];
            }
            if (edgeHits == n) {
                std::vector<std::uint32_t> all;
                for (int i = 0; i < n; ++i)
                    all.push_back(element[(pickedAt + i) % n]);
                return report(mesh, NgPickElement, all);
            }
        }
    }
    if (status == NgPickVertex)
        return report(mesh, status, {picked});
    if (status == NgPickNothing)
        return {};
    const std::size_t entries = std::size_t{bestBlock->elementCount} * bestBlock->verticesPerElement;
    const std::size_t neighbour = picked == bestBlock->indices[bestFlat] ? bestFlat + 1 : bestFlat - 1;
    return report(mesh, status, {picked, neighbour < entries ? bestBlock->indices[neighbour] : otherEnd});
}

PickResult pick(_NgMeshStr* mesh, _NgPoint3Str start, _NgPoint3Str end, double matrix[4][4], double tolerance,
                std::size_t elementSize) {
    _NgPoint3Str* points = nullptr;
    int* indices = nullptr;
    PickResult result;
    result.status = NglPickMesh(mesh, &start, &end, reinterpret_cast<double(*)[4][4]>(matrix), &points,
                                &indices, &tolerance);
    const std::size_t counts[] = {elementSize, 2, 1, 0};
    const std::size_t count = counts[result.status];
    for (std::size_t i = 0; i < count; ++i) {
        result.indices.push_back(indices[i]);
        result.points.insert(result.points.end(), {points[i].x, points[i].y, points[i].z});
    }
    NHostFree(points);
    NHostFree(indices);
    return result;
}

} // namespace nrutest
