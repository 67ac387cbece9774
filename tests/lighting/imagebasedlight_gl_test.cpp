// Image-based lighting around its maps: their life, names and storage, the host's GL state, drivers that
// fail, and the surroundings behind the view. What is in the maps is checked by other tests: most builds here
// take few samples.
#include <epoxy/egl.h>

#include <cmath>

#include "NRenderUtl/host/hostmath.h"
#include "NRenderUtl/lighting/nlighting.h"
#include "tests/host/testfiles.h"
#include "tests/shaders/testprogram.h"
#include "tests/support/fewsamples.h"
#include "tests/support/glsnapshot.h"
#include "tests/support/librarytest.h"
#include "tests/support/radiancewriter.h"
#include "tests/support/subprocess.h"
#include "viewer/contract/hoststates.h"
#include "viewer/contract/resetstate.h"

using namespace nrutest;
using Handler = NImageBasedLightHandler;

namespace {

template <class Function>
Function driver(Function, const char* name) {
    return reinterpret_cast<Function>(eglGetProcAddress(name));
}

// --- an image whose colours tell their directions ----------------------------------------------------------

NgFVector3 directionOf(int x, int y, int width, int height) {
    const float longitude = (2.0f * (x + 0.5f) / width - 1.0f) * float(M_PI);
    const float latitude = (0.5f - (y + 0.5f) / height) * float(M_PI);
    return {std::cos(latitude) * std::cos(longitude), std::sin(latitude),
            std::cos(latitude) * std::sin(longitude)};
}

std::string compass(int width = 128) {
    return radianceFile(width, width / 2, [=](int x, int y) {
        const NgFVector3 d = directionOf(x, y, width, width / 2);
        return Radiance{0.75f + 0.5f * d.x, 0.75f + 0.5f * d.y, 0.75f + 0.5f * d.z};
    });
}

constexpr NgMatrix kAlongZ = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}};

std::vector<float> texelsOf(GLenum binding, GLenum target, GLuint texture, int level) {
    GLint width = 0;
    glBindTexture(binding, texture);
    glGetTexLevelParameteriv(target, level, GL_TEXTURE_WIDTH, &width);
    std::vector<float> texels(std::size_t(3) * width * width);
    glGetTexImage(target, level, GL_RGB, GL_FLOAT, texels.data());
    glBindTexture(binding, 0);
    return texels;
}

/// All texels that programs of the host can read.
std::vector<float> allMaps() {
    std::vector<float> all = texelsOf(GL_TEXTURE_2D, GL_TEXTURE_2D, Handler::GetBRDFLUTTextureID(), 0);
    for (GLenum face = GL_TEXTURE_CUBE_MAP_POSITIVE_X; face < GL_TEXTURE_CUBE_MAP_POSITIVE_X + 6; ++face)
        for (int level = -1; level < 5; ++level) {
            const std::vector<float> texels = texelsOf(GL_TEXTURE_CUBE_MAP, face,
                                                       level < 0 ? Handler::GetIrradianceMapTextureID()
                                                                 : Handler::GetPrefilterMapTextureID(),
                                                       std::max(level, 0));
            all.insert(all.end(), texels.begin(), texels.end());
        }
    return all;
}

// --- names -------------------------------------------------------------------------------------------------

/// Objects alive: textures, buffers, vertex arrays, framebuffers, renderbuffers, programs, shaders.
using NameCounts = std::array<int, 7>;

NameCounts countNames() {
    return {living(glIsTexture),      living(glIsBuffer),  living(glIsVertexArray), living(glIsFramebuffer),
            living(glIsRenderbuffer), living(glIsProgram), living(glIsShader)};
}

class ImageBasedLight : public LibraryTest {
protected:
    void SetUp() override {
        LibraryTest::SetUp();
        takeFewSamples();
        Handler::SetProgressFunction(
            [](void* builds, const char*, double fraction) { *static_cast<int*>(builds) += fraction == 1.0; },
            &m_builds);
    }
    void TearDown() override {
        Handler::CleanUpBuffers();
        LibraryTest::TearDown();
    }
    void use(const std::string& file, Handler::ImageUpVector up = Handler::ImageUpZ) {
        ASSERT_FALSE(Handler::SetHDRImage(m_folder.write("sky.hdr", file).c_str(), up));
    }
    /// How many builds an Initialize took.
    int initialize() {
        m_builds = 0;
        Handler::Initialize();
        return m_builds;
    }
    /// The background under a record with these rows of the view, and the identity as projection.
    Picture background(const NgMatrix& view, int width, int height) {
        _NglInfoStr info{};
        std::copy_n(&view[0][0], 16, &info.modelView[0][0]);
        info.viewport[2] = width;
        info.viewport[3] = height;
        glViewport(0, 0, width, height);
        Handler::EnableHDRBackgroundRendering(true);
        Handler::DrawHDRBackground(&info);
        glViewport(0, 0, kSize, kSize);
        return read();
    }

