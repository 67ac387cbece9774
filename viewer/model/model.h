// A finite-element model or a surface as read from a file: nodes, elements, result fields, and the parts of a
// surface. Checked when it is made.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace nruview {

using Point = std::array<double, 3>;

/// Element shapes; the node order of each is VTK's (https://docs.vtk.org, file formats).
enum class CellType : std::uint8_t {
    Vertex,
    PolyVertex, ///< any number of single points
    Line,
    Line3, ///< two ends, then the middle
    PolyLine,
    Triangle,
    Triangle6,
    Triangle7,
    Quad,
    Quad8,
    Quad9,
    Polygon,
    TriangleStrip,
    Pixel,
    Tetra,
    Tetra10,
    Voxel,
    Hexa,
    Hexa20,
    Hexa27,
    Wedge,
    Wedge15,
    Wedge18,
    Pyramid,
    Pyramid13,
};

enum class FieldLocation : std::uint8_t { Node, Cell };

/// A state of a solution: a time, a load case or a mode.
struct ResultStep {
    std::string label;   ///< such as "time 0.5" or "mode 3, 417.2 Hz"
    double value = 0.0;  ///< the time, the frequency
    bool isMode = false; ///< a shape without scale
};

/// One result field: components values for every node or cell, interleaved; NaN where there is none.
struct Field {
    std::string name;
    FieldLocation location = FieldLocation::Node;
    int components = 1;
    std::vector<double> values;
    std::optional<std::uint32_t> step = {}; ///< index into Model::steps; nothing: it belongs to none
};

/// Cells that a file keeps together: a body of a surface, a block or group of elements.
struct ModelPart {
    std::string name;
    std::uint32_t firstCell = 0, cellCount = 0;
    std::optional<std::uint32_t> color; ///< packed 0xAABBGGRR, opaque; nothing: the file tells none
    double opacity = 1.0;
};

/// Nodes with a name, as a rule those that are held or loaded.
struct NodeSet {
    std::string name;
    std::vector<std::uint32_t> nodes;
};

/// Nodes, cells and fields. Cell i has nodes connectivity[offsets[i]] to connectivity[offsets[i + 1] - 1].
struct Model {
    std::vector<Point> nodes;
    std::vector<CellType> types;
    std::vector<std::uint32_t> offsets{0};
    std::vector<std::uint32_t> connectivity;
    std::vector<Field> fields;
    std::vector<ResultStep> steps;
    std::vector<NodeSet> nodeSets;
    /// The file's own numbers from 0 to 2^32 - 1, each once; empty: counted from 0.
    std::vector<std::int64_t> nodeNumbers, cellNumbers;
    bool isSurface = false; ///< a body's skin, whose triangles say nothing about it
    /// Cover all cells, one behind the other; none: the model is one part.
    std::vector<ModelPart> parts;
    /// A unit normal for each entry of connectivity, zero where the file has none; empty: it has none at all.
    std::vector<std::array<float, 3>> cornerNormals;
    std::vector<std::string> notes; ///< what was skipped on reading, a line each

    std::size_t cellCount() const { return types.size(); }
    std::span<const std::uint32_t> cellNodes(std::size_t cell) const {
        return {connectivity.data() + offsets[cell], offsets[cell + 1] - offsets[cell]};
    }
    void addCell(CellType type, std::span<const std::uint32_t> cellNodes);
};

/// The part that a cell belongs to; of a model without parts one that says nothing.
ModelPart partOf(const Model& model, std::uint32_t cell);

std::string_view cellTypeName(CellType type);

/// Throws ViewerError(subject, ...) when indices, counts or coordinates are out of order: a node index out of
/// range, a wrong number of nodes, a field of wrong length, parts with gaps, NaN or infinite coordinates, no
/// nodes at all.
void checkModel(const Model& model, const std::string& subject);

/// Reads a file of any of the formats that docs/viewer.md names; throws ViewerError naming the file and the
/// reason.
Model readModel(const std::string& path);

} // namespace nruview
