// What the rooms of image-based lighting share.
#pragma once

#include "NRenderUtl/gl/stateguards.h"
#include "NRenderUtl/host/hostgl.h"
#include "NRenderUtl/lighting/nlighting.h"
#include "NRenderUtl/shaders/nshaders.h"

constexpr int kEnvironmentSize = 1024, kIrradianceSize = 32, kPrefilterSize = 256, kBrdfTableSize = 512;
constexpr int kPrefilterLevels = 5;
constexpr int kCubeFaces = 6, kCubeVertices = 36;

/// A program of one vertex and one fragment source, that leaves nothing behind when it fails.
class NImageBasedLightHandler::Program : public NShaderProgram {
public:
    /// Once for an object; true also for one that is built. label is the program's name for debuggers.
    bool Build(const char* label, const char* vertexSource, const char* fragmentSource);
};

/// The parts of a build: what each says, and its share of the time, as measured with a software driver. The
/// levels of the prefiltered map follow each other.
enum BuildStep {
    EnvironmentStep,
    IrradianceStep,
    PrefilterStep,
    BrdfTableStep = PrefilterStep + kPrefilterLevels
};
constexpr struct {
    const char* name;
    double start, end;
} kBuildSteps[] = {{"environment", 0.0, 0.01},   {"irradiance", 0.01, 0.69},
                   {"reflections", 0.69, 0.70},  {"reflections", 0.70, 0.86},
                   {"reflections", 0.86, 0.93},  {"reflections", 0.93, 0.95},
                   {"reflections", 0.95, 0.955}, {"reflectance table", 0.955, 1.0}};

/// Tells that a part of a step, from 0 to 1, is drawn. The driver finishes it before if someone listens, and
/// starts on it in any case, so that none sees seconds of work at once.
void endOfPiece(int step, double part);
