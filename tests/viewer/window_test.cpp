// The window under a display without a screen: its picture, and what mouse and keys do to it.
#include <signal.h>
#include <sys/wait.h>

#include "tests/support/subprocess.h"
#include "tests/viewer/files.h"
#include "tests/viewer/pngfile.h"
#include "viewer/model/vectors.h"

using namespace nrutest;

namespace {

/// An X server of the case's own.
class Display {
public:
    Display() {
        int ends[2];
        if (pipe(ends) != 0)
            return;
        m_server = fork();
        if (m_server == 0) {
            const std::string number = std::to_string(ends[1]);
            execlp("Xvfb", "Xvfb", "-displayfd", number.c_str(), "-screen", "0", "1600x900x24", "-nolisten",
                   "tcp", nullptr);
            _exit(127);
        }
        close(ends[1]);
        for (char digit; read(ends[0], &digit, 1) == 1 && digit != '\n';)
            m_name += digit;
        close(ends[0]);
    }
    ~Display() {
        kill(m_server, SIGTERM);
        waitpid(m_server, nullptr, 0);
    }
    std::string name() const { return ":" + m_name; }

private:
    pid_t m_server = -1;
    std::string m_name;
};

/// The position that a pick's line tells.
Point placeIn(const std::string& text) {
    Point place{};
    const std::size_t at = text.find(" at ");
    std::istringstream in(at == std::string::npos ? "" : text.substr(at + 4));
    for (double& coordinate : place)
        in >> coordinate;
    EXPECT_TRUE(in) << text;
    return place;
}

class ViewerWindow : public ::testing::Test, public Folder {
protected:
    /// What the commands print in a window of 480 x 360 without smoothed edges; @NAME is a file of the
    /// case's.
    std::string runScript(const std::string& commands, const std::string& extra = "") {
        std::string text = "move 5 5\n" + commands + "\nquit\n"; // the mouse asks for a window
        for (std::size_t at; (at = text.find('@')) != std::string::npos;)
            text.replace(at, 1, path(""));
        write("script.txt", text);
        std::vector<std::string> command = {
            NRUVIEW_PROGRAM, "--sample", "cantilever:20", "--field",         "S:xx", "--size", "480x360",
            "--samples",     "1",        "--script",      path("script.txt")};
        if (!extra.empty())
            command.push_back(extra);
        // The driver is gone before leaks are looked for, so that its own have no module to leave out.
        const ProcessResult result =
            runProgram(command, {{"DISPLAY", m_display.name()},
                                 {"WAYLAND_DISPLAY", ""},
                                 {"ASAN_OPTIONS", "intercept_tls_get_addr=0:detect_leaks=0"}});
        EXPECT_EQ(result.exitCode, 0) << result.output;
        return result.output;
    }

    Display m_display;
};

} // namespace

TEST_F(ViewerWindow, ShowsWhatIsDrawnWithoutOneAndThePanelLeavesNoTrace) {
    const std::string commands = "set deform auto\nturn 30 10\nzoom 1.5 200 200\nselect 3-9\n";
    write("common.txt", commands + "shot " + path("file.png") + "\n");
    const auto drawn = runProgram({NRUVIEW_PROGRAM, "--sample", "cantilever:20", "--field", "S:xx", "--size",
                                   "480x360", "--script", path("common.txt")});
    ASSERT_EQ(drawn.exitCode, 0) << drawn.output;
    runScript(commands + "shot @panel.png");
    runScript(commands + "shot @alone.png", "--no-panel");
    const Picture file = readPng(path("file.png"));
    ASSERT_EQ(file.width(), 480);
    EXPECT_GT(file.countOtherThan(0xFFFFFFFF), 10000);
    EXPECT_TRUE(samePicture(file, readPng(path("panel.png"))));
    EXPECT_TRUE(samePicture(file, readPng(path("alone.png"))));
}

