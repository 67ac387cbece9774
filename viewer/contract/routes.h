// Which way each family is drawn, as seen from the outside.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "viewer/contract/frames.h"

namespace nruview {

enum class Route { Programs, FixedFunction, NotDrawn };

struct FamilyRoute {
    std::string_view name;
    bool couldUsePrograms = false; ///< on a driver that has all
    Route route = Route::NotDrawn;
    Picture picture; ///< of Frames::kSize
};

/// Draws each family that is free to choose once, in the context that is current with the library started in
/// it, and watches whether programs are put to use.
std::vector<FamilyRoute> familyRoutes();

/// Starts the library in an off-screen context and writes the picture of each family that draws something as
/// a PNG file into a folder, which is made where it is missing. Throws ViewerError.
void writeFamilyPictures(const std::string& folder, bool fixed);

} // namespace nruview
