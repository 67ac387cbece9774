// What a PLY file has beside its shape, and whether it is whole.
#pragma once

#include "viewer/readers/readers.h"

namespace nruview::readers {

struct PlyFacts {
    std::size_t faces = 0;
    std::vector<std::uint32_t>
        faceColors; ///< packed 0xAABBGGRR of each face, opaque; empty: none in the file
};

/// Walks through all that the header announces; refuses a file that ends before.
PlyFacts readPlyFacts(std::string_view content);

} // namespace nruview::readers
