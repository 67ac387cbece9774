// The tables are made once, from the faces of the linear types and from where the nodes stand.
#include "viewer/section/subcells.h"

#include <algorithm>

namespace nruview {

namespace {

using Places = std::vector<std::uint8_t>;

/// Whether all corners lie on one face of the element; its centre follows the nodes that the type has.
bool liesOnFace(const SubFace& sub, std::span<const FaceShape> faces,
                const std::vector<Places>& faceCentres) {
    for (std::size_t f = 0; f < faces.size(); ++f) {
        const auto isOn = [&](std::uint8_t corner) {
            const auto* end = faces[f].nodes.begin() + faces[f].count;
            return std::find(faces[f].nodes.begin(), end, corner) != end ||
                   std::find(faceCentres[f].begin(), faceCentres[f].end(), corner) != faceCentres[f].end();
        };
        if (std::all_of(sub.corners.begin(), sub.corners.begin() + sub.count, isOn))
            return true;
    }
    return false;
}

class SubCellsBuilder {
public:
    explicit SubCellsBuilder(CellType type) : m_shape(cellShape(type)), m_faceCentres(m_shape.faces.size()) {}

    /// The middle of each eight-node quad, by its serendipity shape functions.
    void addFaceCentres() {
        for (std::size_t f = 0; f < m_shape.faces.size(); ++f) {
            const FaceShape& face = m_shape.faces[f];
            if (face.count != 8)
                continue;
            m_faceCentres[f].push_back(nextCentre());
            addCentre({face.nodes.begin(), face.nodes.begin() + 8}, 4, -0.25, 0.5);
        }
    }
    /// The middle of a hexahedron of 20 nodes.
    void addBodyCentre() {
        Places all(20);
        for (std::uint8_t i = 0; i < 20; ++i)
            all[i] = i;
        addCentre(all, 8, -0.25, 0.25);
    }
    void add(CellType linear, const Places& corners) {
        std::vector<SubFace> faces;
        for (const FaceShape& shape : cellShape(linear).faces) {
            SubFace face;
            face.count = shape.corners;
            for (std::size_t i = 0; i < shape.corners; ++i)
                face.corners[i] = corners[shape.nodes[i]];
            face.isOuter = liesOnFace(face, m_shape.faces, m_faceCentres);
            faces.push_back(face);
        }
        m_made.cells.push_back(std::move(faces));
    }
    SubCells finish() { return std::move(m_made); }

private:
    std::uint8_t nextCentre() const {
        return static_cast<std::uint8_t>(static_cast<std::size_t>(m_shape.nodes) + m_made.centres.size());
    }
    void addCentre(const Places& nodes, std::size_t corners, double ofCorner, double ofMidSide) {
        SubCentre centre;
        centre.count = static_cast<std::uint8_t>(nodes.size());
        for (std::size_t i = 0; i < nodes.size(); ++i) {
            centre.nodes[i] = nodes[i];
            centre.weights[i] = i < corners ? ofCorner : ofMidSide;
        }
        m_made.centres.push_back(centre);
    }

    const CellShape& m_shape;
    std::vector<Places> m_faceCentres; ///< made ones
    SubCells m_made;
};

void splitTetra(SubCellsBuilder& builder) {
    for (const Places& corner : {Places{0, 4, 6, 7}, {4, 1, 5, 8}, {6, 5, 2, 9}, {7, 8, 9, 3}})
        builder.add(CellType::Tetra, corner);
    // The octahedron between them has the mid-sides 5 to 8 about its middle.
    builder.add(CellType::Pyramid, {5, 6, 7, 8, 4});
    builder.add(CellType::Pyramid, {8, 7, 6, 5, 9});
}

/// Into eight, about the places of a hexahedron of 27 nodes.
void splitHexa(SubCellsBuilder& builder) {
    constexpr std::uint8_t kGrid[3][3][3] = {{{0, 8, 1}, {11, 24, 9}, {3, 10, 2}},
                                             {{16, 22, 17}, {20, 26, 21}, {19, 23, 18}},
                                             {{4, 12, 5}, {15, 25, 13}, {7, 14, 6}}};
    for (int k : {0, 1})
        for (int j : {0, 1})
            for (int i : {0, 1})
                builder.add(CellType::Hexa, {kGrid[k][j][i], kGrid[k][j][i + 1], kGrid[k][j + 1][i + 1],
                                             kGrid[k][j + 1][i], kGrid[k + 1][j][i], kGrid[k + 1][j][i + 1],
                                             kGrid[k + 1][j + 1][i + 1], kGrid[k + 1][j + 1][i]});
}

/// Two layers of four, about the places of a wedge of 18 nodes.
void splitWedge(SubCellsBuilder& builder) {
    // Corners, then the mid-sides between them.
    constexpr std::uint8_t kLayers[3][6] = {
        {0, 1, 2, 6, 7, 8}, {12, 13, 14, 15, 16, 17}, {3, 4, 5, 9, 10, 11}};
    constexpr std::uint8_t kTriangles[4][3] = {{0, 3, 5}, {3, 1, 4}, {5, 4, 2}, {3, 4, 5}};
    for (int layer : {0, 1})
        for (const auto& [a, b, c] : kTriangles) {
            const auto &low = kLayers[layer], &high = kLayers[layer + 1];
            builder.add(CellType::Wedge, {low[a], low[b], low[c], high[a], high[b], high[c]});
        }
}

void splitPyramid(SubCellsBuilder& builder) {
    for (const Places& pyramid : {Places{0, 5, 13, 8, 9},
                                  {5, 1, 6, 13, 10},
                                  {13, 6, 2, 7, 11},
                                  {8, 13, 7, 3, 12},
                                  {9, 10, 11, 12, 4},
                                  {12, 11, 10, 9, 13}})
        builder.add(CellType::Pyramid, pyramid);
    for (const Places& tetra : {Places{5, 13, 9, 10}, {6, 13, 10, 11}, {7, 13, 11, 12}, {8, 13, 12, 9}})
        builder.add(CellType::Tetra, tetra);
}

void keepWhole(SubCellsBuilder& builder, CellType type) {
    Places all(static_cast<std::size_t>(cellShape(type).nodes));
    for (std::size_t i = 0; i < all.size(); ++i)
        all[i] = static_cast<std::uint8_t>(i);
    builder.add(type, all);
}

SubCells makeSubCells(CellType type) {
    SubCellsBuilder builder(type);
    builder.addFaceCentres();
    switch (type) {
    case CellType::Hexa20:
        builder.addBodyCentre();
        [[fallthrough]];
    case CellType::Hexa27:
        splitHexa(builder);
        break;
    case CellType::Wedge15:
    case CellType::Wedge18:
        splitWedge(builder);
        break;
    case CellType::Tetra10:
        splitTetra(builder);
        break;
    case CellType::Pyramid13:
        splitPyramid(builder);
        break;
    default:
        keepWhole(builder, type);
    }
    return builder.finish();
}

} // namespace

const SubCells& subCellsOf(CellType type) {
    static const std::vector<SubCells> all = [] {
        std::vector<SubCells> made;
        for (int i = 0; i <= static_cast<int>(CellType::Pyramid13); ++i) {
            const auto each = static_cast<CellType>(i);
            made.push_back(cellShape(each).dimension == 3 ? makeSubCells(each) : SubCells{});
        }
        return made;
    }();
    return all[static_cast<std::size_t>(type)];
}

} // namespace nruview