    TestFolder m_folder;
    int m_builds = 0;
};

} // namespace

// --- life --------------------------------------------------------------------------------------------------

TEST_F(ImageBasedLight, MapsAreBuiltOnFirstUseAndAgainForEveryImage) {
    EXPECT_FALSE(Handler::IsValid());
    use(compass());
    EXPECT_FALSE(Handler::IsValid());
    EXPECT_EQ(initialize(), 1);
    EXPECT_TRUE(Handler::IsValid());
    EXPECT_EQ(initialize(), 0);
    const std::vector<float> first = allMaps();
    use(compass());
    EXPECT_EQ(initialize(), 1);
    EXPECT_EQ(allMaps(), first);
    use(compass(), Handler::ImageUpX);
    EXPECT_EQ(initialize(), 1);
    EXPECT_NE(allMaps(), first);
    Handler::CleanUpBuffers();
    EXPECT_FALSE(Handler::IsValid());
    EXPECT_EQ(initialize(), 1);
}

TEST_F(ImageBasedLight, RefusedImagesLeaveTheOldOneInForce) {
    use(compass(), Handler::ImageUpMinusY);
    initialize();
    const std::string whole = compass();
    const GuStringFileName files[] = {m_folder.name("none.hdr"),
                                      m_folder.write("half.hdr", whole.substr(0, whole.size() / 2)),
                                      m_folder.write("a.hdr", "\x89PNG\r\n\x1a\n"),
                                      m_folder.name("."),
                                      {}};
    for (const GuStringFileName& file : files) {
        const NErrorPtr error = Handler::SetHDRImage(file.c_str(), Handler::ImageUpX);
        ASSERT_TRUE(error) << file.Utf8();
        EXPECT_STREQ(error->GetText(), L"Failed to load HDR image file!");
    }
    EXPECT_TRUE(Handler::SetHDRImage(nullptr, Handler::ImageUpX));
    GuString file;
    Handler::ImageUpVector up{};
    Handler::GetHDRImage(file, up);
    EXPECT_EQ(file, m_folder.name("sky.hdr"));
    EXPECT_EQ(up, Handler::ImageUpMinusY);
    EXPECT_EQ(initialize(), 0);
}

// A sun beyond half floats must not make the maps infinite, and without an image they are black.
TEST_F(ImageBasedLight, MapsAreFinite) {
    use(radianceFile(16, 8, [](int x, int y) {
        return x == 3 && y == 2 ? Radiance{1e9f, 1e9f, 1e9f} : Radiance{0.5f, 0.5f, 0.5f};
    }));
    initialize();
    float brightest = 0.0f;
    for (const float value : allMaps()) {
        ASSERT_TRUE(std::isfinite(value) && value >= 0.0f) << value;
        brightest = std::max(brightest, value);
    }
    EXPECT_GT(brightest, 1000.0f);
}

TEST_F(ImageBasedLight, ProgressRisesToOneInSmallSteps) {
    static double last;
    last = -0.0;
    Handler::SetProgressFunction(
        [](void*, const char* step, double fraction) {
            EXPECT_STRNE(step, "");
            EXPECT_TRUE(fraction >= last && fraction <= last + 0.15) << fraction << " after " << last;
            last = fraction;
        },
        nullptr);
    Handler::Initialize();
    EXPECT_EQ(last, 1.0);
}

// --- objects -----------------------------------------------------------------------------------------------

TEST_F(ImageBasedLight, NamesAreKeptWhileTheyServeAndThenAllGiven) {
    const NameCounts before = countNames();
    use(compass());
    for (int round = 0; round < 2; ++round) { // the second deletes the first one's maps
        initialize();
        NameCounts built = countNames();
        for (std::size_t kind = 0; kind < built.size(); ++kind)
            built[kind] -= before[kind];
        EXPECT_EQ(built, (NameCounts{4, 0, 0, 0, 0, 4, 0})) << "round " << round;
        use(compass());
    }
    background(kAlongZ, kSize, kSize);
    EXPECT_NE(countNames(), before);
    Handler::CleanUpBuffers();
    EXPECT_EQ(countNames(), before);
}

