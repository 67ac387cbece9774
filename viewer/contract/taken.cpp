#include "viewer/contract/taken.h"

#include <epoxy/gl.h>

#include <algorithm>
#include <initializer_list>
#include <iterator>

namespace nruview {

namespace {

using enum FamilyKind;
using enum StateGroup;
using Names = std::initializer_list<std::string_view>;

template <class T>
bool isIn(const std::initializer_list<T>& list, const T& value) {
    return std::find(list.begin(), list.end(), value) != list.end();
}

/// Names stand for all families or states that begin with them.
bool isNamed(const Names& names, std::string_view name) {
    return std::any_of(names.begin(), names.end(), [=](std::string_view n) { return name.starts_with(n); });
}

// --- taken from the host -----------------------------------------------------------------------------------

struct TakenGroups {
    std::initializer_list<FamilyKind> kinds;
    std::initializer_list<StateGroup> groups;
    const char* reason;
};

const TakenGroups kTakenGroups[] = {
    {{Primitives, Arrays, Lit, Symbols, Screen, Rubber, Panels, FixedElements, Elements, Bodies, Markers,
      BatchProgram, Background, HostDraws},
     {Region},
     "where the host lets fragments land, and whether"},
    {{Primitives, Arrays, Lit, Symbols, Screen, FixedElements, Elements, Bodies, Markers, BatchProgram,
      Background, HostDraws},
     {Depth},
     "what the host's scene hides"},
    {{Primitives, Arrays, Lit, Symbols, Screen, Rubber, FixedElements, Elements, Bodies, Markers,
      BatchProgram, HostDraws},
     {Mixing},
     "how the host mixes colours"},
    {{Primitives, Arrays, Lit, Symbols, Screen, Panels, FixedElements, Elements, Bodies, Markers, HostDraws},
     {Faces},
     "how the host shows faces"},
    {{Primitives, Arrays, Lit, Symbols, Screen, Rubber, BatchProgram},
     {Strokes},
     "how the host shows lines and points"},
    {{Primitives, Arrays, Lit, Symbols, Screen, Rubber, Panels, FixedElements, Elements, HostDraws},
     {Clipping},
     "what the host cuts off"},
    {{Primitives, Arrays, Lit, Symbols, Screen, Rubber, HostDraws},
     {Lighting},
     "the host's lights and materials"},
    {{Primitives, Arrays, Lit, Symbols, Screen, Rubber},
     {Textures, Fog},
     "fixed function as the host has set it up"},
    {{Primitives, Arrays, Lit, Symbols, Screen, Rubber, HostDraws, BatchProgram},
     {Current},
     "drawn in what is current"},
    {{Primitives, Symbols}, {Programs}, "sent to the program that is in use"},
};

struct TakenStates {
    Names families;
    Names states;
    const char* reason;
};

const TakenStates kTakenStates[] = {
    {{"spheres of pixels", "vertex batch", "library mesh", "hyper-ellipsoids", "elliptic discs"},
     {"program"},
     "drawn with the program that is in use"},
    {{"polygons", "concave polygons", "shaded polygons", "drawing in nested views", "framebuffers",
      "library mesh, scaled"},
     {"provoking vertex"},
     "cut into triangles by the driver"},
    {{"curves and points of contours", "vertex batch, contoured", "library mesh, contoured",
      "markers, contoured", "markers, fixed, contoured"},
     {"active unit"},
     "the contour texture goes to the active unit"},
};

// --- left changed ------------------------------------------------------------------------------------------

struct Left {
    Names families;
    std::initializer_list<std::uint32_t> names;
    const char* reason;
};

const Left kLeft[] = {
    {{"points", "lines", "polygons", "text", "symbols", "translucent overlays", "rubber band", "boxes",
      "pictures", "rounded pictures", "circular pictures", "elliptic discs"},
     {GL_CURRENT_COLOR, GL_AMBIENT, GL_DIFFUSE, GL_EMISSION},
     "the last colour is current, and the material that follows it"},
    {{"points", "text"}, {GL_POINT_SIZE}, "the size of points stays"},
    {{"rubber band"},
     {GL_LINE_WIDTH, GL_COLOR_LOGIC_OP, GL_LOGIC_OP_MODE, GL_DRAW_BUFFER},
     "for the next band"},
    {{"curves and points of contours", "batch of contoured lines", "vertex batch, contoured",
      "library mesh, contoured", "markers, contoured", "markers, fixed, contoured"},
     {GL_CURRENT_TEXTURE_COORDS, GL_TEXTURE_BINDING_2D, GL_TEXTURE_2D, GL_TEXTURE_MATRIX, GL_MATRIX_MODE},
     "as the contour texture is left"},
    {{"drawing in nested views"}, {GL_MATRIX_MODE}, "matrix functions leave the model-view mode"},
    {{"concave polygons"}, {GL_STENCIL_TEST}, "the stencil buffer is cleared"},
    {{"translucent overlays"},
     {GL_BLEND, GL_BLEND_SRC_RGB, GL_BLEND_DST_RGB, GL_BLEND_SRC_ALPHA, GL_BLEND_DST_ALPHA,
      GL_DEPTH_WRITEMASK},
     "blending is off, depth is written"},
    {{"framebuffers"}, {GL_TEXTURE_BINDING_2D}, "none is bound"},
    {{"spheres of pixels"}, {GL_SHADE_MODEL, GL_NORMALIZE}, "for other lit shapes"},
    {{"library mesh, scaled"}, {GL_SHADE_MODEL}, "flat, for the host's symbols"},
    {{"boundary mesh"},
     {GL_CULL_FACE, GL_CULL_FACE_MODE, GL_POLYGON_MODE, GL_VERTEX_ARRAY, GL_NORMAL_ARRAY},
     "for other parts of the body"},
    {{"boundary mesh"},
     {GL_CURRENT_COLOR, GL_AMBIENT, GL_DIFFUSE, GL_EMISSION},
     "the colour that the library issued last comes back"},
    {{"face shading", "mesh renderer", "marker", "sphere"}, {GL_CURRENT_PROGRAM}, "no program is in use"},
    {{"mesh renderer, environment"},
     {GL_ACTIVE_TEXTURE, GL_TEXTURE_BINDING_2D, GL_TEXTURE_BINDING_CUBE_MAP},
     "units 1 to 3 keep the maps, unit 0 is active"},
    {{"marker", "sphere markers", "sphere array"},
     {GL_ARRAY_BUFFER_BINDING, GL_ELEMENT_ARRAY_BUFFER_BINDING},
     "no buffer is bound"},
};

} // namespace

const char* reasonToTake(const Family& family, const HostState& state) {
    for (const auto& [kinds, groups, reason] : kTakenGroups)
        if (isIn(kinds, family.kind) && isIn(groups, state.group))
            return reason;
    for (const auto& [families, states, reason] : kTakenStates)
        if (isNamed(families, family.name) && isNamed(states, state.name))
            return reason;
    return nullptr;
}

bool takesGroup(FamilyKind kind, StateGroup group) {
    return std::any_of(std::begin(kTakenGroups), std::end(kTakenGroups), [=](const TakenGroups& row) {
        return isIn(row.kinds, kind) && isIn(row.groups, group);
    });
}

const char* reasonToLeave(const Family& family, const GlStateKey& key) {
    for (const auto& [families, names, reason] : kLeft)
        if (isNamed(families, family.name) && isIn(names, key.name))
            return reason;
    return nullptr;
}

} // namespace nruview
