// The corners of a model's faces with the normals that make smooth surfaces smooth and keep edges sharp.
#pragma once

#include "viewer/scene/shownmodel.h"

namespace nruview {

/// Vertices of one position and one normal each. The corners of the faces stand in the order of forEachFace,
/// one face's behind the other.
struct ShadedVertices {
    static constexpr std::uint32_t kNone = 0xFFFFFFFF;
    std::vector<std::uint32_t> corners;        ///< vertex of each corner; kNone in faces that are not shown
    std::vector<std::uint32_t> points;         ///< the shown model's point at each vertex
    std::vector<std::array<float, 3>> normals; ///< of unit length
};

/// A corner takes the file's normal where the shown model has it. Else its normal is the mean
/// of the shown faces about its point that meet its own face at the crease angle or less, by their angles
/// there.
ShadedVertices shadeVertices(const ShownModel& shown);

} // namespace nruview
