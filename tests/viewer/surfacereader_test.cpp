// Reading surfaces: one box in every format, what formats have beyond it, and one clear reason for bad files.
#include <cctype>
#include <csignal>
#include <cstdlib>
#include <functional>

#include "tests/viewer/elements.h"
#include "tests/viewer/files.h"
#include "viewer/model/surface.h"
#include "viewer/readers/apart.h"

using namespace nrutest;

namespace {

// --- a box of 2 x 3 x 5 about (10, 0, 0) -------------------------------------------------------------------

constexpr int kQuads[6][4] = {{0, 2, 3, 1}, {4, 5, 7, 6}, {0, 1, 5, 4},
                              {2, 6, 7, 3}, {0, 4, 6, 2}, {1, 3, 7, 5}};

std::array<float, 3> boxCorner(int i) {
    return {i & 1 ? 11.0f : 9.0f, i & 2 ? 1.5f : -1.5f, i & 4 ? 2.5f : -2.5f};
}

void forEachTriangle(const std::function<void(std::array<int, 3>)>& visit) {
    for (const auto& q : kQuads) {
        visit({q[0], q[1], q[2]});
        visit({q[0], q[2], q[3]});
    }
}

std::string cornerText(int i) {
    const auto [x, y, z] = boxCorner(i);
    return std::to_string(x) + " " + std::to_string(y) + " " + std::to_string(z) + "\n";
}

std::string numbersText(const int (&numbers)[4], int offset) {
    std::string text;
    for (const int number : numbers)
        text.append(" ").append(std::to_string(number + offset));
    return text + "\n";
}

std::string asciiStl() {
    std::string text = "solid a vertex of facet things\n";
    forEachTriangle([&](auto corners) {
        text += "facet normal 0 0 0\n outer loop\n";
        for (const int i : corners)
            text += "  vertex " + cornerText(i);
        text += " endloop\nendfacet\n";
    });
    return text + "endsolid\n";
}

std::string upperCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::toupper(c); });
    return text;
}

std::string binaryStl() {
    std::string text = std::string("solid, but binary") + std::string(63, ' ') + bytes(12u);
    forEachTriangle([&](auto corners) {
        text += bytes(0.0f, 0.0f, 0.0f);
        for (const int i : corners)
            text += bytes(boxCorner(i));
        text += bytes(std::uint16_t{0});
    });
    return text;
}

std::string obj() {
    std::string text = "o box\n";
    for (int i = 0; i < 8; ++i)
        text += "v " + cornerText(i);
    for (const auto& quad : kQuads)
        text.append("f").append(numbersText(quad, -8));
    return text;
}

std::string ply(bool binary) {
    std::string text = std::string("ply\nformat ") + (binary ? "binary_little_endian" : "ascii") +
                       " 1.0\nelement vertex 8\nproperty float x\nproperty float y\nproperty float z\n"
                       "element face 6\nproperty list uchar int vertex_indices\nend_header\n";
    for (int i = 0; i < 8; ++i)
        text += binary ? bytes(boxCorner(i)) : cornerText(i);
    for (const auto& q : kQuads)
        text += binary ? bytes(std::uint8_t{4}, q[0], q[1], q[2], q[3])
                       : std::string("4").append(numbersText(q, 0));
    return text;
}

std::string boxBuffer() {
    std::string buffer;
    for (int i = 0; i < 8; ++i)
        buffer += bytes(boxCorner(i));
    forEachTriangle([&](auto corners) {
        for (const int i : corners)
            buffer += bytes(static_cast<std::uint16_t>(i));
    });
    return buffer + bytes(0.6f, 0.0f, 0.8f, 0.6f, 0.0f, 0.8f, 0.6f, 0.0f, 0.8f);
}

std::string boxJson(const std::string& nodes) {
    return R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[0]}],"nodes":)" + nodes + R"(,
"meshes":[{"primitives":[{"attributes":{"POSITION":0},"indices":1,"material":0}]},
{"primitives":[{"attributes":{"POSITION":3,"NORMAL":2},"material":1}]}],
"materials":[{"pbrMetallicRoughness":{"baseColorFactor":[1,0.2,0,0.4]},"alphaMode":"BLEND"},
{"pbrMetallicRoughness":{"baseColorFactor":[0,0,1,0.5]}}],
"accessors":[{"bufferView":0,"componentType":5126,"count":8,"type":"VEC3"},
{"bufferView":1,"componentType":5123,"count":36,"type":"SCALAR"},
{"bufferView":2,"componentType":5126,"count":3,"type":"VEC3"},
{"bufferView":0,"componentType":5126,"count":3,"type":"VEC3"}],
"bufferViews":[{"buffer":0,"byteLength":96},{"buffer":0,"byteOffset":96,"byteLength":72},
{"buffer":0,"byteOffset":168,"byteLength":36}],"buffers":[{"byteLength":204}]})";
}

