// The way of a ray through a tree of faces.
#pragma once

#include <array>

#include "NRenderUtl/mesh/facetree.h"

/// Meets the leaves that a ray may touch, roughly from near to far, and leaves out none whatever is rounded.
class FaceTreeWalk {
public:
    /// In the space of the surface's positions; the direction's largest coordinate is 1 or -1. The ray begins
    /// at the origin, parameter 0.
    FaceTreeWalk(const FaceTree& tree, const std::array<double, 3>& origin,
                 const std::array<double, 3>& direction);
    /// The faces of the next leaf that may be touched at a parameter up to limit; none at the end.
    std::span<const std::uint32_t> next(double limit);

private:
    struct Stop {
        std::uint32_t index; ///< in its level
        int level;           ///< -1: a leaf
        float entry;         ///< no larger than the parameter, from m_start on, where the ray comes to it
    };
    static constexpr int kMostLevels = 16;

    void open(const Stop& stop, float limit);

    const FaceTree& m_tree;
    double m_start = 0.0; ///< parameter where the ray comes to the tree
    bool m_backward[3]{};
    float m_near[3]{}, m_far[3]{}; ///< the ray's place at m_start, moved so that boxes seem larger
    float m_inverse[3]{};          ///< of the direction
    int m_count = 0;
    Stop m_stops[(FaceTree::kWidth - 1) * kMostLevels + 1]; ///< still to be met, the nearest last
};
