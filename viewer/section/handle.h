// The section's handle: the plane's frame and an arrow along its normal, by which it is moved and turned. The
// geometry is pure; only what takes pixels reads the view.
#pragma once

#include "viewer/scene/shownmodel.h"
#include "viewer/scene/sight.h"

namespace nruview {

/// Among what is drawn.
struct SectionHandle {
    Point centre{}, normal{};
    Point right{}, up{}; ///< from the centre to the middles of two sides of the frame
    Point tip{};         ///< of the arrow
};

/// Of the section, which the model must have: a frame about the model.
SectionHandle handleOf(const ShownModel& shown);

/// A box with the handle in it.
Bounds boundsWith(const Bounds& bounds, const SectionHandle& handle);

enum class HandlePart {
    Frame, ///< moves the plane along its normal
    Shaft, ///< of the arrow: does so too
    Tip,   ///< turns the plane about the handle's centre
};

/// What of a handle a ray passes within a reach; of several the tip, then the shaft.
std::optional<HandlePart> handlePartAt(const SectionHandle& handle, const Ray& ray, double reach);

/// A handle that is held, and the ray along which it was taken.
struct HandleGrip {
    HandlePart part = HandlePart::Frame;
    SectionHandle handle;
    Ray ray;
};

/// The plane where a grip has been dragged to, among what is drawn. Along a ray that runs along the normal it
/// does not move.
Plane draggedPlane(const HandleGrip& grip, const Ray& ray);

/// What is there at a window pixel, y from the top, with the view of the last beginFrame; nothing without a
/// section. In use: on press grip = gripSection(...), on each move workspace.setSection(draggedSection(...)).
std::optional<HandleGrip> gripSection(const ShownModel& shown, int x, int y);
SectionPlane draggedSection(const ShownModel& shown, const HandleGrip& grip, int x, int y);

/// Draws it, with the view of the last beginFrame: the arrow before all else, the frame behind the model with
/// less colour. The scale is that of line widths.
void drawHandle(const SectionHandle& handle, double scale);

} // namespace nruview
