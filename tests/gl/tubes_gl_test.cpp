// The exported tube functions against GLE's own, in hosts of every kind, and without GLE.
#include <filesystem>
#include <fstream>

#include "tests/gl/testtubes.h"

#include "NRenderUtl/gl/ngl.h" // after GLE's header; the hosts include the two the other way round
#include "tests/support/subprocess.h"

using namespace nrutest;

namespace {

constexpr int kSmooth = TUBE_JN_ROUND | TUBE_NORM_EDGE;
const Tubes kExported{glePolyCylinder, gleSetJoinStyle, gleGetJoinStyle};

class Tube : public GlTest {};

TEST_F(Tube, IsGlesOwn) {
    const Tubes original = tubesOf(dlopen("libgle.so.3", RTLD_NOW));
    ASSERT_NE(original.draw, nullptr);
    ASSERT_NE(original.draw, kExported.draw);
    for (const int style :
         {kSmooth, TUBE_JN_ANGLE | TUBE_JN_CAP | TUBE_NORM_FACET, TUBE_JN_CUT | TUBE_NORM_EDGE})
        for (const int points : {4, 6}) // one segment; three, which bend
            for (const bool colored : {false, true}) {
                SCOPED_TRACE(::testing::Message() << style << " " << points << " " << colored);
                original.setStyle(0);
                gleSetJoinStyle(style);
                EXPECT_EQ(original.getStyle(), style);
                const Picture expected = drawTube(original, points, colored);
                EXPECT_GT(expected.countOtherThan(kClear), 100);
                EXPECT_TRUE(samePicture(drawTube(kExported, points, colored), expected));
                original.setStyle(style + 1);
                EXPECT_EQ(gleGetJoinStyle(), style + 1);
            }
}

TEST_F(Tube, IsDrawnInHostsThatLinkInAnyOrderOrLoad) {
    glClearColor(0, 0, 0, 0);
    gleSetJoinStyle(kSmooth);
    const int pixels = drawTube(kExported, 6, true).countOtherThan(0);
    const std::string line = "style " + std::to_string(kSmooth) + ", " + std::to_string(pixels) + " pixels\n";
    // A host that only loads the library has no functions of its own link.
    for (const auto& [host, output] : {std::pair{"tubehost", line + line},
                                       {"tubehost_gle_last", line + line},
                                       {"tubehost_gle_first", line + line},
                                       {"tubehost_loading", line}})
        EXPECT_EQ(runProgram({std::string(TUBE_HOSTS) + host, SHARED_LIBRARY}).output, output) << host;
}

TEST_F(Tube, WithoutGleIsOneMessage) {
    // A file that is no library hides the system's.
    std::filesystem::create_directory("without_gle");
    std::ofstream("without_gle/libgle.so.3") << "no library";
    if (ranInSubprocess({{"LD_LIBRARY_PATH", std::filesystem::absolute("without_gle")}}))
        return;
    ::testing::internal::CaptureStderr();
    gleSetJoinStyle(kSmooth);
    EXPECT_EQ(gleGetJoinStyle(), 0);
    EXPECT_EQ(drawTube(kExported, 6, true).countOtherThan(kClear), 0);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(),
              "libgle.so.3 (GLE) cannot be loaded: tubes are not drawn\n");
}

} // namespace
