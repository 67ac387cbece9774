// The uniforms of the mesh programs, as the element mesh sets them.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "NRenderUtl/gl/ngl.h"
#include "NRenderUtl/mesh/elementplan.h"
#include "NRenderUtl/mesh/parameterblock.h"
#include "NRenderUtl/shaders/meshprograms.h"

/// Uniforms that choose what a program does.
struct ElementSwitch {
    RenderingShaderUniform uniform;
    int value;
};
/// derived: primitives count something else than elements.
using ElementSwitches = std::array<ElementSwitch, 20>;
ElementSwitches switchesOf(const ElementPlan& plan, bool derived);
/// Whether normals are fetched by primitive: the geometry stages make them, and the own programs those of
/// triangles.
bool fetchesNormals(const ElementPlan& plan);

/// Lights and materials of the view record.
BlockLighting blockLighting();

/// Sets uniforms of a program in use. Of a program that nobody else sets it is given the memory of what it
/// set, and then calls GL for what has changed alone.
class ElementUniforms {
public:
    using Matrix = std::array<float, 16>;
    struct Memory {
        std::array<std::optional<std::uint32_t>, RenderUniformCount> plain;
        std::optional<std::array<Matrix, 2>> matrices;
        std::uint64_t scaleNumber = 0;
        std::optional<std::array<int, 4>> codes; ///< of colours
    };

    explicit ElementUniforms(NShaderProgram& program, Memory* memory = nullptr)
        : m_program(program), m_memory(memory) {}

    void set(RenderingShaderUniform uniform, int value);
    void set(RenderingShaderUniform uniform, float value);
    void setColor3(RenderingShaderUniform uniform, NgColorLong color);
    void setColor4(RenderingShaderUniform uniform, NgColorLong color);
    /// With the normal matrix.
    void setMatrices(Matrix projection, Matrix modelView);
    /// What a plan asks for but for the switches. An own program has lights, materials and bands from a
    /// block.
    void setLook(const ElementPlan& plan, const ElementScene& scene);

private:
    void setColors(const ElementPlan& plan, const ngl::NglElementAttributes& how);
    void setCodes(const ElementPlan& plan, const ngl::NglElementAttributes& how);
    void setLighting();
    void setScale(const ElementValues& values);
    bool isNew(RenderingShaderUniform uniform, std::uint32_t bits);

    NShaderProgram& m_program;
    Memory* m_memory;
};

/// The element mesh's own program for a plan, with the memory of its uniforms. It lives as long as the
/// process.
struct ElementProgram {
    NShaderProgram& program;
    ElementUniforms::Memory memory{};
    int numberLocation = -1; ///< of the attribute that carries the numbers
};
ElementProgram& ownProgram(const ElementPlan& plan, bool derived);
