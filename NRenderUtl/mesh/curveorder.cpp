// Codes of ten bits a coordinate (Morton, 1966), sorted by their digits. Where a cell holds many positions,
// as when one lies far from all others, a finer curve through them goes on.
#include "NRenderUtl/mesh/curveorder.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {

using Positions = std::span<const ElementSurface::Vector>;
using Places = std::span<CurvePlace>;

constexpr int kBits = 10;
constexpr std::uint32_t kCells = 1u << kBits;
constexpr std::size_t kMany = 64;

/// Puts two zeros before each of ten bits.
std::uint32_t spread(std::uint32_t bits) {
    bits = (bits | bits << 16) & 0x030000FF;
    bits = (bits | bits << 8) & 0x0300F00F;
    bits = (bits | bits << 4) & 0x030C30C3;
    return (bits | bits << 2) & 0x09249249;
}

/// Sets the codes within the bounds of the places. False where all are one.
bool encode(Positions positions, Places places) {
    ElementSurface::Vector low = positions[places[0].item], high = low;
    for (const CurvePlace& place : places)
        for (int i = 0; i < 3; ++i) {
            low[i] = std::min(low[i], positions[place.item][i]);
            high[i] = std::max(high[i], positions[place.item][i]);
        }
    const double extent =
        std::max({double{high[0]} - low[0], double{high[1]} - low[1], double{high[2]} - low[2]});
    if (extent == 0.0)
        return false;
    const double scale = (kCells - 1) / extent;
    for (CurvePlace& place : places) {
        place.code = 0;
        for (int i = 0; i < 3; ++i) {
            const double cell = (double{positions[place.item][i]} - low[i]) * scale;
            place.code |= spread(static_cast<std::uint32_t>(static_cast<int>(cell))) << i;
        }
    }
    return true;
}

/// By the codes, digit after digit; equal ones keep their order.
void radixSort(Places places, Places spare) {
    constexpr int kDigits = 3;
    const auto digitOf = [](const CurvePlace& place, int digit) {
        return place.code >> digit * kBits & (kCells - 1);
    };
    std::array<std::array<std::uint32_t, kCells>, kDigits> starts{};
    for (const CurvePlace& place : places)
        for (int digit = 0; digit < kDigits; ++digit)
            ++starts[digit][digitOf(place, digit)];
    std::copy(places.begin(), places.end(), spare.begin()); // an odd number of moves then ends in places
    for (int digit = 0; digit < kDigits; ++digit) {
        std::uint32_t sum = 0;
        for (std::uint32_t& start : starts[digit])
            start = std::exchange(sum, sum + start);
        for (const CurvePlace& place : spare)
            places[starts[digit][digitOf(place, digit)]++] = place;
        std::swap(places, spare);
    }
}

void sort(Positions positions, Places places, Places spare) {
    if (places.empty() || !encode(positions, places))
        return;
    radixSort(places, spare);
    for (std::size_t first = 0; first + kMany < places.size(); ++first) {
        std::size_t end = first + kMany;
        if (places[first].code != places[end].code)
            continue;
        while (end < places.size() && places[end].code == places[first].code)
            ++end;
        sort(positions, places.subspan(first, end - first), spare.subspan(first, end - first));
        first = end - 1;
    }
}

} // namespace

std::vector<CurvePlace> curveOrder(Positions positions) {
    std::vector<CurvePlace> places(positions.size()), spare(positions.size());
    for (std::uint32_t i = 0; i < places.size(); ++i)
        places[i].item = i;
    sort(positions, places, spare);
    return places;
}
