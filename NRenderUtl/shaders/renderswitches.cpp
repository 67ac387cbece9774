// The rendering switches: what start-up would like, what it reached, and what the host asks for.
#include "NRenderUtl/shaders/renderswitches.h"

#include "NRenderUtl/host/hostutl.h"
#include "NRenderUtl/shaders/nshaders.h"
#include "NRenderUtl/shaders/startuphook.h"

RenderSwitches& renderSwitches() {
    static RenderSwitches switches;
    return switches;
}

void InitRenderDefaults() {
    RenderSwitches& s = renderSwitches();
    if (s.defaultsRead)
        return;
    runStartUpHook();
    s.defaultsRead = true;
    s.optimizedSph = hostBoolSetting("DISPLAY_OPTIMIZED_SPH", true);
    const int mode = hostEnvironmentInt("NU_RENDERING_MODE").value_or(0);
    if (mode == 1 || mode == 2)
        s.fastRenderer = s.geometryShaderRendering = mode == 2;
}

int IsFastRendererEnabled() {
    return renderSwitches().fastRenderer;
}
int IsGeometryShaderRenderingEnabled() {
    return renderSwitches().geometryShaderRendering;
}
int CanUseOptimizedSPH() {
    return renderSwitches().optimizedSph;
}
int IsSphereShaderRenderingEnabled() {
    return renderSwitches().sphereShaderRendering;
}

void SetUserDefinedFastRenderingMode(int mode) {
    renderSwitches().userDefinedFastMode = mode;
    renderSwitches().fastRenderer = mode;
}

void EnablePhysicallyBasedRendering(bool enable) {
    renderSwitches().physicallyBased = enable;
}
bool IsPhysicallyBasedRenderingEnabled() {
    return renderSwitches().physicallyBased;
}
void EnableEnvironmentReflection(bool enable) {
    renderSwitches().environmentReflection = enable;
}
bool IsEnvironmentReflectionEnabled() {
    return renderSwitches().environmentReflection;
}

void SetRenderingContextActive(bool active) {
    renderSwitches().contextActive = active;
}
bool IsRenderingContextActive() {
    return renderSwitches().contextActive;
}
