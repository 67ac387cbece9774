// The program nruview as a user meets it: options, errors, listing, files.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "tests/support/subprocess.h"

namespace {

namespace fs = std::filesystem;

const std::string kTwoCells = R"(# vtk DataFile Version 3.0
two cells
ASCII
DATASET UNSTRUCTURED_GRID
POINTS 6 double
0 0 .5  1 0 .5  2 0 .5  0 1 .5  1 1 .5  2 1 .5
CELLS 2 10
4 0 1 4 3
4 1 2 5 4
CELL_TYPES 2
9 9
POINT_DATA 6
SCALARS T double 1
LOOKUP_TABLE default
1 2 3 4 5 6.5
VECTORS disp double
0 0 0  0 0 0  0 0 1  0 0 0  0 0 0  0 0 1
CELL_DATA 2
SCALARS T double 1
LOOKUP_TABLE default
-1.5 2.25
)";

class ViewerProgram : public ::testing::Test {
protected:
    void SetUp() override {
        char name[] = "/tmp/nruviewXXXXXX";
        m_folder = mkdtemp(name);
        write("two.vtk", kTwoCells);
        write("empty.vtk", "");
        write("cut.vtk", kTwoCells.substr(0, 150));
        write("flat.vtk", kTwoCells.substr(0, kTwoCells.find("VECTORS")));
        write("bare.vtk", kTwoCells.substr(0, kTwoCells.find("CELLS")) + "CELLS 0 0\nCELL_TYPES 0\n");
    }
    void TearDown() override { fs::remove_all(m_folder); }

    void write(const std::string& name, const std::string& text) { std::ofstream(path(name)) << text; }
    std::string path(const std::string& name) const { return (m_folder / name).string(); }
    std::string contents(const std::string& name) const {
        std::ostringstream text;
        text << std::ifstream(path(name), std::ios::binary).rdbuf();
        return text.str();
    }
    /// Runs nruview; words beginning with @ are files in the case's folder, '' is an empty word.
    nrutest::ProcessResult nruview(const std::string& words,
                                   const nrutest::Environment& environment = {}) const {
        std::vector<std::string> command = {NRUVIEW_PROGRAM};
        std::istringstream in(words);
        for (std::string word; in >> word;)
            command.push_back(word[0] == '@' ? path(word.substr(1)) : word == "''" ? "" : word);
        return nrutest::runProgram(command, environment);
    }

    fs::path m_folder;
};

} // namespace

TEST_F(ViewerProgram, ReportsEveryErrorInOneLine) {
    // Arguments besides -o, then a word of the message.
    const std::vector<std::string> rows = {" => FILE",
                                           "@none.vtk => none.vtk",
                                           "/tmp => /tmp",
                                           "@empty.vtk => empty.vtk",
                                           "@cut.vtk => cut.vtk",
                                           "@bare.vtk => cells",
                                           "'' => file",
                                           "@two.vtk --field stress => disp",
                                           "@two.vtk --field disp:7 => disp",
                                           "@two.vtk --field disp@cell => disp@cell",
                                           "@two.vtk --field '' => --field",
                                           "@two.vtk --step 1 => no steps",
                                           "--sample bridge => cantilever",
                                           "--sample hole:0 => 1 to 2000",
                                           "--sample cantilever:12x => number",
                                           "--sample hole:2000 => at most 4000000",
                                           "@two.vtk --sample hole => --sample",
                                           "@two.vtk --colour => --colour",
                                           "@two.vtk --field T --bands 65 => --bands",
                                           "@two.vtk --field T --bands 0 => --bands",
                                           "@two.vtk --field T --bands 3x => --bands",
                                           "@two.vtk --field T --range 2,1 => --range",
                                           "@two.vtk --field T --range 2 => --range",
                                           "@two.vtk --field T --range 0,inf => --range",
                                           "@two.vtk --bands 5 => --field",
                                           "@two.vtk --edges some => feature",
                                           "@two.vtk --view top => --view",
                                           "@two.vtk --size 100 => --size",
                                           "@two.vtk --size 20000x10 => --size",
                                           "@two.vtk --size 0x10 => --size",
                                           "@two.vtk --background blue => --background",
                                           "@two.vtk --pick 3 => --pick",
                                           "@two.vtk --deform much => --deform",
                                           "@two.vtk --deform 1 --deform-by T => T",
                                           "@flat.vtk --deform 1 => --deform-by"};
    const auto expectError = [&](const std::string& arguments, const std::string& word) {
        SCOPED_TRACE(arguments);
        const auto [exitCode, output] = nruview(arguments);
        EXPECT_EQ(exitCode, 2) << output;
        EXPECT_EQ(output.substr(0, 9), "nruview: ") << output;
        EXPECT_EQ(std::count(output.begin(), output.end(), '\n'), 1) << output;
        EXPECT_NE(output.find(word), std::string::npos) << output;
        EXPECT_FALSE(fs::exists(path("a.png")) || fs::exists(path("a.png.part")));
    };
    for (const std::string& row : rows)
        expectError(row.substr(0, row.find("=>")) + "-o @a.png", row.substr(row.find("=>") + 3));
    for (const char* output : {"@none/a.png", "/tmp", "/dev/full", "''"})
        expectError(std::string("@two.vtk -o ") + output, output[0] == '/' ? output : "");
}

