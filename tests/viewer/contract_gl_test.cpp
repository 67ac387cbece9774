// The contract with the host's OpenGL, kind by kind of families, and that its check finds what breaks it.
#include <map>

#include "tests/support/fewsamples.h"
#include "tests/support/gltest.h"
#include "viewer/contract/contract.h"
#include "viewer/contract/routes.h"
#include "viewer/contract/taken.h"
#include "viewer/scene/frame.h"

using namespace nrutest;
using namespace nruview;

namespace {

struct Kind {
    const char* name;
    FamilyKind kind;
};

std::ostream& operator<<(std::ostream& out, const Kind& kind) {
    return out << kind.name;
}

class ContractKinds : public GlTest, public ::testing::WithParamInterface<Kind> {
protected:
    void SetUp() override {
        takeFewSamples();
        GlTest::SetUp();
    }
};

TEST_P(ContractKinds, TakeWhatTheTableSaysAndNothingElse) {
    const LibrarySession session;
    Contract contract;
    std::map<StateGroup, int> taken;
    for (const Family& family : families()) {
        if (family.kind != GetParam().kind)
            continue;
        const std::vector<Cell> cells = contract.check(family);
        for (std::size_t i = 0; i < cells.size(); ++i) {
            EXPECT_NE(cells[i].outcome, Outcome::Fault)
                << family.name << ", " << hostStates()[i].name << ": " << cells[i].fault;
            taken[hostStates()[i].group] += cells[i].outcome == Outcome::Taken;
        }
    }
    for (const auto& [group, pictures] : taken)
        EXPECT_TRUE(pictures > 0 || !takesGroup(GetParam().kind, group)) << static_cast<int>(group);
    EXPECT_FALSE(taken.empty());
}

using enum FamilyKind;
constexpr Kind kKinds[] = {{"Primitives", Primitives},
                           {"Arrays", Arrays},
                           {"Lit", Lit},
                           {"Symbols", Symbols},
                           {"Screen", Screen},
                           {"Rubber", Rubber},
                           {"Panels", Panels},
                           {"FixedElements", FixedElements},
                           {"Elements", Elements},
                           {"Bodies", Bodies},
                           {"Markers", Markers},
                           {"BatchProgram", BatchProgram},
                           {"Background", Background},
                           {"HostDraws", HostDraws}};
INSTANTIATE_TEST_SUITE_P(Of, ContractKinds, ::testing::ValuesIn(kKinds),
                         [](const auto& info) { return std::string(info.param.name); });

void drawTriangle() {
    glBegin(GL_TRIANGLES);
    for (const auto& [x, y] : {std::pair{-0.8f, -0.6f}, {0.9f, -0.4f}, {0.1f, 0.8f}})
        glVertex3f(x, y, 0.3f);
    glEnd();
}

/// Families that break the contract, with the number of states under which that shows.
struct Broken {
    const char* name;
    void (*draw)();
    std::size_t atLeast;
    const char* fault;
};

const Broken kBroken[] = {
    {"draws nothing", [] {}, 100, "draws nothing"},
    {"leaves a value changed",
     [] {
         drawTriangle();
         glLineWidth(3);
     },
     100, "leaves shape and shading 0xB21: 1 became 3"},
    {"raises an error",
     [] {
         drawTriangle();
         glEnable(GL_LINES);
     },
     100, "GL_INVALID_ENUM"},
    {"shows a bound vertex array object",
     [] {
         GLint arrays;
         glGetIntegerv(GL_VERTEX_ARRAY_BINDING, &arrays);
         if (arrays == 0)
             drawTriangle();
     },
     1, "pixels, the first at"},
    {"remembers a state",
     [] {
         static bool seen = false;
         seen |= glIsEnabled(GL_LOGIC_OP) || glIsEnabled(GL_PRIMITIVE_RESTART);
         seen ? glBegin(GL_LINE_LOOP), glVertex2f(0, 0), glVertex2f(1, 1), glEnd() : drawTriangle();
     },
     1, "afterwards"},
};

TEST_F(GlTest, ContractCheckFindsWhatBreaksIt) {
    takeFewSamples();
    const LibrarySession session;
    Contract contract;
    for (const Broken& row : kBroken) {
        std::size_t found = 0;
        for (const Cell& cell : contract.check({row.name, HostDraws, row.draw}))
            found += cell.outcome == Outcome::Fault && cell.fault.find(row.fault) != cell.fault.npos;
        EXPECT_GE(found, row.atLeast) << row.name;
    }
}

Route routeOf(std::string_view name) {
    for (const FamilyRoute& family : familyRoutes())
        if (family.name == name)
            return family.route;
    return Route::NotDrawn;
}

TEST_F(GlTest, RoutesAreThoseThatArePutToUse) {
    takeFewSamples();
    const LibrarySession session;
    EXPECT_EQ(routeOf("element mesh, marked"), Route::Programs);
    EXPECT_EQ(routeOf("lines"), Route::FixedFunction);
    SetUserDefinedFastRenderingMode(0);
    EXPECT_EQ(routeOf("element mesh, marked"), Route::FixedFunction);
}

} // namespace
