// How the programs of face shading are built.
#pragma once

/// A program of one source a stage; geometrySource may be null. With a geometry source it is not linked yet:
/// parameters of that stage may have to be set first. 0, with a console message, on failure.
unsigned int buildMeshShader(const char* vertexSource, const char* geometrySource,
                             const char* fragmentSource);
