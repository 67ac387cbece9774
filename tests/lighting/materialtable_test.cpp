// The table of material appearances, and the files that seed it.
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <tuple>

#include <gtest/gtest.h>

#include "NRenderUtl/lighting/nlighting.h"
#include "NRenderUtl/shaders/nshaders.h"
#include "tests/host/testfiles.h"
#include "tests/support/subprocess.h"

using namespace nrutest;

namespace {

using Handler = NRenderMaterialApperanceHandler;

constexpr const char* kFile = "Resources/NuStudio/Rendering/RenderMaterialApperance.xml";
constexpr const char* kAppearance =
    R"(<Appearance Metalness="0.5" Roughness="0.25" Reflectivity="0.75" AmbientOcclusion="1"/>)";

bool operator==(const _RenderMaterialApperance& a, const _RenderMaterialApperance& b) {
    return std::tie(a.metalness, a.roughness, a.ambientOcclusion, a.reflectivity) ==
           std::tie(b.metalness, b.roughness, b.ambientOcclusion, b.reflectivity);
}

/// A folder for "NU_COMMON_PATH", which is set to it.
struct CommonFolder : TestFolder {
    CommonFolder() {
        std::filesystem::create_directories((path / kFile).parent_path());
        ::setenv("NU_COMMON_PATH", path.c_str(), 1);
    }
};

std::map<GuString, _RenderMaterialApperance, GuStringPredicate> table() {
    std::map<GuString, _RenderMaterialApperance, GuStringPredicate> copy{{L"not in the table", {}}};
    Handler::GetAllData(copy);
    return copy;
}

std::string names() {
    std::string all;
    for (const auto& [name, appearance] : table())
        all += name.Utf8() + "|";
    return all;
}

std::string material(const std::string& name) {
    return "<Material Name='" + name + "'>" + kAppearance + "</Material>";
}

std::string times(int count, const std::string& text) {
    std::string all;
    while (count-- > 0)
        all += text;
    return all;
}

TEST(MaterialTable, EntriesAreAddedChangedAndRemoved) {
    const _RenderMaterialApperance one{1, 2, 3, 4}, two{5, 6, 7, 8};
    _RenderMaterialApperance found = two;
    EXPECT_FALSE(Handler::Add(L"", one) || Handler::Get(L"", found) || Handler::Get(L"Zinc", found));
    EXPECT_TRUE(found == two) << "changed without a find";
    EXPECT_TRUE(Handler::Add(L"Zinc", two) && Handler::Add(L"zinc", two) && Handler::Add(L"Zinc", one));
    EXPECT_TRUE(Handler::Get(L"Zinc", found) && found == one);
    EXPECT_TRUE(Handler::Get(L"zinc", found) && found == two);
    EXPECT_EQ(names(), "Zinc|zinc|");
    EXPECT_TRUE(Handler::Remove(L"Zinc"));
    EXPECT_FALSE(Handler::Remove(L"Zinc") || Handler::Remove(L"") || Handler::Get(L"Zinc", found));
    EXPECT_EQ(names(), "zinc|");
}

// The first Material in document order and all its siblings; each that lacks something is skipped alone.
TEST(MaterialTable, FilesGiveWhatIsComplete) {
    const CommonFolder folder;
    folder.write(kFile, R"(<?xml version="1.0" encoding="UTF-8"?><Root><Appearance/><Group>text)" +
                            material("First") + "<!-- comment -->" + material("") + material("Twice") + R"(
        <Material>)" + kAppearance +
                            R"(</Material>
        <Material Name="No appearance"><Deeper>)" +
                            kAppearance + R"(</Deeper></Material>
        <Material Name="A"><Appearance Roughness="0" Reflectivity="0" AmbientOcclusion="0"/></Material>
        <Material Name="B"><Appearance Metalness="0" Reflectivity="0" AmbientOcclusion="0"/></Material>
        <Material Name="C"><Appearance Metalness="0" Roughness="0" AmbientOcclusion="0"/></Material>
        <Material Name="D"><Appearance Metalness="0" Roughness="0" Reflectivity="0"/></Material>
        <Material name="case of the attribute">)" +
                            kAppearance + R"(</Material>
        <Alloy Name="Alloy"><Other/>)" +
                            kAppearance + R"(<Appearance/></Alloy>
        <Material Name="Twice"><Appearance Metalness="abc" Roughness=" -2.5e-1x" Reflectivity="0,5"
            AmbientOcclusion=""/></Material>)" +
                            material("twice") + material("Gr\u00FCnspan &#x20AC; &lt;") + "</Group>" +
                            material("Of another parent") + "</Root>");
    Handler::InitDefaultMaterials();
    EXPECT_EQ(names(), "Alloy|First|Gr\u00FCnspan \u20AC <|Twice|twice|");
    _RenderMaterialApperance found{};
    for (const wchar_t* name : {L"First", L"Alloy", L"Gr\u00FCnspan \u20AC <"})
        EXPECT_TRUE(Handler::Get(name, found) && found == (_RenderMaterialApperance{0.5f, 0.25f, 1, 0.75f}));
    EXPECT_TRUE(Handler::Get(L"Twice", found) && found == (_RenderMaterialApperance{0, -0.25f, 0, 0}));
    Handler::Remove(L"First");
    Handler::InitDefaultMaterials();
    EXPECT_FALSE(Handler::Get(L"First", found)) << "read twice";
}

