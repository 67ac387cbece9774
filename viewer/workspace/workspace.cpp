// Everything that is drawn hangs together in one record, which a change replaces once it is whole.
#include "viewer/workspace/workspace.h"

#include <algorithm>
#include <cmath>

#include "viewer/error.h"
#include "viewer/labels/labels.h"
#include "viewer/markers/markerpick.h"
#include "viewer/model/vectors.h"
#include "viewer/scene/frame.h"
#include "viewer/scene/scene.h"
#include "viewer/scene/sight.h"

namespace nruview {

namespace {

constexpr double kNearestZoom = 1e-6, kFarthestZoom = 1e4; ///< height of the picture, by the model's size

Cells allCells(const Model& model) {
    return cellsOf({{0, static_cast<std::uint32_t>(model.cellCount() - 1)}});
}

/// Those of some elements that are drawn, as a box.
Bounds boundsOfCells(const ShownModel& shown, const Cells& cells) {
    Bounds bounds;
    for (const std::uint32_t cell : cells)
        if (shown.elements.isShown(cell))
            for (const std::uint32_t node : shown.model.cellNodes(cell))
                bounds.add(shown.points[node]);
    return bounds;
}

/// What the library and the host draw of a shown model.
struct Drawing {
    Drawing(const ShownModel& shown, const Options& options)
        : markers(makeMarkers(shown, options.markers, options.shown.step)),
          bounds(boundsWith(shown.bounds, markers)), scene(shown, options.scene, options.body, &markers),
          labels(shown, scene.legends(shown), options.labels, titleOf(shown, options)) {}

    Markers markers;
    Bounds bounds;
    Scene scene;
    PictureLabels labels;
};

} // namespace

struct Workspace::Made {
    Made(Model model, const Options& options)
        : shown(showModel(std::move(model), options.shown)),
          drawing(std::make_unique<Drawing>(shown, options)) {}

    Picker& pickerOfShown() {
        if (!picker)
            picker.emplace(shown);
        return *picker;
    }