TEST_F(ViewerProgram, TellsHowToDrawWithoutADisplay) {
    const auto result = nruview("@two.vtk", {{"DISPLAY", ""}, {"WAYLAND_DISPLAY", ""}});
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.output, "nruview: window: no display; -o FILE.png draws without one\n");
}

TEST_F(ViewerProgram, AFailedWriteKeepsTheOldPicture) {
    write("a.png", "old");
    fs::create_directory(path("a.png.part")); // stands in the way of the new one
    EXPECT_EQ(nruview("@two.vtk -o @a.png").exitCode, 2);
    EXPECT_EQ(contents("a.png"), "old");
}

TEST_F(ViewerProgram, TextThatCannotBeWrittenIsAnError) {
    const std::string command = NRUVIEW_PROGRAM " --sample hole:3 --list > /dev/full";
    const auto result = nrutest::runProgram({"/bin/sh", "-c", command}, {});
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.output, "nruview: standard output: cannot be written\n");
}

TEST_F(ViewerProgram, DrawsTheSamePictureTwice) {
    for (const char* name : {"1.png", "2.png"}) {
        const auto result = nruview(
            std::string("@two.vtk --field T --step 0 --deform auto --persp --size 200x100 -o @") + name);
        EXPECT_EQ(result.exitCode, 0);
        EXPECT_EQ(result.output, "");
    }
    EXPECT_EQ(contents("1.png").substr(0, 4), "\x89PNG");
    EXPECT_EQ(contents("1.png"), contents("2.png"));
    EXPECT_EQ(nruview("@two.vtk --field T@cell --size 200x100 -o @1.png").exitCode, 0) << "replaces a file";
    EXPECT_NE(contents("1.png"), contents("2.png"));
}

TEST_F(ViewerProgram, ListsWhatIsInAFile) {
    const auto result = nruview("@two.vtk --list");
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.output, path("two.vtk") +
                                 "\nnodes 6\ncells 2\n  quad 2\nx 0 .. 2\ny 0 .. 1\nz 0.5 .. 0.5\nfields 3\n"
                                 "  T@node, node, 1 component, T 1 .. 6.5\n"
                                 "  disp, node, 3 components, disp:mag 0 .. 1\n"
                                 "  T@cell, cell, 1 component, T -1.5 .. 2.25\n");
}

// Off the middle, so that a mirrored picture picks something else.
TEST_F(ViewerProgram, PicksWithoutAWindow) {
    for (const char* projection : {"", " --persp"}) {
        const std::string options = std::string(" --view xy --size 210x210") + projection;
        EXPECT_EQ(nruview("@two.vtk --field T@cell --pick 155,105" + options).output,
                  "element 1 (quad) at 1.5 0.5 0.5: T = 2.25\n");
        EXPECT_EQ(nruview("@two.vtk --field T --pick 105,54" + options).output, "node 4 at 1 1 0.5: T = 5\n");
        EXPECT_EQ(nruview("@two.vtk --pick 1,1" + options).output, "nothing\n");
    }
}

TEST_F(ViewerProgram, HelpAndVersionSucceed) {
    EXPECT_EQ(nruview("--version").exitCode, 0);
    const auto [exitCode, help] = nruview("--help");
    EXPECT_EQ(exitCode, 0);
    for (const char* word : {"FILE", "--deform-by", "feature", "cantilever", "RRGGBB"})
        EXPECT_NE(help.find(word), std::string::npos) << word;
}
