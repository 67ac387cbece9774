// The GLSL program that batches are drawn with. What it is made of lies above the layer, which therefore is
// told here how to build it and how to draw with it.
#pragma once

#include <cstdint>

/// What a flush draws: points or, with indices, lines, from client memory.
struct BatchVertices {
    std::uint32_t count;
    const float* positions;       ///< 3 for each vertex
    const float* texCoords;       ///< 2 for each vertex; null: its color counts
    const std::uint32_t* colors;  ///< packed
    const std::uint32_t* indices; ///< null: points
    float pointSize;

    /// The draw call alone, for arrays and program as they are set up.
    void draw() const;
};

struct BatchProgramHook {
    /// Whether the program was built.
    bool (*build)();
    /// Draws with it, in the view of the record; colorScale: contours by the bands of the active attributes
    /// instead of their texture.
    void (*draw)(const BatchVertices& vertices, bool colorScale);
};

/// Stores the hook; returns true so that a static initialiser can call it.
bool registerBatchProgram(const BatchProgramHook& hook);
/// The hook; null members without one.
const BatchProgramHook& batchProgramHook();
