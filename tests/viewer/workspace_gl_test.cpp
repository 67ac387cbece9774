// The state behind window, panel and scripts, driven by the commands of scripts.
#include "tests/viewer/elements.h"
#include "tests/viewer/files.h"
#include "tests/viewer/scenetest.h"
#include "viewer/model/samples.h"
#include "viewer/workspace/script.h"

using namespace nrutest;

namespace {

/// Solids with fields of all kinds, a temperature in two steps that the second lacks at one node, a beam and
/// a point.
Model mixedModel() {
    Model model = makeSample("cantilever:10");
    const auto last = static_cast<std::uint32_t>(model.nodes.size() - 1);
    model.nodes.push_back({50, 30, 0});
    model.addCell(CellType::Line, std::array{last, last + 1});
    model.addCell(CellType::Vertex, std::array{last + 1});
    for (Field& field : model.fields)
        field.values.resize((field.location == FieldLocation::Cell ? model.cellCount() : model.nodes.size()) *
                            static_cast<std::size_t>(field.components));
    for (const double factor : {1.0, -3.0}) {
        Field field{factor > 0 ? "T0" : "T1", FieldLocation::Node, 1, {}};
        for (std::size_t i = 0; i < model.nodes.size(); ++i)
            field.values.push_back(factor * static_cast<double>(i % 7));
        model.fields.push_back(field);
    }
    model.fields.back().values[last] = std::nan("");
    return model;
}

/// A row of four unit quads in z = 0 before one in z = -1, a beam in z = 1 before the first, another and a
/// point behind them, in two blocks.
Model layers() {
    Model model;
    for (const double z : {0.0, -1.0})
        for (int i = 0; i < 4; ++i) {
            const auto at = static_cast<std::uint32_t>(model.nodes.size());
            model.nodes.insert(model.nodes.end(),
                               {{1.0 * i, 0, z}, {i + 1.0, 0, z}, {i + 1.0, 1, z}, {1.0 * i, 1, z}});
            model.addCell(CellType::Quad, std::array{at, at + 1, at + 2, at + 3});
        }
    model.nodes.insert(model.nodes.end(), {{0.3, 0.5, 1}, {0.7, 0.5, 1}, {0.3, 0.5, -2}, {0.7, 0.5, -2}});
    model.addCell(CellType::Line, std::array{32u, 33u});
    model.addCell(CellType::Line, std::array{34u, 35u});
    model.addCell(CellType::Vertex, std::array{34u});
    model.parts = {{"front", 0, 4, {}, 1.0}, {"back", 4, 7, {}, 1.0}};
    return model;
}

/// Parted by semicolons.
std::vector<std::string> commandsOf(const std::string& text) {
    std::vector<std::string> commands;
    std::istringstream in(text);
    for (std::string command; std::getline(in, command, ';');)
        commands.push_back(command);
    return commands;
}

class Workspaces : public SceneTest, public Folder, public CommandPlace {
protected:
    void TearDown() override {
        m_workspace.reset();
        SceneTest::TearDown();
    }
    void open(const Model& model, const char* view = "iso") {
        start();
        Options options;
        options.view = parseView(view);
        options.width = options.height = kSize;
        options.labels = {false, false, false, "", false};
        m_workspace.emplace(model, options);
    }
    Workspace& workspace() override { return *m_workspace; }
    void resize(int, int) override {}
    Pixels picture() override {
        m_workspace->draw(kSize, kSize);
        m_pictures.push_back(read());
        return readPixels(kSize, kSize);
    }
    Picture drawn() {
        picture();
        return m_pictures.back();
    }
    /// The answer of the last command.
    std::string run(const std::string& commands) {
        std::string answer;
        for (const std::string& command : commandsOf(commands))
            answer = runCommand(*this, wordsOf(command));
        return answer;
    }

    std::optional<Workspace> m_workspace;
    std::vector<Picture> m_pictures;
};

} // namespace

TEST_F(Workspaces, ChangesGiveThePictureThatAStartWithThemGives) {
    const std::string changes =
        "set field T; step 0; step 1; step 0;"
        "set select 0-1,20; select none; set highlight 3; set highlight none;"
        "set color 2,21=ff0000; set color none; hide 1,20; isolate 0-2; show all;"
        "set field S_cell; set bands 3; set smear; set field S:xx; set smear off;"
        "set deform auto; phase 100; phase off; set deform off;"
        "section x:45; set field S_cell; set field S:xx; select 4; select none;"
        "set deform auto; phase 100; phase off; section handle on; section 45,0,0:1,0.4,0.3;"
        "section handle off; hide 4; show all; color plain; color field; section off; set deform off;"
        "set arrows F; set arrows ''; set spheres T; step 1; markers off;"
        "set field T; set clip x:,50; set clip none; set edges feature; set edges auto;"
        "set opacity 0.5; set opacity 1; set field ''; set body-color 00ff00; hide 0; select 1;"
        "select none; set body-color auto; set field T; set range 0,3;"
        "set supports fixed; symbols off; set background 808080";
    const Model model = mixedModel();
    open(model);
    Picture before = drawn();
    EXPECT_GT(before.countOtherThan(0xFFFFFFFF), 200);
    for (const std::string& command : commandsOf(changes)) {
        run(command);
        const Picture found = drawn();
        Workspace fresh(model, m_workspace->options());
        fresh.setCamera(m_workspace->camera());
        fresh.draw(kSize, kSize);
        EXPECT_TRUE(samePicture(read(), found)) << command;
        EXPECT_NE(compare(found, before).pixels, 0) << command << " changes nothing";
        before = found;
    }
}

