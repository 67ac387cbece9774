// What is known of each element of a mesh, and which elements that leaves to see.
#pragma once

#include <cstdint>
#include <cstring>
#include <optional>
#include <vector>

#include "NRenderUtl/mesh/nmesh.h"

/// One fact of every element. No memory is used while all have the initial value.
template <typename Value>
class ElementFact {
public:
    explicit ElementFact(Value initial = {}) : m_initial(initial) {}

    bool isInitial() const { return m_values.empty(); }
    Value operator[](std::uint32_t element) const { return m_values.empty() ? m_initial : m_values[element]; }
    const std::vector<Value>& values() const { return m_values; }
    /// To write element by element; count is that of all elements. Throws std::bad_alloc.
    std::vector<Value>& writable(std::uint32_t count) {
        if (m_values.empty())
            m_values.assign(count, m_initial);
        return m_values;
    }
    /// Gives the memory back where all have come to the initial value again. Every value is compared with the
    /// one before it, at the speed of memory.
    void compact() {
        const std::size_t count = m_values.size();
        if (count > 0 && m_values[0] == m_initial &&
            std::memcmp(m_values.data(), m_values.data() + 1, (count - 1) * sizeof(Value)) == 0)
            m_values = {};
    }

private:
    Value m_initial;
    std::vector<Value> m_values;
};

struct ElementFacts {
    ElementFact<std::uint8_t> visible{1};
    ElementFact<std::uint8_t> selection{0}; ///< NglElementSelection
    ElementFact<std::uint32_t> color{0};    ///< red, green, blue; top byte 1 = the element has its own colour
    ElementFact<std::uint8_t> clipCode{0};
    ElementFact<std::int32_t> lower{-1}, upper{-1}; ///< failure levels

    void compact();
};

/// Whether an element is clipped, or fails, under the attributes.
bool isElementClipped(const ElementFacts& facts, std::uint32_t element, const ngl::NglElementAttributes& how);
bool isElementFailing(const ElementFacts& facts, std::uint32_t element, const ngl::NglElementAttributes& how);
/// Whether it is drawn: neither of them, and visible or selected or highlighted.
bool isElementShown(const ElementFacts& facts, std::uint32_t element, const ngl::NglElementAttributes& how);
/// The colour of its selection or highlight (from the view record's palette), else its own, else nothing.
std::optional<NgColorLong> elementColor(const ElementFacts& facts, std::uint32_t element);
