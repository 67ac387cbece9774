// A Gmsh file as it stands there, before it becomes a model.
#pragma once

#include <map>
#include <string>
#include <utility>

#include "viewer/readers/gmshcursor.h"
#include "viewer/readers/gmshtypes.h"
#include "viewer/readers/numberindex.h"

namespace nruview::readers {

constexpr std::size_t kMostGmshGroups = 64; ///< that are kept of one element

/// A physical group: its dimension and number.
using GmshGroup = std::pair<int, std::int64_t>;

/// Elements of types that the viewer draws; element i has nodes offsets[i] to offsets[i + 1] - 1, in Gmsh's
/// order.
struct GmshElements {
    std::vector<std::int64_t> numbers;
    std::vector<const GmshType*> types;
    std::vector<std::uint32_t> groupSets;  ///< index into GmshFile::groupSets
    std::vector<std::uint32_t> partitions; ///< 0: in none
    std::vector<std::size_t> offsets{0};
    std::vector<std::uint32_t> nodes; ///< indices

    std::size_t size() const { return numbers.size(); }
    std::span<const std::uint32_t> nodesOf(std::size_t element) const {
        return {nodes.data() + offsets[element], offsets[element + 1] - offsets[element]};
    }
};

enum class GmshDataKind { Node, Element, ElementNode };

/// A data section: values of some nodes or elements, by their numbers, at one step.
struct GmshData {
    GmshDataKind kind = GmshDataKind::Node;
    std::string name = "unnamed";
    std::int64_t step = 0;
    double time = 0;
    std::size_t components = 1;
    std::vector<std::int64_t> numbers;
    std::vector<std::uint32_t> corners; ///< of ElementNode: how many nodes of each element have values
    std::vector<double> values;
};

struct GmshFile {
    std::size_t size = 0; ///< bytes
    int version = 0;      ///< 22 for 2.2
    std::map<GmshGroup, std::string> names;
    /// The numbers of the groups that some elements are in together; the first set is empty.
    std::vector<std::vector<std::int64_t>> groupSets{{}};
    std::vector<std::int64_t> nodeNumbers;
    std::vector<Point> nodes;
    GmshElements elements;
    std::map<std::string, std::size_t> skipped; ///< elements that are not drawn, by the names of their types
    int skippedDimension = -1;                  ///< the highest of these
    std::vector<GmshData> data;
};

GmshFile parseGmsh(std::string_view content);

/// The rest of a data section, behind its name.
GmshData readGmshData(GmshCursor& cursor, GmshDataKind kind);

/// Appends the data as fields of the model. places are the cells of the file's elements.
void appendGmshFields(Model& model, const GmshFile& file, std::span<const std::uint32_t> places);

/// Cells on the outside of solids without values of their own, such as those that boundary conditions are
/// given on, get the values of the solids behind them: they are drawn in their place.
void lendToBoundary(Model& model);

} // namespace nruview::readers
