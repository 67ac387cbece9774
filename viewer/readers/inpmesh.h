// What an Abaqus or CalculiX input file says about its mesh, part by part, and how that becomes a model.
#pragma once

#include "viewer/readers/inptypes.h"
#include "viewer/readers/readers.h"

namespace nruview::readers {

/// Numbers and names that one keyword puts into a set.
struct InpSetPiece {
    struct Range {
        std::int64_t first, last, step;
    };
    std::string set;
    bool ofNodes = true;
    std::string instance; ///< whose numbers are meant; empty: those of the mesh that the piece stands in
    std::vector<Range> ranges;
    std::vector<std::string> names; ///< of other sets, or with a number, of what an instance has

    void add(std::int64_t number) {
        if (!ranges.empty() && ranges.back().step == 1 && ranges.back().last < number &&
            ranges.back().last == number - 1)
            ranges.back().last = number;
        else
            ranges.push_back({number, number, 1});
    }
};

/// The nodes of element i are elementNodes[ends[i - 1]] to elementNodes[ends[i] - 1], by number.
struct InpMesh {
    std::vector<std::int64_t> nodeNumbers, elementNumbers, elementNodes;
    std::vector<Point> nodes;
    std::vector<InpType> types;
    std::vector<std::size_t> ends;
    std::vector<InpSetPiece> pieces;           ///< in the file's order
    std::vector<std::string> sections, blocks; ///< element sets that have a section; those of *ELEMENT
};

/// A part at its place in the assembly.
struct InpInstance {
    std::string name, part;
    InpMesh own; ///< where the part has no mesh
    Point shift{};
    std::array<Point, 2> axis{};
    double angleDeg = 0.0;
};

struct InpFile {
    InpMesh mesh;                         ///< what stands in no part
    std::map<std::string, InpMesh> parts; ///< by names in capitals
    std::vector<InpInstance> instances;
    std::map<std::string, std::size_t> skipped; ///< elements by type
    std::map<std::string, std::size_t> longer;  ///< elements with more numbers than nodes, by type
    std::vector<std::string> notes;
};

/// Instances at their places, sets as node sets, elements in parts by sections or sets.
Model makeInpModel(InpFile& file);

} // namespace nruview::readers
