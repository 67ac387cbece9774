// 3D markers: all are others in each frame, in place, orientation, length and colour.
#include <memory>

#include "bench/cases/cases.h"

namespace nrubench {

namespace {

const _NgFPoint3Str* triples(const std::vector<std::array<float, 3>>& values) {
    return reinterpret_cast<const _NgFPoint3Str*>(values.data()); // three floats each
}

void drawCylinders(const Markers& markers) {
    const _NgFPoint3Str *starts = triples(markers.starts), *vectors = triples(markers.vectors);
    for (std::size_t i = 0; i < markers.starts.size(); ++i)
        RenderDraw3DMarker(&starts[i], &vectors[i], 0, kWidthRatio, &markers.colors[i], false, 0, 0, 0, 0);
}

void drawCylinderArray(const Markers& markers, bool exact) {
    Render3DMarkerArray array;
    array.count = markers.starts.size();
    array.starts = triples(markers.starts);
    array.vectors = triples(markers.vectors);
    array.widthRatio = kWidthRatio;
    array.colors = markers.colors.data();
    array.exact = exact;
    RenderDraw3DMarkers(&array);
}

void drawSpheres(const Markers& markers) {
    const _NgFPoint3Str *centres = triples(markers.starts), *diameters = triples(markers.diameters);
    for (std::size_t i = 0; i < markers.starts.size(); ++i)
        RenderDraw3DSphere(&centres[i], &diameters[i], markers.colors[i], false, 0, 0, 0);
}

void drawSphereArray(const Markers& markers, bool exact) {
    Render3DSphereArray array;
    array.count = markers.starts.size();
    array.centres = triples(markers.starts);
    array.diameters = triples(markers.diameters);
    array.colors = markers.colors.data();
    array.exact = exact;
    RenderDraw3DSpheres(&array);
}

std::function<Work(unsigned)> section(_Render3DMarkerType type, void (*draw)(const Markers&)) {
    return [=](unsigned size) {
        openPixelView();
        return Work{[=, sets = std::make_shared<std::vector<Markers>>(markerSets(size))](unsigned turn) {
                        RenderBegin3DMarkerDraw(type, RENDER_3D_MARKER_SHAPE_SMOOTH, false);
                        draw((*sets)[turn % kMarkerSets]);
                        RenderEnd3DMarkerDraw();
                    },
                    true, 0.3};
    };
}

} // namespace

std::vector<Case> markerCases() {
    constexpr auto kCylinder = RENDER_3D_MARKER_CYLINDER, kSphere = RENDER_3D_MARKER_SPHERE;
    return {
        {"markers.single", {1000, 10000}, section(kCylinder, drawCylinders)},
        {"markers.exact_array",
         {1000, 10000, 100000},
         section(kCylinder, [](const Markers& m) { drawCylinderArray(m, true); })},
        {"markers.array",
         {1000, 10000, 100000, 1000000},
         section(kCylinder, [](const Markers& m) { drawCylinderArray(m, false); })},
        {"spheres.single", {1000}, section(kSphere, drawSpheres)},
        {"spheres.exact_array", {1000}, section(kSphere, [](const Markers& m) { drawSphereArray(m, true); })},
        {"spheres.array", {1000, 10000, 100000, 1000000}, section(kSphere, [](const Markers& m) {
             drawSphereArray(m, false);
         })}};
}

} // namespace nrubench