std::string glb(std::string json, std::string buffer = boxBuffer()) {
    json.resize((json.size() + 3) / 4 * 4, ' ');
    const auto size = [](const std::string& text) { return static_cast<std::uint32_t>(text.size()); };
    return "glTF" + bytes(2u, 28 + size(json) + size(buffer), size(json)) + "JSON" + json +
           bytes(size(buffer)) + std::string("BIN\0", 4) + buffer;
}

double volumeOf(const Model& model) {
    return nrutest::volumeOf(piecesOf(model, extractSurface(model)));
}

} // namespace

TEST(SurfaceReader, EveryFormatGivesTheSameBoxInTheFilesOrder) {
    const struct {
        const char* name;
        std::string content;
        CellType type;
        const char* part;
    } rows[] = {
        {"a.stl", asciiStl(), CellType::Triangle, "a"},
        {"a.stl", upperCase(asciiStl()), CellType::Triangle, "a"},
        {"b.dat", binaryStl(), CellType::Triangle, ""},
        {"a.OBJ", obj(), CellType::Quad, "box"},
        {"a.ply", ply(false), CellType::Quad, ""},
        {"named.otherwise", ply(true), CellType::Quad, ""},
        {"a.glb", glb(boxJson(R"([{"mesh":0,"name":"one\ntwo"}])")), CellType::Triangle, "one?two"},
    };
    for (const auto& row : rows) {
        const Model model = Folder().parse(row.content, row.name);
        ASSERT_EQ(model.nodes.size(), 8u) << row.name;
        EXPECT_NEAR(volumeOf(model), 30.0, 1e-12) << row.name;
        ASSERT_EQ(model.cellCount(), row.type == CellType::Quad ? 6u : 12u) << row.name;
        std::size_t corner = 0;
        for (const auto& quad : kQuads)
            for (const int place :
                 row.type == CellType::Quad ? std::vector{0, 1, 2, 3} : std::vector{0, 1, 2, 0, 2, 3}) {
                const auto [x, y, z] = boxCorner(quad[place]);
                ASSERT_EQ(model.nodes[model.connectivity[corner++]], (Point{x, y, z})) << row.name;
            }
        ASSERT_EQ(model.parts.size(), 1u);
        EXPECT_THAT(model.parts[0].name, StartsWith(row.part));
        EXPECT_EQ(model.parts[0].cellCount, model.cellCount());
        EXPECT_TRUE(model.cornerNormals.empty()) << row.name;
    }
}

