// The GLSL sources of image-based lighting, one string each, from the files of glsl/ with the same names.
#pragma once

extern const char* const kCubeFaceVertexMain;          // cubeface.vert.glsl
extern const char* const kEquirectangularFragmentMain; // equirectangular.frag.glsl
extern const char* const kConvolveFragmentMain;        // convolve.frag.glsl
extern const char* const kQuadVertexMain;              // quad.vert.glsl
extern const char* const kBrdfTableFragmentMain;       // brdftable.frag.glsl
extern const char* const kSkyBoxVertexMain;            // skybox.vert.glsl
extern const char* const kSkyBoxFragmentMain;          // skybox.frag.glsl
