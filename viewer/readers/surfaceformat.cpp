// Marks and headers of the surface formats, read no further than the counts.
#include "viewer/readers/surfaceformat.h"

#include <algorithm>
#include <cstring>

#include "viewer/readers/plyfile.h"
#include "viewer/readers/words.h"

namespace nruview::readers {

namespace {

constexpr std::size_t kStlHead = 84, kStlFacet = 50; ///< bytes; the count is the head's last four
constexpr std::size_t kGlbHead = 12, kGlbChunkHead = 8;

/// A little-endian number of four bytes; the machines that this is built for are little-endian too.
std::uint32_t numberAt(std::string_view content, std::size_t place) {
    std::uint32_t number = 0;
    if (place + sizeof number <= content.size())
        std::memcpy(&number, content.data() + place, sizeof number);
    return number;
}

std::size_t binaryStlSize(std::string_view content) {
    return kStlHead + kStlFacet * std::size_t{numberAt(content, kStlHead - 4)};
}

bool startsWithWord(std::string_view content, std::string_view word) {
    return content.size() > word.size() && content.starts_with(word) &&
           kBlank.find(content[word.size()]) != std::string_view::npos;
}

std::string counted(std::size_t count, const char* what) {
    return std::to_string(count) + " " + what;
}

// --- STL ---------------------------------------------------------------------------------------------------

std::size_t declaredInBinaryStl(std::string_view content) {
    if (content.size() < kStlHead)
        throw Refusal("is too short for a binary STL file");
    const std::size_t count = numberAt(content, kStlHead - 4);
    if (content.size() < binaryStlSize(content))
        throw Refusal("is cut short: " + counted(count, "triangles are announced, ") +
                      std::to_string((content.size() - kStlHead) / kStlFacet) + " are there");
    if (content.size() > binaryStlSize(content))
        throw Refusal("goes on behind its " + counted(count, "triangles"));
    return count;
}

/// Facets that are whole; the file ends with the end of a solid. Names of solids may be any words.
std::size_t declaredInAsciiStl(std::string_view content) {
    std::size_t vertices = 0, begun = 0, ended = 0;
    bool closed = false;
    for (std::string_view word; !(word = takeWord(content)).empty();) {
        const bool ends = isWord(word, "endsolid");
        if (ends || isWord(word, "solid"))
            content.remove_prefix(std::min(content.find('\n'), content.size()));
        begun += isWord(word, "facet") ? 1 : 0;
        vertices += isWord(word, "vertex") ? 1 : 0;
        closed = ends || (closed && begun == ended);
        if (isWord(word, "endfacet") && (++ended != begun || vertices != 3 * ended))
            throw Refusal("facet " + std::to_string(ended - 1) + " does not have three vertices");
    }
    if (!closed || begun != ended)
        throw Refusal("is cut short: there is no endsolid behind facet " + std::to_string(begun));
    return ended;
}

// --- glTF --------------------------------------------------------------------------------------------------

void checkGlb(std::string_view content) {
    if (numberAt(content, 4) != 2)
        throw Refusal("is not of glTF 2");
    const std::size_t size = numberAt(content, 8);
    if (size > content.size())
        throw Refusal("is cut short: " + std::to_string(content.size()) + " of " + counted(size, "bytes"));
    for (std::size_t place = kGlbHead; place < size;) {
        if (size - place < kGlbChunkHead || numberAt(content, place) > size - place - kGlbChunkHead)
            throw Refusal("has a chunk that goes beyond its end");
        place += kGlbChunkHead + numberAt(content, place);
    }
}

} // namespace

std::optional<SurfaceFormat> surfaceFormat(std::string_view content, const std::string& extension) {
    if (content.starts_with("glTF"))
        return SurfaceFormat::Glb;
    if (startsWithWord(content, "ply"))
        return SurfaceFormat::Ply;
    if (content.size() >= kStlHead && content.size() == binaryStlSize(content))
        return SurfaceFormat::BinaryStl; // whatever its title, which may well begin with "solid"
    const std::size_t first = std::min(content.find_first_not_of(kBlank), content.size());
    if (isWord(content.substr(first, 5), "solid") && content.find('\0') == std::string_view::npos)
        return SurfaceFormat::AsciiStl;
    if (content.substr(first).starts_with("{"))
        return SurfaceFormat::Gltf;
    if (extension == ".stl")
        return SurfaceFormat::BinaryStl;
    if (extension == ".obj")
        return SurfaceFormat::Obj;
    return {};
}

const char* extensionOf(SurfaceFormat format) {
    switch (format) {
    case SurfaceFormat::AsciiStl:
    case SurfaceFormat::BinaryStl:
        return "stl";
    case SurfaceFormat::Obj:
        return "obj";
    case SurfaceFormat::Ply:
        return "ply";
    case SurfaceFormat::Glb:
        return "glb";
    case SurfaceFormat::Gltf:
        break;
    }
    return "gltf";
}

SurfaceFacts checkSurface(SurfaceFormat format, std::string_view content) {
    switch (format) {
    case SurfaceFormat::AsciiStl:
        return {declaredInAsciiStl(content), {}};
    case SurfaceFormat::BinaryStl:
        return {declaredInBinaryStl(content), {}};
    case SurfaceFormat::Ply: {
        PlyFacts facts = readPlyFacts(content);
        return {facts.faces, std::move(facts.faceColors)};
    }
    case SurfaceFormat::Glb:
        checkGlb(content);
        break;
    case SurfaceFormat::Obj:
    case SurfaceFormat::Gltf:
        break;
    }
    return {};
}

} // namespace nruview::readers
