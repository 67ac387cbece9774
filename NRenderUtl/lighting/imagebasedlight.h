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

/// Shares of a build's time, as measured with a software driver, and what it says about them.
struct BuildStep {
    const char* name;
    double start, end;
};
constexpr BuildStep kEnvironmentStep{"environment", 0.0, 0.02}, kIrradianceStep{"irradiance", 0.02, 0.8},
    kPrefilterStep{"reflections", 0.8, 0.95}, kBrdfTableStep{"reflectance table", 0.95, 1.0};

/// Tells that a part of a step, from 0 to 1, is drawn. The driver finishes it before if someone listens, and
/// starts on it in any case, so that none sees seconds of work at once.
void endOfPiece(const BuildStep& step, double part);
