// Materials by name: the library's table tells how they reflect, the viewer which colour they have.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

namespace nruview {

/// What bodies are made of where no material is asked for.
constexpr const char* kDefaultMaterial = "Steel";

/// Of the library's table.
std::vector<std::string> materialNames();

/// The library's table, a line for each material.
void printMaterials(std::ostream& out);

/// The material to draw with: the one named, or for an empty name the default one, if the table has it.
/// Throws ViewerError for a name that the table does not have.
std::string checkedMaterial(const std::string& name);

/// Packed 0xAABBGGRR; a light grey for a material that the viewer does not know.
std::uint32_t materialColor(const std::string& name);

} // namespace nruview
