// The pieces of an Exodus II file, each read into the model.
#pragma once

#include "viewer/readers/exodusfile.h"

namespace nruview::readers {

/// A block whose elements are cells of the model.
struct ExodusBlock {
    std::size_t number = 0;       ///< of its variables, from 1
    std::size_t firstElement = 0; ///< place in the file, blocks that are left out counted
    std::size_t elementCount = 0;
    std::size_t firstCell = 0;
    bool isShell = false;
};

/// Dimensions of the model's space, 1 to 3.
std::size_t spaceOf(const ExodusFile& file);

/// Cells and parts. The model has its nodes.
std::vector<ExodusBlock> readBlocks(const ExodusFile& file, Model& model);

/// Steps and fields; of cells whose block lacks a variable the values are NaN.
void readResults(const ExodusFile& file, const std::vector<ExodusBlock>& blocks, Model& model);

/// Node sets, and side sets by their nodes.
void readSets(const ExodusFile& file, const std::vector<ExodusBlock>& blocks, Model& model);

/// What the file calls the i-th thing of a kind, or the kind and its number.
std::string nameOf(const std::vector<std::string>& names, const std::vector<long long>& ids, std::size_t i,
                   const std::string& kind);

/// Numbers of blocks and sets; those of many files count from 1.
std::vector<long long> idsOf(const ExodusFile& file, const std::string& variable, std::size_t count);

} // namespace nruview::readers
