// What the library draws, each in a small scene that shows the state it is drawn under.
#pragma once

#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

namespace nruview {

/// What families of one kind take from the host is the same.
enum class FamilyKind {
    Primitives, ///< sent vertex by vertex, in all that is current
    Arrays,     ///< fixed function from arrays
    Lit,        ///< the same, lit by themselves
    Symbols,
    Screen, ///< in window pixels
    Rubber,
    Panels, ///< boxes and pictures
    FixedElements,
    Elements, ///< by programs, as are all below
    Bodies,
    Markers,
    BatchProgram,
    Background,
    HostDraws, ///< between two calls, by the host itself
};

struct Family {
    std::string_view name;
    FamilyKind kind;
    void (*draw)() = nullptr;
    /// Or, of what keeps something of OpenGL's, makes that and gives the function that draws it and frees it
    /// in the end.
    std::function<void()> (*make)() = nullptr;
    bool byPrograms = false; ///< not there where the driver lacks programs
};

/// In the order of the interface.
std::vector<Family> families();

std::vector<Family> primitiveFamilies();
std::vector<Family> batchFamilies();
std::vector<Family> screenFamilies();
std::vector<Family> meshFamilies();
std::vector<Family> bodyFamilies();
std::vector<Family> markerFamilies();

/// The contour texture that families draw with, the host's own, with its bands. One at a time; active to the
/// end.
class ContourTexture {
public:
    ContourTexture();
    ~ContourTexture();
    ContourTexture(const ContourTexture&) = delete;
    ContourTexture& operator=(const ContourTexture&) = delete;

private:
    std::uint32_t m_name = 0;
};

} // namespace nruview
