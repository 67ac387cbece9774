// The program nruview as a user meets it: options, errors, listing, files.
#include "tests/support/subprocess.h"
#include "tests/viewer/files.h"
#include "tests/viewer/pngfile.h"

using namespace nrutest;

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
1 2 3 4 5 6.5
VECTORS disp double
0 0 0  0 0 0  0 0 1  0 0 0  0 0 0  0 0 1
CELL_DATA 2
SCALARS T double 1
-1.5 2.25
)";

class ViewerProgram : public ::testing::Test, public Folder {
protected:
    ViewerProgram() {
        write("two.vtk", kTwoCells);
        write("flat.vtk", kTwoCells.substr(0, kTwoCells.find("VECTORS")));
    }
    /// Runs nruview; words beginning with @ are files in the case's folder, '' is an empty word.
    ProcessResult nruview(const std::string& words, const Environment& environment = {}) const {
        std::vector<std::string> command = {NRUVIEW_PROGRAM};
        std::istringstream in(words);
        for (std::string word; in >> word;)
            command.push_back(word[0] == '@' ? path(word.substr(1)) : word == "''" ? "" : word);
        return runProgram(command, environment);
    }

    /// Status 2 and one line that names the program and holds a word.
    static void expectError(const ProcessResult& result, const std::string& word) {
        EXPECT_EQ(result.exitCode, 2) << result.output;
        EXPECT_TRUE(result.output.starts_with("nruview: ")) << result.output;
        EXPECT_EQ(std::count(result.output.begin(), result.output.end(), '\n'), 1) << result.output;
        EXPECT_THAT(result.output, HasSubstr(word));
    }
    /// Runs what has nothing to say.
    void draw(const std::string& words, const Environment& environment = {}) const {
        EXPECT_EQ(nruview(words, environment).output, "") << words;
    }
};

} // namespace

TEST_F(ViewerProgram, ReportsEveryErrorInOneLine) {
    // Arguments besides -o, then a word of the message.
    std::vector<std::string> rows = {
        " => FILE",
        "@none.vtk => none.vtk",
        "/usr => /usr",
        "--sample bridge => cantilever",
        "--sample hole:0 => 1 to 2000",
        "--sample hole:2000 => at most 4000000",
        "@two.vtk --step 1 => no steps",
        "@two.vtk --bands 5 => --field",
        "@two.vtk --deform 1 --deform-by T => T",
        "@flat.vtk --deform 1 => --deform-by",
        "@two.vtk --hide 2 => no element 2; the model's elements are 0 to 1",
        "@two.vtk --fail T@cell => --fail-level",
        "@two.vtk --fail-level 1 => --fail-before",
        "@two.vtk --fail T --fail-level 1 => a field of the nodes",
        "@two.vtk --pbr --field T => --field excludes --pbr",
        "@two.vtk --hdr @studio => --hdr requires --pbr",
        "@two.vtk --pbr --material Wood => --material: there is no 'Wood'; --materials prints the table",
        "@two.vtk --pbr --select 0 => bodies do not show --select",
        "@two.vtk --pbr --shade flat => --crease",
        "@two.vtk --pbr --hdr @none.hdr => none.hdr: Failed to load HDR image file!",
        "@two.vtk --pbr --fixed --hdr @none.hdr => none.hdr: Failed to load HDR image file!",
        "@two.vtk --pbr --hdr @two.vtk => two.vtk: Failed to load HDR image file! (not a Radiance image)",
        "@two.vtk --logo @none.png => none.png: no such file",
        "@two.vtk --logo @two.vtk => two.vtk: not a PNG or JPEG image",
        "@two.vtk --icons @two.vtk => --icons: --marker-nodes or --field is needed with it",
        "@two.vtk --plain --logo @two.vtk => --plain excludes --logo",
        "@two.vtk --arrows T => field T: has 1 components; the vector of an arrow has 3",
        "@two.vtk --arrows T@cell => field T: has values of elements; arrows stand at nodes",
        "@two.vtk --arrows disp --arrow-scale 0 => --arrow-scale: '0' is not a number above 0",
        "@two.vtk --spheres T --marker-nodes 3,6 => there is no node 6; the model's nodes are 0 to 5",
        "@two.vtk --connectors 0-1,3 => '0-1,3' is not a list of pairs of nodes such as 3-40,7-12",
        "@two.vtk --connectors 0-1 --connector-shape bolt => 'bolt' is not rivet or cylinder",
        "@two.vtk --supports fixed => --supports: there is no node set fixed; the model has none",
        "--sample cantilever:5 --supports free:pin => there is no node set free; the model has fixed, loaded",
        "@two.vtk --supports 0:spring => '0:spring' is not NODES:KIND with clamp, pin",
        "@two.vtk --tensors disp => field disp: has 3 components; a tensor has 6 or 9"};
    // Options that the message names.
    std::istringstream options(
        "--field '';--sample hole;--colour;--bands 65 --field T;--bands 3x --field T;--range 2,1 --field T;"
        "--range 0,inf --field T;--view top;--size 100;--size 20000x10;--background blue;--pick 3;"
        "--deform much;--hide 1-0;--hide 0,,1;--select 1-;--color 0=#12345g;--color 7=red;--clip w:0,1;"
        "--section w;--section x:;--section 1,2:1,0,0;--section 1,2,3:0,0,0;--color-by part;--hide-block low;"
        "--clip x:,;--clip x:2,1;--fail-level 1.5 --fail T@cell;--marks;--legend yes;--plain --title "
        "T;--opacity 1.1;--crease 181;"
        "--edges some;--shade round;--body-color red;--connectors 2-2;--connectors 0-6;--highlight 9;--color "
        "7=#ff0000;"
        "--supports 0:pin-x;--hdr-up up --pbr --hdr a");
    for (std::string option; std::getline(options, option, ';');)
        rows.push_back("@two.vtk " + option + " => " + option.substr(0, option.find(' ')));
    for (const std::string& row : rows) {
        SCOPED_TRACE(row);
        const std::size_t arrow = row.find("=> ");
        expectError(nruview(row.substr(0, arrow) + "-o @a.png"), row.substr(arrow + 3));
        EXPECT_FALSE(fs::exists(path("a.png")) || fs::exists(path("a.png.part")));
    }
}

