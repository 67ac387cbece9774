// What is shown, how, and all that can be done with it: the one state behind the window, its panel and
// scripts.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "viewer/app/options.h"
#include "viewer/scene/pick.h"
#include "viewer/workspace/selection.h"

namespace nruview {

/// Needs the current context and a LibrarySession for as long as it lives. A change holds as a whole or,
/// where it throws ViewerError, not at all: what was shown stays. Pixels are those of the picture, y from the
/// top; until the first draw() it has the options' size.
class Workspace {
public:
    /// Throws ViewerError as showModel and makeMarkers do.
    Workspace(Model model, Options options);
    ~Workspace();
    Workspace(const Workspace&) = delete;
    Workspace& operator=(const Workspace&) = delete;

    const Options& options() const { return m_options; }
    const ShownModel& shown() const;
    int width() const { return m_width; }
    int height() const { return m_height; }
    /// Something has changed since the last draw().
    bool needsDrawing() const { return m_needsDrawing; }

    /// Edits a copy of the options and makes anew what depends on what has changed. A new options.view turns
    /// the camera there. A fitted view stays fitted, but for another step or phase.
    void change(const std::function<void(Options&)>& edit);

    /// The picture into the current framebuffer, from pixel (0, 0) on. The scale is that of letters and line
    /// widths, for screens with small pixels. A view that nobody has moved since the last fit fits new sizes.
    void draw(int width, int height, double scale = 1.0);

    // The camera.
    const Camera& camera() const { return m_camera; }
    void setCamera(const Camera& camera);
    /// Turns it to other axes; target and size stay, a fitted view stays fitted.
    void look(const ViewAxes& axes);
    void fit();
    /// Nothing selected: what is not hidden.
    void fitSelected();
    /// A box as the file's coordinates have it, which takes the place of the model's for this time.
    void fitTo(const Bounds& bounds);
    /// Nobody has moved the view since it was fitted.
    bool isFitted() const { return m_isFitted; }
    void turn(double rightRad, double upRad);
    /// Moves what is as far away as the target by so many pixels.
    void pan(double dx, double dy);
    /// What is seen at a pixel or, beside the model, as far away as the target there. For drag().
    Point anchorAt(double x, double y) const;
    /// Moves the view sideways until an anchor stands at a pixel.
    void drag(const Point& anchor, double x, double y);
    /// A factor above 1 makes things larger; what is seen at the pixel stays there.
    void zoom(double factor, double x, double y);

    // Picking, with the view of the last draw().
    Picked pickAt(int x, int y) const;
    /// What is there as one line, markers too.
    std::string describeAt(int x, int y) const;
    /// Shows that line beside its pixel, until the view or what is shown changes.
    void showReadOut(int x, int y);
    void hideReadOut();
    /// A line beside a pixel, on top of what is in the current framebuffer: for hosts that keep the picture.
    void drawReadOut(const std::string& text, const std::array<int, 2>& pixel);

    // Selected elements are those of options().shown.elements.
    /// The element under or near the pixel; nothing there: none.
    void selectAt(int x, int y, Selecting how);
    /// Elements with a face, beam or point that lies wholly within the box; hidden ones never. onlyVisible:
    /// of which something is seen.
    void selectBox(int x0, int y0, int x1, int y1, Selecting how, bool onlyVisible);
    /// Of cells by index those that are shown.
    void select(const Cells& cells, Selecting how);
    Cells selected() const;
    /// Hides cells, or all others; then nothing is selected.
    void hide(const Cells& cells);
    void isolate(const Cells& cells);
    void hideSelected() { hide(selected()); }
    /// Without a selection nothing changes.
    void isolateSelected();
    void showAll();

    /// Cuts the model by a plane, or no longer.
    void setSection(const std::optional<SectionPlane>& plane);

    // Results in motion.
    int stepCount() const;
    int step() const;
    void setStep(int step);
    /// Nothing: the shape does not swing.
    std::optional<double> phase() const { return m_options.shown.phase_rad; }
    /// The deformation times cos(phase); colours stay those of the full shape, and the bounds those of the
    /// swing.
    void setPhase(std::optional<double> rad);

private:
    struct Made;
    void renew(const Options& options, const ShownUpdate& update);
    void keepPlace(const Point& middle, double unit);
    const Bounds& bounds() const;
    PictureArea area();
    void moved();
    void resize(int width, int height, double scale);

    Options m_options;
    std::unique_ptr<Made> m_made;
    Camera m_camera;
    int m_width, m_height;
    double m_scale = 1.0;
    bool m_isFitted = true;
    bool m_needsDrawing = true;
    std::optional<std::array<int, 2>> m_readOut;
};

} // namespace nruview
