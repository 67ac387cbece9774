// One small model, written in every encoding that the reader knows.
#pragma once

#include <string>

#include "viewer/model.h"

namespace nrutest {

/// A tetrahedron, a quad and a polyline with a vector at the nodes (one value of it NaN), a scalar at the
/// nodes and an integer at the cells.
nruview::Model referenceModel();

enum class Storage { Ascii, Inline, AppendedBase64, AppendedRaw };

struct XmlEncoding {
    Storage storage = Storage::Ascii;
    int headerSize = 4;
    bool bigEndian = false;
    std::size_t zlibBlock = 0; ///< bytes of a compressed block; 0 = not compressed
};

/// The reference model as a .vtu file.
std::string writeVtu(const XmlEncoding& encoding);

/// The reference model as a legacy file; version 5 has OFFSETS and CONNECTIVITY.
std::string writeLegacy(bool binary, int version);

} // namespace nrutest
