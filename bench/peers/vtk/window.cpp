#include "bench/peers/vtk/vtk.h"

#include <vtkAutoInit.h>
#include <vtkCamera.h>
#include <vtkLight.h>
#include <vtkMath.h>
#include <vtkPointData.h>
#include <vtkPoints.h>

VTK_MODULE_INIT(vtkRenderingOpenGL2)

namespace nrubench {

vtkRenderer* renderer() {
    static const vtkNew<vtkRenderer> renderer;
    return renderer;
}

vtkRenderWindow* window() {
    static vtkRenderWindow* window = nullptr;
    if (window)
        return window;
    window = vtkRenderWindow::New(); // lives as long as the process
    window->SetOffScreenRendering(1);
    window->SetMultiSamples(0);
    window->SetSize(kWidth, kHeight);
    window->AddRenderer(renderer());
    return window;
}

namespace {

void addLight(double x, double y, double z, bool positional) {
    const vtkNew<vtkLight> light;
    light->SetLightTypeToCameraLight();
    light->SetPositional(positional);
    light->SetConeAngle(90); // everywhere
    light->SetPosition(x, y, z);
    light->SetFocalPoint(0, 0, 0);
    renderer()->AddLight(light);
}

} // namespace

void openView(const Box& box) {
    constexpr double kFar = 1000;
    window();
    const double x = (box.left + box.right) / 2, y = (box.bottom + box.top) / 2;
    vtkCamera* camera = renderer()->GetActiveCamera();
    camera->SetParallelProjection(1);
    camera->SetParallelScale((box.top - box.bottom) / 2);
    camera->SetFocalPoint(x, y, 0);
    camera->SetPosition(x, y, kFar);
    camera->SetClippingRange(kFar + box.near, kFar + box.far);
    addLight(-0.2, 0.35, 1, false);
}

void openTorusView() {
    window();
    vtkCamera* camera = renderer()->GetActiveCamera();
    const double tilt = vtkMath::RadiansFromDegrees(kTorusTiltDeg);
    camera->SetFocalPoint(0, 0, 0);
    camera->SetPosition(0, kTorusDistance * std::sin(tilt), kTorusDistance * std::cos(tilt));
    camera->SetViewUp(0, std::cos(tilt), -std::sin(tilt));
    camera->SetViewAngle(vtkMath::DegreesFromRadians(2 * std::atan(kTorusTangent)));
    camera->SetClippingRange(1, 10);
    addLight(-2, 3, 4, true);
    addLight(3, 1, 2, true);
}

vtkSmartPointer<vtkCellArray> makeTriangles(const std::vector<std::uint32_t>& triangles) {
    auto cells = vtkSmartPointer<vtkCellArray>::New();
    cells->AllocateExact(static_cast<vtkIdType>(triangles.size() / 3),
                         static_cast<vtkIdType>(triangles.size()));
    for (std::size_t i = 0; i + 2 < triangles.size(); i += 3)
        cells->InsertNextCell({triangles[i], triangles[i + 1], triangles[i + 2]});
    return cells;
}

vtkSmartPointer<vtkPolyData> makePolyData(const vtkSmartPointer<vtkFloatArray>& coordinates,
                                          const std::vector<float>& normals,
                                          const std::vector<std::uint32_t>& triangles) {
    const vtkNew<vtkPoints> points;
    points->SetData(coordinates);
    auto data = vtkSmartPointer<vtkPolyData>::New();
    data->SetPoints(points);
    data->SetPolys(makeTriangles(triangles));
    if (!normals.empty())
        data->GetPointData()->SetNormals(makeTriples(normals));
    return data;
}

void setColors(vtkUnsignedCharArray* array, const std::vector<std::uint32_t>& colors, unsigned repeat) {
    array->SetNumberOfComponents(3);
    array->SetNumberOfTuples(static_cast<vtkIdType>(colors.size() * repeat));
    unsigned char* to = array->GetPointer(0);
    for (const std::uint32_t color : colors)
        for (unsigned i = 0; i < repeat; ++i)
            for (const unsigned shift : {0u, 8u, 16u})
                *to++ = static_cast<unsigned char>(color >> shift);
    array->Modified();
}

} // namespace nrubench
