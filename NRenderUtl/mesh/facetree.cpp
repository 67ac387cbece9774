// Building of the tree. The order of a finite-element mesh is used where it is good: then only pieces of it
// are sorted, which takes a third of the time that sorting faces does.
#include "NRenderUtl/mesh/facetree.h"

#include <numeric>
#include <utility>

#include "NRenderUtl/mesh/curveorder.h"

namespace {

using Node = FaceTree::Node;

constexpr std::size_t kAhead = 12; ///< entries that memory is asked for before they are due
constexpr std::uint32_t kFewPieces = 500;

// --- leaves ------------------------------------------------------------------------------------------------

/// Faces that are collected as long as their common box is not much larger than theirs together.
struct Cluster {
    static constexpr float kWaste = 2.0f;
    FaceBox box;
    float areas = 0.0f; ///< of the boxes that were collected
    std::uint32_t faces = 0;

    /// False, with nothing changed, where what is added would be better off elsewhere.
    bool add(const FaceBox& more, std::uint32_t moreFaces) {
        FaceBox joined = box;
        joined.add(more);
        const float area = more.area();
        if (faces > 0 &&
            (faces + moreFaces > FaceTree::kMostFaces || !(joined.area() <= kWaste * (areas + area))))
            return false;
        *this = {joined, areas + area, faces + moreFaces};
        return true;
    }
};

void setBox(Node& node, std::size_t lane, const FaceBox& box) {
    for (int i = 0; i < 3; ++i) {
        node.low[i][lane] = box.low[i];
        node.high[i][lane] = box.high[i];
    }
}

/// Adds a box to the last node, or to a new one where that is full.
void appendBox(std::vector<Node>& nodes, std::size_t index, const FaceBox& box) {
    const std::size_t lane = index % FaceTree::kWidth;
    if (lane == 0) {
        nodes.emplace_back();
        for (std::size_t i = 1; i < FaceTree::kWidth; ++i)
            setBox(nodes.back(), i, {});
    }
    setBox(nodes.back(), lane, box);
}

/// Makes leaves of faces that come in the order of the curve.
struct LeafMaker {
    std::vector<std::uint32_t> faces, leaves{0}; ///< as in the tree
    std::vector<Node> nodes;
    Cluster cluster;
    std::size_t count = 0; ///< of the faces so far

    /// Faces that follow each other, in their box.
    void add(const FaceBox& box, std::uint32_t first, std::uint32_t end) {
        if (!cluster.add(box, end - first)) {
            close();
            cluster.add(box, end - first);
        }
        std::iota(faces.begin() + count, faces.begin() + count + (end - first), first);
        count += end - first;
    }
    void close() {
        appendBox(nodes, leaves.size() - 1, cluster.box);
        leaves.push_back(leaves.back() + cluster.faces);
        cluster = {};
    }
};

// --- faces in their order ----------------------------------------------------------------------------------

/// Faces that follow each other, up to the first of the next piece.
struct Piece {
    FaceBox box;
    std::uint32_t firstFace;
};

FaceBox boxOf(const ElementSurface& surface, std::uint32_t face) {
    FaceBox box;
    for (std::uint32_t vertex : surface.face(face))
        box.add(surface.positions[vertex]);
    return box;
}

/// One piece more stands for the end. None at all where the order is of little use.
std::vector<Piece> makePieces(const ElementSurface& surface) {
    const std::uint32_t faces = surface.faceCount();
    std::vector<Piece> pieces;
    pieces.reserve(std::size_t{faces} + 1); // address space: memory it becomes only as far as it is used
    Cluster cluster;
    for (std::uint32_t face = 0; face < faces; ++face) {
        const FaceBox box = boxOf(surface, face);
        if (cluster.add(box, 1))
            continue;
        pieces.push_back({cluster.box, face - cluster.faces});
        if (pieces.size() > std::max(kFewPieces, face / 2))
            return {};
        cluster = {};
        cluster.add(box, 1);
    }
    pieces.push_back({cluster.box, faces - cluster.faces});
    pieces.push_back({{}, faces});
    return pieces;
}

void addPieces(const std::vector<Piece>& pieces, LeafMaker& maker) {
    std::vector<FaceBox::Vector> middles(pieces.size() - 1);
    for (std::size_t i = 0; i < middles.size(); ++i)
        for (int axis = 0; axis < 3; ++axis)
            middles[i][axis] = 0.5f * pieces[i].box.low[axis] + 0.5f * pieces[i].box.high[axis];
    for (const CurvePlace& place : curveOrder(middles)) {
        const Piece* piece = &pieces[place.item];
        maker.add(piece->box, piece->firstFace, piece[1].firstFace);
    }
}

/// Where the order is of little use, memory is what costs time: each face is placed by its first corner
/// alone.
void addFaces(const ElementSurface& surface, LeafMaker& maker) {
    std::vector<FaceBox::Vector> corners(surface.faceCount());
    for (std::uint32_t face = 0; face < corners.size(); ++face) {
        if (corners.size() - face > kAhead)
            __builtin_prefetch(&surface.positions[surface.face(face + kAhead)[0]]);
        corners[face] = surface.positions[surface.face(face)[0]];
    }
    const std::vector<CurvePlace> order = curveOrder(corners);
    for (std::size_t i = 0; i < order.size(); ++i) {
        if (order.size() - i > 2 * kAhead)
            __builtin_prefetch(surface.face(order[i + 2 * kAhead].item).data());
        if (order.size() - i > kAhead)
            for (std::uint32_t vertex : surface.face(order[i + kAhead].item))
                __builtin_prefetch(&surface.positions[vertex]);
        maker.add(boxOf(surface, order[i].item), order[i].item, order[i].item + 1);
    }
}

FaceBox boundsOf(const Node& node) {
    FaceBox box;
    for (int i = 0; i < 3; ++i) {
        box.low[i] = *std::min_element(node.low[i], node.low[i] + FaceTree::kWidth);
        box.high[i] = *std::max_element(node.high[i], node.high[i] + FaceTree::kWidth);
    }
    return box;
}

} // namespace

void FaceTree::makeLeaves(const ElementSurface& surface) {
    LeafMaker maker;
    maker.faces.resize(surface.faceCount());
    if (const std::vector<Piece> pieces = makePieces(surface); !pieces.empty())
        addPieces(pieces, maker);
    else
        addFaces(surface, maker);
    maker.close();
    m_faces = std::move(maker.faces);
    m_leaves = std::move(maker.leaves);
    m_nodes = std::move(maker.nodes);
}

void FaceTree::makeLevels() {
    std::size_t first = 0;
    m_levels.push_back(0);
    for (std::size_t end = m_nodes.size(); end - first > 1; end = m_nodes.size()) {
        m_levels.push_back(static_cast<std::uint32_t>(end));
        for (std::size_t i = 0; first + i < end; ++i)
            appendBox(m_nodes, i, boundsOf(m_nodes[first + i]));
        first = end;
    }
    m_bounds = boundsOf(m_nodes.back());
}

void FaceTree::build(const ElementSurface& surface) {
    FaceTree tree;
    if (surface.faceCount() > 0) {
        tree.makeLeaves(surface);
        tree.makeLevels();
    }
    *this = std::move(tree);
}
