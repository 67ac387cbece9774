// How a model is shown, as the user asks for it.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace nruview {

/// Elements first to last, by their numbers in the model.
struct ElementRange {
    std::uint32_t first = 0, last = 0;
};
using ElementList = std::vector<ElementRange>;

/// Elements in a colour of their own.
struct ColoredElements {
    ElementList elements;
    std::uint32_t color = 0; ///< packed 0xAABBGGRR
};

/// Keeps the elements whose middle lies within an interval along an axis.
struct ElementClip {
    int axis = 0;
    double low = 0.0, high = 0.0; ///< may be infinite
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
};

/// What is drawn of a model and in which shape.
struct ShownSettings {
    std::string field = {}; ///< as selectScalars takes it; empty draws the model in one colour
    std::optional<int> step = {};
    bool deformed = false;
    std::optional<double> deformFactor = {}; ///< nothing: automatic
    std::string deformBy = {};               ///< the displacement field; empty: found by its name
    ElementSettings elements = {};
    std::optional<double> creaseDeg = {}; ///< nothing: the file's normals, else 30 degrees
};

enum class EdgeMode { All, Feature, None };
enum class Shading { Smooth, Flat, Element };

/// Contour colours, edges and surface.
struct SceneSettings {
    int bands = 12;
    std::optional<std::array<double, 2>> range = {}; ///< nothing: that of the values
    bool smeared = false;
    std::optional<EdgeMode> edges = {}; ///< nothing: all, or none of a surface model
    Shading shading = Shading::Smooth;
    double opacity = 1.0;
};

/// What is written on the picture. Legend and marks need a field.
struct LabelSettings {
    bool legend = true, marks = true, axes = true;
    std::optional<std::string> title = {}; ///< nothing: what is shown, in words
};

} // namespace nruview
