// The plain form of mesh picking, which the library's own must equal in every result.
#pragma once

#include <vector>

#include "NRenderUtl/mesh/nmesh.h"

namespace nrutest {

struct PickResult {
    _NgPickStatus status = NgPickNothing;
    std::vector<int> indices;
    std::vector<double> points;
    bool operator==(const PickResult&) const = default;
};

/// Tests every edge of every element in order, with nothing left out. Valid indices only.
PickResult pickPlainly(const _NgMeshStr& mesh, const _NgPoint3Str& start, const _NgPoint3Str& end,
                       const double matrix[4][4], double tolerance);

/// The library's result in the same form; elementSize is the number of vertices that a whole element reports.
PickResult pick(_NgMeshStr* mesh, _NgPoint3Str start, _NgPoint3Str end, double matrix[4][4], double tolerance,
                std::size_t elementSize = 0);

} // namespace nrutest
