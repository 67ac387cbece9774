// How a model is shown, as the user asks for it.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "viewer/model/numbering.h"

namespace nruview {

/// Elements in a colour of their own.
struct ColoredElements {
    ElementList elements;
    std::uint32_t color = 0; ///< packed 0xAABBGGRR
    bool operator==(const ColoredElements&) const = default;
};

/// Keeps the elements whose middle lies within an interval along an axis.
struct ElementClip {
    int axis = 0;
    double low = 0.0, high = 0.0; ///< may be infinite
    bool operator==(const ElementClip&) const = default;
};

/// Which elements are drawn, and which of them stand out. Of overlapping lists the later one counts;
/// highlighted elements are not selected.
struct ElementSettings {
    ElementList hidden = {}, selected = {}, highlighted = {};
    std::vector<ColoredElements> colored = {};
    std::vector<ElementClip> clips = {}; ///< an element outside of any of them is left out
    std::optional<int> failLevel = {};   ///< with one or both of the next two
    std::string failField = {};          ///< level from which on an element is left out; empty: none is
    std::string failBeforeField = {};    ///< level before which it is
    std::vector<std::string> hiddenBlocks = {}; ///< by their names
    bool operator==(const ElementSettings&) const = default;
};

/// What gives elements their colour.
enum class ColorBy { Field, Block, Plain };

/// A plane through the model in the shape that is drawn; what lies on the side to which the normal points is
/// cut away.
struct SectionPlane {
    std::optional<Point> at = {}; ///< nothing: the middle of the model
    Point normal{1.0, 0.0, 0.0};  ///< of any length but 0
    bool operator==(const SectionPlane&) const = default;
};

/// What is drawn of a model and in which shape.
struct ShownSettings {
    std::string field = {};           ///< as selectScalars takes it; empty draws the model in one colour
    ColorBy colorBy = ColorBy::Field; ///< others leave the field aside
    std::optional<int> step = {};
    bool deformed = false;
    std::optional<double> deformFactor = {}; ///< nothing: automatic
    std::string deformBy = {};               ///< the displacement field; empty: found by its name
    std::optional<double> phase_rad = {}; ///< the deformation times its cosine; bounds are those of the swing
    ElementSettings elements = {};
    std::optional<SectionPlane> section = {};
    std::optional<double> creaseDeg = {}; ///< nothing: the file's normals, else 30 degrees
    bool operator==(const ShownSettings&) const = default;
};

enum class EdgeMode { All, Feature, None };
enum class Shading { Smooth, Flat, Element };

/// Which axis of the model an environment picture's upward direction becomes.
enum class ImageUp { X, MinusX, Y, MinusY, Z, MinusZ };

/// A lit body without contour.
struct BodySettings {
    bool physical = false;                        ///< physically based shading in place of the classic lights
    std::string environment = {};                 ///< Radiance file or kStudio; empty: lamps about the camera
    std::optional<ImageUp> environmentUp = {};    ///< once the options are read there is one
    bool environmentBackground = false;           ///< draw it behind the model
    std::string material = {};                    ///< row of the material table; empty: steel
    std::optional<std::uint32_t> color = {};      ///< of all parts, packed 0xAABBGGRR
    std::optional<std::uint32_t> frontColor = {}; ///< of faces that turn their front to the viewer
    std::optional<std::uint32_t> backColor = {};

    /// The environment that is made up instead of read.
    static constexpr const char* kStudio = "@studio";
    bool hasSides() const { return frontColor || backColor; }
    /// Whether a model is to be drawn as a body though it is none by its file.
    bool isAskedFor() const { return physical || color || hasSides(); }
    bool operator==(const BodySettings&) const = default;
};

/// Contour colours, edges and surface.
struct SceneSettings {
    int bands = 12;
    std::optional<std::array<double, 2>> range = {}; ///< nothing: that of the values
    bool smeared = false;
    std::optional<EdgeMode> edges = {}; ///< nothing: all, or none of bodies
    Shading shading = Shading::Smooth;
    double opacity = 1.0;
    bool sectionHandle = false; ///< the frame and the arrow of a section's plane
    bool legacy = false;        ///< faces by the library's face shading; then there are no values
    bool operator==(const SceneSettings&) const = default;
};

/// Nodes by their numbers, or those of a node set.
struct NodeChoice {
    ElementList nodes = {};
    std::string set = {}; ///< empty: the numbers count
    bool operator==(const NodeChoice&) const = default;
};

/// The symbol of a support.
enum class SupportKind {
    Clamp,
    Pin,
    Roller,
    Diamond,
    Cross,
    Ring,
    Star,
    Frame,
    Axis,
    Spring,
    Torsion,
    Damper
};
/// Their names, in the same order.
inline constexpr std::array<std::string_view, 12> kSupportKinds = {"clamp", "pin",    "roller",  "diamond",
                                                                   "cross", "ring",   "star",    "frame",
                                                                   "axis",  "spring", "torsion", "damper"};
constexpr bool liesAlongAxis(SupportKind kind) {
    return kind >= SupportKind::Axis;
}

struct SupportedNodes {
    NodeChoice nodes = {};
    SupportKind kind = SupportKind::Clamp;
    int axis = 0; ///< of the kinds that have one
    bool operator==(const SupportedNodes&) const = default;
};

enum class ConnectorShape { Rivet, Cylinder };

/// Markers at nodes, between them and at elements. Empty fields and lists draw none.
struct MarkerSettings {
    std::string arrows = {};               ///< vector field of the nodes
    std::optional<double> arrowScale = {}; ///< model length of a vector of size 1; nothing: automatic
    std::string spheres = {};              ///< as selectScalars takes it
    std::optional<double> sphereSize = {}; ///< diameter in model length; nothing: automatic
    std::optional<NodeChoice> nodes = {};  ///< of arrows and spheres; nothing: those of the faces shown
    std::vector<std::array<std::uint32_t, 2>> connectors = {};
    ConnectorShape connectorShape = ConnectorShape::Rivet;
    std::vector<SupportedNodes> supports = {};
    std::string tensors = {};           ///< tensor field
    bool solids = true, symbols = true; ///< whether those with a body, and those of supports, are shown
    bool operator==(const MarkerSettings&) const = default;
};

/// Over the steps of a result, or over a swing.
enum class Motion { Steps, Phase };

struct AnimationSettings {
    int frames = 0;
    std::optional<Motion> motion =
        {}; ///< nothing: the swing of a mode or where there is one step, else the steps
};

/// What is written on the picture. Legend and marks need a field.
struct LabelSettings {
    bool legend = true, marks = true, axes = true;
    std::optional<std::string> title = {};    ///< nothing: what is shown, in words
    bool readOut = true;                      ///< what is picked, beside its pixel
    std::string logo = {};                    ///< picture for the lower right corner; empty: none
    std::string icons = {};                   ///< picture for marked nodes; empty: none
    std::optional<NodeChoice> iconNodes = {}; ///< nothing: those of the marks
    bool operator==(const LabelSettings&) const = default;
};

} // namespace nruview
