// The environment maps against sums over the pictures that they are made from, place by place.
#include <epoxy/gl.h>

#include <glm/gtc/matrix_transform.hpp>
#include <glm/gtc/type_ptr.hpp>

#include "NRenderUtl/lighting/nlighting.h"
#include "tests/host/testfiles.h"
#include "tests/lighting/lightmaptwins.h"
#include "tests/support/librarytest.h"
#include "tests/support/radiancewriter.h"

using namespace nrutest;
using glm::vec3;

namespace {

using Handler = NImageBasedLightHandler;
constexpr int kEnvironmentSize = 1024, kIrradianceSize = 32, kPrefilteredSize = 256, kTableSize = 512;

/// Draws that go through: the passes behind the environment's six faces are not wanted in every case.
int drawsLeft;
GLint environmentCube; ///< what they are drawn on
decltype(epoxy_glDrawArrays) drawArrays;
void drawWhileWanted(GLenum mode, GLint first, GLsizei count) {
    if (--drawsLeft < 0)
        return;
    if (drawsLeft == 0)
        glGetFramebufferAttachmentParameteriv(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0,
                                              GL_FRAMEBUFFER_ATTACHMENT_OBJECT_NAME, &environmentCube);
    drawArrays(mode, first, count);
}

/// Texels of a face as they are stored.
struct Face {
    int size;
    std::vector<vec3> texels;
    Face(GLuint cube, int face, int level, int faceSize) : size(faceSize), texels(faceSize * faceSize) {
        glBindTexture(GL_TEXTURE_CUBE_MAP, cube);
        glGetTexImage(GL_TEXTURE_CUBE_MAP_POSITIVE_X + face, level, GL_RGB, GL_FLOAT, texels.data());
        glBindTexture(GL_TEXTURE_CUBE_MAP, 0);
    }
    dvec2 place(int i) const { return (dvec2(i % size, i / size) + 0.5) / double(size); }
};

/// The largest difference of a channel, and where.
struct Worst {
    double difference = 0;
    std::string where;
    void add(dvec3 expected, dvec3 seen, const std::string& place) {
        for (int c = 0; c < 3; ++c)
            if (const double d = std::abs(expected[c] - seen[c]); !(d <= difference)) {
                difference = d;
                where = place + " channel " + std::to_string(c) + ": " + std::to_string(seen[c]) +
                        " instead of " + std::to_string(expected[c]);
            }
    }
};

std::string text(int face, int i, int size) {
    return "face " + std::to_string(face) + " of " + std::to_string(size) + " at " +
           std::to_string(i % size) + ", " + std::to_string(i / size);
}

class LightMaps : public LibraryTest {
protected:
    TestFolder folder;