TEST_F(ImageBasedLight, MapsAreFilteredAsShadingAsksForAndBlackWithoutAnImage) {
    initialize();
    const std::tuple<GLenum, GLuint, GLint> rows[] = {
        {GL_TEXTURE_CUBE_MAP, Handler::GetIrradianceMapTextureID(), GL_LINEAR},
        {GL_TEXTURE_2D, Handler::GetBRDFLUTTextureID(), GL_LINEAR},
        {GL_TEXTURE_CUBE_MAP, Handler::GetPrefilterMapTextureID(), GL_LINEAR_MIPMAP_LINEAR}};
    for (const auto& [target, texture, minification] : rows) {
        glBindTexture(target, texture);
        for (const auto& [name, expected] : {std::pair{GL_TEXTURE_MIN_FILTER, minification},
                                             {GL_TEXTURE_MAG_FILTER, GL_LINEAR},
                                             {GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE},
                                             {GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE}}) {
            GLint value = 0;
            glGetTexParameteriv(target, name, &value);
            EXPECT_EQ(value, expected) << "texture " << texture;
        }
        glBindTexture(target, 0);
    }
    const std::vector<float> texels =
        texelsOf(GL_TEXTURE_CUBE_MAP, GL_TEXTURE_CUBE_MAP_POSITIVE_X, Handler::GetPrefilterMapTextureID(), 4);
    EXPECT_EQ(texels, std::vector<float>(texels.size(), 0.0f));
}

TEST_F(ImageBasedLight, BuildsTheSameMapsUnderAnyStateOfTheHostAndLeavesIt) {
    use(compass(129)); // whose rows are not of 8 bytes each
    initialize();
    const std::vector<float> maps = allMaps();
    const nruview::HostObjects objects;
    GLuint texture;
    glGenTextures(1, &texture);
    using enum nruview::StateGroup;
    for (const auto group : {Region, Depth, Mixing, Faces, Clipping, Textures, Plumbing}) {
        SCOPED_TRACE(static_cast<int>(group));
        for (const nruview::HostState& state : nruview::hostStates())
            if (state.group == group && !state.end && !state.name.starts_with("render mode"))
                state.set(objects);
        glActiveTexture(GL_TEXTURE1);
        glBindTexture(GL_TEXTURE_BUFFER, texture);
        glClampColor(GL_CLAMP_FRAGMENT_COLOR, GL_TRUE);
        const GlSnapshot before = GlSnapshot::take();
        Handler::CleanUpBuffers();
        EXPECT_EQ(initialize(), 1);
        EXPECT_TRUE(before.equals(GlSnapshot::take()));
        nruview::resetState();
        EXPECT_EQ(allMaps(), maps);
    }
}

// --- drivers that fail -------------------------------------------------------------------------------------

namespace {

int linkCount, failingLink;

void failLink(int number) {
    linkCount = 0;
    failingLink = number;
    epoxy_glLinkProgram = [](GLuint program) {
        if (linkCount++ != failingLink)
            driver(epoxy_glLinkProgram, "glLinkProgram")(program);
    };
}

} // namespace

TEST_F(ImageBasedLight, AProgramThatFailsIsNotTriedAgainWithoutReasonAndLeavesNothing) {
    const NameCounts before = countNames();
    for (int number = 0; number < 4; ++number) {
        SCOPED_TRACE(number);
        failLink(number);
        Handler::Initialize();
        Handler::Initialize();
        EXPECT_EQ(linkCount, number + 1);
        EXPECT_FALSE(Handler::IsValid());
        Handler::CleanUpBuffers();
        EXPECT_EQ(countNames(), before);
    }
    failLink(0);
    Handler::Initialize();
    use(compass()); // a reason
    EXPECT_EQ(initialize(), 1);
    EXPECT_TRUE(Handler::IsValid());
}

TEST_F(ImageBasedLight, AFormatThatCannotBeDrawnLeavesNothing) {
    const NameCounts before = countNames();
    epoxy_glCheckFramebufferStatus = [](GLenum) -> GLenum { return GL_FRAMEBUFFER_UNSUPPORTED; };
    EXPECT_EQ(initialize(), 0);
    EXPECT_FALSE(Handler::IsValid());
    EXPECT_EQ(countNames(), before);
}

