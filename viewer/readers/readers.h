// The readers behind readModel(), each from the whole content of a file, and what they share.
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <stdexcept>

#include "viewer/model/model.h"

namespace nruview::readers {

/// The reason why a file is not read; readModel() adds the file's name.
struct Refusal : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Names from a file can hold anything: what is printed of them is one line of bounded length.
std::string oneLine(std::string text);

/// Refuses what is no file, or empty.
void checkFile(const std::filesystem::path& path);

/// Refuses so many bytes of files where this machine's memory does not hold them.
void checkMemory(std::uintmax_t size);

/// The whole content; refuses as checkFile and checkMemory do.
std::string loadFile(const std::filesystem::path& path);

/// Refuses what a packing program has made.
void refusePacked(std::string_view content);

Model readVtu(std::string_view content);
/// A .pvd file, which names a .vtu file for each time. The path tells where they are.
bool isCollection(std::string_view content);
Model readCollection(std::string_view content, const std::filesystem::path& path);
Model readLegacyVtk(std::string_view content);
bool isGmsh(std::string_view content);
Model readGmsh(std::string_view content);

/// Results of CalculiX, .frd, which the content tells.
bool isFrd(std::string_view content);
Model readFrd(std::string_view content);

/// Meshes of Abaqus and CalculiX, .inp. The path tells where the files are that it includes.
bool isInp(std::string_view content, const std::filesystem::path& path);
Model readInp(std::string_view content, const std::filesystem::path& path);

/// By the first bytes: netCDF of any kind, or HDF5.
bool isExodus(const std::filesystem::path& path);
Model readExodus(const std::filesystem::path& path);

/// A surface: .stl, .obj, .ply, .glb or .gltf. Nothing where the file is none of them; the path tells of
/// those that have no mark in their content, and where the files that it names are.
std::optional<Model> readSurface(std::string_view content, const std::filesystem::path& path);

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
