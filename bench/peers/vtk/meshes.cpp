// A finite-element sheet: bands of a lookup table at the points, colours of cells.
#include "bench/peers/vtk/vtk.h"

#include <vtkCellData.h>
#include <vtkLookupTable.h>
#include <vtkPointData.h>
#include <vtkPolyDataNormals.h>
#include <vtkProperty.h>

#include <algorithm>

namespace nrubench {

namespace {

constexpr double kCovered = 0.7;

vtkSmartPointer<vtkLookupTable> makeBands() {
    auto table = vtkSmartPointer<vtkLookupTable>::New();
    table->SetNumberOfTableValues(kBands);
    for (unsigned i = 0; i < kBands; ++i) {
        const auto [red, green, blue] = bandColor(i);
        table->SetTableValue(i, red / 255.0, green / 255.0, blue / 255.0);
    }
    table->SetTableRange(0, 1);
    return table;
}

/// The sheet in the renderer.
struct Banded {
    Banded(const Sheet& sheet, const vtkSmartPointer<vtkPolyData>& withNormals) : data(withNormals) {
        values->SetNumberOfTuples(static_cast<vtkIdType>(sheet.nodeValues.size()));
        std::copy(sheet.nodeValues.begin(), sheet.nodeValues.end(), values->GetPointer(0));
        data->GetPointData()->SetScalars(values);
        mapper->SetInputData(data);
        mapper->SetLookupTable(makeBands());
        mapper->SetScalarRange(0, 1);
        mapper->InterpolateScalarsBeforeMappingOn(); // bands end within triangles
        const vtkNew<vtkActor> actor;
        actor->SetMapper(mapper);
        actor->GetProperty()->SetAmbient(0.5);
        actor->GetProperty()->SetDiffuse(0.5);
        renderer()->AddActor(actor);
    }
    explicit Banded(const Sheet& sheet)
        : Banded(sheet, makePolyData(makeTriples(sheet.nodes), sheet.normals, sheet.triangles)) {}

    vtkSmartPointer<vtkPolyData> data;
    vtkNew<vtkFloatArray> values;
    vtkNew<vtkPolyDataMapper> mapper;
};

using Change = std::function<void(Sheet&, Banded&, unsigned turn)>;

std::function<Work(unsigned)> bands(const Change& change = {}) {
    return [=](unsigned size) {
        openView(kSheetView);
        const auto sheet = std::make_shared<Sheet>(size);
        const auto banded = std::make_shared<Banded>(*sheet);
        return Work{[=](unsigned turn) {
                        if (change)
                            change(*sheet, *banded, turn);
                        window()->Render();
                    },
                    true, kCovered};
    };
}

void revalue(Sheet& sheet, Banded& banded, unsigned) {
    auto& values = sheet.nodeValues;
    std::rotate(values.begin(), values.begin() + 1, values.end());
    std::copy(values.begin(), values.end(), banded.values->GetPointer(0));
    banded.values->Modified();
}

void rerange(Sheet&, Banded& banded, unsigned turn) {
    banded.mapper->SetScalarRange(0, 1 + static_cast<double>(turn % 10) / 20);
}

/// Gives it cells without those that are hidden.
Work hide(unsigned size) {
    openView(kSheetView);
    const auto sheet = std::make_shared<Sheet>(size);
    const auto banded = std::make_shared<Banded>(*sheet);
    return {[=, shown = std::vector<std::uint32_t>()](unsigned turn) mutable {
                const std::size_t tenth = sheet->elementCount() / 10 * 3;
                const auto begin = sheet->triangles.begin(),
                           hidden = begin + static_cast<std::ptrdiff_t>(turn % 10 * tenth);
                shown.assign(begin, hidden);
                shown.insert(shown.end(), hidden + static_cast<std::ptrdiff_t>(tenth),
                             sheet->triangles.end());
                banded->data->SetPolys(makeTriangles(shown));
                window()->Render();
            },
            true, kCovered - 0.1};
}

/// Makes normals too, as the library does.
void showNew(const Sheet& sheet) {
    const vtkNew<vtkPolyDataNormals> normals;
    normals->SetInputData(makePolyData(makeTriples(sheet.nodes), {}, sheet.triangles));
    normals->SplittingOff();
    normals->ConsistencyOff();
    normals->Update();
    const Banded banded(sheet, normals->GetOutput());
    window()->Render();
}

Work firstFrame(unsigned size) {
    const auto sheet = std::make_shared<Sheet>(size);
    openView(kSheetView);
    window()->Render(); // of nothing
    return {[=](unsigned) { showNew(*sheet); }, true, kCovered};
}

/// From nothing to a picture.
Work toFirstFrame(unsigned size) {
    return {[sheet = Sheet(size)](unsigned) {
                openView(kSheetView);
                showNew(sheet);
                window()->WaitForCompletion();
            },
            false};
}

Work emptyFrame(unsigned) {
    return {[](unsigned) {
                openView(kSheetView);
                window()->Render();
                window()->WaitForCompletion();
            },
            false};
}

std::function<Work(unsigned)> colors(bool change) {
    return [=](unsigned size) {
        openView(kSheetView);
        const auto sheet = std::make_shared<Sheet>(size);
        const auto banded = std::make_shared<Banded>(*sheet);
        const auto array = vtkSmartPointer<vtkUnsignedCharArray>::New();
        setColors(array, sheet->colors);
        banded->data->GetCellData()->SetScalars(array);
        banded->mapper->InterpolateScalarsBeforeMappingOff();
        banded->mapper->SetScalarModeToUseCellData();
        banded->mapper->SetColorModeToDirectScalars();
        return Work{[=](unsigned) {
                        if (change) {
                            std::rotate(sheet->colors.begin(), sheet->colors.begin() + 1,
                                        sheet->colors.end());
                            setColors(array, sheet->colors);
                        }
                        window()->Render();
                    },
                    true, kCovered};
    };
}

} // namespace

std::vector<Case> meshCases() {
    const std::vector<unsigned> all = {1000, 10000, 100000, 1000000}, large = {100000, 1000000};
    return {{"start.with_context", {1}, emptyFrame, "a GLX window and one empty frame", true},
            {"start.to_first_frame", {1000}, toFirstFrame, "normals without creases", true},
            {"mesh.bands", all, bands()},
            {"mesh.colors", large, colors(false)},
            {"mesh.hide", large, hide, "is given cells without those that are hidden"},
            {"mesh.recolor", large, colors(true)},
            {"mesh.rerange", large, bands(rerange)},
            {"mesh.revalue", large, bands(revalue)},
            {"mesh.first_frame", all, firstFrame, "normals without creases", true}};
}

} // namespace nrubench
