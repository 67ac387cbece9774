// The open section of 3D markers, as its single draws and its arrays share it.
#pragma once

#include "NRenderUtl/gl/ngl.h"
#include "NRenderUtl/host/hostmath.h"
#include "NRenderUtl/markers/nmarkers.h"

/// What a section drawn by programs has taken from the host when it began.
struct MarkerSection {
    float modelView[16], projection[16], textureMatrix[16];
    NglMatParams frontMaterial, backMaterial;
    NglLightParams lights[8];
    bool clipped;
    unsigned number; ///< counts the sections
};

const MarkerSection& markerSection();
/// Whether a program draws in opaque colours alone.
bool drawsColorsAlone(const NShaderProgram& program);
/// Sends the section to the program in use, or its view alone.
void setSectionUniforms(NShaderProgram& program);
void setSectionView(NShaderProgram& program);
void setBlendingUniforms(NShaderProgram& program, bool blended);

/// The renderer of the open section if it has shapes of the kind, or none; else null, with a diagnostic.
N3DMarkerRenderer* openMarkerRenderer(bool spheres);

/// The frame of the line from a to a + b, z as long as the marker and x and y half as long as it is wide.
/// False for a line without a length.
bool axialTransform(const _NgFPoint3Str& a, const _NgFPoint3Str& b, float lengthScale, float widthRatio,
                    NgMatrix out);
