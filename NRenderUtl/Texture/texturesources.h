// The GLSL sources of this folder, one string each, from the files of glsl/ with the same names.
#pragma once

extern const char* const kBoxVertexMain;       // box.vert.glsl
extern const char* const kBoxFragmentMain;     // box.frag.glsl
extern const char* const kTextureVertexMain;   // texture.vert.glsl
extern const char* const kTextureFragmentMain; // texture.frag.glsl
extern const char* const kRoundedEdgeLibrary;  // roundededge.glsl