TEST_F(ViewerProgram, WhatCannotBeShownOrWrittenIsAnError) {
    for (const char* output : {"@none/a.png", "/usr", "/dev/full", "''"})
        expectError(nruview(std::string("@two.vtk -o ") + output), output[0] == '/' ? output : "");
    expectError(nruview("@two.vtk", {{"DISPLAY", ""}, {"WAYLAND_DISPLAY", ""}}),
                "no display; -o FILE.png draws without one");
    expectError(runProgram({"/bin/sh", "-c", NRUVIEW_PROGRAM " --sample hole:3 --list > /dev/full"}),
                "standard output: cannot be written");
    write("a.png", "old");
    fs::create_directory(path("a.png.part")); // stands in the way of the new one
    expectError(nruview("@two.vtk -o @a.png"), "a.png");
    EXPECT_EQ(contents("a.png"), "old");
}

TEST_F(ViewerProgram, DrawsThePictureThatWasAskedFor) {
    const std::string command =
        "@two.vtk --field T --step 0 --view xy --edges none --background 102030 --plain --size 200x100 -o @";
    draw(command + "1.png");
    draw(command + "2.png");
    EXPECT_TRUE(contents("1.png") == contents("2.png"));
    draw("@two.vtk --deform auto --persp -o @2.png");
    EXPECT_FALSE(contents("1.png") == contents("2.png")) << "replaces the file";

    const Picture picture = readPng(path("1.png"));
    ASSERT_TRUE(picture.width() == 200 && picture.height() == 100);
    EXPECT_EQ(contents("1.png")[25], 2) << "colours without alpha";
    EXPECT_EQ(picture.at(0, 0), 0xFF302010);
    const auto redOverBlue = [&](int x, int y) {
        return static_cast<int>(picture.at(x, y) & 0xFF) - static_cast<int>(picture.at(x, y) >> 16 & 0xFF);
    };
    EXPECT_GT(redOverBlue(180, 10), 100) << "the highest value, at the upper right";
    EXPECT_LT(redOverBlue(20, 90), -100) << "the lowest at the lower left";
}

TEST_F(ViewerProgram, ShadesFacesByTheLegacyPrograms) {
    std::set<std::string> pictures;
    for (const char* words : {"--legacy", "--legacy --view -1,-1,1", "--shade flat"}) {
        draw(std::string("--sample flange:4 --plain --size 200x150 -o @a.png ") + words);
        pictures.insert(contents("a.png"));
    }
    EXPECT_EQ(pictures.size(), 3u);
}

