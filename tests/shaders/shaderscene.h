// Fixture of the tests that evaluate the catalogue's programs: a float target on which each primitive has
// pixels of its own, in model units of one pixel, and a record of how far the pixels are from the rules.
#pragma once

#include <optional>
#include <string>
#include <vector>

#define GLM_ENABLE_EXPERIMENTAL
#include <glm/gtc/matrix_transform.hpp>
#include <glm/gtx/string_cast.hpp>

#include "NRenderUtl/mesh/parameterblock.h"
#include "NRenderUtl/shaders/meshprograms.h"
#include "NRenderUtl/shaders/nshaders.h"
#include "tests/shaders/shadertwins.h"
#include "tests/support/gltest.h"

namespace nrutest {

/// The value of every pixel that nothing was drawn on.
inline constexpr float kNothing = -7;

/// Compares pixels with the rules and keeps the worst.
struct Audit {
    long compared = 0;
    double largest = 0;
    std::string worst;

    template <class Describe>
    void add(std::optional<dvec4> expected, glm::vec4 pixel, const Describe& describe) {
        ++compared;
        const dvec4 wanted = expected.value_or(dvec4(kNothing));
        double difference = 0;
        for (int c = 0; c < 4; ++c)
            if (const double apart = std::abs(wanted[c] - pixel[c]); !(apart <= difference))
                difference = std::isnan(apart) ? HUGE_VAL : apart;
        if (difference <= largest)
            return;
        largest = difference;
        worst = describe() + ": " + glm::to_string(pixel) + " against the rules' " + glm::to_string(wanted);
    }
};

struct Vertices {
    std::vector<glm::vec3> position;
    std::vector<glm::vec4> vertexNormal;
    std::vector<glm::vec3> normal;
    std::vector<glm::vec4> texture;
    std::vector<float> element, size, diameter;
};

class ShaderTest : public GlTest {
protected:
    void SetUp() override {
        GlTest::SetUp();
        SetRenderingContextActive(true);
        InitRenderDefaults();
        NglInitGLExtensions();
        RenderingInitShaders();
        GLuint target, color;
        glGenRenderbuffers(1, &color);
        glBindRenderbuffer(GL_RENDERBUFFER, color);
        glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA32F, kSize, kSize);
        glGenFramebuffers(1, &target);
        glBindFramebuffer(GL_FRAMEBUFFER, target);
        glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, color);
        ASSERT_EQ(glCheckFramebufferStatus(GL_FRAMEBUFFER), GLenum(GL_FRAMEBUFFER_COMPLETE));
        glClampColor(GL_CLAMP_READ_COLOR, GL_FALSE);
        glClampColor(GL_CLAMP_FRAGMENT_COLOR, GL_FALSE);
        glEnable(GL_PROGRAM_POINT_SIZE);
        glEnable(GL_POINT_SPRITE);
    }

    /// Takes a program into use; in eye space a unit is a pixel of the target.
    void use(NShaderProgram& program, glm::mat4 modelView = glm::mat4(1)) {
        m_program = &program;
        ASSERT_TRUE(program.IsProgramValid());
        program.UseProgram(true);
        glm::mat4 projection = glm::ortho(0.0f, float(kSize), 0.0f, float(kSize), -100.0f, 100.0f);
        program.SetMVPMatrices(glm::value_ptr(projection), glm::value_ptr(modelView), true);
        set("g_ptsize_scale", 1.0f);
    }
    void useCatalogue(_RenderingShaderType type) { use(*RenderingGetShaderProgram(type)); }
    void set(const char* name, int value) { m_program->SetUniformValue(name, value); }
    void set(const char* name, float value) { m_program->SetUniformValue(name, value); }
    void set(const char* name, glm::vec3 value) { m_program->SetVec3UniformValue(name, &value.x); }
    void set(const char* name, glm::vec4 value) { m_program->SetVec4UniformValue(name, &value.x); }
    void set(const MeshSettings& settings) {
        for (const MeshSetting& setting : kMeshSettings)
            set(setting.name, settings.*setting.field);
    }
    /// What the programs that read from a buffer know of the lights.
    void set(const LightKinds& kinds) { m_lightKinds = kinds; }
    void set(const Lighting& l) {
        Lighting lighting = l; // the setters' pointers are not const
        m_program->SetLightUniforms(8, lighting.lights.data());
        m_program->SetMateiralUniforms(&lighting.front, &lighting.back);
        m_program->SetPBRLightUniforms(8, lighting.pbrLights.data());
        set("g_lightsOff", l.off);
        set("g_usepbrmat", l.physicallyBased);
        set("g_hdrreflection", l.environment);
        set("g_cameraposition", glm::vec3(l.camera));
        set("g_pbrMat.metalness", float(l.metalness));
        set("g_pbrMat.roughness", float(l.roughness));
        set("g_pbrMat.reflectivity", float(l.reflectivity));
        set("g_pbrMat.amb_occlusion", 1.0f);
        m_lighting = l;
        setBlock();
    }
    void set(const Contour& contour) {
        m_program->SetColorScaleUniforms(&contour.scale);
        m_scale = contour.scale;
        setBlock();
        glm::mat4 matrix(contour.textureMatrix);
        m_program->SetUniform4x4Matrix("g_texmat", glm::value_ptr(matrix));
        set("g_bts", contour.scaled);
        set("g_tsf", contour.factor);
        set("g_ttf", contour.offset);
        texels("g_tbuff", GL_R32F, contour.elementValues);
        if (const int unit = unitOf("g_ctt"); unit >= 0 && !contour.texture.empty())
            uploadTexture(unit, contour.texture);
    }
    void set(const MeshFacts& facts) {
        set(facts.contour);
        set("g_color", glm::vec3(facts.vertexColor));
        int code = 0; // for programs that read from a buffer
        for (int channel = 2; channel >= 0; --channel)
            code = code << 8 | static_cast<int>(facts.vertexColor[channel] * 255 + 0.5);
        m_program->SetUniformValue(kSidesUniform, 1, &code);
        set("g_fcolor", glm::vec4(facts.frontColor));
        set("g_bcolor", glm::vec4(facts.backColor));
        set("g_es_col", glm::vec3(facts.selectedColor));
        set("g_eh_col", glm::vec3(facts.highlightedColor));
        set("g_alphavalue", float(facts.alpha));
        texels("g_fpbuff", GL_R32I, facts.failingElement);
        texels("g_dbuff", GL_R32I, facts.derivedElement);
        texels("g_fporgconnbuff", GL_R32I, facts.originalPrimitive);
        texels("g_elnormbuff", GL_RGB32F, std::vector<glm::vec3>(facts.normals.begin(), facts.normals.end()));
        const auto ofElements = [&](const char* name, GLenum format, auto field) {
            std::vector<decltype(field(facts.elements[0]))> data;
            for (const ElementFacts& e : facts.elements)
                data.push_back(field(e));
            texels(name, format, data);
        };
        ofElements("g_clipelembuff", GL_R32I, [](const ElementFacts& e) { return e.clipCode; });
        ofElements("g_osbuff", GL_R8UI, [](const ElementFacts& e) { return std::uint8_t(e.visible); });
        ofElements("g_shcbuff", GL_R8UI, [](const ElementFacts& e) { return std::uint8_t(e.picked); });
        ofElements("g_vlbuff", GL_R32I, [](const ElementFacts& e) { return e.failsAt; });
        ofElements("g_vlabuff", GL_R32I, [](const ElementFacts& e) { return e.failsBelow; });
        ofElements("g_mcbuff", GL_RGBA8UI, [](const ElementFacts& e) { return glm::u8vec4(e.color); });
    }
    /// Fills the texture buffer of a sampler; nothing where the program lacks the sampler.
    template <class T>
    void texels(const char* sampler, GLenum format, const std::vector<T>& data) {
        const int unit = unitOf(sampler);
        if (unit < 0 || data.empty())
            return;
        GLuint buffer, texture;
        glGenBuffers(1, &buffer);
        glBindBuffer(GL_TEXTURE_BUFFER, buffer);
        glBufferData(GL_TEXTURE_BUFFER, data.size() * sizeof(T), data.data(), GL_STATIC_DRAW);
        glGenTextures(1, &texture);
        glActiveTexture(GL_TEXTURE0 + unit);
        glBindTexture(GL_TEXTURE_BUFFER, texture);
        glTexBuffer(GL_TEXTURE_BUFFER, format, buffer);
        glActiveTexture(GL_TEXTURE0);
    }

    /// Draws on a cleared target and returns its pixels, rows from the bottom.
    std::vector<glm::vec4> draw(GLenum mode, const Vertices& v) {
        glClearColor(kNothing, kNothing, kNothing, kNothing);
        glClear(GL_COLOR_BUFFER_BIT);
        std::vector<int> enabled;
        const auto attribute = [&](const char* name, const auto& data) {
            const int index = m_program->GetVertexAttributeLocation(name);
            if (index < 0 || data.empty())
                return;
            m_program->SetVertexAttribute(index, sizeof(data[0]) / sizeof(float),
                                          reinterpret_cast<const float*>(data.data()));
            enabled.push_back(index);
        };
        attribute("g_pos_attrib", v.position);
        attribute("g_vnorm_attrib", v.vertexNormal);
        attribute("g_norm_attrib", v.normal);
        attribute("g_tex_attrib", v.texture);
        attribute(kElementAttribute, v.element);
        attribute("g_param_size_attrib", v.size);
        attribute("g_diameter_attrib", v.diameter);
        glDrawArrays(mode, 0, static_cast<int>(v.position.size()));
        for (int index : enabled)
            m_program->EnableDisableVertexAttribute(index, false);
        std::vector<glm::vec4> pixels(kSize * kSize);
        glReadPixels(0, 0, kSize, kSize, GL_RGBA, GL_FLOAT, pixels.data());
        return pixels;
    }

