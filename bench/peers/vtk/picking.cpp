// Picks of cells through a locator, and colours of values.
#include "bench/peers/vtk/vtk.h"

#include <vtkCellPicker.h>
#include <vtkLookupTable.h>
#include <vtkStaticCellLocator.h>

namespace nrubench {

namespace {

constexpr unsigned kPicks = 1000;

vtkSmartPointer<vtkPolyData> makeSheet(unsigned size) {
    const Sheet sheet(size);
    return makePolyData(makeTriples(sheet.nodes), sheet.normals, sheet.triangles);
}

vtkSmartPointer<vtkStaticCellLocator> makeLocator(vtkPolyData* data) {
    auto locator = vtkSmartPointer<vtkStaticCellLocator>::New();
    locator->SetDataSet(data);
    locator->BuildLocator();
    return locator;
}

bool meets(vtkStaticCellLocator* locator, const std::array<double, 3>& start,
           const std::array<double, 3>& end) {
    double t, point[3], parametric[3];
    int part;
    vtkIdType cell;
    return locator->IntersectWithLine(start.data(), end.data(), 0, t, point, parametric, part, cell) != 0;
}

Work alongRays(unsigned size) {
    return {[locator = makeLocator(makeSheet(size)), rays = sheetRays(kPicks)](unsigned) {
                unsigned hits = 0;
                for (const auto& [start, end] : rays)
                    hits += meets(locator, start, end);
                check(hits > kPicks * 9 / 10, "the rays no longer meet the sheet");
            },
            false};
}

Work throughPixels(unsigned size) {
    openView(kSheetView);
    const auto data = makeSheet(size);
    const vtkNew<vtkPolyDataMapper> mapper;
    mapper->SetInputData(data);
    const vtkNew<vtkActor> actor;
    actor->SetMapper(mapper);
    renderer()->AddActor(actor);
    window()->Render();
    const auto picker = vtkSmartPointer<vtkCellPicker>::New();
    picker->SetTolerance(0);
    picker->AddLocator(makeLocator(data));
    return {[=](unsigned) {
                unsigned hits = 0;
                for (unsigned i = 0; i < kPicks; ++i)
                    hits +=
                        picker->Pick(100 + i * 389 % 800, kHeight - 1 - (100 + i * 211 % 500), 0, renderer());
                check(hits > kPicks * 9 / 10, "the pixels no longer show the sheet");
            },
            false};
}

Work firstPick(unsigned size) {
    return {[data = makeSheet(size)](unsigned) {
                check(meets(makeLocator(data), {0.01, 0.02, 1}, {0.01, 0.02, -1}),
                      "the ray no longer meets the sheet");
            },
            false};
}

volatile unsigned g_sink; // keeps what is looked up

Work lookUp(unsigned size) {
    const auto table = vtkSmartPointer<vtkLookupTable>::New();
    table->SetNumberOfTableValues(kBands);
    table->SetTableRange(0, 1);
    table->Build();
    return {[=](unsigned) {
                unsigned sum = 0;
                for (unsigned i = 0; i < size; ++i)
                    sum += *table->MapValue(static_cast<float>(i * 2654435761u >> 8) / (1 << 24));
                g_sink = sum;
            },
            false};
}

} // namespace

std::vector<Case> pickCases() {
    const std::vector<unsigned> all = {1000, 10000, 100000, 1000000};
    return {{"pick.pixels", all, throughPixels, "finds the cell, not its nearest edge and node"},
            {"pick.rays", all, alongRays, "finds the cell, not its nearest edge and node"},
            {"pick.first", all, firstPick, "", true},
            {"colors.look_up", {1000000}, lookUp, "bands of one width"}};
}

} // namespace nrubench
