// The GLSL sources by role, one string each, from the files of glsl/ with the same names.
#pragma once

extern const char* const kMeshVertexMain;            // mesh.vert.glsl
extern const char* const kMeshFragmentMain;          // mesh.frag.glsl
extern const char* const kMeshTriangleGeometryMain;  // mesh_triangle.geom.glsl
extern const char* const kMeshQuadGeometryMain;      // mesh_quad.geom.glsl
extern const char* const kMeshGeometryFragmentMain;  // mesh_geometry.frag.glsl
extern const char* const kPointVertexMain;           // point.vert.glsl
extern const char* const kPointFragmentMain;         // point.frag.glsl
extern const char* const kBatchVertexMain;           // batch.vert.glsl
extern const char* const kBatchFragmentMain;         // batch.frag.glsl
extern const char* const kMeshRendererVertexMain;    // meshrenderer.vert.glsl
extern const char* const kMeshRendererFragmentMain;  // meshrenderer.frag.glsl
extern const char* const kMeshPhysicalVertexMain;    // meshphysical.vert.glsl
extern const char* const kMeshPhysicalFragmentMain;  // meshphysical.frag.glsl
extern const char* const kMarkerVertexMain;          // marker.vert.glsl
extern const char* const kMarkerFragmentMain;        // marker.frag.glsl
extern const char* const kMarkerTrianglesVertexMain; // markertriangles.vert.glsl
extern const char* const kMarkerRaysVertexMain;      // markerrays.vert.glsl
extern const char* const kMarkerRaysFragmentMain;    // markerrays.frag.glsl
extern const char* const kMarkerDiscsVertexMain;     // markerdiscs.vert.glsl
extern const char* const kMarkerDiscsFragmentMain;   // markerdiscs.frag.glsl
extern const char* const kProbeVertexMain;           // probe.vert.glsl
extern const char* const kProbeFragmentMain;         // probe.frag.glsl
extern const char* const kLightingLibrary;           // lighting.glsl
extern const char* const kPlainLightLibrary;         // plainlight.glsl
extern const char* const kColorBandLibrary;          // colorbands.glsl
extern const char* const kBlockLightingLibrary;      // blocklighting.glsl
extern const char* const kBlockBandLibrary;          // blockbands.glsl
extern const char* const kElementVisibilityLibrary;  // elementvisibility.glsl
extern const char* const kVisibilityListLibrary;     // visibilitylist.glsl
extern const char* const kConnectivityLibrary;       // connectivity.glsl
