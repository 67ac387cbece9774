// The process-wide rendering switches, for the start-up that decides them and the rooms that read them.
#pragma once

struct RenderSwitches {
    int fastRenderer = 1;
    int userDefinedFastMode = 1;     ///< as the host gave it; nothing here reads it
    int geometryShaderRendering = 1; ///< optimized smooth shading
    int optimizedSph = 1;
    int sphereShaderRendering = 0; ///< deliberately never switched on
    bool contextActive = false;    ///< the host's word, not the driver's
    bool environmentReflection = false;
    bool physicallyBased = false;
    bool defaultsRead = false;
};

RenderSwitches& renderSwitches();