// Nodes one within the other stretch, mirror and move what hangs on them: (x, y, z) -> (95 - x, y, 2 z).
TEST(SurfaceReader, PlacesEveryInstanceWithItsWindingNormalsAndLook) {
    const Model model = readText(glb(boxJson(R"([{"children":[1,2],"translation":[100,0,0]},
{"mesh":0,"name":"box"},{"children":[3],"scale":[-1,1,1]},{"mesh":0,"scale":[1,1,2],"translation":[5,0,0],"children":[4]},{"mesh":1}])")));
    ASSERT_EQ(model.parts.size(), 3u);
    EXPECT_EQ(model.parts[0].name, "box");
    EXPECT_EQ(model.parts[0].color, 0xFF0033FF);
    EXPECT_FLOAT_EQ(model.parts[1].opacity, 0.4f);
    EXPECT_EQ(model.parts[2].color, 0xFFFF0000);
    EXPECT_EQ(model.parts[2].opacity, 1.0) << "the alpha of an opaque material";
    EXPECT_EQ(model.parts[2].firstCell, 24u);
    ASSERT_EQ(model.cellCount(), 25u);
    Model boxes = model;
    boxes.types.resize(24);
    boxes.offsets.resize(25);
    EXPECT_NEAR(volumeOf(boxes), 30.0 + 60.0, 1e-9);
    EXPECT_EQ(model.nodes[model.cellNodes(24)[0]], (Point{86, 1.5, -5})) << "wound the other way round";
    EXPECT_EQ(model.nodes[model.cellNodes(24)[2]], (Point{86, -1.5, -5}));
    const Point expected = unit({-0.6, 0, 0.4}); // of the inverse transpose
    const auto& [x, y, z] = model.cornerNormals.at(72);
    EXPECT_LT(length(Point{x, y, z} - expected), 1e-6);
    EXPECT_THAT(model.cornerNormals[71], ElementsAre(0, 0, 0)) << "the box has none";
}

TEST(SurfaceReader, TakesMaterialsNormalsLinesAndPolygonsOfObj) {
    const std::string text = "mtllib a.mtl\nv 0 0 0\nv 2 0 0\nv 2 1 0\nv 1 1 0\nv 1 3 0\nv 0 3 0\n"
                             "vn 0 0 2\nvn 0 0 0\nvn nan 0 1\nusemtl red\nf 1//1 2//1 3//1 4//2 5//3 6//1\n"
                             "usemtl glass\nl 1 2 3\np 1\nf 1//1 2//1 3//1\n";
    const Folder folder;
    EXPECT_EQ(folder.parse(text, "a.obj").parts.at(0).color, std::nullopt) << "there is no material file";
    folder.write("a.mtl", "newmtl red\nKd 1 0 0\nmap_Kd wood.png\nnewmtl glass\nKd 0 1 0\nd 0.25\n");
    const Model model = folder.parse(text, "a.obj");
    using enum CellType;
    EXPECT_THAT(model.types, ElementsAre(Polygon, Line, Line, Triangle));
    ASSERT_EQ(model.parts.size(), 2u);
    EXPECT_EQ(model.parts[0].color, 0xFF0000FF);
    EXPECT_EQ(model.parts[1].color, 0xFF00FF00);
    EXPECT_EQ(model.parts[1].opacity, 0.25);
    EXPECT_THAT(model.cornerNormals.at(2), ElementsAre(0, 0, 1));
    EXPECT_THAT(model.cornerNormals.at(3), ElementsAre(0, 0, 0));
    EXPECT_THAT(model.cornerNormals.at(4), ElementsAre(0, 0, 0)) << "not a number";
    EXPECT_THAT(model.notes, ElementsAre("1 single points are left out", "textures are not read"));
}

TEST(SurfaceReader, MakesPartsOfFacesInOneColorInPly) {
    const Model model =
        readText("ply\nformat ascii 1.0\nelement vertex 3\nproperty float x\nproperty float y\n"
                 "property float z\nelement face 3\nproperty list uchar int vertex_indices\n"
                 "property uchar green\nproperty uchar red\nend_header\n0 0 0\n1 0 0\n0 1 0\n"
                 "3 0 1 2 16 255\n3 0 1 2 16 255\n3 0 1 2 0 7\n");
    ASSERT_EQ(model.parts.size(), 2u);
    EXPECT_EQ(model.parts[0].color, 0xFF0010FF);
    EXPECT_EQ(model.parts[1].color, 0xFF000007);
    EXPECT_EQ(model.parts[1].firstCell, 2u);
}

TEST(SurfaceReader, BadFilesGetOneReason) {
    const char* kTooMany = "cannot hold the elements that its header announces";
    const std::string box = glb(boxJson(R"([{"mesh":0}])"));
    const Folder folder;
    folder.expectRefused(
        {
            {binaryStl().substr(0, 84 + 5 * 50 + 49),
             "is cut short: 12 triangles are announced, 5 are there"},
            {binaryStl() + "x", "goes on behind its 12 triangles"},
            {binaryStl().substr(0, 83), "is too short for a binary STL file"},
            {std::string(80, ' ') + bytes(~0u) + std::string(100, '\1'),
             "is cut short: 4294967295 triangles are announced, 2 are there"},
            {std::string(84, '\0'), "has no faces"},
            {replaced(asciiStl(), "endsolid", ""), "is cut short: there is no endsolid behind facet 12"},
            {replaced(asciiStl(), "  vertex", "  vertices"), "facet 0 does not have three vertices"},
            {replaced(asciiStl(), "11.0", "nan"), "node 2 has a coordinate that is not finite"},
        },
        "a.stl");
    folder.expectRefused(
        {
            {replaced(ply(true), "face 6", "face 99999"), kTooMany},
            {replaced(ply(true), "vertex 8", "vertex -1"), kTooMany},
            {replaced(ply(true), "face 6", "face 9"), "is cut short: it ends in face 6 of 9"},
            {ply(false).substr(0, ply(false).size() - 3), "is cut short: it ends in face 5 of 6"},
            {replaced(ply(true), "float z", "real z"), "has a property of unknown type real"},
            {replaced(ply(false), "4 0 2 3 1", "4 0 2 8 1"), "face 0 uses vertex 8 of 8"},
            {ply(false).substr(0, 40), "has no end of its header"},
        },
        "a.ply");
    folder.expectRefused(
        {
            {"v 0 0 0\nv 1 0 0\nv 0 1 0\n", "has no faces"},
        },
        "a.obj");
    folder.expectRefused(
        {
            {box.substr(0, box.size() - 4), "is cut short: "},
            {replaced(box, bytes(204u), bytes(208u)), "has a chunk that goes beyond its end"},
            {replaced(box, bytes(2u), bytes(1u)), "is not of glTF 2"},
        },
        "a.glb");
}

// Whatever happens in the library that reads, the viewer goes on.
TEST(ReadApart, FaultsOfAReaderAreRefusals) {
    using readers::readApart;
    using readers::Refusal;
    const std::function<Model()> rows[] = {
        [] { return std::abort(), Model{}; },
        [] {
            Model model;
            model.nodes.reserve(std::size_t{1} << 28);
            return model;
        },
        [] { return static_cast<void>(raise(SIGXCPU)), Model{}; },
        []() -> Model { throw Refusal("on purpose"); },
    };
    // A sanitizer ends the child itself where memory is short.
    const char* reasons[] = {"the reader has failed", "needs more memory|the reader has failed",
                             "takes longer", "on purpose"};
    for (std::size_t i = 0; i < std::size(rows); ++i)
        EXPECT_THAT([&] { readApart(rows[i], 100); },
                    ThrowsMessage<Refusal>(testing::ContainsRegex(reasons[i])));
}
