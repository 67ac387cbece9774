// Building of the tree. The order of a finite-element mesh is used where it is good: only pieces of it are
// sorted, and a face on its own is such a piece where its neighbours in the order lie elsewhere.
#include "NRenderUtl/mesh/facetree.h"

#include <array>
#include <numeric>
#include <utility>

namespace {

constexpr int kAhead = 24; ///< entries that memory is asked for before they are due

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

/// Faces that follow each other in the surface's order, up to the first of the next piece.
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

/// One piece more stands for the end.
std::vector<Piece> makePieces(const ElementSurface& surface) {
    const std::uint32_t faces = surface.faceCount();
    std::vector<Piece> pieces;
    pieces.reserve(std::size_t{faces} + 1); // address space: memory it becomes only as far as it is used
    Cluster cluster;
    for (std::uint32_t face = 0; face < faces; ++face) {
        if (faces - face > kAhead)
            for (std::uint32_t vertex : surface.face(face + kAhead))
                __builtin_prefetch(&surface.positions[vertex]);
        const FaceBox box = boxOf(surface, face);
        if (cluster.add(box, 1))
            continue;
        pieces.push_back({cluster.box, face - cluster.faces});
        cluster = {};
        cluster.add(box, 1);
    }
    pieces.push_back({cluster.box, faces - cluster.faces});
    pieces.push_back({{}, faces});
    return pieces;
}

// --- order of the pieces -----------------------------------------------------------------------------------

constexpr int kBits = 10; ///< of each coordinate on the curve
constexpr std::uint32_t kCells = 1u << kBits;
constexpr std::size_t kManyAlike = 64;

struct Place {
    std::uint32_t code; ///< on the curve (Morton, 1966)
    std::uint32_t piece;
};

/// Puts two zeros before each of ten bits.
std::uint32_t spread(std::uint32_t bits) {
    bits = (bits | bits << 16) & 0x030000FF;
    bits = (bits | bits << 8) & 0x0300F00F;
    bits = (bits | bits << 4) & 0x030C30C3;
    return (bits | bits << 2) & 0x09249249;
}

FaceBox::Vector middleOf(const FaceBox& box) {
    FaceBox::Vector middle;
    for (int i = 0; i < 3; ++i)
        middle[i] = 0.5f * box.low[i] + 0.5f * box.high[i];
    return middle;
}

/// Sets the codes from the middles' bounds. False where all middles are one.
bool encode(std::span<const Piece> pieces, std::span<Place> places) {
    FaceBox bounds;
    for (const Place& place : places)
        bounds.add(middleOf(pieces[place.piece].box));
    double extent = 0.0;
    for (int i = 0; i < 3; ++i)
        extent = std::max(extent, double{bounds.high[i]} - bounds.low[i]);
    if (extent == 0.0)
        return false;
    const double scale = (kCells - 1) / extent;
    for (Place& place : places) {
        const FaceBox::Vector middle = middleOf(pieces[place.piece].box);
        place.code = 0;
        for (int i = 0; i < 3; ++i) {
            const double cell = (double{middle[i]} - bounds.low[i]) * scale;
            place.code |= spread(static_cast<std::uint32_t>(static_cast<int>(cell))) << i;
        }
    }
    return true;
}

/// By the codes, digit after digit; equal ones keep their order.
void radixSort(std::span<Place> places, std::span<Place> spare) {
    constexpr int kDigits = 3;
    const auto digitOf = [](const Place& place, int digit) {
        return place.code >> digit * kBits & (kCells - 1);
    };
    std::array<std::array<std::uint32_t, kCells>, kDigits> starts{};
    for (const Place& place : places)
        for (int digit = 0; digit < kDigits; ++digit)
            ++starts[digit][digitOf(place, digit)];
    std::copy(places.begin(), places.end(), spare.begin()); // an odd number of moves then ends in places
    for (int digit = 0; digit < kDigits; ++digit) {
        std::uint32_t sum = 0;
        for (std::uint32_t& start : starts[digit])
            start = std::exchange(sum, sum + start);
        for (const Place& place : spare)
            places[starts[digit][digitOf(place, digit)]++] = place;
        std::swap(places, spare);
    }
}

/// Sorts along the curve, and what shares a cell with many others along a finer curve through them.
void sortPlaces(std::span<const Piece> pieces, std::span<Place> places, std::span<Place> spare) {
    if (!encode(pieces, places))
        return;
    radixSort(places, spare);
    for (std::size_t first = 0; first + kManyAlike < places.size(); ++first) {
        std::size_t end = first + kManyAlike;
        if (places[first].code != places[end].code)
            continue;
        while (end < places.size() && places[end].code == places[first].code)
            ++end;
        sortPlaces(pieces, places.subspan(first, end - first), spare.subspan(first, end - first));
        first = end - 1;
    }
}

std::vector<Place> orderOf(std::span<const Piece> pieces) {
    std::vector<Place> places(pieces.size()), spare(pieces.size());
    for (std::uint32_t i = 0; i < places.size(); ++i)
        places[i].piece = i;
    sortPlaces(pieces, places, spare);
    return places;
}

// --- nodes -------------------------------------------------------------------------------------------------

void setBox(FaceTree::Node& node, std::size_t lane, const FaceBox& box) {
    for (int i = 0; i < 3; ++i) {
        node.low[i][lane] = box.low[i];
        node.high[i][lane] = box.high[i];
    }
}

/// Adds a box to the last node, or to a new one where that is full.
void appendBox(std::vector<FaceTree::Node>& nodes, std::size_t index, const FaceBox& box) {
    const std::size_t lane = index % FaceTree::kWidth;
    if (lane == 0) {
        nodes.emplace_back();
        for (std::size_t i = 1; i < FaceTree::kWidth; ++i)
            setBox(nodes.back(), i, {});
    }
    setBox(nodes.back(), lane, box);
}

FaceBox boundsOf(const FaceTree::Node& node) {
    FaceBox box;
    for (int i = 0; i < 3; ++i) {
        box.low[i] = *std::min_element(node.low[i], node.low[i] + FaceTree::kWidth);
        box.high[i] = *std::max_element(node.high[i], node.high[i] + FaceTree::kWidth);
    }
    return box;
}

} // namespace

void FaceTree::addLeaf(const FaceBox& box, std::uint32_t faces) {
    appendBox(m_nodes, m_leaves.size() - 1, box);
    m_leaves.push_back(m_leaves.back() + faces);
}

/// Joins neighbours on the curve where pieces are smaller than leaves may be.
void FaceTree::makeLeaves(const ElementSurface& surface) {
    const std::vector<Piece> pieces = makePieces(surface);
    const std::vector<Place> order = orderOf(std::span(pieces).first(pieces.size() - 1));
    m_faces.resize(surface.faceCount());
    auto nextFace = m_faces.begin();
    m_leaves.push_back(0);
    Cluster cluster;
    for (std::size_t i = 0; i < order.size(); ++i) {
        if (order.size() - i > kAhead)
            __builtin_prefetch(&pieces[order[i + kAhead].piece]);
        const std::uint32_t piece = order[i].piece;
        const std::uint32_t first = pieces[piece].firstFace, end = pieces[piece + 1].firstFace;
        if (!cluster.add(pieces[piece].box, end - first)) {
            addLeaf(cluster.box, cluster.faces);
            cluster = {};
            cluster.add(pieces[piece].box, end - first);
        }
        std::iota(nextFace, nextFace + (end - first), first);
        nextFace += end - first;
    }
    addLeaf(cluster.box, cluster.faces);
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
