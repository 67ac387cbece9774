// A sorted table; files mostly number without gaps, so that the place is where one would expect it.
#include "viewer/readers/numberindex.h"

#include <algorithm>

namespace nruview::readers {

NumberIndex::NumberIndex(const std::vector<std::int64_t>& numbers) {
    m_entries.reserve(numbers.size());
    for (const std::int64_t number : numbers)
        m_entries.push_back({number, static_cast<std::uint32_t>(m_entries.size())});
    const auto less = [](const Entry& a, const Entry& b) { return a.number < b.number; };
    if (!std::is_sorted(m_entries.begin(), m_entries.end(), less))
        std::sort(m_entries.begin(), m_entries.end(), less);
}

std::optional<std::uint32_t> NumberIndex::find(std::int64_t number) const {
    if (m_entries.empty() || number < m_entries.front().number || number > m_entries.back().number)
        return {};
    // Both are within the table's range, whose ends may lie further apart than a signed number tells.
    const std::uint64_t guess =
        static_cast<std::uint64_t>(number) - static_cast<std::uint64_t>(m_entries.front().number);
    if (guess < m_entries.size() && m_entries[guess].number == number)
        return m_entries[guess].index;
    const auto found =
        std::lower_bound(m_entries.begin(), m_entries.end(), number,
                         [](const Entry& entry, std::int64_t wanted) { return entry.number < wanted; });
    return found->number == number ? std::optional(found->index) : std::nullopt;
}

std::vector<std::uint32_t> NumberIndex::within(std::int64_t first, std::int64_t last) const {
    std::vector<std::uint32_t> places;
    auto entry = std::lower_bound(
        m_entries.begin(), m_entries.end(), first,
        [](const Entry& candidate, std::int64_t wanted) { return candidate.number < wanted; });
    for (; entry != m_entries.end() && entry->number <= last; ++entry)
        places.push_back(entry->index);
    return places;
}

bool NumberIndex::hasRepeated() const {
    const auto same = [](const Entry& a, const Entry& b) { return a.number == b.number; };
    return std::adjacent_find(m_entries.begin(), m_entries.end(), same) != m_entries.end();
}

} // namespace nruview::readers
