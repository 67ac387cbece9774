// What the VTK cases share: the window, views, and arrays made of the models.
#pragma once

#include <vtkActor.h>
#include <vtkCellArray.h>
#include <vtkFloatArray.h>
#include <vtkNew.h>
#include <vtkPolyData.h>
#include <vtkPolyDataMapper.h>
#include <vtkRenderWindow.h>
#include <vtkRenderer.h>
#include <vtkSmartPointer.h>
#include <vtkUnsignedCharArray.h>

#include <memory>

#include "bench/harness/case.h"
#include "bench/harness/models.h"
#include "bench/harness/timing.h"

namespace nrubench {

std::vector<Case> meshCases();
std::vector<Case> bodyCases();
std::vector<Case> dotCases();
std::vector<Case> markerCases();
std::vector<Case> pickCases();
std::vector<Case> lightingCases();

/// The process's one window, off-screen, with its renderer.
vtkRenderWindow* window();
vtkRenderer* renderer();
void openView(const Box& box); ///< with one light from above to the left
void openTorusView();          ///< with two lights

template <class Element>
vtkSmartPointer<vtkFloatArray> makeTriples(const std::vector<Element>& values) {
    auto array = vtkSmartPointer<vtkFloatArray>::New();
    array->SetNumberOfComponents(3);
    array->SetNumberOfTuples(static_cast<vtkIdType>(values.size() / 3));
    for (std::size_t i = 0; i < values.size(); ++i)
        array->SetValue(static_cast<vtkIdType>(i), static_cast<float>(values[i]));
    return array;
}

/// Points and triangles, with normals at the points where there are some.
vtkSmartPointer<vtkPolyData> makePolyData(const vtkSmartPointer<vtkFloatArray>& points,
                                          const std::vector<float>& normals,
                                          const std::vector<std::uint32_t>& triangles);
vtkSmartPointer<vtkCellArray> makeTriangles(const std::vector<std::uint32_t>& triangles);

/// Red, green and blue bytes; of `repeat` entries for each colour.
void setColors(vtkUnsignedCharArray* array, const std::vector<std::uint32_t>& colors, unsigned repeat = 1);

} // namespace nrubench
