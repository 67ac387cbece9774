// Markers drawn as instances of their shape.
#pragma once

#include <vector>

#include "NRenderUtl/markers/markerarray.h"

/// Whether the driver draws instances with attributes of their own.
bool canDrawInstances();

/// Where the shape's own arrays are: names of buffers, or 0 and client memory.
struct MarkerBuffers {
    unsigned vertices, indices;
    const void *clientVertices, *clientIndices;
    int vertexCount, indexCount;
};

/// Draws all markers at once with the program in use, of the kind Instances.
void drawMarkerInstances(const NShaderProgram& program, const MarkerBuffers& buffers,
                         const MarkerShape& shape, const MarkerArray& markers);