TEST_F(ViewerProgram, DrawsPicturesAndWhatIsPickedOverTheModel) {
    draw("@two.vtk --plain --background c00000 --hide 0,1 --size 90x30 -o @logo.png");
    const std::string command = "@two.vtk --axes off --title '' --view xy --hide 0-1 --background white "
                                "--size 300x240 -o @a.png ";
    constexpr std::uint32_t kRed = 0xFF0000C0, kWhite = 0xFFFFFFFF;
    draw(command + "--logo @logo.png");
    const Picture logo = readPng(path("a.png")); // 50 x 16 pixels, 9 from the corner
    for (const auto& [x, y, color] : {std::tuple{290, 230, kRed},
                                      {242, 216, kRed},
                                      {239, 220, kWhite},
                                      {260, 213, kWhite},
                                      {292, 232, kWhite}})
        EXPECT_EQ(logo.at(x, y), color) << x << ", " << y;
    draw(command + "--icons @logo.png --marker-nodes 0,5");
    const Picture icons = readPng(path("a.png"));
    int red = 0;
    for (int i = 0; i < 300 * 240; ++i)
        red += icons.at(i % 300, i / 300) == kRed;
    EXPECT_NEAR(red, 2 * 3.14 * 9 * 9, 80) << "two discs within borders";
    EXPECT_EQ(nruview(command + "--pick 150,120").output, "nothing\n");
    const Picture ring = readPng(path("a.png"));
    EXPECT_EQ(ring.at(150, 120), kWhite) << "its inside";
    EXPECT_LT(ring.at(150, 123) & 0xFF, 0x80u);
}

TEST_F(ViewerProgram, DrawsWithoutProgramsWhereAskedTo) {
    const std::string command = "@two.vtk --field T --hide 1 --size 90x60 --verbose -o @";
    const std::string enabled = "nruview: Optimized rendering is enabled";
    EXPECT_THAT(nruview(command + "1.png").output, HasSubstr(enabled));
    for (const auto& result :
         {nruview(command + "2.png", {{"NU_RENDERING_MODE", "1"}}), nruview(command + "3.png --fixed")})
        EXPECT_TRUE(result.exitCode == 0 && result.output.find(enabled) == std::string::npos)
            << result.output;
    EXPECT_TRUE(contents("2.png") == contents("3.png"));
    EXPECT_FALSE(contents("2.png").empty());
}

TEST_F(ViewerProgram, KnowsTheMaterialsOfTheFolderThatIsSet) {
    EXPECT_THAT(nruview("--materials").output, HasSubstr("\nCast Iron  "));
    write("own/Resources/NuStudio/Rendering/RenderMaterialApperance.xml",
          R"(<All><Material Name="Soap"><Appearance Metalness="0" Roughness="0.5" Reflectivity="0.04"
             AmbientOcclusion="1"/></Material></All>)");
    const Environment own = {{"NU_COMMON_PATH", path("own")}};
    EXPECT_EQ(nruview("--materials", own).output,
              "material  metalness  roughness  reflectivity  ambient occlusion\n"
              "Soap      0          0.5        0.04          1\n");
    draw("@two.vtk --pbr -o @1.png", own); // needs none
    expectError(nruview("@two.vtk --pbr --material Steel -o @2.png", own), "there is no 'Steel'");
    draw("@two.vtk --pbr --material Soap -o @3.png", own);
    EXPECT_FALSE(contents("1.png") == contents("3.png"));
}

TEST_F(ViewerProgram, LabelsItsPictureAsFarAsThereIsAFontAndAWish) {
    const std::string command = "@two.vtk --field T --size 400x300 -o @";
    draw(command + "all.png");
    const Environment none = {{"NRUVIEW_FONT", path("none.ttf")}};
    const auto [exitCode, output] = nruview(command + "silent.png", none);
    EXPECT_EQ(exitCode, 0);
    EXPECT_EQ(output, "nruview: font " + path("none.ttf") + ": cannot be read; the picture has no text\n");
    EXPECT_LT(contents("silent.png").size() + 1000, contents("all.png").size());
    draw(command + "off.png --legend off --marks off --axes off --title ''");
    draw(command + "plain.png --plain", none);
    EXPECT_TRUE(contents("off.png") == contents("plain.png"));
    draw(command + "same.png --title two.vtk,\u00a0T");
    std::vector<std::string> pictures = {contents("all.png"), contents("off.png"), contents("same.png")};
    for (const char* words : {"--legend off", "--marks off", "--axes off", "--title Other"}) {
        draw(command + "1.png " + words);
        EXPECT_EQ(std::count(pictures.begin(), pictures.end(), contents("1.png")), 0) << words;
        pictures.push_back(contents("1.png"));
    }
}

