// A tree of boxes over the faces of a surface.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

#include "NRenderUtl/mesh/elementsurface.h"

/// The box of some positions; at first there are none.
struct FaceBox {
    using Vector = ElementSurface::Vector;
    static constexpr float kFar = std::numeric_limits<float>::infinity();
    Vector low{kFar, kFar, kFar}, high{-kFar, -kFar, -kFar};

    void add(const FaceBox& box) {
        for (int i = 0; i < 3; ++i) {
            low[i] = std::min(low[i], box.low[i]);
            high[i] = std::max(high[i], box.high[i]);
        }
    }
    void add(const Vector& position) { add(FaceBox{position, position}); }
    /// Half of its surface.
    float area() const {
        const float x = high[0] - low[0], y = high[1] - low[1], z = high[2] - low[2];
        return x * y + y * z + z * x;
    }
};

/// At most kMostFaces that lie close together are a leaf. The leaves stand in the order of a space-filling
/// curve, and each node of a level covers the next kWidth nodes, or leaves, of the level below.
class FaceTree {
public:
    static constexpr std::uint32_t kMostFaces = 8;
    static constexpr int kWidth = 4;
    /// The boxes of what a node covers, side by side for vector code.
    struct Node {
        float low[3][kWidth], high[3][kWidth];
    };

    bool isEmpty() const { return m_faces.empty(); }
    /// Throws std::bad_alloc, and is empty then.
    void build(const ElementSurface& surface);

    /// The top level is the last and has one node.
    int levels() const { return static_cast<int>(m_levels.size()); }
    const Node& node(int level, std::uint32_t index) const { return m_nodes[m_levels[level] + index]; }
    std::span<const std::uint32_t> leaf(std::uint32_t index) const {
        return std::span(m_faces).subspan(m_leaves[index], m_leaves[index + 1] - m_leaves[index]);
    }
    const FaceBox& bounds() const { return m_bounds; }

private:
    void makeLeaves(const ElementSurface& surface);
    void makeLevels();

    std::vector<std::uint32_t> m_faces;  ///< of each leaf in turn
    std::vector<std::uint32_t> m_leaves; ///< where the faces of each leaf begin; one more for their end
    std::vector<Node> m_nodes;           ///< level after level, from the leaves up
    std::vector<std::uint32_t> m_levels; ///< first node of each level
    FaceBox m_bounds;
};
