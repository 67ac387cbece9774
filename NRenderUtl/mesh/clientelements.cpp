#include "NRenderUtl/mesh/clientelements.h"

#include <limits>

#include "NRenderUtl/host/hostgl.h"
#include "NRenderUtl/mesh/meshaccess.h"

namespace {

constexpr std::uint32_t kElementsPerDraw = 1u << 28; // keeps index counts within GLsizei

} // namespace

// The range of the indices is handed on to the driver, which would otherwise look for it itself.
void drawClientElements(std::uint32_t vertexCount, const std::uint32_t* indices, std::uint32_t count,
                        int corners) {
    const GLenum mode = corners == 3 ? GL_TRIANGLES : GL_QUADS;
    for (std::uint32_t first = 0; first < count;) {
        std::uint32_t lowest = std::numeric_limits<std::uint32_t>::max(), highest = 0, run = 0;
        const std::uint32_t* start = indices + static_cast<std::size_t>(first) * corners;
        const std::uint32_t most = std::min(count - first, kElementsPerDraw);
        for (const std::uint32_t* e = start; run < most && areVertices(vertexCount, e, corners);
             e += corners, ++run)
            for (int i = 0; i < corners; ++i) {
                lowest = std::min(lowest, e[i]);
                highest = std::max(highest, e[i]);
            }
        if (run > 0)
            glDrawRangeElements(mode, lowest, highest, static_cast<GLsizei>(run) * corners, GL_UNSIGNED_INT,
                                start);
        first += run > 0 ? run : 1;
    }
}