TEST_F(ImageBasedLight, ABackgroundThatFailsDrawsNothing) {
    use(compass());
    initialize();
    const NameCounts before = countNames();
    failLink(0);
    EXPECT_EQ(background(kAlongZ, kSize, kSize).countOtherThan(kClear), 0);
    EXPECT_EQ(background(kAlongZ, kSize, kSize).countOtherThan(kClear), 0);
    EXPECT_EQ(linkCount, 1);
    EXPECT_EQ(countNames(), before);
    EXPECT_TRUE(Handler::IsValid());
}

TEST_F(ImageBasedLight, OldDriversHaveNoMaps) {
    if (ranInSubprocess({{"MESA_GL_VERSION_OVERRIDE", "2.1"}, {"MESA_GLSL_VERSION_OVERRIDE", "120"}}) &&
        ranInSubprocess(
            {{"MESA_EXTENSION_OVERRIDE", "-GL_ARB_framebuffer_object -GL_EXT_framebuffer_object"}}) &&
        ranInSubprocess(
            {{"MESA_GL_VERSION_OVERRIDE", "3.0COMPAT"},
             {"MESA_EXTENSION_OVERRIDE", "-GL_ARB_texture_buffer_object -GL_EXT_texture_buffer_object"}}))
        return;
    takeGlErrors();
    Handler::Initialize();
    EXPECT_FALSE(Handler::IsValid());
    Handler::CleanUpBuffers();
    takeGlErrors(); // Mesa reports what does not compile as an error
}

TEST(ImageBasedLightWithoutContext, NothingIsBuiltDrawnOrDeleted) {
    Handler::Initialize();
    Handler::EnableHDRBackgroundRendering(true);
    _NglInfoStr info{};
    info.viewport[2] = info.viewport[3] = 8;
    Handler::DrawHDRBackground(&info);
    EXPECT_FALSE(Handler::IsValid());
    {
        nruview::OffscreenContext context;
        ASSERT_EQ(context.create(8, 8), "");
        takeFewSamples();
        Handler::Initialize();
        EXPECT_TRUE(Handler::IsValid());
    }
    Handler::CleanUpBuffers(); // their context has gone
    EXPECT_FALSE(Handler::IsValid());
}

// --- the background ----------------------------------------------------------------------------------------

TEST_F(ImageBasedLight, BackgroundStaysBehindAndMayBeOff) {
    use(compass());
    glEnable(GL_SCISSOR_TEST);
    glScissor(0, 0, kSize / 2, kSize);
    glClearDepth(0.999);
    glClear(GL_DEPTH_BUFFER_BIT); // something far in the left half
    glDisable(GL_SCISSOR_TEST);
    const Picture picture = background(kAlongZ, kSize, kSize);
    EXPECT_EQ(picture.countOtherThan(kClear), kSize * kSize / 2);
    EXPECT_EQ(hex(picture.at(10, 30)), hex(kClear));
    float depth = 0;
    glReadPixels(50, 30, 1, 1, GL_DEPTH_COMPONENT, GL_FLOAT, &depth);
    EXPECT_EQ(depth, 1.0f);
    clear();
    Handler::EnableHDRBackgroundRendering(false);
    _NglInfoStr info{};
    info.viewport[2] = info.viewport[3] = kSize;
    Handler::DrawHDRBackground(&info);
    Handler::DrawHDRBackground(nullptr);
    EXPECT_EQ(read().countOtherThan(kClear), 0);
}

// Images beyond the driver's textures are averaged down: the picture stays.
TEST_F(ImageBasedLight, ImagesLargerThanTexturesAreAveraged) {
    use(compass(310)); // four columns or two rows become one, with a rest
    const Picture whole = background(kAlongZ, kSize, kSize);
    epoxy_glGetIntegerv = [](GLenum query, GLint* values) {
        driver(epoxy_glGetIntegerv, "glGetIntegerv")(query, values);
        if (query == GL_MAX_TEXTURE_SIZE)
            *values = 100;
    };
    static GLsizei width = 0;
    epoxy_glTexImage2D = [](GLenum target, GLint level, GLint internal, GLsizei w, GLsizei h, GLint border,
                            GLenum format, GLenum type, const void* data) {
        width = data ? w : width;
        driver(epoxy_glTexImage2D, "glTexImage2D")(target, level, internal, w, h, border, format, type, data);
    };
    use(compass(310));
    initialize();
    epoxy_glGetIntegerv = driver(epoxy_glGetIntegerv, "glGetIntegerv");
    EXPECT_EQ(width, 78);
    EXPECT_TRUE(samePicture(background(kAlongZ, kSize, kSize), whole, 4)); // 4: between coarser texels
}
