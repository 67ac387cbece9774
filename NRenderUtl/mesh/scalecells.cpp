#include "NRenderUtl/mesh/scalecells.h"

#include <algorithm>
#include <cmath>

namespace {

using Limits = std::vector<ScaleCell>;

constexpr double kMargin = 1.0 / 32;     ///< of a cell's width, from its limit to its ends
constexpr double kLargestTerm = 1 << 14; ///< single precision rounds it by far less than the margin

/// Where colours change. Entry 0 is for what is not a number.
Limits limitsOf(const std::vector<ScaleEntry>& entries) {
    Limits limits;
    for (std::size_t i = 2; i < entries.size(); ++i)
        if (entries[i].color != entries[i - 1].color)
            limits.push_back({entries[i].start, entries[i - 1].color, entries[i].color});
    return limits;
}

/// So many cells from the first limit to the last, whose middles these two are.
class CellsMaker {
public:
    CellsMaker(const Limits& limits, int count) : m_limits(limits), m_made{} {
        const double low = limits.front().limit, factor = (count - 1) / (double{limits.back().limit} - low);
        m_made.factor = static_cast<float>(factor);
        m_made.offset = static_cast<float>(0.5 - low * factor);
        m_made.cells.assign(count, {limits.front().limit, limits.front().below, limits.front().below});
        m_usable = m_made.factor > 0 && std::isfinite(m_made.factor) &&
                   std::fabs(low * factor) + count < kLargestTerm;
    }

    std::optional<ScaleCells> make() {
        int last = -1;
        for (const ScaleCell& limit : m_limits) {
            const double place = double{limit.limit} * m_made.factor + m_made.offset;
            const int at = m_usable ? static_cast<int>(std::floor(place)) : last;
            if (at <= last || std::fabs(place - at - 0.5) > 0.5 - kMargin)
                return {};
            m_made.cells[at] = limit;
            std::fill(m_made.cells.begin() + at + 1, m_made.cells.end(),
                      ScaleCell{limit.limit, limit.above, limit.above});
            last = at;
        }
        return std::move(m_made);
    }

private:
    const Limits& m_limits;
    ScaleCells m_made;
    bool m_usable;
};

} // namespace

std::optional<ScaleCells> makeScaleCells(const ScaleEntries& scale) {
    const Limits limits = limitsOf(scale.entries);
    if (limits.empty() || limits.front().below != scale.entries.front().color) // the cells' colour of NaN
        return {};
    if (limits.size() == 1)
        return ScaleCells{limits, 0, 0};
    // As many as limits where bands are of one width.
    for (int count = static_cast<int>(limits.size()); count <= kBlockCells; ++count)
        if (std::optional<ScaleCells> made = CellsMaker(limits, count).make())
            return made;
    return {};
}
