// Cylinders and spheres as glyphs at points, and spheres found by rays.
#include "bench/peers/vtk/vtk.h"

#include <vtkCylinderSource.h>
#include <vtkGlyph3DMapper.h>
#include <vtkOpenGLSphereMapper.h>
#include <vtkPointData.h>
#include <vtkPoints.h>
#include <vtkProperty.h>
#include <vtkSphereSource.h>
#include <vtkTransform.h>
#include <vtkTransformPolyDataFilter.h>

namespace nrubench {

namespace {

using Triples = std::vector<std::array<float, 3>>;

void setTriples(vtkFloatArray* array, const Triples& values) {
    array->SetNumberOfComponents(3);
    array->SetNumberOfTuples(static_cast<vtkIdType>(values.size()));
    std::copy_n(values.data()->data(), 3 * values.size(), array->GetPointer(0));
    array->Modified();
}

/// Points with the arrays "axis", "scale", "radius" and colours, filled anew in each frame.
struct Glyphs {
    Glyphs() {
        starts->SetNumberOfComponents(3);
        points->SetData(starts);
        data->SetPoints(points);
        axes->SetName("axis");
        scales->SetName("scale");
        radii->SetName("radius");
        colors->SetName("color");
        for (vtkDataArray* array : {static_cast<vtkDataArray*>(axes), static_cast<vtkDataArray*>(scales),
                                    static_cast<vtkDataArray*>(radii)})
            data->GetPointData()->AddArray(array);
        data->GetPointData()->SetScalars(colors);
    }
    void fill(const Markers& markers, bool spheres) {
        setTriples(starts, markers.starts);
        points->Modified();
        setColors(colors, markers.colors);
        if (spheres) {
            setTriples(scales, markers.diameters);
        } else {
            setTriples(axes, markers.vectors);
            lengths.resize(markers.vectors.size());
            for (std::size_t i = 0; i < lengths.size(); ++i) {
                const auto& [x, y, z] = markers.vectors[i];
                const float length = std::hypot(x, y, z);
                lengths[i] = {length, kWidthRatio * length, kWidthRatio * length};
            }
            setTriples(scales, lengths);
        }
        data->Modified();
    }
    void fillRadii(const Markers& markers) {
        radii->SetNumberOfTuples(static_cast<vtkIdType>(markers.diameters.size()));
        for (std::size_t i = 0; i < markers.diameters.size(); ++i)
            radii->SetValue(static_cast<vtkIdType>(i), markers.diameters[i][0] / 2);
        radii->Modified();
    }

    vtkNew<vtkFloatArray> starts, axes, scales, radii;
    vtkNew<vtkUnsignedCharArray> colors;
    vtkNew<vtkPoints> points;
    vtkNew<vtkPolyData> data;
    Triples lengths;
};

void addActor(vtkMapper* mapper) {
    const vtkNew<vtkActor> actor;
    actor->SetMapper(mapper);
    actor->GetProperty()->SetAmbient(0.2);
    actor->GetProperty()->SetDiffuse(0.8);
    renderer()->AddActor(actor);
}

/// Of length and diameter 1 along x from the origin.
vtkSmartPointer<vtkPolyData> makeCylinder() {
    const vtkNew<vtkCylinderSource> source;
    source->SetResolution(16);
    const vtkNew<vtkTransform> turn;
    turn->RotateZ(-90);
    turn->Translate(0, 0.5, 0);
    const vtkNew<vtkTransformPolyDataFilter> filter;
    filter->SetInputConnection(source->GetOutputPort());
    filter->SetTransform(turn);
    filter->Update();
    return filter->GetOutput();
}

vtkSmartPointer<vtkPolyData> makeSphere() {
    const vtkNew<vtkSphereSource> source;
    source->SetThetaResolution(32);
    source->SetPhiResolution(32);
    source->Update();
    return source->GetOutput();
}

std::function<Work(unsigned)> glyphs(bool spheres) {
    return [=](unsigned size) {
        openView(kPixelView);
        const auto sets = std::make_shared<std::vector<Markers>>(markerSets(size));
        const auto glyphs = std::make_shared<Glyphs>();
        const vtkNew<vtkGlyph3DMapper> mapper;
        mapper->SetSourceData(spheres ? makeSphere() : makeCylinder());
        mapper->SetInputData(glyphs->data);
        mapper->SetOrient(!spheres);
        mapper->SetOrientationArray("axis");
        mapper->SetOrientationModeToDirection();
        mapper->SetScaleArray("scale");
        mapper->SetScaleModeToScaleByVectorComponents();
        addActor(mapper);
        return Work{[=](unsigned turn) {
                        glyphs->fill((*sets)[turn % kMarkerSets], spheres);
                        window()->Render();
                    },
                    true, 0.3};
    };
}

Work sphereMapper(unsigned size) {
    openView(kPixelView);
    const auto sets = std::make_shared<std::vector<Markers>>(markerSets(size));
    const auto glyphs = std::make_shared<Glyphs>();
    const vtkNew<vtkOpenGLSphereMapper> mapper;
    mapper->SetInputData(glyphs->data);
    mapper->SetScaleArray("radius");
    const vtkNew<vtkCellArray> cells; // without them there are no bounds, and nothing is drawn
    for (vtkIdType i = 0; i < static_cast<vtkIdType>(size); ++i)
        cells->InsertNextCell({i});
    glyphs->data->SetVerts(cells);
    addActor(mapper);
    return {[=](unsigned turn) {
                const Markers& markers = (*sets)[turn % kMarkerSets];
                glyphs->fill(markers, true);
                glyphs->fillRadii(markers);
                window()->Render();
            },
            true, 0.3};
}

} // namespace

std::vector<Case> markerCases() {
    const std::vector<unsigned> all = {1000, 10000, 100000};
    const char *one = "all in one array, not one by one", *rays = "radii alike in x, y and z";
    return {{"markers.single", {1000, 10000}, glyphs(false), one},
            {"markers.exact_array", all, glyphs(false)},
            {"markers.array", all, glyphs(false)},
            {"spheres.single", {1000}, glyphs(true), one},
            {"spheres.exact_array", {1000}, glyphs(true)},
            {"spheres.array", all, sphereMapper, rays}};
}

} // namespace nrubench
