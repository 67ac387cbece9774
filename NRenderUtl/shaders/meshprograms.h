// Programs that stages of the catalogue make in other ways, for the renderers of the library.
#pragma once

#include <compare>
#include <string>
#include <vector>

#include "NRenderUtl/shaders/nshaders.h"

/// An int uniform that a program holds as a constant instead.
struct FixedSwitch {
    std::string name;
    int value;
    auto operator<=>(const FixedSwitch&) const = default;
};

/// What a program may know of the lights that are on, which spares it a loop, a division and most of what it
/// would read.
struct LightKinds {
    int count = 0; ///< 0: any number
    bool attenuated = true;
    bool plain = false; ///< a known number, not attenuated, grey; both sides shine alike and do not emit
    auto operator<=>(const LightKinds&) const = default;
};

/// What is compiled into a program rather than read: a driver without a GPU computes both sides of every
/// switch, for every fragment.
struct MeshProgramVariant {
    std::vector<FixedSwitch> switches{}; ///< in the same order for the same program
    /// Lights, materials and bands come from the buffer of blocklayout.h, bound to kBlockUnit, and the
    /// program has kEntriesUniform in place of their uniforms: vec3 of the last entry, guess factor and guess
    /// offset. Its colours are those of kSidesUniform: ints with a byte each for red, green and blue, of
    /// front (or both sides) and back, of selected and of highlighted elements.
    bool block = false;
    bool highlights = true; ///< with a block: not all are black
    LightKinds lights{};    ///< with a block
    bool cells = false;     ///< with a block: colours are those of the scale's cells
    bool flatShade = false; ///< with a block: vertices that carry numbers carry what plain lights share too
    /// Normals that the program derives point to the side that the winding says, as those of geometry stages
    /// do, rather than away from the viewer.
    bool windingNormals = false;
    auto operator<=>(const MeshProgramVariant&) const = default;
};

/// The mesh program that takes the element number from the provoking vertex's float attribute
/// kElementAttribute (exact up to 2^24) in place of the primitive id, which is faster on drivers that have to
/// count primitives. Same pictures as RenderShaderMesh, same uniforms but for the fixed ones, which it lacks.
/// Each variant is built when it is first asked for, which needs a current context, and lives as long as the
/// process. Not valid where the driver refuses it or IsFastRendererEnabled is 0.
NShaderProgram& elementMeshProgram(const MeshProgramVariant& variant = {});

inline constexpr const char* kElementAttribute = "g_elem_attrib";
inline constexpr const char* kEntriesUniform = "g_entries";
inline constexpr const char* kSidesUniform = "g_sides";

/// The defines of blocklighting.glsl for lights.
void defineLights(std::vector<std::string>& defines, const LightKinds& lights);
