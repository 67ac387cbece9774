// How a model is shown, as the user asks for it.
#pragma once

#include <array>
#include <optional>
#include <string>

namespace nruview {

enum class EdgeMode { All, Feature, None };

/// What is drawn of a model and in which shape.
struct ShownSettings {
    std::string field; ///< as selectScalars takes it; empty draws the model in one colour
    std::optional<int> step;
    bool deformed = false;
    std::optional<double> deformFactor; ///< nothing: automatic
    std::string deformBy;               ///< the displacement field; empty: found by its name
};

/// Contour colours and edges.
struct SceneSettings {
    int bands = 12;
    std::optional<std::array<double, 2>> range; ///< nothing: that of the values
    bool smeared = false;
    EdgeMode edges = EdgeMode::All;
};

} // namespace nruview
