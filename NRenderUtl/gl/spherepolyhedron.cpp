// The polyhedron that small spheres are drawn as.
#include "NRenderUtl/gl/spherepolyhedron.h"

#include <cmath>
#include <cstddef>

namespace {

constexpr float kX = 0.525731f, kZ = 0.850651f; // a golden rectangle with corners on the unit sphere

constexpr _NgFPoint3Str kCorners[12] = {{-kX, 0, kZ}, {kX, 0, kZ},  {-kX, 0, -kZ}, {kX, 0, -kZ},
                                        {0, kZ, kX},  {0, kZ, -kX}, {0, -kZ, kX},  {0, -kZ, -kX},
                                        {kZ, kX, 0},  {-kZ, kX, 0}, {kZ, -kX, 0},  {-kZ, -kX, 0}};

constexpr std::uint32_t kFaces[20][3] = {{0, 4, 1},  {0, 9, 4},  {9, 5, 4},  {4, 5, 8},  {4, 8, 1},
                                         {8, 10, 1}, {8, 3, 10}, {5, 3, 8},  {5, 2, 3},  {2, 7, 3},
                                         {7, 10, 3}, {7, 6, 10}, {7, 11, 6}, {11, 0, 6}, {0, 1, 6},
                                         {6, 1, 10}, {9, 0, 11}, {9, 11, 2}, {9, 2, 5},  {7, 2, 11}};

_NgFPoint3Str tipOver(const std::uint32_t (&face)[3]) {
    const _NgFPoint3Str &a = kCorners[face[0]], &b = kCorners[face[1]], &c = kCorners[face[2]];
    const _NgFPoint3Str sum{a.x + b.x + c.x, a.y + b.y + c.y, a.z + b.z + c.z};
    const float length = std::hypot(sum.x, sum.y, sum.z);
    return {sum.x / length, sum.y / length, sum.z / length};
}

SpherePolyhedron build() {
    SpherePolyhedron sphere;
    std::size_t vertex = 0, index = 0;
    for (const _NgFPoint3Str& corner : kCorners)
        sphere.vertices[vertex++] = corner;
    for (const auto& face : kFaces) {
        const auto tip = static_cast<std::uint32_t>(vertex);
        sphere.vertices[vertex++] = tipOver(face);
        for (int i = 0; i < 3; ++i)
            for (const std::uint32_t corner : {face[i], face[(i + 1) % 3], tip})
                sphere.indices[index++] = corner;
    }
    return sphere;
}

} // namespace

const SpherePolyhedron& nglSpherePolyhedron() {
    static const SpherePolyhedron sphere = build();
    return sphere;
}
