// The program nruview as a user meets it: options, errors, listing, files.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "tests/support/subprocess.h"

namespace {

namespace fs = std::filesystem;

constexpr const char* kTwoCells = R"(# vtk DataFile Version 3.0
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
SCALARS p double 1
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
        write("cut.vtk", std::string(kTwoCells).substr(0, 150));
        write("text.vtk", "just some words\n");
        write("no.vtu", "<VTKFile type=\"UnstructuredGrid\"");
    }
    void TearDown() override { fs::remove_all(m_folder); }

    void write(const std::string& name, const std::string& text) { std::ofstream(path(name)) << text; }
    std::string path(const std::string& name) const { return (m_folder / name).string(); }
    std::string contents(const std::string& name) const {
        std::ostringstream text;
        text << std::ifstream(path(name), std::ios::binary).rdbuf();
        return text.str();
    }
    /// Runs nruview; words beginning with @ are files in the case's folder.
    nrutest::ProcessResult nruview(const std::string& words,
                                   const nrutest::Environment& environment = {}) const {
        std::vector<std::string> command = {NRUVIEW_PROGRAM};
        std::istringstream in(words);
        for (std::string word; in >> word;)
            command.push_back(word[0] == '@' ? path(word.substr(1)) : word);
        return nrutest::runProgram(command, environment);
    }

    fs::path m_folder;
};

struct ErrorRow {
    const char* name;
    const char* arguments;
    const char* word; ///< in the message
};

} // namespace

TEST_F(ViewerProgram, ReportsEveryErrorInOneLine) {
    const ErrorRow rows[] = {
        {"no file", "", "FILE"},
        {"missing file", "@none.vtk -o @a.png", "none.vtk"},
        {"folder", "/tmp -o @a.png", "/tmp"},
        {"empty file", "@empty.vtk -o @a.png", "empty.vtk"},
        {"truncated file", "@cut.vtk -o @a.png", "cut.vtk"},
        {"no such format", "@text.vtk -o @a.png", "text.vtk"},
        {"broken XML", "@no.vtu -o @a.png", "no.vtu"},
        {"unknown field", "@two.vtk --field stress -o @a.png", "disp"},
        {"unknown component", "@two.vtk --field disp:7 -o @a.png", "disp"},
        {"unknown sample", "--sample bridge -o @a.png", "cantilever"},
        {"file and sample", "@two.vtk --sample hole -o @a.png", "--sample"},
        {"unknown option", "@two.vtk --colour", "--colour"},
        {"bands too many", "@two.vtk --field T --bands 65 -o @a.png", "--bands"},
        {"bands none", "@two.vtk --field T --bands 0 -o @a.png", "--bands"},
        {"bands no number", "@two.vtk --field T --bands 3x -o @a.png", "--bands"},
        {"range upside down", "@two.vtk --field T --range 2,1 -o @a.png", "--range"},
        {"range of one number", "@two.vtk --field T --range 2 -o @a.png", "--range"},
        {"range not finite", "@two.vtk --field T --range 0,inf -o @a.png", "--range"},
        {"bands without a field", "@two.vtk --bands 5 -o @a.png", "--field"},
        {"edges", "@two.vtk --edges some -o @a.png", "feature"},
        {"view", "@two.vtk --view top -o @a.png", "--view"},
        {"size", "@two.vtk --size 100 -o @a.png", "--size"},
        {"size too large", "@two.vtk --size 20000x10 -o @a.png", "--size"},
        {"size zero", "@two.vtk --size 0x10 -o @a.png", "--size"},
        {"background", "@two.vtk --background blue -o @a.png", "--background"},
        {"pick", "@two.vtk --pick 3", "--pick"},
        {"deform", "@two.vtk --deform much -o @a.png", "--deform"},
        {"deform by a scalar", "@two.vtk --deform 1 --deform-by T -o @a.png", "T"},
        {"nothing to deform by", "@flat.vtk --deform 1 -o @a.png", "--deform-by"},
        {"nothing to draw", "@bare.vtk -o @a.png", "cells"},
        {"folder to write missing", "@two.vtk -o @none/a.png", "a.png"},
        {"output is a folder", "@two.vtk -o /tmp", "/tmp"},
        {"output is a device", "@two.vtk -o /dev/full", "/dev/full"},
    };
    write("flat.vtk", std::string(kTwoCells).substr(0, std::string(kTwoCells).find("VECTORS")));
    write("bare.vtk",
          "# vtk DataFile Version 3.0\nx\nASCII\nDATASET UNSTRUCTURED_GRID\nPOINTS 1 double\n0 0 0\n"
          "CELLS 0 0\nCELL_TYPES 0\n");
    for (const ErrorRow& row : rows) {
        SCOPED_TRACE(row.name);
        const auto result = nruview(row.arguments);
        EXPECT_EQ(result.exitCode, 2) << result.output;
        EXPECT_EQ(result.output.substr(0, 9), "nruview: ") << result.output;
        EXPECT_EQ(std::count(result.output.begin(), result.output.end(), '\n'), 1) << result.output;
        EXPECT_NE(result.output.find(row.word), std::string::npos) << result.output;
        EXPECT_FALSE(fs::exists(path("a.png")));
        EXPECT_FALSE(fs::exists(path("a.png.part")));
    }
}

