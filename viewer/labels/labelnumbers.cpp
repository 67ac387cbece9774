// The digits of printf, scaled by a power of ten that all numbers share.
#include "viewer/labels/labelnumbers.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace nruview {

namespace {

constexpr int kDigits = 4;
constexpr int kDoubleDigits = 16;                   ///< beyond these the digits of a double say nothing
constexpr int kLowestPlain = -3, kHighestPlain = 5; ///< powers of ten that need no factor

/// Power of ten of a number as it is once rounded to kDigits digits: 999.97 is a thousand.
int powerOf(double value) {
    std::array<char, 32> text;
    std::snprintf(text.data(), text.size(), "%.*e", kDigits - 1, value);
    return std::atoi(std::string(text.data()).substr(std::string(text.data()).find('e') + 1).c_str());
}

/// The smallest difference of neighbours that differ; 0 without one.
double smallestStep(std::span<const double> values) {
    double smallest = 0.0;
    for (std::size_t i = 1; i < values.size(); ++i) {
        const double step = std::abs(values[i] - values[i - 1]);
        if (step > 0.0 && (smallest == 0.0 || step < smallest))
            smallest = step;
    }
    return std::isfinite(smallest) ? smallest : 0.0;
}

std::string inDecimals(double value, int power, int decimals) {
    std::array<char, 400> text;
    // In the wider range of long double no scaling overflows.
    std::snprintf(text.data(), text.size(), "%.*Lf", decimals,
                  static_cast<long double>(value) / std::pow(10.0L, static_cast<long double>(power)));
    const std::string number = text.data();
    const bool isZero = number.find_first_not_of("-0.") == std::string::npos;
    return isZero && number[0] == '-' ? number.substr(1) : number;
}

/// Takes the zeros away that all numbers end with, and the point that is left.
void dropZeros(std::vector<std::string>& numbers) {
    const auto allEndWith = [&](char end) {
        return std::all_of(numbers.begin(), numbers.end(), [&](const std::string& number) {
            return number.back() == end && number.find('.') != std::string::npos;
        });
    };
    const auto shorten = [&] {
        for (std::string& number : numbers)
            number.pop_back();
    };
    while (allEndWith('0'))
        shorten();
    if (allEndWith('.'))
        shorten();
}

std::string factorText(int power) {
    constexpr std::array kRaised = {"⁰", "¹", "²", "³", "⁴", "⁵", "⁶", "⁷", "⁸", "⁹"};
    if (power == 0)
        return {};
    std::string text = power < 0 ? "×10⁻" : "×10";
    for (const char digit : std::to_string(std::abs(power)))
        text += kRaised[static_cast<std::size_t>(digit - '0')];
    return text;
}

} // namespace

NumberLabels labelNumbers(std::span<const double> values) {
    double largest = 0.0;
    for (const double value : values)
        largest = std::max(largest, std::abs(value));
    const int top = largest > 0.0 ? powerOf(largest) : 0;
    const bool isPlain = top >= kLowestPlain && top <= kHighestPlain;
    const int power = isPlain ? 0 : 3 * static_cast<int>(std::floor(top / 3.0));
    int decimals = kDigits - 1 - (top - power);
    if (const double step = smallestStep(values); step > 0.0)
        decimals = std::max(decimals, power - powerOf(step) + 1); // a tenth of a step is told
    decimals = std::clamp(decimals, 0, std::max(0, kDoubleDigits - 1 - (top - power)));
    NumberLabels labels;
    for (const double value : values)
        labels.texts.push_back(inDecimals(value, power, decimals));
    if (!labels.texts.empty())
        dropZeros(labels.texts);
    labels.factor = factorText(power);
    return labels;
}

} // namespace nruview
