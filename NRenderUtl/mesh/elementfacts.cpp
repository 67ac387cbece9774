#include "NRenderUtl/mesh/elementfacts.h"

#include "NRenderUtl/gl/ngl.h"

namespace {

constexpr int kSelectionIndex = 33, kHighlightIndex = 32; // of the record's palette

bool isSelectedOrHighlighted(const ElementFacts& facts, std::uint32_t element) {
    return facts.selection[element] == ngl::NglElementSelected ||
           facts.selection[element] == ngl::NglElementHighlighted;
}

/// Both failure levels at once.
bool failsEither(int level, int lower, int upper) {
    const bool below = level < upper, above = level >= lower;
    if (lower == -1)
        return upper != -1 && below;
    if (upper == -1)
        return above;
    return lower < upper ? below : above || below;
}

} // namespace

void ElementFacts::compact() {
    visible.compact();
    selection.compact();
    color.compact();
    clipCode.compact();
    lower.compact();
    upper.compact();
}

bool isElementClipped(const ElementFacts& facts, std::uint32_t element,
                      const ngl::NglElementAttributes& how) {
    const int code = facts.clipCode[element];
    return (how.clipFlag == 1 && code >= 2) || (how.clipFlag == 3 && code <= 2);
}

bool isElementFailing(const ElementFacts& facts, std::uint32_t element,
                      const ngl::NglElementAttributes& how) {
    const int level = how.failureLevel, lower = facts.lower[element], upper = facts.upper[element];
    switch (how.failureMode) {
    case 1:
        return lower != -1 && level >= lower;
    case 2:
        return upper != -1 && level < upper;
    case 3:
        return failsEither(level, lower, upper);
    default:
        return false;
    }
}

bool isElementShown(const ElementFacts& facts, std::uint32_t element, const ngl::NglElementAttributes& how) {
    return !isElementClipped(facts, element, how) && !isElementFailing(facts, element, how) &&
           (facts.visible[element] != 0 || isSelectedOrHighlighted(facts, element));
}

std::optional<NgColorLong> elementColor(const ElementFacts& facts, std::uint32_t element) {
    switch (facts.selection[element]) {
    case ngl::NglElementSelected:
        return NglGetColorGivenIndex(kSelectionIndex);
    case ngl::NglElementHighlighted:
        return NglGetColorGivenIndex(kHighlightIndex);
    default:
        break;
    }
    const std::uint32_t own = facts.color[element];
    return own >> 24 == 1 ? std::optional<NgColorLong>(own & 0xFFFFFF) : std::nullopt;
}
