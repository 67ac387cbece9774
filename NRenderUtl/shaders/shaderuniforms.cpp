// Uniforms of the program in use: by name, by enumeration, and whole records.
#include <algorithm>
#include <string>
#include <vector>

#include "NRenderUtl/gl/ngl.h"
#include "NRenderUtl/host/hostgl.h"
#include "NRenderUtl/host/hostmath.h"
#include "NRenderUtl/shaders/nshaders.h"
#include "NRenderUtl/shaders/shadernames.h"

namespace {

constexpr int kMaxLights = 8; ///< size of the light arrays in GLSL

/// Names of the members of one light, put together once.
struct LightNames {
    explicit LightNames(int i) {
        const std::string light = "g_lights[" + std::to_string(i) + "].",
                          physical = "g_pbrlights[" + std::to_string(i) + "].";
        status = light + "status";
        position = light + "position";
        ambient = light + "ambient";
        diffuse = light + "diffuse";
        specular = light + "specular";
        constant = light + "constattn";
        linear = light + "linattn";
        quadratic = light + "quadattn";
        physicalStatus = physical + "status";
        physicalPosition = physical + "position";
    }
    std::string status, position, ambient, diffuse, specular, constant, linear, quadratic;
    std::string physicalStatus, physicalPosition;
};

const LightNames& namesOfLight(int i) {
    static const std::vector<LightNames> names = [] {
        std::vector<LightNames> made;
        for (int light = 0; light < kMaxLights; ++light)
            made.emplace_back(light);
        return made;
    }();
    return names[static_cast<std::size_t>(i)];
}

GLint locationOf(std::int32_t program, const char* name) {
    return program > 0 && name ? glGetUniformLocation(static_cast<GLuint>(program), name) : -1;
}

} // namespace

int NShaderProgram::uniformLocation(RenderingShaderUniform uniform) {
    if (static_cast<unsigned>(uniform) >= RenderUniformCount)
        return -1;
    std::int32_t& location = m_uniformLocations[uniform];
    if (location == -1)
        location = locationOf(m_program, kUniformNames[uniform]);
    return location;
}

// --- one value ---------------------------------------------------------------------------------------------

void NShaderProgram::SetUniformValue(const char* name, int value) {
    if (name)
        glUniform1i(locationOf(m_program, name), value);
}

void NShaderProgram::SetUniformValue(RenderingShaderUniform uniform, int value) {
    glUniform1i(uniformLocation(uniform), value);
}

void NShaderProgram::SetUniformValue(const char* name, float value) {
    if (name)
        glUniform1f(locationOf(m_program, name), value);
}

void NShaderProgram::SetUniformValue(RenderingShaderUniform uniform, float value) {
    glUniform1f(uniformLocation(uniform), value);
}

void NShaderProgram::SetUniformValue(const char* name, int count, int* values) {
    if (name)
        glUniform1iv(locationOf(m_program, name), count, values);
}

void NShaderProgram::SetUniformValue(RenderingShaderUniform uniform, int count, int* values) {
    glUniform1iv(uniformLocation(uniform), count, values);
}

void NShaderProgram::SetUniformValue(RenderingShaderUniform uniform, int count, float* values) {
    glUniform1fv(uniformLocation(uniform), count, values);
}

void NShaderProgram::SetVec3UniformValue(const char* name, float* xyz) {
    if (name)
        glUniform3fv(locationOf(m_program, name), 1, xyz);
}

void NShaderProgram::SetVec3UniformValue(RenderingShaderUniform uniform, float* xyz) {
    glUniform3fv(uniformLocation(uniform), 1, xyz);
}

void NShaderProgram::SetVec4UniformValue(const char* name, float* xyzw) {
    if (name)
        glUniform4fv(locationOf(m_program, name), 1, xyzw);
}

void NShaderProgram::SetVec4UniformValue(RenderingShaderUniform uniform, float* xyzw) {
    glUniform4fv(uniformLocation(uniform), 1, xyzw);
}

void NShaderProgram::SetUniform4x4Matrix(const char* name, float* matrix) {
    if (name)
        glUniformMatrix4fv(locationOf(m_program, name), 1, GL_FALSE, matrix);
}

void NShaderProgram::SetUniform4x4Matrix(RenderingShaderUniform uniform, float* matrix) {
    glUniformMatrix4fv(uniformLocation(uniform), 1, GL_FALSE, matrix);
}

// --- records -----------------------------------------------------------------------------------------------

void NShaderProgram::SetMVPMatrices(float* projection, float* modelView, bool normalMatrix) {
    if (projection)
        SetUniform4x4Matrix(RenderUniformProjection, projection);
    SetUniform4x4Matrix(RenderUniformModelView, modelView);
    if (!normalMatrix)
        return;
    NgFMatrix4 matrix, inverse;
    std::copy_n(modelView, 16, matrix.m);
    matrix.inverse(inverse);
    SetUniform4x4Matrix(RenderUniformNormalMatrix, inverse.transposed().m);
}

void NShaderProgram::SetLightUniforms(int count, NglLightParams* lights) {
    for (int i = 0; i < std::min(count, kMaxLights); ++i) {
        NglLightParams& light = lights[i];
        const LightNames& names = namesOfLight(i);
        SetUniformValue(names.status.c_str(), light.enabled);
        if (light.enabled == 0)
            continue;
        SetVec4UniformValue(names.position.c_str(), light.position);
        SetVec4UniformValue(names.ambient.c_str(), light.ambient);
        SetVec4UniformValue(names.diffuse.c_str(), light.diffuse);
        SetVec4UniformValue(names.specular.c_str(), light.specular);
        SetUniformValue(names.constant.c_str(), light.constantAttenuation);
        SetUniformValue(names.linear.c_str(), light.linearAttenuation);
        SetUniformValue(names.quadratic.c_str(), light.quadraticAttenuation);
    }
}

void NShaderProgram::SetPBRLightUniforms(int count, NglLightParams* lights) {
    for (int i = 0; i < std::min(count, kMaxLights); ++i) {
        const LightNames& names = namesOfLight(i);
        SetUniformValue(names.physicalStatus.c_str(), lights[i].enabled);
        SetVec4UniformValue(names.physicalPosition.c_str(), lights[i].position);
    }
}

void NShaderProgram::SetMateiralUniforms(NglMatParams* front, NglMatParams* back) {
    SetVec4UniformValue(RenderUniformFrontEmission, front->emission);
    SetVec4UniformValue(RenderUniformFrontAmbient, front->ambient);
    SetVec4UniformValue(RenderUniformFrontDiffuse, front->diffuse);
    SetVec4UniformValue(RenderUniformFrontSpecular, front->specular);
    SetUniformValue(RenderUniformFrontShininess, front->shininess);
    SetVec4UniformValue(RenderUniformBackEmission, back->emission);
    SetVec4UniformValue(RenderUniformBackAmbient, back->ambient);
    SetVec4UniformValue(RenderUniformBackDiffuse, back->diffuse);
    SetVec4UniformValue(RenderUniformBackSpecular, back->specular);
    SetUniformValue(RenderUniformBackShininess, back->shininess);
}