    void TearDown() override {
        if (drawArrays != nullptr)
            epoxy_glDrawArrays = drawArrays;
        Handler::CleanUpBuffers();
        LibraryTest::TearDown();
    }
    void build(const Panorama& picture, int up, bool environmentOnly = false) {
        const auto file =
            folder.write("light.hdr", radianceFile(picture.width, picture.height, [&](int x, int y) {
                             const vec3 light(picture.pixel(x, y));
                             return Radiance{light.r, light.g, light.b};
                         }));
        const auto error = Handler::SetHDRImage(file.Wide().c_str(), Handler::ImageUpVector(up));
        ASSERT_EQ(error, nullptr);
        if (environmentOnly) {
            if (drawArrays == nullptr) {
                glDrawArrays(GL_POINTS, 0, 0); // the loader looks the function up at its first call
                drawArrays = std::exchange(epoxy_glDrawArrays, drawWhileWanted);
            }
            drawsLeft = 6;
        }
        Handler::Initialize();
        ASSERT_TRUE(Handler::IsValid());
    }
};

/// A soft lamp in a room that is brighter towards one side. Its blue is the same everywhere.
constexpr double kEvenBlue = 0.6875;
Panorama studio() {
    return Panorama(128, 64, [](dvec3 d) {
        const double lamp = std::exp(6 * (dot(d, normalize(dvec3(0.5, 0.6, -0.4))) - 1));
        return dvec3(0.8 + 0.4 * d.x + 2 * lamp, 0.8 + 0.5 * d.y + 0.2 * d.x * d.z + lamp, kEvenBlue);
    });
}

TEST_F(LightMaps, EachUpVectorTurnsThePicture) {
    const Panorama picture = studio();
    for (int up = 0; up < 6; ++up) {
        build(picture, up, true);
        Worst worst;
        for (int f = 0; f < 6; ++f) {
            const Face face(environmentCube, f, 0, kEnvironmentSize);
            for (int i = 77; i < std::ssize(face.texels); i += 4099)
                worst.add(Environment{picture, up}.at(directionOf({f, face.place(i)})), face.texels[i],
                          text(f, i, kEnvironmentSize));
        }
        EXPECT_LE(worst.difference, 5e-3) << "up " << up << ": " << worst.where; // half floats
    }
}

TEST_F(LightMaps, MapsAreTheSumsOverThePicture) {
    const Panorama picture = studio();
    constexpr int kUp = 0, kOppositeUp = 1;
    const Environment environment{picture, kUp};
    build(picture, kUp);

    Worst irradiance, even;
    for (int f = 0; f < 6; ++f) {
        const Face face(Handler::GetIrradianceMapTextureID(), f, 0, kIrradianceSize);
        for (int i = 0; i < std::ssize(face.texels); ++i) {
            even.add(dvec3(kEvenBlue), dvec3(face.texels[i].b), text(f, i, kIrradianceSize));
            if (i % 7 != 0)
                continue;
            const dvec3 n = directionOf({f, face.place(i)});
            dvec3 sum(0);
            for (int y = 0; y < picture.height; ++y)
                for (int x = 0; x < picture.width; ++x) {
                    const dvec3 d = turnedBack(kOppositeUp, picture.direction(x, y));
                    sum += picture.pixel(x, y) * picture.solidAngle(y) * std::max(0.0, dot(n, d));
                }
            irradiance.add(sum / M_PI, face.texels[i], text(f, i, kIrradianceSize));
        }
    }
    EXPECT_LE(irradiance.difference, 3e-3) << irradiance.where; // half floats, and steps of the picture

    for (int level = 0; level < 5; ++level) {
        Worst worst;
        const int size = kPrefilteredSize >> level;
        for (int f = 0; f < 6; ++f) {
            const Face face(Handler::GetPrefilterMapTextureID(), f, level, size);
            for (int i = 0; i < std::ssize(face.texels); ++i)
                even.add(dvec3(kEvenBlue), dvec3(face.texels[i].b), text(f, i, size));
            // Corners and edges are among them.
            for (int i : {0, size - 1, size * size / 3, size * size * 2 / 3 + size / 5, size * size - size})
                worst.add(prefiltered(environment, directionOf({f, face.place(i)}), level / 4.0),
                          face.texels[i], text(f, i, size));
        }
        EXPECT_LE(worst.difference, 6e-3) << worst.where; // 1024 samples, half floats
    }
    // One step of a half: the mean of 65536 cosines is 2^-17 below a half, and sums round.
    EXPECT_LE(even.difference, 1.0 / 2048) << even.where;

    std::vector<glm::vec2> table(kTableSize * kTableSize);
    glBindTexture(GL_TEXTURE_2D, Handler::GetBRDFLUTTextureID());
    glGetTexImage(GL_TEXTURE_2D, 0, GL_RG, GL_FLOAT, table.data());
    glBindTexture(GL_TEXTURE_2D, 0);
    for (int y : {2, 40, 100, 200, 320, 440, 511})
        for (int x : {15, 60, 130, 260, 400, 511}) {
            const dvec2 at = (dvec2(x, y) + 0.5) / double(kTableSize);
            const dvec2 seen = table[y * kTableSize + x], expected = mirrorResponse(at.x, at.y);
            EXPECT_LT(length(seen - expected), 6e-3) // 1024 samples
                << "cosine " << at.x << " roughness " << at.y << ": " << seen.x << ", " << seen.y << " for "
                << expected.x << ", " << expected.y;
        }
}

TEST_F(LightMaps, TheSkyIsTheEnvironmentAHalfTurnAboutZ) {
    const Panorama picture = studio();
    const Environment environment{picture, 4};
    build(picture, 4, true);
    drawsLeft = 1 << 30;
    Handler::EnableHDRBackgroundRendering(true);
    glViewport(0, 8, kSize, kSize / 2);
    for (const auto& [from, zoom] : {std::pair{vec3(3, -5, 2), 1.0f}, {vec3(-1, 4, -6), 3.0f}}) {
        const glm::mat4 view = glm::scale(glm::lookAt(from, vec3(1, 1, 1), vec3(0, 0, 1)), vec3(zoom));
        _NglInfoStr info = *NglGetNglInfo();
        std::copy_n(glm::value_ptr(view), 16, &info.modelViewF[0][0]);
        std::copy_n(glm::value_ptr(view), 16, &info.modelView[0][0]);
        std::copy_n(std::array{0, 8, kSize, kSize / 2}.begin(), 4, info.viewport);
        clear();
        Handler::DrawHDRBackground(&info);
        const Picture seen = read();
        Worst worst;
        for (int y = 0; y < kSize / 2; ++y)
            for (int x = 0; x < kSize; ++x) {
                // 90 degrees in height and width, the height by the viewport's aspect.
                const dvec3 eye((x + 0.5) / kSize * 2 - 1, ((y + 0.5) / kSize * 4 - 1) / 2, -1);
                const dvec3 w = transpose(glm::dmat3(view)) * eye;
                const dvec3 light = environment.at(normalize(dvec3(-w.x, -w.y, w.z)));
                const std::uint32_t pixel = seen.at(x, y + 8);
                worst.add(pow(light / (light + 1.0), dvec3(1 / 2.2)) * 255.0,
                          dvec3(pixel & 0xFF, pixel >> 8 & 0xFF, pixel >> 16 & 0xFF),
                          std::to_string(x) + ", " + std::to_string(y));
            }
        EXPECT_LT(worst.difference, 1.5) << worst.where;
    }
}

} // namespace
