// States that a host may have set when it calls the library.
#pragma once

#include <span>
#include <string_view>

#include "viewer/contract/frames.h"
#include "viewer/contract/hostobjects.h"

namespace nruview {

/// What a state is about, by which the table of what families take from the host names it.
enum class StateGroup {
    Region,   ///< where, and whether, fragments land at all
    Depth,    ///< what becomes of them by their depth
    Mixing,   ///< by their colour: blending, logic operation, alpha test
    Faces,    ///< how polygons become fragments
    Strokes,  ///< how lines and points do
    Clipping, ///< clip planes
    Lighting, ///< lights, materials, shading
    Textures, ///< of fixed function
    Fog,
    Current,  ///< current colour and coordinates
    Programs, ///< of the host in use
    Plumbing, ///< selectors, bindings, stacks and pixel store, which no picture should show
};

struct HostState {
    std::string_view name;
    StateGroup group;
    void (*set)(const HostObjects&);
    int version = 0; ///< of OpenGL that it takes, 10 times major plus minor
    Target target = Target::Window;
    void (*end)() = nullptr; ///< of what is begun rather than set
};

std::span<const HostState> hostStates();

} // namespace nruview