TEST_F(Workspaces, WrongCommandsNameTheirPlaceAndChangeNothing) {
    const std::pair<std::string, std::vector<std::string>> rows[] = {
        {"set", {"field nope", "hide 999", "arrows nope", "logo missing.png", "opacity 2"}},
        {"set", {"fixed", "nope 1", "smear maybe", "field", "bands 3 4"}},
        {"step", {"9", "two"}},
        {"zoom", {"0", "2 5"}},
        {"turn", {"1"}},
        {"view", {"q"}},
        {"click", {"1 2 often"}},
        {"select", {"block none"}},
        {"box", {"1 2 3 4 sideways"}},
        {"animate", {"3 plain.png", "3 a%d%d.png", "3 a%s.png", "0 a%d.png", "3 /nowhere/a%d.png phase"}},
        {"phase", {"x"}},
        {"bogus", {""}},
        {"move", {"1 2"}},
        {"shot", {"'a b", "/nowhere/a.png"}},
        {"print", {"all"}},
        {"hide", {"1-"}},
        {"size", {"0 5"}},
    };
    open(mixedModel());
    run("set field T; set deform auto; select 1; turn 20 10");
    const Picture before = drawn();
    const auto runAll = [&] {
        for (Script script(path("s.txt")); !script.isAtEnd();)
            script.runNext(*this);
    };
    for (const auto& [command, wrong] : rows)
        for (const std::string& words : wrong) {
            SCOPED_TRACE(command + " " + words);
            write("s.txt", "# a comment\n\nstep 1 # another\n" + command + " " + words + "\n");
            EXPECT_THAT(runAll, ThrowsMessage<ViewerError>(StartsWith(path("s.txt") + ":4: ")));
            EXPECT_TRUE(samePicture(drawn(), before));
        }
}

TEST_F(Workspaces, ZoomsPansAndFitsByWhatIsAskedFor) {
    open(layers(), "xy");
    const double size = m_workspace->camera().halfHeight;
    run("zoom 3 25 33");
    EXPECT_NEAR(m_workspace->camera().halfHeight, size / 3.0, 1e-12);
    const Point target = m_workspace->camera().target;
    run("pan 16 0"); // a quarter of the picture
    EXPECT_LT(length(m_workspace->camera().target - target - Point{-size / 6.0, 0, 0}), 1e-12);
    run("isolate 0; fit selected");
    EXPECT_NEAR(m_workspace->camera().halfHeight, 0.25 * size, 0.05 * size) << "one of four in a row";
}

TEST_F(Workspaces, SelectsByPixelBoxAndBlock) {
    // The picture is 4.2 units wide: the front's quads stand 15 pixels apart from 1.5 on, in rows 24 to 39.
    const std::pair<const char*, const char*> rows[] = {
        {"box 0 0 63 63", "0-10"},
        {"box 0 0 63 63 visible", "0-3,8"},
        {"box 14 20 50 45", "1-2,5-6"},
        {"box 50 45 14 20 visible", "1-2"},
        {"hide 2; box 14 20 50 45 visible", "1,6"},
        {"hide 2; box 0 0 63 63", "0-1,3-10"},
        {"hide 8; box 0 20 22 45 visible", "0"},
        {"hide block front; box 0 0 63 63 visible", "4-8"},
        {"isolate block front; box 0 0 63 63", "0-3"},
        {"hide 0; select 0-1", "1"},
        {"hide block front; show all; select block front", "0-3"},
        {"click 24 35", "1"},
        {"click 24 35; click 24 35 toggle", "nothing"},
        {"click 24 35; click 40 35 add; click 24 35 remove", "2"},
        {"select 1-3; box 14 20 50 45 toggle visible", "3"},
        {"hide 1; click 24 35", "5"},
        {"select 1; click 5 5", "nothing"},
        {"select 1-2; hide selected; show all", "nothing"},
    };
    for (const auto& [commands, expected] : rows)
        for (const char* projection : {"persp off", "persp on"}) {
            open(layers(), "xy");
            run(projection);
            run(commands);
            EXPECT_EQ(run("print selection"), expected) << commands << ", " << projection;
        }
}

TEST_F(Workspaces, AnimationsKeepColorsAndViewAndLeaveAllAsItWas) {
    open(mixedModel());
    run("set field T; step 0");
    const Picture before = drawn();
    m_pictures.clear();
    run("animate 4 " + path("swing-%03d.png") + " phase");
    ASSERT_EQ(m_pictures.size(), 4u);
    EXPECT_TRUE(std::filesystem::exists(path("swing-000.png")) &&
                std::filesystem::exists(path("swing-003.png")));
    EXPECT_TRUE(samePicture(m_pictures[1], m_pictures[3])) << "both ways through the middle";
    EXPECT_GT(compare(m_pictures[0], m_pictures[2]).pixels, 50) << "a full swing";
    m_pictures.clear();
    run("animate 2 " + path("step%d.png"));
    ASSERT_EQ(m_pictures.size(), 2u);
    EXPECT_TRUE(samePicture(drawn(), before));
    run("set range -18,6; step 0");
    EXPECT_TRUE(samePicture(m_pictures[0], drawn())) << "the range of both steps";
}
