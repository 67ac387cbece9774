// A model as it is shown: its surface, the drawn positions of its points and the value that colours them.
#pragma once

#include "viewer/model/fields.h"
#include "viewer/model/surface.h"
#include "viewer/scene/camera.h"
#include "viewer/scene/elements.h"
#include "viewer/scene/scenesettings.h"
#include "viewer/section/section.h"

namespace nruview {

/// Points are the model's nodes followed by the centres of the surface. They are drawn about the model's
/// middle in a unit like its size: OpenGL's single precision would shake a small model far from the origin to
/// pieces.
struct Shape {
    std::vector<Point> points; ///< where each point is drawn: deformed when asked for
    Bounds bounds;             ///< of the surface, hidden elements included: they do not move the camera
    Point middle{};            ///< model position that is drawn at the origin
    double unit = 1.0;         ///< model length that is drawn as 1, a power of 2
    double deformFactor = 0.0;
    double creaseDeg = 30.0;     ///< faces that meet at a larger angle are not shaded as one
    bool hasFileNormals = false; ///< corners take the model's normals where it has them

    /// Where a position of the model, deformed when asked for, is drawn.
    Point drawn(const Point& position) const;
};

struct ShownModel : Shape {
    Model model;
    ElementFacts elements;
    Surface surface;
    ColorBy colorBy = ColorBy::Field;
    std::optional<Scalars> scalars;
    std::optional<Section> section;
};

/// Throws ViewerError for an unknown field, step or element, a missing displacement, or a model with nothing
/// to draw.
ShownModel showModel(Model model, const ShownSettings& settings);

/// What other settings make of a shown model: the parts that they change.
struct ShownUpdate {
    std::optional<ElementFacts> elements;
    std::optional<Surface> surface;
    std::optional<Shape> shape;
    std::optional<std::optional<Scalars>> scalars;
    std::optional<ColorBy> colorBy;
    std::optional<std::optional<Section>> section;
    bool showsOthers = false; ///< other elements are drawn

    /// Exchanges the parts; a second time undoes it.
    void swapInto(ShownModel& shown) noexcept;
};

/// Throws ViewerError as showModel does.
ShownUpdate updateOf(const ShownModel& shown, const ShownSettings& before, const ShownSettings& after);

/// The factor by which --deform auto moves the shape of a step: the largest displacement is a tenth of the
/// model's size. 0 where nothing moves. Throws ViewerError without a displacement field.
double automaticFactor(const ShownModel& shown, const ShownSettings& settings);

/// Value of a point in a face of a cell: the node's or the cell's; NaN where there is none.
double valueAt(const ShownModel& shown, std::uint32_t point, std::uint32_t cell);

/// Position of a point in the undeformed model.
Point modelPosition(const ShownModel& shown, std::uint32_t point);

} // namespace nruview