private:
    /// Lights and scale as last set, for a program that reads them from a buffer.
    void setBlock() {
        if (unitOf("g_block") < 0)
            return;
        const auto entries = makeScaleEntries(m_scale);
        const auto cells = entries ? makeScaleCells(*entries) : std::nullopt;
        std::vector<BlockTexel> block(kParameterBlockSize);
        putParameterBlock({m_lighting.lights, m_lighting.front, m_lighting.back}, m_lightKinds,
                          {entries ? &*entries : nullptr, cells ? &*cells : nullptr},
                          std::span<BlockTexel, kParameterBlockSize>(block));
        texels("g_block", GL_RGBA32F, block);
        if (entries)
            set(kEntriesUniform,
                glm::vec3(entries->entries.size() - 1, entries->guessFactor, entries->guessOffset));
    }
    int unitOf(const char* sampler) const {
        GLint program = 0, unit = -1;
        glGetIntegerv(GL_CURRENT_PROGRAM, &program);
        const int location = glGetUniformLocation(program, sampler);
        if (location >= 0)
            glGetUniformiv(program, location, &unit);
        return unit;
    }
    static void uploadTexture(int unit, const std::vector<glm::vec4>& texels) {
        GLuint texture;
        glGenTextures(1, &texture);
        glActiveTexture(GL_TEXTURE0 + unit);
        glBindTexture(GL_TEXTURE_2D, texture);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA32F, Contour::kWidth, Contour::kHeight, 0, GL_RGBA, GL_FLOAT,
                     texels.data());
        for (GLenum filter : {GL_TEXTURE_MIN_FILTER, GL_TEXTURE_MAG_FILTER})
            glTexParameteri(GL_TEXTURE_2D, filter, GL_NEAREST);
        for (GLenum wrap : {GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T})
            glTexParameteri(GL_TEXTURE_2D, wrap, GL_CLAMP_TO_EDGE);
        glActiveTexture(GL_TEXTURE0);
    }

    NShaderProgram* m_program = nullptr;
    Lighting m_lighting;
    LightKinds m_lightKinds;
    RenderColorScale m_scale;
};

/// The middle of pixel i of the target, at a depth.
inline glm::vec3 pixelCentre(int i, float z = 0) {
    return {i % 64 + 0.5f, i / 64 + 0.5f, z};
}

} // namespace nrutest
