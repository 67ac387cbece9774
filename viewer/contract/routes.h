// Which way each family is drawn, as seen from the outside.
#pragma once

#include <string_view>
#include <vector>

namespace nruview {

enum class Route { Programs, FixedFunction, NotDrawn };

struct FamilyRoute {
    std::string_view name;
    bool couldUsePrograms = false; ///< on a driver that has all
    Route route = Route::NotDrawn;
};

/// Draws each family that is free to choose once, in the context that is current with the library started in
/// it, and watches whether programs are put to use.
std::vector<FamilyRoute> familyRoutes();

} // namespace nruview
