// The programs that the library shares, and how their stages are put together.
#pragma once

#include <string>
#include <vector>

#include "NRenderUtl/shaders/meshprograms.h"
#include "NRenderUtl/shaders/nshaders.h"

/// How the sources of a program differ from those of its catalogue type.
struct SourceChanges {
    std::vector<std::string> defines; ///< right after each stage's version line
    std::vector<FixedSwitch> switches;
    bool block = false;      ///< lights and bands from a buffer in place of uniforms
    bool plainLight = false; ///< by plainlight.glsl in place of lighting.glsl
};

struct ProgramComposition;

/// A program built from the library's sources, with sampler units assigned and a name for debuggers.
class ComposedProgram : public NShaderProgram {
public:
    /// From the sources of a catalogue type; whether it linked.
    bool build(_RenderingShaderType type, SourceChanges changes = {});
    /// From those of the batches.
    bool buildBatch(SourceChanges changes = {});
    /// From those of the mesh renderer.
    bool buildMeshRenderer(SourceChanges changes = {});
    /// From those that are physically based alone: by the light rig under the define LIGHT_RIG, else by the
    /// environment.
    bool buildMeshPhysical(SourceChanges changes = {});
    /// From those of the 3D markers.
    bool buildMarkers(SourceChanges changes = {});
    /// The same for markers whose triangles are placed already.
    bool buildMarkerTriangles(SourceChanges changes = {});
    /// From those of the markers that rays find: define SPHERES for spheres, else cylinders.
    bool buildMarkerRays(SourceChanges changes = {});
    /// The same for spheres in parallel views.
    bool buildMarkerDiscs(SourceChanges changes = {});

private:
    bool compose(ProgramComposition composition, SourceChanges changes);
};
