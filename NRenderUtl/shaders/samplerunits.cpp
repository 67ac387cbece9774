// Texture units of the samplers.
#include "NRenderUtl/shaders/samplerunits.h"

#include "NRenderUtl/shaders/programinuse.h"

void assignSamplerUnits(NShaderProgram& program) {
    const ProgramInUseGuard guard;
    program.UseProgram(true);
    for (const RenderingShaderUniform sampler : kSamplerOfUnit)
        program.SetUniformValue(sampler, samplerUnit(sampler));
    program.SetUniformValue("g_block", kBlockUnit);
}
