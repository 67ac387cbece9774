// Components of vectors and tensors by the ends of their names.
#include "viewer/readers/exoduscomponents.h"

#include <algorithm>

#include "viewer/model/fields.h"
#include "viewer/readers/words.h"

namespace nruview::readers {

namespace {

/// A vector or tensor as the ends of its components' names; "" stands for one that is zero.
struct Pattern {
    bool ofPlane; ///< for plane models alone
    std::vector<std::string_view> ends;
};

// Tensors before vectors, larger ones first: xx ends with x.
const Pattern kPatterns[] = {
    {false, {"xx", "xy", "xz", "yx", "yy", "yz", "zx", "zy", "zz"}},
    {false, {"xx", "yy", "zz", "xy", "yz", "xz"}},
    {false, {"xx", "yy", "zz", "xy", "yz", "zx"}},
    {true, {"xx", "yy", "zz", "xy", "", ""}},
    {false, {"x", "y", "z"}},
    {true, {"x", "y", ""}},
};

constexpr std::string_view kDiagonal[] = {"xx", "yy", "zz"};

class Finder {
public:
    explicit Finder(const std::vector<std::string>& names) : m_names(names), m_taken(names.size()) {}

    std::vector<Quantity> find(std::size_t dimensions) {
        std::vector<std::optional<Quantity>> found(m_names.size());
        for (const Pattern& pattern : kPatterns)
            for (std::size_t i = 0; i < m_names.size(); ++i)
                if (!m_taken[i] && (!pattern.ofPlane || dimensions == 2))
                    found[i] = quantityOf(i, pattern);
        std::vector<Quantity> all;
        for (std::size_t i = 0; i < m_names.size(); ++i)
            if (found[i])
                all.push_back(std::move(*found[i]));
            else if (!m_taken[i])
                all.push_back({m_names[i], {i}});
        return all;
    }

private:
    /// The quantity whose first component in the file a variable is.
    std::optional<Quantity> quantityOf(std::size_t variable, const Pattern& pattern) {
        const std::string& name = m_names[variable];
        for (const std::string_view end : pattern.ends) {
            if (end.empty() || name.size() <= end.size())
                continue;
            const std::size_t length = name.size() - end.size();
            if (isWord(std::string_view(name).substr(length), end))
                if (auto quantity = collect(name.substr(0, length), pattern))
                    return quantity;
        }
        return {};
    }

    std::optional<Quantity> collect(const std::string& stem, const Pattern& pattern) {
        Quantity quantity{trimSeparator(stem), {}};
        if (std::find(m_names.begin(), m_names.end(), quantity.name) != m_names.end())
            return {};
        if (pattern.ends[0] == "x" && isTensorStem(stem))
            return {};
        for (const std::string_view end : pattern.ends) {
            quantity.variables.push_back(end.empty() ? std::nullopt : free(stem, end));
            if (!end.empty() && !quantity.variables.back())
                return {};
        }
        for (const auto& variable : quantity.variables)
            if (variable)
                m_taken[*variable] = true;
        return quantity;
    }

    /// A variable of the name stem + end that belongs to nothing yet.
    std::optional<std::size_t> free(const std::string& stem, std::string_view end) const {
        for (std::size_t i = 0; i < m_names.size(); ++i) {
            const std::string& name = m_names[i];
            if (!m_taken[i] && name.size() == stem.size() + end.size() && name.starts_with(stem) &&
                isWord(std::string_view(name).substr(stem.size()), end))
                return i;
        }
        return {};
    }

    /// Of a tensor that is not whole xx, xy and xz are no vector.
    bool isTensorStem(const std::string& stem) const {
        const std::string rest = stem.substr(0, stem.size() - 1);
        const std::string_view last = std::string_view(stem).substr(rest.size());
        for (const std::string_view axis : {"x", "y", "z"})
            if (isWord(last, axis))
                return std::any_of(std::begin(kDiagonal), std::end(kDiagonal), [&](std::string_view end) {
                    return !end.starts_with(axis) && free(rest, end);
                });
        return false;
    }

    const std::vector<std::string>& m_names;
    std::vector<bool> m_taken;
};

} // namespace

std::vector<Quantity> findQuantities(const std::vector<std::string>& names, std::size_t dimensions) {
    return Finder(names).find(dimensions);
}

} // namespace nruview::readers
