// The ray is moved to the tree's bounds in double precision. What follows is single precision, where every
// rounding moves the side of a box by less than the slack that its bounds are given along that axis.
#include "NRenderUtl/mesh/facetreewalk.h"

#include <cmath>

namespace {

constexpr double kFlat = 1e-30; ///< smaller coordinates of the direction count as this

/// How far the sides of boxes may seem to move along an axis: by rounding of positions and parameters within
/// the bounds, by that of the ray's origin, and by a direction that counts as kFlat.
double slackOf(double size, double origin, double reach) {
    return std::ldexp(size, -20) + std::ldexp(origin, -48) + std::ldexp(reach, -80);
}

double inverseOf(double direction) {
    return 1.0 / std::copysign(std::max(std::abs(direction), kFlat), direction);
}

} // namespace

FaceTreeWalk::FaceTreeWalk(const FaceTree& tree, const std::array<double, 3>& origin,
                           const std::array<double, 3>& direction)
    : m_tree(tree) {
    if (tree.isEmpty())
        return;
    const FaceBox& box = tree.bounds();
    double size[3], slack[3], reach = 0.0, end = std::numeric_limits<double>::infinity();
    for (int i = 0; i < 3; ++i) {
        size[i] = std::max(std::abs(box.low[i]), std::abs(box.high[i]));
        reach = std::max({reach, size[i], std::abs(origin[i])});
    }
    for (int i = 0; i < 3; ++i) {
        m_backward[i] = std::signbit(direction[i]);
        slack[i] = std::copysign(slackOf(size[i], std::abs(origin[i]), reach), direction[i]);
        const double inverse = inverseOf(direction[i]);
        m_inverse[i] = static_cast<float>(inverse);
        m_start =
            std::max(m_start, ((m_backward[i] ? box.high : box.low)[i] - slack[i] - origin[i]) * inverse);
        end = std::min(end, ((m_backward[i] ? box.low : box.high)[i] + slack[i] - origin[i]) * inverse);
    }
    if (!(m_start <= end))
        return;
    for (int i = 0; i < 3; ++i) {
        const double place = origin[i] + m_start * direction[i];
        m_near[i] = static_cast<float>(place + slack[i]);
        m_far[i] = static_cast<float>(place - slack[i]);
    }
    m_stops[m_count++] = {0, tree.levels() - 1, 0.0f};
}

/// Kay, Kajiya: Ray tracing complex scenes (1986), for the boxes of a node at once. What the ray may meet
/// joins the stops.
void FaceTreeWalk::open(const Stop& stop, float limit) {
    constexpr int kWidth = FaceTree::kWidth;
    const FaceTree::Node& node = m_tree.node(stop.level, stop.index);
    float entry[kWidth], exit[kWidth];
    std::fill_n(entry, kWidth, 0.0f);
    std::fill_n(exit, kWidth, limit);
    for (int i = 0; i < 3; ++i) {
        const float* nearSide = m_backward[i] ? node.high[i] : node.low[i];
        const float* farSide = m_backward[i] ? node.low[i] : node.high[i];
        for (int lane = 0; lane < kWidth; ++lane) {
            const float in = (nearSide[lane] - m_near[i]) * m_inverse[i];
            const float out = (farSide[lane] - m_far[i]) * m_inverse[i];
            entry[lane] = entry[lane] < in ? in : entry[lane];
            exit[lane] = exit[lane] > out ? out : exit[lane];
        }
    }
    const int first = m_count;
    for (std::uint32_t lane = 0; lane < kWidth; ++lane)
        if (entry[lane] <= exit[lane]) {
            int at = m_count++;
            for (; at > first && m_stops[at - 1].entry < entry[lane]; --at)
                m_stops[at] = m_stops[at - 1];
            m_stops[at] = {stop.index * kWidth + lane, stop.level - 1, entry[lane]};
        }
}

std::span<const std::uint32_t> FaceTreeWalk::next(double limit) {
    const float rounded = std::nextafter(static_cast<float>(limit - m_start), FaceBox::kFar);
    while (m_count > 0) {
        const Stop stop = m_stops[--m_count];
        if (stop.entry > rounded)
            continue;
        if (stop.level < 0)
            return m_tree.leaf(stop.index);
        open(stop, rounded);
    }
    return {};
}
