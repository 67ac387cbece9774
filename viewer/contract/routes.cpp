// libepoxy's entry points are function pointers: one that counts takes the place of glUseProgram's.
#include "viewer/contract/routes.h"

#include <epoxy/gl.h>

#include <filesystem>

#include "NRenderUtl/NRenderUtl.h"
#include "viewer/app/offscreen.h"
#include "viewer/app/pngwriter.h"
#include "viewer/bodies/environment.h"
#include "viewer/contract/families.h"
#include "viewer/error.h"
#include "viewer/scene/frame.h"

namespace nruview {

namespace {

constexpr int kEnlargement = 3;

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

FamilyRoute routeOf(const Family& family, const Frames& frames, const Picture& empty) {
    const std::function<void()> draw = family.make ? family.make() : family.draw;
    frames.begin(Target::Window);
    uses = 0;
    draw();
    FamilyRoute route{family.name, family.byPrograms, Route::NotDrawn, frames.end(Target::Window)};
    if (route.picture != empty)
        route.route = uses > 0 ? Route::Programs : Route::FixedFunction;
    return route;
}

/// "batch of points, fixed" becomes "batch-of-points-fixed".
std::string fileName(std::string_view name) {
    std::string file;
    for (const char c : name)
        if (c != ',')
            file += c == ' ' ? '-' : c;
    return file + ".png";
}

/// Each pixel as a square, to be seen.
std::vector<std::uint32_t> enlarged(const std::vector<std::uint32_t>& pixels) {
    constexpr int kLarge = Frames::kSize * kEnlargement;
    std::vector<std::uint32_t> large;
    for (int y = 0; y < kLarge; ++y)
        for (int x = 0; x < kLarge; ++x)
            large.push_back(
                pixels[static_cast<std::size_t>(y / kEnlargement * Frames::kSize + x / kEnlargement)]);
    return large;
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
            routes.push_back(routeOf(family, frames, empty));
    return routes;
}

void writeFamilyPictures(const std::string& folder, bool fixed) {
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error)
        throw ViewerError(folder, "cannot be made: " + error.message());
    OffscreenContext context;
    if (const std::string reason = context.create(Frames::kSize, Frames::kSize); !reason.empty())
        throw ViewerError("off-screen drawing", reason);
    const LibrarySession session(fixed);
    constexpr int kLarge = Frames::kSize * kEnlargement;
    for (const FamilyRoute& family : familyRoutes())
        if (family.route != Route::NotDrawn)
            writePng(folder + "/" + fileName(family.name), kLarge, kLarge, enlarged(family.picture.colors));
}

} // namespace nruview
