// The colour scale as uniforms, which the shaders' band lookup reads.
#include "NRenderUtl/host/hostutl.h"
#include "NRenderUtl/mesh/colorbands.h"
#include "NRenderUtl/mesh/nmesh.h"
#include "NRenderUtl/shaders/nshaders.h"

namespace {

void setColor(NShaderProgram& program, const char* name, NgColorLong color) {
    float rgb[3];
    for (int i = 0; i < 3; ++i)
        rgb[i] = static_cast<float>((color >> (8 * i)) & 0xFF) / 255.0f;
    program.SetVec3UniformValue(name, rgb);
}

void setBand(NShaderProgram& program, int index, const RenderColorScale::ColorBand& band) {
    const auto member = [=](const char* field) { return hostFormat("g_clr_bands[%d].%s", index, field); };
    program.SetUniformValue(member("min_val").c_str(), band.min_val);
    program.SetUniformValue(member("max_val").c_str(), band.max_val);
    setColor(program, member("color").c_str(), band.color);
}

NgColorLong setOr(NgColorLong color, NgColorLong fallback) {
    return color != kUnsetColor ? color : fallback;
}

} // namespace

void NShaderProgram::SetColorScaleUniforms(const RenderColorScale* scale) {
    if (!scale)
        return;
    const auto& bands = scale->GetColorBands();
    const int count = static_cast<int>(bands.size());
    for (int i = 0; i < count; ++i)
        setBand(*this, i, bands[i]);
    SetUniformValue("g_num_clr_bands", count);
    if (count == 0)
        return;
    setColor(*this, "g_oor_min_clr", setOr(scale->GetOutOfRangeMinColor(), bands.front().color));
    setColor(*this, "g_oor_max_clr", setOr(scale->GetOutOfRangeMaxColor(), bands.back().color));
    SetUniformValue("g_band_min_val", scale->GetMinValue());
    SetUniformValue("g_band_max_val", scale->GetMaxValue());
}
