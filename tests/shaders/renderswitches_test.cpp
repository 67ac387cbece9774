// The rendering switches: initial values, the defaults of the environment, and the host's own.
#include <cstdlib>
#include <tuple>

#include <gtest/gtest.h>

#include "NRenderUtl/shaders/nshaders.h"
#include "NRenderUtl/shaders/renderswitches.h"

namespace {

using Decision = std::tuple<int, int, int, int>; ///< fast, geometry stages, optimized SPH, spheres

Decision decision() {
    return {IsFastRendererEnabled(), IsGeometryShaderRenderingEnabled(), CanUseOptimizedSPH(),
            IsSphereShaderRenderingEnabled()};
}

TEST(RenderSwitches, TakeTheirDefaultsFromTheEnvironmentOnce) {
    EXPECT_EQ(decision(), (Decision{1, 1, 1, 0}));
    const std::tuple<int, const char*, const char*, Decision> rows[] = {
        // switches before, NU_RENDERING_MODE, DISPLAY_OPTIMIZED_SPH
        {1, "1", nullptr, {0, 0, 1, 0}}, {0, "2", "0", {1, 1, 0, 0}}, {1, nullptr, "off", {1, 1, 0, 0}},
        {1, "0", "1", {1, 1, 1, 0}},     {1, "3", "2", {1, 1, 1, 0}}, {0, "2x", nullptr, {0, 0, 1, 0}}};
    const auto set = [](const char* name, const char* value) {
        value ? setenv(name, value, 1) : unsetenv(name);
    };
    for (const auto& [before, mode, sph, expected] : rows) {
        SCOPED_TRACE(mode ? mode : "no mode");
        renderSwitches() = {};
        renderSwitches().fastRenderer = renderSwitches().geometryShaderRendering = before;
        set("NU_RENDERING_MODE", mode);
        set("DISPLAY_OPTIMIZED_SPH", sph);
        InitRenderDefaults();
        EXPECT_EQ(decision(), expected);
        set("NU_RENDERING_MODE", IsFastRendererEnabled() ? "1" : "2");
        InitRenderDefaults();
        EXPECT_EQ(decision(), expected) << "read twice";
    }
    SetUserDefinedFastRenderingMode(7);
    EXPECT_EQ(IsFastRendererEnabled(), 7);
}

} // namespace