TEST_F(ViewerWindow, KeepsWhatIsUnderTheMouseThereWhileItPansAndZooms) {
    constexpr double kNear = 1.0; // a few pixels of 0.2: a node or an edge near by is picked in their place
    const std::vector<std::string> motions = {"press middle\nmove 300 170\nrelease\npick 300 170",
                                              "press left shift\nmove 300 170\nrelease\npick 300 170",
                                              "wheel 5\npick 280 200",
                                              "wheel -3\npick 280 200",
                                              "press right\nmove 330 150\nrelease\npick 280 200",
                                              "press\nmove 300 190\nmove 310 200\nrelease\npick 280 200"};
    for (const std::string projection : {"persp off", "persp on"}) {
        std::string commands = projection;
        for (const std::string& motion : motions)
            commands += "\nview iso\nfit\nmove 280 200\npick 280 200\n" + motion + "\nprint camera";
        std::istringstream told(runScript(commands));
        std::vector<std::string> cameras;
        for (const std::string& motion : motions) {
            SCOPED_TRACE(projection + "\n" + motion);
            std::string before, after;
            std::getline(told, before);
            std::getline(told, after);
            std::getline(told, cameras.emplace_back());
            EXPECT_LT(length(placeIn(before) - placeIn(after)), kNear) << before << "\n" << after;
        }
        EXPECT_EQ(cameras[0], cameras[1]);
        std::sort(cameras.begin(), cameras.end());
        EXPECT_EQ(std::unique(cameras.begin(), cameras.end()), cameras.end() - 1); // all have moved it
    }
}

TEST_F(ViewerWindow, SelectsByClicksAndBoxes) {
    // What the mouse does over element 110, which is selected, and what is then.
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"press\nmove 320 210\nrelease\nview xy\nfit", "110"}, // a drag turns
        {"move 290 230\npress\nrelease", "90"},
        {"move 290 230\npress left ctrl\nrelease", "90,110"},
        {"move 290 230\npress left shift\nrelease", "90,110"},
        {"press left ctrl\nrelease", "nothing"},
        {"press left shift\nrelease", "110"},
        {"press left ctrl shift\nrelease", "nothing"},
        {"move 470 20\npress\nrelease", "nothing"},
        {"move 470 20\npress left shift\nrelease", "110"},
        {"move 200 120\npress left ctrl\nmove 330 270\nrelease", "86-91,106-111,126-131,146-151"},
        {"move 265 180\npress left ctrl shift\nmove 330 270\nrelease", "nothing"},
        {"key b\nmove 330 270\npress\nmove 200 204\nrelease\nkey b", "86-91"},
        {"move 330 270\npress left ctrl\nmove 200 220\nkey escape\nrelease", "110"},
        {"key h\nkey a", "nothing"},
        {"key escape", "nothing"},
    };
    std::string commands = "view xy", expected;
    for (const auto& [motion, selection] : rows) {
        commands += "\nselect 110\nmove 283 203\n" + motion + "\nprint selection";
        expected += selection + "\n";
    }
    EXPECT_EQ(runScript(commands), expected);
}

TEST_F(ViewerWindow, DrawsTheRubberBandOnThePictureAndTakesItAway) {
    runScript(
        "shot @before.png\nmove 200 100\npress left ctrl\nmove 320 240\nmove 300 220\nshot @band.png\nkey "
        "escape\nshot @after.png");
    const Picture before = readPng(path("before.png")), band = readPng(path("band.png"));
    int changed = 0;
    for (int y = 0; y < band.height(); ++y)
        for (int x = 0; x < band.width(); ++x) {
            if (band.at(x, y) == before.at(x, y))
                continue;
            ++changed;
            const bool isSide = (std::abs(x - 200) < 3 || std::abs(x - 300) < 3) && y > 96 && y < 224;
            const bool isEdge = (std::abs(y - 100) < 3 || std::abs(y - 220) < 3) && x > 196 && x < 304;
            EXPECT_TRUE(isSide || isEdge) << x << " " << y;
        }
    EXPECT_GT(changed, 2 * (100 + 120));
    EXPECT_TRUE(samePicture(before, readPng(path("after.png"))));
}
