// The GLSL sources of this folder, one string each, from the files of glsl/ with the same names.
#pragma once

extern const char* const kTextureVertexMain;   // texture.vert.glsl
extern const char* const kTextureFragmentMain; // texture.frag.glsl
