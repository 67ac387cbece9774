// Points and segments that are others in each frame.
#include "bench/peers/vtk/vtk.h"

#include <vtkPointData.h>
#include <vtkPoints.h>
#include <vtkProperty.h>

namespace nrubench {

namespace {

struct Scene {
    Scene(const Dots& dots, bool segments) {
        coordinates->SetNumberOfComponents(3);
        coordinates->SetNumberOfTuples(static_cast<vtkIdType>(dots.points.size()));
        points->SetData(coordinates);
        data->SetPoints(points);
        const vtkNew<vtkCellArray> cells;
        const vtkIdType step = segments ? 2 : 1, count = static_cast<vtkIdType>(dots.points.size());
        for (vtkIdType i = 0; i < count; i += step)
            segments ? cells->InsertNextCell({i, i + 1}) : cells->InsertNextCell({i});
        segments ? data->SetLines(cells) : data->SetVerts(cells);
        data->GetPointData()->SetScalars(colors);
        mapper->SetInputData(data);
        const vtkNew<vtkActor> actor;
        actor->SetMapper(mapper);
        actor->GetProperty()->SetPointSize(kDotSize);
        actor->GetProperty()->LightingOff();
        renderer()->AddActor(actor);
    }
    void fill(const Dots& dots, bool segments) {
        float* to = coordinates->GetPointer(0);
        for (const auto& point : dots.points)
            for (const double value : point)
                *to++ = static_cast<float>(value);
        coordinates->Modified();
        points->Modified();
        setColors(colors, dots.colors, segments ? 2 : 1);
    }

    vtkNew<vtkFloatArray> coordinates;
    vtkNew<vtkPoints> points;
    vtkNew<vtkPolyData> data;
    vtkNew<vtkUnsignedCharArray> colors;
    vtkNew<vtkPolyDataMapper> mapper;
};

std::function<Work(unsigned)> supplied(bool segments) {
    return [=](unsigned size) {
        openView(kPixelView);
        const auto dots = std::make_shared<Dots>(size, segments);
        const auto scene = std::make_shared<Scene>(*dots, segments);
        return Work{[=](unsigned) {
                        scene->fill(*dots, segments);
                        window()->Render();
                    },
                    true, 1e-3};
    };
}

} // namespace

std::vector<Case> dotCases() {
    const std::vector<unsigned> all = {1000, 10000, 100000, 1000000};
    return {
        {"lines.batch", all, supplied(true), "arrays filled in place; which points belong together stays"},
        {"points.batch", all, supplied(false), "arrays filled in place"}};
}

} // namespace nrubench
