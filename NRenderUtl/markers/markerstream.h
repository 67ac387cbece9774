// Vertices and indices that one draw uses and the next one replaces.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "NRenderUtl/gl/stateguards.h"
#include "NRenderUtl/shaders/nshaders.h"

/// Part of a vertex, as the attribute of a name takes it.
struct VertexPart {
    const char* name;
    int components;
    std::size_t offset; ///< bytes
};

/// For the length of a block the arrays of a draw come from two buffers of the library, which all streams
/// share; the host's arrays and bindings stay.
class MarkerStream {
public:
    /// Vertices of size bytes, of which the program in use takes these parts. Parts that it lacks are none.
    MarkerStream(const NShaderProgram& program, std::size_t vertexSize, std::span<const VertexPart> parts);
    ~MarkerStream();
    MarkerStream(const MarkerStream&) = delete;
    MarkerStream& operator=(const MarkerStream&) = delete;

    void drawPoints(const void* vertices, std::size_t count);
    void drawTriangles(const void* vertices, std::size_t count, std::span<const std::uint16_t> indices);

private:
    const ClientArraysGuard m_hostArrays;
    const std::size_t m_vertexSize;
    std::uint32_t m_enabled = 0; ///< a bit for each attribute
};
