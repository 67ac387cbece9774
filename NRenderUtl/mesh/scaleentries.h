// A colour scale as ranges that meet end to start, as blockbands.glsl searches them.
#pragma once

#include <optional>
#include <vector>

#include "NRenderUtl/mesh/nmesh.h"

/// Values from start on and below end have the colour. Colours are red, green and blue, exact in a float.
struct ScaleEntry {
    float start, end;
    float color;
    float smearedTo; ///< colour at end of a smeared scale; -1: the same
};

/// Entry 0 is for what is not a number, entry 1 starts at minus infinity.
struct ScaleEntries {
    std::vector<ScaleEntry> entries;
    float guessFactor, guessOffset; ///< value * factor + offset: about the entry of a value
};

/// At most so many entries has a scale: bands, what is between them, and out of range.
inline constexpr int kMostScaleEntries = 64 + 63 + 4;

/// The rules of colorbands.glsl for a scale with bands; nothing where the bands do not ascend without
/// overlap. Throws std::bad_alloc.
std::optional<ScaleEntries> makeScaleEntries(const RenderColorScale& scale);
