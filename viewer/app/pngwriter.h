// Writes a picture to a PNG file.
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace nruview {

/// Writes pixels packed 0xAABBGGRR, rows from bottom to top as OpenGL reads them, without their alpha. A file
/// under this name is replaced as a whole or not at all. Throws ViewerError naming the path and the reason.
void writePng(const std::string& path, int width, int height, std::span<const std::uint32_t> pixels);

} // namespace nruview
