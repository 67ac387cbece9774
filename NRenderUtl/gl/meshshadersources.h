// The GLSL sources of face shading, one string each, from the files of glsl/. What they begin with depends on
// the driver: see nglmeshshader.cpp.
#pragma once

extern const char* const kMeshShadeVertexMain;           // meshshade.vert.glsl
extern const char* const kMeshShadeFragmentMain;         // meshshade.frag.glsl
extern const char* const kFaceShadeTriangleGeometryMain; // faceshade_triangle.geom.glsl
extern const char* const kFaceShadeQuadGeometryMain;     // faceshade_quad.geom.glsl
extern const char* const kFaceShadeLibrary;              // faceshade.glsl
