// Elements of 3 or 4 vertices drawn from index arrays in client memory.
#pragma once

#include <cstdint>

/// Draws count elements as triangles (corners 3) or quads (4) from the vertex arrays in force. Elements with
/// an index from vertexCount on are left out. No buffer may be bound for indices.
void drawClientElements(std::uint32_t vertexCount, const std::uint32_t* indices, std::uint32_t count,
                        int corners);
