// Which surface format a file has, and whether what it declares can be in it.
#pragma once

#include <optional>

#include "viewer/readers/readers.h"

namespace nruview::readers {

enum class SurfaceFormat { AsciiStl, BinaryStl, Obj, Ply, Glb, Gltf };

/// By the content; by the extension, in lower case with its dot, where the content has no mark of its own.
/// Nothing for other files.
std::optional<SurfaceFormat> surfaceFormat(std::string_view content, const std::string& extension);

/// The extension that stands for a format, without its dot.
const char* extensionOf(SurfaceFormat format);

struct SurfaceFacts {
    std::optional<std::size_t> faces;      ///< that the file says it has; nothing where it tells no number
    std::vector<std::uint32_t> faceColors; ///< packed 0xAABBGGRR of each face; empty: it has none
};

/// Refuses a file whose sizes and counts cannot be true, before memory is laid out by them.
SurfaceFacts checkSurface(SurfaceFormat format, std::string_view content);

} // namespace nruview::readers
