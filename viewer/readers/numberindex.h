// From the numbers of a file to indices.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace nruview::readers {

class NumberIndex {
public:
    NumberIndex() = default;
    explicit NumberIndex(const std::vector<std::int64_t>& numbers);

    /// The place of a number in the list; of one that is there more than once any of its places.
    std::optional<std::uint32_t> find(std::int64_t number) const;
    /// The places of the numbers from first to last, ascending by number.
    std::vector<std::uint32_t> within(std::int64_t first, std::int64_t last) const;
    bool hasRepeated() const;

private:
    struct Entry {
        std::int64_t number;
        std::uint32_t index;
    };
    std::vector<Entry> m_entries; ///< ascending
};

} // namespace nruview::readers