    ShownModel shown;
    std::unique_ptr<Drawing> drawing;
    std::optional<Picker> picker; ///< nothing until the first pick of these faces
};

Workspace::Workspace(Model model, Options options)
    : m_options(std::move(options)), m_made(std::make_unique<Made>(std::move(model), m_options)),
      m_width(m_options.width), m_height(m_options.height) {
    m_camera.axes = m_options.view;
    m_camera.perspective = m_options.perspective;
    fit();
}

Workspace::~Workspace() = default;

const ShownModel& Workspace::shown() const {
    return m_made->shown;
}

void Workspace::change(const std::function<void(Options&)>& edit) {
    Options options = m_options;
    edit(options);
    const bool moves =
        options.shown.step != m_options.shown.step || options.shown.phase_rad != m_options.shown.phase_rad;
    ShownModel& shown = m_made->shown;
    const Point middle = shown.middle;
    const double unit = shown.unit;
    ShownUpdate update = updateOf(shown, m_options.shown, options.shown);
    update.swapInto(shown);
    try {
        renew(options, update);
    } catch (...) {
        update.swapInto(shown);
        throw;
    }
    keepPlace(middle, unit);
    if (options.view != m_options.view)
        m_camera.axes = options.view;
    m_camera.perspective = options.perspective;
    m_options = std::move(options);
    if (m_isFitted && !moves)
        fit();
    m_readOut.reset();
    m_needsDrawing = true;
}

/// Makes what is drawn anew as far as needed; the shown model is updated already.
void Workspace::renew(const Options& options, const ShownUpdate& update) {
    const ShownModel& shown = m_made->shown;
    const bool looksAlike = options.scene == m_options.scene && options.body == m_options.body &&
                            options.markers == m_options.markers && options.labels == m_options.labels;
    const bool movesMarkers =
        options.markers != MarkerSettings() && (update.scalars || options.shown.step != m_options.shown.step);
    std::unique_ptr<Drawing>& drawing = m_made->drawing;
    if (!looksAlike || movesMarkers || !drawing->scene.update(shown, update)) {
        drawing = std::make_unique<Drawing>(shown, options);
        drawing->labels.setScale(m_scale);
    } else if (update.scalars || update.section) {
        drawing->labels.renew(drawing->scene.legends(shown), titleOf(shown, options));
    }
    if (update.shape || update.showsOthers)
        m_made->picker.reset();
}

/// The camera stands among what is drawn, whose middle and unit were others before.
void Workspace::keepPlace(const Point& middle, double unit) {
    const double scale = unit / shown().unit;
    m_camera.target = scale * m_camera.target + shown().drawn(middle);
    m_camera.distance *= scale;
    m_camera.halfHeight *= scale;
}

const Bounds& Workspace::bounds() const {
    return m_made->drawing->bounds;
}

PictureArea Workspace::area() {
    return m_made->drawing->labels.area(m_width, m_height);
}

/// Labels may leave the model another part of the picture than before.
void Workspace::resize(int width, int height, double scale) {
    const bool isOther = width != m_width || height != m_height || scale != m_scale;
    m_width = width;
    m_height = height;
    m_scale = scale;
    m_made->drawing->labels.setScale(scale);
    if (m_isFitted && isOther)
        fit();
    else
        centreCamera(m_camera, area());
}

void Workspace::draw(int width, int height, double scale) {
    resize(width, height, scale);
    const bool hasHandle = m_options.scene.sectionHandle && shown().section;
    beginFrame(m_camera, hasHandle ? boundsWith(bounds(), handleOf(shown())) : bounds(), width, height,
               m_options.background);
    m_made->drawing->scene.draw(m_scale);
    m_made->drawing->labels.draw(m_camera, width, height, m_options.background);
    if (m_readOut)
        m_made->drawing->labels.drawReadOut(describeAt((*m_readOut)[0], (*m_readOut)[1]), *m_readOut, width,
                                            height, m_options.background);
    m_needsDrawing = false;
}

void Workspace::moved() {
    m_isFitted = false;
    m_readOut.reset();
    m_needsDrawing = true;
}

void Workspace::setCamera(const Camera& camera) {
    m_camera = camera;
    moved();
}

void Workspace::look(const ViewAxes& axes) {
    m_camera.axes = axes;
    if (m_isFitted)
        fit();
    else
        moved();
}

void Workspace::fit() {
    m_camera = fitCamera(m_camera.axes, bounds(), area(), m_camera.perspective);
    moved();
    m_isFitted = true;
}

void Workspace::fitSelected() {
    const Cells cells = selected();
    const Bounds bounds = boundsOfCells(shown(), cells.empty() ? allCells(shown().model) : cells);
    if (bounds.empty())
        return fit();
    m_camera = fitCamera(m_camera.axes, bounds, area(), m_camera.perspective);
    moved();
}

void Workspace::fitTo(const Bounds& bounds) {
    const Bounds drawn = {shown().drawn(bounds.low), shown().drawn(bounds.high)};
    m_camera = fitCamera(m_camera.axes, drawn, area(), m_camera.perspective);
    moved();
    m_isFitted = true;
}

void Workspace::turn(double rightRad, double upRad) {
    turnCamera(m_camera, rightRad, upRad);
    moved();
}

void Workspace::pan(double dx, double dy) {
    const auto [x, y] = placeInPicture(m_camera, m_camera.target, m_width, m_height);
    drag(m_camera.target, x + dx, y + dy);
}

Point Workspace::anchorAt(double x, double y) const {
    const int column = static_cast<int>(std::floor(x)), row = static_cast<int>(std::floor(y));
    const double distance = m_camera.perspective ? pickAt(column, row).distance : INFINITY;
    if (!std::isfinite(distance))
        return pointInPicture(m_camera, x, y, m_camera.target, m_width, m_height);
    const Ray ray = rayThrough(column, row);
    return pointInPicture(m_camera, x, y, ray.origin + distance * ray.direction, m_width, m_height);
}

void Workspace::drag(const Point& anchor, double x, double y) {
    moveCamera(m_camera, anchor, x, y, m_width, m_height);
    moved();
}

void Workspace::zoom(double factor, double x, double y) {
    const double size = length(bounds().high - bounds().low);
    const double halfHeight = m_camera.halfHeight / factor;
    if (!(halfHeight > kNearestZoom * size) || !(halfHeight < kFarthestZoom * std::max(size, 1.0)))
        return;
    const Point anchor = anchorAt(x, y);
    m_camera.halfHeight = halfHeight;
    drag(anchor, x, y);
}

Picked Workspace::pickAt(int x, int y) const {
    return m_made->pickerOfShown().pick(x, y);
}

std::string Workspace::describeAt(int x, int y) const {
    return describePixel(shown(), m_made->pickerOfShown(), m_made->drawing->markers,
                         m_options.scene.opacity >= 1.0, x, y);
}

void Workspace::showReadOut(int x, int y) {
    m_readOut = {x, y};
    m_needsDrawing = true;
}

void Workspace::hideReadOut() {
    m_needsDrawing |= m_readOut.has_value();
    m_readOut.reset();
}

void Workspace::drawReadOut(const std::string& text, const std::array<int, 2>& pixel) {
    m_made->drawing->labels.drawReadOut(text, pixel, m_width, m_height, m_options.background);
}

void Workspace::selectAt(int x, int y, Selecting how) {
    const Picked picked = pickAt(x, y);
    select(picked.kind != Picked::Kind::Nothing ? Cells{picked.cell} : Cells{}, how);
}

void Workspace::selectBox(int x0, int y0, int x1, int y1, Selecting how, bool onlyVisible) {
    const PictureBox box(x0, y0, x1, y1);
    select(onlyVisible ? visibleCellsWithin(shown(), m_camera, m_width, m_height, box)
                       : cellsWithin(shown(), m_camera, m_width, m_height, box),
           how);
}

void Workspace::select(const Cells& cells, Selecting how) {
    Cells shownCells;
    std::copy_if(cells.begin(), cells.end(), std::back_inserter(shownCells),
                 [this](std::uint32_t cell) { return shown().elements.isShown(cell); });
    const Cells result = joined(selected(), shownCells, how);
    change(
        [&](Options& options) { options.shown.elements.selected = numbersOfCells(shown().model, result); });
}

Cells Workspace::selected() const {
    return cellsOf(shown().elements.settings.selected);
}

/// Selected elements would be drawn though they are hidden.
void Workspace::hide(const Cells& cells) {
    const Cells hidden = joined(cellsOf(shown().elements.settings.hidden), cells, Selecting::Add);
    change([&](Options& options) {
        options.shown.elements.hidden = numbersOfCells(shown().model, hidden);
        options.shown.elements.selected.clear();
    });
}

void Workspace::isolate(const Cells& cells) {
    const Cells others = joined(allCells(shown().model), cells, Selecting::Remove);
    change([&](Options& options) {
        options.shown.elements.hidden = numbersOfCells(shown().model, others);
        options.shown.elements.selected.clear();
    });
}

void Workspace::isolateSelected() {
    if (const Cells kept = selected(); !kept.empty())
        isolate(kept);
}

void Workspace::showAll() {
    change([](Options& options) {
        options.shown.elements.hidden.clear();
        options.shown.elements.hiddenBlocks.clear();
    });
}

void Workspace::setSection(const std::optional<SectionPlane>& plane) {
    change([&plane](Options& options) { options.shown.section = plane; });
}

int Workspace::stepCount() const {
    return nruview::stepCount(shown().model);
}

int Workspace::step() const {
    return m_options.shown.step.value_or(stepCount() - 1);
}

void Workspace::setStep(int step) {
    change([step](Options& options) { options.shown.step = step; });
}

void Workspace::setPhase(std::optional<double> rad) {
    change([rad](Options& options) { options.shown.phase_rad = rad; });
}

} // namespace nruview