TEST_F(ViewerProgram, ListsWhatIsInAFileAndHelps) {
    EXPECT_EQ(nruview("--version").exitCode, 0);
    const auto [exitCode, help] = nruview("--help");
    EXPECT_EQ(exitCode, 0);
    for (const char* word : {"FILE", "--deform-by", "feature", "cantilever", "LIST=RRGGBB", "--fixed"})
        EXPECT_THAT(help, HasSubstr(word));
    EXPECT_EQ(nruview("@two.vtk --list").output, path("two.vtk") +
                                                     "\nnodes 6\ncells 2\n  quad 2\nouter faces 2\n  quad "
                                                     "2\narea 2\nx 0 .. 2\ny 0 .. 1\nz 0.5 .. 0.5\nfields 3\n"
                                                     "  T@node, node, 1 component, T 1 .. 6.5\n"
                                                     "  disp, node, 3 components, disp:mag 0 .. 1\n"
                                                     "  T@cell, cell, 1 component, T -1.5 .. 2.25\n");
}

// Off the middle, so that a mirrored picture picks something else.
TEST_F(ViewerProgram, PicksWithoutAWindow) {
    const std::string command = "@two.vtk --view xy --persp --plain --size 210x210 --pick ";
    EXPECT_EQ(nruview(command + "155,105 --field T@cell").output,
              "element 1 (quad) at 1.5 0.5 0.5: T = 2.25\n");
    EXPECT_EQ(nruview(command + "105,54 --field T").output, "node 4 at 1 1 0.5: T = 5\n");
    EXPECT_EQ(nruview(command + "1,1").output, "nothing\n");
    EXPECT_EQ(nruview(command + "105,54 --field T --supports 4:ring").output, "node 4 at 1 1 0.5: T = 5\n")
        << "inside the ring";
    EXPECT_EQ(nruview(command + "112,54 --field T --supports 4:ring").output,
              "support 0 (ring) at node 4 at 1 1 0.5\n");
}

TEST_F(ViewerProgram, ShowsSurfacesWithTheirPartsAndWithoutTheirTriangles) {
    write("a.mtl", "newmtl bare\nKd 0 1 1\nnewmtl paint\nKd 1 0.5 0\nd 0.5\n");
    write("a.obj", "mtllib a.mtl\nv 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\no plate\nusemtl bare\nf 1 2 3 4\n"
                   "o flap\nusemtl paint\nf 1 2 3\nf 1 3 4\nl 1 3\n");
    const std::string list = nruview("@a.obj --list").output;
    EXPECT_THAT(list, HasSubstr("\nparts 2\n  plate, cell 0, color 00ffff\n"
                                "  flap, cells 1 to 3, color ff8000, opacity 0.5\n"));
    EXPECT_TRUE(nruview("@a.obj --view xy --hide 0 --plain --size 100x100 --pick 70,40")
                    .output.starts_with("element 1 (triangle) at 0.7"));
    const std::string command = "@a.obj --plain --size 90x60 -o @";
    draw(command + "1.png");
    draw(command + "none.png --edges none");
    draw(command + "all.png --edges all");
    EXPECT_TRUE(contents("1.png") == contents("none.png"));
    EXPECT_FALSE(contents("1.png") == contents("all.png"));
}

TEST_F(ViewerProgram, RunsScriptsAndDrawsMotionsWithoutADisplay) {
    const Environment noDisplay = {{"DISPLAY", ""}, {"WAYLAND_DISPLAY", ""}};
    write("good.txt",
          "set field T\nset deform 2\nset hide 0\nset hide none\nview xy\nsize 80 60\nprint step\n"
          "shot '" +
              path("shot.png") + "'\nquit\nbogus\n");
    const auto result = nruview("@two.vtk --size 50x50 --script @good.txt", noDisplay);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.output, "step 0 of 1\n");
    EXPECT_EQ(nruview("@two.vtk --field T --deform 2 --view xy --size 80x60 -o @plain.png").exitCode, 0);
    EXPECT_EQ(contents("shot.png"), contents("plain.png"));
    write("bad.txt", "view xy\n\nset field X\n");
    expectError(nruview("@two.vtk --script @bad.txt -o @x.png", noDisplay), "bad.txt:3: field X: ");
    expectError(nruview("@two.vtk --script @missing.txt -o @x.png"), "missing.txt: ");
    expectError(nruview("@two.vtk --animate 3 -o @x.png"), "x.png: ");
    EXPECT_FALSE(fs::exists(path("x.png")));
    EXPECT_EQ(nruview("@two.vtk --animate 2:phase --size 40x30 -o @m-%02d.png", noDisplay).exitCode, 0);
    EXPECT_NE(contents("m-00.png"), contents("m-01.png"));
    EXPECT_FALSE(contents("m-01.png").empty() || fs::exists(path("m-02.png")));
}
