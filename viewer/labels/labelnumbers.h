// Numbers as labels show them: all of one legend in one form, short, and no two different ones alike.
#pragma once

#include <span>
#include <string>
#include <vector>

namespace nruview {

/// Numbers without their common factor, which is a power of ten (empty: 1), such as "×10⁶".
struct NumberLabels {
    std::vector<std::string> texts;
    std::string factor;
};

/// Four digits of the largest number, more where two neighbours would else look alike or nearly so, fewer
/// where all end in zeros. Beyond 0.001 and a million a factor in steps of a thousand takes the rest. All are
/// finite.
NumberLabels labelNumbers(std::span<const double> values);

} // namespace nruview
