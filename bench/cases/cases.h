// The library's cases by family, and how all of them start.
#pragma once

#include <array>

#include "NRenderUtl/NRenderUtl.h"
#include "bench/harness/case.h"
#include "bench/harness/models.h"
#include "bench/harness/timing.h"
#include "bench/harness/window.h"

namespace nrubench {

std::vector<Case> batchCases();
std::vector<Case> bodyCases();
std::vector<Case> colorCases();
std::vector<Case> elementCases();
std::vector<Case> lightingCases();
std::vector<Case> markerCases();
std::vector<Case> overlayCases();
std::vector<Case> pickCases();
std::vector<Case> startCases();
std::vector<Case> symbolCases();
std::vector<Case> textureCases();

/// The library in a current context, as a host starts it.
void startLibrary();
void openLibrary(); ///< with the context

/// A grey light at an eye position, with its specular colour.
void setLight(unsigned light, const std::array<float, 4>& eye, float ambient, float diffuse, float specular);
void openSheetView(); ///< one light
void openPixelView(); ///< one light
void openTorusView(); ///< two lights and a shining material

ngl::NglElementMeshInput inputOf(const Sheet& sheet);
RenderColorScale makeScale();

constexpr unsigned kPerTurn = 1000; ///< picks, boxes, pictures, shapes in one turn of a case
/// Where a shape's cost may grow with the number of those before it.
const std::vector<unsigned> kTurns = {kPerTurn, 10 * kPerTurn};

} // namespace nrubench
