// libepoxy's entry points are function pointers: one that counts takes the place of glUseProgram's.
#include "viewer/contract/routes.h"

#include <epoxy/gl.h>

#include "NRenderUtl/NRenderUtl.h"
#include "viewer/bodies/environment.h"
#include "viewer/contract/families.h"
#include "viewer/contract/frames.h"

namespace nruview {

namespace {

int uses = 0;
void (*driversUseProgram)(GLuint) = nullptr;

void countUse(GLuint program) {
    uses += program != 0 ? 1 : 0;
    driversUseProgram(program);
}

/// Counts for the length of a block.
class UseWatch {
public:
    UseWatch() {
        if (epoxy_gl_version() < 20)
            return;
        glUseProgram(0); // libepoxy puts the driver's function into place on the first call
        driversUseProgram = epoxy_glUseProgram;
        epoxy_glUseProgram = countUse;
    }
    ~UseWatch() {
        if (driversUseProgram)
            epoxy_glUseProgram = driversUseProgram;
    }
    UseWatch(const UseWatch&) = delete;
    UseWatch& operator=(const UseWatch&) = delete;
};

bool choosesItself(const Family& family) {
    return family.name.find("fixed") == std::string_view::npos;
}

Route routeOf(const Family& family, const Frames& frames, const Picture& empty) {
    const std::function<void()> draw = family.make ? family.make() : family.draw;
    frames.begin(Target::Window);
    uses = 0;
    draw();
    if (frames.end(Target::Window) == empty)
        return Route::NotDrawn;
    return uses > 0 ? Route::Programs : Route::FixedFunction;
}

} // namespace

std::vector<FamilyRoute> familyRoutes() {
    const UseWatch watch;
    const Environment environment(BodySettings{.environment = BodySettings::kStudio});
    EnableEnvironmentReflection(false); // but in the families that show it
    const Frames frames;
    const ContourTexture contour;
    frames.begin(Target::Window);
    const Picture empty = frames.end(Target::Window);
    std::vector<FamilyRoute> routes;
    for (const Family& family : families())
        if (choosesItself(family))
            routes.push_back({family.name, family.byPrograms, routeOf(family, frames, empty)});
    return routes;
}

} // namespace nruview
