// What the rooms of image-based lighting share.
#pragma once

#include <initializer_list>

#include "NRenderUtl/gl/stateguards.h"
#include "NRenderUtl/host/hostgl.h"
#include "NRenderUtl/lighting/nlighting.h"
#include "NRenderUtl/shaders/nshaders.h"

constexpr int kEnvironmentSize = 1024, kIrradianceSize = 32, kPrefilterSize = 256, kBrdfTableSize = 512;
constexpr int kPrefilterLevels = 5;
constexpr int kCubeFaces = 6, kCubeVertices = 36;

/// A program of one vertex source and one fragment source in parts, that leaves nothing behind when it fails.
class NImageBasedLightHandler::Program : public NShaderProgram {
public:
    /// Once for an object; true also for one that is built. label is the program's name for debuggers.
    bool Build(const char* label, const char* vertexSource, std::initializer_list<const char*> fragmentParts);
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
} kBuildSteps[] = {{"environment", 0.0, 0.01},    {"irradiance", 0.01, 0.76},
                   {"reflections", 0.76, 0.765},  {"reflections", 0.765, 0.865},
                   {"reflections", 0.865, 0.925}, {"reflections", 0.925, 0.945},
                   {"reflections", 0.945, 0.95},  {"reflectance table", 0.95, 1.0}};

/// Tells that a part of a step, from 0 to 1, is drawn. The driver finishes it before if someone listens, and
/// starts on it in any case, so that none sees seconds of work at once.
void endOfPiece(int step, double part);
