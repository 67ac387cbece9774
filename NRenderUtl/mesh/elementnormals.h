// Normals for the vertices of an element mesh whose host gives none.
#pragma once

#include "NRenderUtl/mesh/elementsurface.h"

/// Makes the normals: the mean of the faces about a node, by area. Where faces meet at more than the crease
/// angle the node gets a copy for each side, which the faces' corners then name. nodes: those of the surface,
/// model space. Throws std::bad_alloc.
void makeElementNormals(const double* nodes, double creaseDeg, ElementSurface& surface);
