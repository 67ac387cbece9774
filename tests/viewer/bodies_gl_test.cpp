// Bodies at known pixels: sides, transparency, materials, the environment behind them and in them.
#include "tests/support/fewsamples.h"
#include "tests/support/radiancewriter.h"
#include "tests/viewer/elements.h"
#include "tests/viewer/files.h"
#include "tests/viewer/scenetest.h"
#include "viewer/app/messages.h"
#include "viewer/app/options.h"

using namespace nrutest;

namespace {

constexpr NgColorLong kRed = 0xFF0000FF, kGreen = 0xFF00FF00, kBlue = 0xFFFF0000, kBlack = 0xFF000000;

struct Rgb {
    int red, green, blue;
};
Rgb channels(NgColorLong color) {
    return {static_cast<int>(color & 0xFF), static_cast<int>(color >> 8 & 0xFF),
            static_cast<int>(color >> 16 & 0xFF)};
}

/// A part of one quad of size 2 about (0, 0, z), facing +z.
void addSheet(Model& model, double z, NgColorLong color, double opacity = 1.0) {
    const auto first = static_cast<std::uint32_t>(model.nodes.size());
    model.nodes.insert(model.nodes.end(), {{-1, -1, z}, {1, -1, z}, {1, 1, z}, {-1, 1, z}});
    model.isSurface = true;
    model.parts.push_back({"sheet", static_cast<std::uint32_t>(model.cellCount()), 1, color, opacity});
    model.addCell(CellType::Quad, std::array{first, first + 1, first + 2, first + 3});
}

Model sheet(NgColorLong color = 0xFFC0C0C0) {
    Model model;
    addSheet(model, 0.0, color);
    return model;
}

/// A colour of its own for each of the six directions: bits of red, green and blue.
int colorFrom(const Point& direction) {
    int axis = 0;
    for (int k : {1, 2})
        if (std::abs(direction[k]) > std::abs(direction[axis]))
            axis = k;
    constexpr int kColors[3][2] = {{1, 3}, {4, 6}, {2, 5}}; // of the positive and the negative direction
    return kColors[axis][direction[axis] < 0.0];
}

/// The directions' colours as a picture with y upward.
std::string environmentPicture() {
    return radianceFile(64, 32, [](int column, int row) {
        const double turn = 2.0 * M_PI * ((column + 0.5) / 64 - 0.5), rise = M_PI * (0.5 - (row + 0.5) / 32);
        const int color =
            colorFrom({std::cos(rise) * std::cos(turn), std::sin(rise), std::cos(rise) * std::sin(turn)});
        const auto lit = [&](int bit) { return color & bit ? 2.0f : 0.0f; };
        return Radiance{lit(1), lit(2), lit(4)};
    });
}

/// Which of red, green and blue a pixel has.
int bitsOf(NgColorLong color) {
    const Rgb rgb = channels(color);
    return (rgb.red > 90 ? 1 : 0) + (rgb.green > 90 ? 2 : 0) + (rgb.blue > 90 ? 4 : 0);
}

class ViewerBodies : public SceneTest {
protected:
    void SetUp() override {
        SceneTest::SetUp();
        routeMessages(false); // with the folder of the materials
        m_background = kBlack;
    }
    Rgb middle(const Model& model, const BodySettings& settings, const char* view = "xy",
               bool fixed = false) {
        const Picture drawn = picture(showModel(model, {}), {.opacity = m_opacity, .legacy = m_legacy},
                                      {view, false, fixed}, settings);
        return channels(drawn.at(kSize / 2 + 3, kSize / 2 + 2));
    }

    double m_opacity = 1.0;
    bool m_legacy = false;
};

constexpr const char* kFront = "0,0,1";
constexpr const char* kBehind = "0,0,-1";

void expectMostly(const Rgb& color, char channel, const std::string& name) {
    const int rgb[] = {color.red, color.green, color.blue};
    const int place = static_cast<int>(std::string_view("rgb").find(channel));
    for (int other : {(place + 1) % 3, (place + 2) % 3})
        EXPECT_GT(rgb[place], rgb[other] + 40)
            << name << ": " << color.red << " " << color.green << " " << color.blue;
}

} // namespace

// The older programs leave normals in model space; the lamp goes with the eye all the same.
TEST_F(ViewerBodies, FlatFacesAreLitAlikeFromEverySide) {
    m_legacy = true;
    for (const char* view : {"0,0,1", "0,0,-1", "1,0,0", "-1,0,0", "0,1,0", "0,-1,0"}) {
        const Rgb shade = middle(hexahedra(2, 2, 2), {.color = 0xFFC8C8C8}, view);
        EXPECT_NEAR(shade.red, 243, 2) << view; // 200 x (0.5 / 1.74 + 1 / 1.078), the lamp's cosine
        EXPECT_EQ(shade.red, shade.blue) << view;
    }
}

TEST_F(ViewerBodies, ShowTheColorOfTheSideThatIsSeen) {
    for (const bool fixed : {false, true}) {
        for (const bool physical : {false, true}) {
            const BodySettings settings = {.physical = physical, .frontColor = kGreen, .backColor = kBlue};
            expectMostly(middle(sheet(kRed), settings, kFront, fixed), 'g', "front");
            expectMostly(middle(sheet(kRed), settings, kBehind, fixed), 'b', "back");
            const BodySettings one = {.physical = physical, .color = kRed};
            expectMostly(middle(sheet(kGreen), one, kBehind, fixed), 'r', "one colour for both sides");
        }
        expectMostly(middle(sheet(kGreen), {}, kFront, fixed), 'g', "colour of the part");
    }
    EXPECT_LT(middle(sheet(kBlack), {}, kFront).red, 80) << "black stays black on a black background";
}

