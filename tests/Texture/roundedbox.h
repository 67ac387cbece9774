// The colour of a box with rounded corners and a border by its signed distance, in C++: the other route to
// the pixels of boxes and of pictures.
#pragma once

#include <algorithm>
#include <cstdint>

#include <glm/glm.hpp>

namespace nrutest {

inline glm::vec4 unpacked(std::uint32_t color) {
    return glm::vec4(color & 0xFF, color >> 8 & 0xFF, color >> 16 & 0xFF, color >> 24) / 255.0f;
}

struct Edge {
    bool rounded;
    float radius, border; ///< in pixels; a border below 0 is none
    glm::vec4 ink;
};

/// At a point in pixels from the middle, for half extents to the edge.
inline glm::vec4 colorAtEdge(glm::vec4 fill, const glm::vec2& p, const glm::vec2& half, const Edge& edge) {
    const glm::vec2 q = glm::abs(p) - half + edge.radius;
    const float d = std::min(std::max(q.x, q.y), 0.0f) + glm::length(glm::max(q, 0.0f)) - edge.radius;
    const float inside = 1 - glm::smoothstep(fill.a, 2.0f, d);
    if (edge.rounded)
        fill.a = std::min(fill.a, inside);
    if (edge.border < 0)
        return fill;
    const float border = 1 - glm::smoothstep(edge.border - 2, edge.border, std::abs(d));
    return glm::mix(fill, edge.ink, std::min(border, inside));
}

} // namespace nrutest
