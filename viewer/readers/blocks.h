// The binary blocks of VTK XML files: raw or base64, plain or zlib-compressed, each behind a header of sizes.
#pragma once

#include "viewer/readers/readers.h"

namespace nruview::readers {

struct BlockFormat {
    std::size_t headerSize = 4; ///< bytes of each number in the header
    bool bigEndian = false;
    bool zlib = false;
    bool base64 = false;
};

/// The bytes of the block at the start of text, which must be exactly size. Refuses a block that says
/// otherwise or ends early; allocates only after the sizes in the header agree with what is there.
std::string decodeBlock(std::string_view text, const BlockFormat& format, std::size_t size);

} // namespace nruview::readers