TEST_F(ViewerBodies, LightPassesTheNearerBodiesLast) {
    Model model;
    addSheet(model, 0.0, kRed, 0.5);
    addSheet(model, 0.5, kGreen, 0.5);
    const Rgb two = middle(model, {}, kFront), fromBehind = middle(model, {}, kBehind);
    EXPECT_NEAR(two.green, 2 * two.red, 25) << "half, and half of the other half";
    EXPECT_NEAR(fromBehind.red, 2 * fromBehind.green, 25);
    Model between = model;
    addSheet(between, 0.25, kBlue);
    const Rgb front = middle(between, {}, kFront), behind = middle(between, {}, kBehind);
    EXPECT_TRUE(front.green > 60 && behind.red > 60);
    EXPECT_GT(front.blue, 60) << "the opaque sheet shows through the one before it";
    EXPECT_TRUE(front.red < front.green / 2 && behind.green < behind.red / 2)
        << "and hides the one behind it";
    model.parts = {{"both", 0, 2, kRed, 0.5}}; // from behind the nearer sheet is drawn first
    EXPECT_NEAR(middle(model, {}, kBehind).red, two.green + two.red, 25) << "all of a body shows through";
    const int opaque = middle(sheet(kRed), {}, kFront).red;
    m_opacity = 0.25;
    EXPECT_NEAR(middle(sheet(kRed), {}, kFront).red, 0.25 * opaque, 2);
}

TEST_F(ViewerBodies, MetalHasNoLightOfItsOwnColorBesideTheLamps) {
    // Square to the view no lamp is mirrored.
    const Rgb chrome = middle(sheet(), {.physical = true, .material = "Chrome"}, kFront);
    const Rgb plastic = middle(sheet(), {.physical = true, .material = "ABS"}, kFront);
    EXPECT_GT(plastic.red, chrome.red + 60);
    expectMostly(middle(sheet(kRed), {.physical = true, .material = "Copper"}, kFront), 'r', "tinted metal");
    EXPECT_THROW(middle(sheet(), {.physical = true, .material = "Wood"}), ViewerError);
}

TEST_F(ViewerBodies, LampsStandAboutTheAxisOfThePicture) {
    const ShownModel shown = showModel(hexahedra(2, 2, 2), {});
    const Picture drawn =
        picture(shown, {}, {"0,0,1", true}, {.physical = true, .material = "Steel Polished"});
    int left = 0, right = 0, lower = 0, upper = 0;
    for (int x = 4; x < kSize - 4; ++x)
        for (int y = 4; y < kSize - 4; ++y) {
            const int light = channels(drawn.at(x, y)).green;
            (x < kSize / 2 ? left : right) += light;
            (y < kSize / 2 ? lower : upper) += light;
        }
    EXPECT_GT(left, 1000);
    EXPECT_NEAR(left, right, 0.02 * left);
    EXPECT_NEAR(lower, upper, 0.02 * lower);
}

TEST(ViewerEnvironment, StandsUprightInTheView) {
    for (const auto& [view, up] :
         {std::pair{"iso", ImageUp::Y}, {"zx", ImageUp::X}, {"yz", ImageUp::Z}, {"0,1,0", ImageUp::MinusZ}}) {
        const char* const arguments[] = {"nruview", "--sample", "flange", "--view", view};
        EXPECT_EQ(readOptions(5, arguments)->body.environmentUp, up) << view;
    }
}

// What is seen behind the model lies in the direction of sight, what its faces mirror behind the viewer.
TEST_F(ViewerBodies, StandInTheirEnvironmentTheRightWayUp) {
    takeFewSamples();
    const Folder folder;
    folder.write("around.hdr", environmentPicture());
    const ShownModel shown = showModel(hexahedra(2, 2, 2), {});
    start();
    for (const ImageUp up : {ImageUp::Y, ImageUp::Z}) {
        const auto inImage = [&](const Point& p) { return up == ImageUp::Y ? p : Point{p[0], p[2], -p[1]}; };
        std::optional<Scene> scene;
        for (const char* view : {"1,0,0", "-1,0,0", "0,1,0", "0,-1,0", "0,0,1", "0,0,-1"}) {
            SCOPED_TRACE(std::string(view) + (up == ImageUp::Y ? ", y up" : ", z up"));
            Camera camera = fitCamera(parseView(view), shown.bounds, 1.0, true);
            camera.halfHeight *= 4.0;
            beginFrame(camera, shown.bounds, kSize, kSize, kBlack);
            if (!scene)
                scene.emplace(shown, SceneSettings{},
                              BodySettings{.physical = true,
                                           .environment = folder.path("around.hdr"),
                                           .environmentUp = up,
                                           .environmentBackground = true,
                                           .material = "Chrome",
                                           .color = 0xFFFFFFFF});
            scene->draw();
            const Picture picture = read();
            const Point toward = camera.axes.toward;
            EXPECT_EQ(bitsOf(picture.at(kSize / 2, kSize / 2)), colorFrom(inImage(toward))) << "mirrored";
            EXPECT_EQ(bitsOf(picture.at(kSize / 2 + 12, kSize / 2 - 12)), colorFrom(inImage(-1.0 * toward)))
                << "behind";
        }
    }
}
