// The readers behind readModel(), each from the whole content of a file, and what they share.
#pragma once

#include <map>
#include <stdexcept>

#include "viewer/model.h"

namespace nruview::readers {

/// The reason why a file is not read; readModel() adds the file's name.
struct Refusal : std::runtime_error {
    using std::runtime_error::runtime_error;
};

Model readVtu(std::string_view content);
Model readLegacyVtk(std::string_view content);

/// Cells as a VTK file has them, before anything of them is checked.
struct RawCells {
    std::vector<std::int64_t> offsets; ///< end of each cell in connectivity
    std::vector<std::int64_t> connectivity;
    std::vector<std::int64_t> types; ///< VTK's numbers
};

/// Number of skipped cells for each VTK cell type that the viewer does not know.
using SkippedCells = std::map<std::int64_t, std::size_t>;

/// Appends the cells of a file whose nodes are the model's from firstNode on. Returns the places in cells of
/// those that were kept.
std::vector<std::uint32_t> appendCells(Model& model, const RawCells& cells, std::size_t firstNode,
                                       SkippedCells& skipped);

/// The tuples of the kept cells.
std::vector<double> keptTuples(const std::vector<double>& values, std::size_t components,
                               const std::vector<std::uint32_t>& kept);

/// Notes the skipped cells; refuses a model without any cell.
void finishCells(Model& model, const SkippedCells& skipped);

/// Appends xyz values as nodes.
void appendNodes(Model& model, const std::vector<double>& coordinates);

} // namespace nruview::readers