TEST_F(ViewerProgram, TellsHowToDrawWithoutADisplay) {
    const auto result = nruview("@two.vtk", {{"DISPLAY", ""}, {"WAYLAND_DISPLAY", ""}});
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.output, "nruview: window: no display; -o FILE.png draws without one\n");
}

TEST_F(ViewerProgram, AFailedWriteKeepsTheOldPicture) {
    write("a.png", "old");
    fs::create_directory(path("a.png.part")); // stands in the way of the new one
    const auto result = nruview("@two.vtk -o @a.png");
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(contents("a.png"), "old");
}

TEST_F(ViewerProgram, DrawsTheSamePictureTwice) {
    for (const char* name : {"1.png", "2.png"}) {
        const auto result = nruview(
            std::string("@two.vtk --field T --step 0 --deform auto --persp --size 200x100 -o @") + name);
        EXPECT_EQ(result.exitCode, 0) << result.output;
        EXPECT_EQ(result.output, "");
    }
    EXPECT_EQ(contents("1.png").substr(0, 4), "\x89PNG");
    EXPECT_GT(contents("1.png").size(), 500u);
    EXPECT_EQ(contents("1.png"), contents("2.png"));
    EXPECT_EQ(nruview("@two.vtk --field p --size 200x100 -o @1.png").exitCode, 0) << "replaces a file";
    EXPECT_NE(contents("1.png"), contents("2.png"));
}

TEST_F(ViewerProgram, ListsWhatIsInAFile) {
    const auto result = nruview("@two.vtk --list");
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.output, path("two.vtk") +
                                 "\nnodes 6\ncells 2\n  quad 2\nx 0 .. 2\ny 0 .. 1\nz 0.5 .. 0.5\nfields 3\n"
                                 "  T, node, 1 component, T 1 .. 6.5\n"
                                 "  disp, node, 3 components, disp:mag 0 .. 1\n"
                                 "  p, cell, 1 component, p -1.5 .. 2.25\n");
}

TEST_F(ViewerProgram, PicksWithoutAWindow) {
    const struct {
        const char* arguments;
        const char* output;
    } rows[] = {
        {"@two.vtk --field p --view xy --size 210x210 --pick 155,105",
         "element 1 (quad) at 1.5 0.5 0.5: p = 2.25\n"},
        {"@two.vtk --field T --view xy --size 210x210 --pick 105,54", "node 4 at 1 1 0.5: T = 5\n"},
        {"@two.vtk --view xy --size 210x210 --pick 106,105", "edge 1 4 at 1 0.5 0.5\n"},
        {"@two.vtk --view xy --size 210x210 --pick 1,1", "nothing\n"},
        {"--sample hole:24 --field S:xx --view xy --size 500x500 --range -1,300 --pick 250,202",
         "node 24 at 6.12323e-16 10 0: S:xx = 300\n"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(nruview(row.arguments).output, row.output) << row.arguments;
}

TEST_F(ViewerProgram, HelpAndVersionSucceed) {
    for (const char* option : {"--help", "--version"})
        EXPECT_EQ(nruview(option).exitCode, 0);
    for (const char* word : {"FILE", "--deform-by", "feature", "cantilever", "RRGGBB"})
        EXPECT_NE(nruview("--help").output.find(word), std::string::npos) << word;
}