TEST(MaterialTable, FilesThatFailLeaveTheTableAndAreTriedOnce) {
    std::string laughs = "<!DOCTYPE r [<!ENTITY l0 'ha'>";
    for (char level = '0'; level < '9'; ++level)
        laughs += std::string("<!ENTITY l") + char(level + 1) + " '" +
                  times(40, std::string("&l") + level + ";") + "'>";
    const std::tuple<std::string, std::string, const char*> rows[] = {
        {"no setting", "", "Host|"},
        {"no file", "", "Host|"},
        {"a folder in its place", "", "Host|"},
        {"empty", "", "Host|"},
        {"no material", "<r><Metal/></r>", "Host|"},
        {"cut off", "<r>" + material("Cut"), "Host|"},
        {"not XML behind", "<r>" + material("Cut") + "<a b=c/></r>", "Host|"},
        {"deep", times(100000, "<a>") + material("Deep") + times(100000, "</a>"), "Deep|Host|"},
        {"entities", laughs + "]><r>" + material("&l9;") + "</r>", "&l9;|Host|"}};
    const char* row = std::getenv("ROW");
    for (const auto& [name, text, expected] : rows)
        if (!row) {
            ranInSubprocess({{"ROW", name}});
        } else if (name == row) {
            const CommonFolder folder;
            if (name == "no setting")
                ::unsetenv("NU_COMMON_PATH");
            if (name == "a folder in its place")
                std::filesystem::create_directories(folder.path / kFile);
            else if (name != "no file")
                folder.write(kFile, name == "no setting" ? material("Unasked") : text);
            Handler::Add(L"Host", {});
            Handler::InitDefaultMaterials();
            EXPECT_EQ(names(), expected);
            std::filesystem::remove_all(folder.path / kFile);
            folder.write(kFile, material("Later"));
            ::setenv("NU_COMMON_PATH", folder.path.c_str(), 1);
            Handler::InitDefaultMaterials();
            EXPECT_EQ(names(), expected) << "tried again";
        }
}

TEST(MaterialTable, TheShippedFileIsWholeAndReadByTheStartUp) {
    ::setenv("NU_COMMON_PATH", NRU_DATA_DIR "/none/..", 1);
    InitRenderDefaults();
    for (const auto& [name, a] : table())
        for (const float value : {a.metalness, a.roughness, a.ambientOcclusion, a.reflectivity})
            EXPECT_TRUE(value >= 0 && value <= 1) << name.Utf8() << ": " << value;
    std::ifstream stream(std::string(NRU_DATA_DIR "/") + kFile);
    const std::string text(std::istreambuf_iterator<char>(stream), {});
    std::size_t written = 0;
    for (std::size_t at = text.find("<Material "); at != text.npos; at = text.find("<Material ", at + 1))
        ++written;
    EXPECT_GE(written, 20u);
    EXPECT_EQ(table().size(), written) << "names are given twice or values are missing";
}

} // namespace
