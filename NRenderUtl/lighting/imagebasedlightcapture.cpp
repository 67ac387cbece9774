// The passes that draw the maps: the image onto the environment cube, and what is integrated from it.
#include <algorithm>
#include <cmath>
#include <iterator>

#include "NRenderUtl/host/hostimage.h"
#include "NRenderUtl/host/hostmath.h"
#include "NRenderUtl/lighting/imagebasedlight.h"
#include "NRenderUtl/lighting/lightsamples.h"

namespace {

constexpr float kIdentity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

// --- the image ---------------------------------------------------------------------------------------------

/// Half floats end at 65504: a brighter sun would be infinite, and the maps with it.
void limitToHalfFloats(HostFloatImage& image) {
    constexpr float kLargestHalf = 65504.0f;
    float* values = image.pixels.get();
    const std::size_t count = std::size_t{3} * image.width * image.height;
    for (std::size_t i = 0; i < count; ++i)
        values[i] = values[i] > 0.0f ? std::min(values[i], kLargestHalf) : 0.0f; // NaN is none
}

/// Means of blocks of across x down pixels, in place; those at the far edges have what is left.
void averageBlocks(HostFloatImage& image, int across, int down) {
    const int width = (image.width + across - 1) / across, height = (image.height + down - 1) / down;
    float* const pixels = image.pixels.get();
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            double sum[3] = {};
            const int bottom = std::min((y + 1) * down, image.height);
            const int right = std::min((x + 1) * across, image.width);
            for (int row = y * down; row < bottom; ++row)
                for (int column = x * across; column < right; ++column)
                    for (int i = 0; i < 3; ++i)
                        sum[i] += pixels[(std::size_t(row) * image.width + column) * 3 + i];
            const int count = (bottom - y * down) * (right - x * across);
            for (int i = 0; i < 3; ++i)
                pixels[(std::size_t(y) * width + x) * 3 + i] = static_cast<float>(sum[i] / count);
        }
    image.width = width;
    image.height = height;
}

/// An image larger than the driver's textures is averaged down.
void fitIntoTexture(HostFloatImage& image) {
    GLint largest = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &largest);
    const int across = (image.width + largest - 1) / largest, down = (image.height + largest - 1) / largest;
    if (across > 1 || down > 1)
        averageBlocks(image, across, down);
}

/// Bound as the 2D texture.
GLuint uploadImage(const HostFloatImage& image) {
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGB16F, image.width, image.height, 0, GL_RGB, GL_FLOAT,
                 image.pixels.get());
    for (const GLenum filter : {GL_TEXTURE_MIN_FILTER, GL_TEXTURE_MAG_FILTER})
        glTexParameteri(GL_TEXTURE_2D, filter, GL_LINEAR);
    for (const GLenum axis : {GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T, GL_TEXTURE_WRAP_R})
        glTexParameteri(GL_TEXTURE_2D, axis, GL_CLAMP_TO_EDGE);
    return texture;
}

// --- faces side by side ------------------------------------------------------------------------------------

/// Six cells in a row, one for each face. A software driver draws blocks of 64 x 64 pixels at a time, each by
/// one thread: a cell of its own for every small face keeps all threads at work. In single precision, as sums
/// grow here part by part.
class FaceStrip {
public:
    explicit FaceStrip(int faceSize) : cell(std::max(faceSize, 64)) {
        glGenTextures(1, &m_texture);
        glBindTexture(GL_TEXTURE_2D, m_texture);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA32F, width(), cell, 0, GL_RGBA, GL_FLOAT, nullptr);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAX_LEVEL, 0);
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, m_texture, 0);
    }
    ~FaceStrip() {
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, 0, 0);
        glDeleteTextures(1, &m_texture);
    }
    FaceStrip(const FaceStrip&) = delete;
    FaceStrip& operator=(const FaceStrip&) = delete;

    int width() const { return kCubeFaces * cell; }
    int left(int face) const { return face * cell; }
    void copyTo(GLuint cube, int level, int size) const {
        glBindTexture(GL_TEXTURE_CUBE_MAP, cube);
        for (int face = 0; face < kCubeFaces; ++face)
            glCopyTexSubImage2D(GL_TEXTURE_CUBE_MAP_POSITIVE_X + static_cast<GLenum>(face), level, 0, 0,
                                left(face), 0, size, size);
    }
    const int cell;

private:
    GLuint m_texture = 0;
};

// --- samples -----------------------------------------------------------------------------------------------

/// A list of samples that a program reads at texture unit 1, whose texture of that kind is kept. Unit 0 is
/// active before and after.
class SampleBuffer {
public:
    explicit SampleBuffer(NShaderProgram& program) {
        program.SetUniformValue("g_samples", 1);
        glGetIntegerv(GL_TEXTURE_BUFFER, &m_hostBuffer);
        glGenBuffers(1, &m_buffer);
        glGenTextures(1, &m_texture);
        glBindBuffer(GL_TEXTURE_BUFFER, m_buffer);
        glActiveTexture(GL_TEXTURE1);
        glGetIntegerv(GL_TEXTURE_BINDING_BUFFER, &m_hostTexture);
        glBindTexture(GL_TEXTURE_BUFFER, m_texture);
        glActiveTexture(GL_TEXTURE0);
    }
    ~SampleBuffer() {
        glActiveTexture(GL_TEXTURE1);
        glBindTexture(GL_TEXTURE_BUFFER, static_cast<GLuint>(m_hostTexture));
        glActiveTexture(GL_TEXTURE0);
        glBindBuffer(GL_TEXTURE_BUFFER, static_cast<GLuint>(m_hostBuffer));
        glDeleteTextures(1, &m_texture);
        glDeleteBuffers(1, &m_buffer);
    }
    SampleBuffer(const SampleBuffer&) = delete;
    SampleBuffer& operator=(const SampleBuffer&) = delete;

    void fill(const std::vector<LightSample>& list) const {
        const auto bytes = static_cast<GLsizeiptr>(list.size() * sizeof(LightSample));
        glBufferData(GL_TEXTURE_BUFFER, bytes, list.data(), GL_STATIC_DRAW);
        glActiveTexture(GL_TEXTURE1);
        glTexBuffer(GL_TEXTURE_BUFFER, GL_RGBA32F, m_buffer);
        glActiveTexture(GL_TEXTURE0);
    }

private:
    GLuint m_buffer = 0, m_texture = 0;
    GLint m_hostBuffer = 0, m_hostTexture = 0;
};

/// What is drawn is added to what is there.
class SummingGuard {
public:
    SummingGuard() {
        glEnable(GL_BLEND);
        glBlendFunc(GL_ONE, GL_ONE);
    }

private:
    const AttributesGuard m_attributes{GL_COLOR_BUFFER_BIT};
    const AddingGuard m_adds;
};

} // namespace

// --- matrices ----------------------------------------------------------------------------------------------

// The Y faces look the opposite way from a cube map's own: the matrices are stored row by row and GL reads
// them as columns, so that programs see their transposes. Those of the other faces are symmetric; these two
// transposes are the cube map's own views.
void NImageBasedLightHandler::InitCaptureViewMatrices() {
    struct View {
        NgFVector3 centre, up;
    };
    constexpr View kViews[kCubeFaces] = {
        {{1, 0, 0}, {0, -1, 0}}, {{-1, 0, 0}, {0, -1, 0}}, {{0, -1, 0}, {0, 0, -1}},
        {{0, 1, 0}, {0, 0, 1}},  {{0, 0, 1}, {0, -1, 0}},  {{0, 0, -1}, {0, -1, 0}},
    };
    for (int face = 0; face < kCubeFaces; ++face) {
        const auto& [centre, up] = kViews[face];
        const NgFVector3 rows[] = {centre.cross(up), up, centre * -1.0f};
        float* matrix = std::copy(std::begin(kIdentity), std::end(kIdentity), m_captureViews[face]) - 16;
        for (const NgFVector3& row : rows) {
            *matrix++ = row.x;
            *matrix++ = row.y;
            *matrix++ = row.z;
            ++matrix;
        }
    }
}

void NImageBasedLightHandler::GetModelMatrix(float (&matrix)[16]) const {
    struct Turn {
        double angleDeg;
        _NgPoint3Str axis;
    };
    constexpr Turn kTurns[] = {{90, {0, 0, 1}},  {90, {0, 0, -1}}, {0, {0, 0, 1}},
                               {180, {1, 0, 0}}, {90, {1, 0, 0}},  {90, {-1, 0, 0}}};
    const auto index = static_cast<unsigned>(m_imageUp);
    const Turn& turn = kTurns[index < std::size(kTurns) ? index : 2];
    NgMatrix rotation;
    float columns[4][4];
    NglSetRotation(rotation, turn.angleDeg, turn.axis);
    NglToFloat(rotation, columns);
    std::copy_n(&columns[0][0], 16, matrix);
}

/// 90 degrees, square, from 0.1 to 10.
void NImageBasedLightHandler::GetProjectionMatrix(float (&matrix)[16]) {
    constexpr float kNear = 0.1f, kFar = 10.0f;
    std::fill(std::begin(matrix), std::end(matrix), 0.0f);
    matrix[0] = matrix[5] = 1.0f;
    matrix[10] = -(kFar + kNear) / (kFar - kNear);
    matrix[11] = -1.0f;
    matrix[14] = -2.0f * kFar * kNear / (kFar - kNear);
}

/// For the program in use.
void NImageBasedLightHandler::SetFaceMatrices(Program& program, int face, const float* model) {
    float projection[16], turn[16];
    GetProjectionMatrix(projection);
    std::copy_n(model, 16, turn);
    program.SetUniform4x4Matrix("g_projmat", projection);
    program.SetUniform4x4Matrix("g_viewmat", m_captureViews[face]);
    program.SetUniform4x4Matrix("g_modelmat", turn);
}

// --- passes ------------------------------------------------------------------------------------------------

void NImageBasedLightHandler::GenerateEnvironmentTextureCubeMap() {
    HostFloatImage image;
    if (!m_imageFile.empty())
        image = hostLoadFloatImage(GuStringFileName(m_imageFile), 3);
    GLuint source = 0;
    if (image) {
        fitIntoTexture(image);
        limitToHalfFloats(image);
        source = uploadImage(image);
        image = {};
    }
    CaptureEnvironmentCubeMap(source);
    if (source != 0)
        glDeleteTextures(1, &source);
    endOfPiece(EnvironmentStep, 1.0);
}

/// Without a source the faces are black.
void NImageBasedLightHandler::CaptureEnvironmentCubeMap(unsigned int sourceTexture) {
    float model[16];
    GetModelMatrix(model);
    SetPassSize(kEnvironmentSize, kEnvironmentSize);
    Program& program = *m_equirectangularProgram;
    program.UseProgram(true);
    program.SetUniformValue("g_equirectmap", 0);
    glBindTexture(GL_TEXTURE_2D, sourceTexture);
    for (int face = 0; face < kCubeFaces; ++face) {
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0,
                               GL_TEXTURE_CUBE_MAP_POSITIVE_X + static_cast<GLenum>(face), m_environmentMap,
                               0);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        if (sourceTexture == 0)
            continue;
        SetFaceMatrices(program, face, model);
        RenderEnvCube();
    }
}

void NImageBasedLightHandler::CaptureIrradicaeMap() {
    m_irradianceProgram->UseProgram(true);
    ConvolveFaces(*m_irradianceProgram, IrradianceStep, m_irradianceMap, 0, kIrradianceSize,
                  irradianceSamples());
}

void NImageBasedLightHandler::CapturePreFilterMap() {
    m_prefilterProgram->UseProgram(true);
    for (int level = 0; level < kPrefilterLevels; ++level)
        ConvolveFaces(*m_prefilterProgram, PrefilterStep + level, m_prefilterMap, level,
                      kPrefilterSize >> level, reflectionSamples(0.25f * static_cast<float>(level)));
}

/// Sums up the faces of one level by the program in use, from the environment: some samples for all texels at
/// a time. Texels side by side then read what the processor's caches still have.
void NImageBasedLightHandler::ConvolveFaces(Program& program, int step, unsigned int cube, int level,
                                            int size, const LightSamples& samples) {
    constexpr int kPieceSamples = 2048 * kIrradianceSize * kIrradianceSize; // of all texels of a face
    constexpr int kLeast = 256; // for a texel, which each piece blends
    const int count = static_cast<int>(samples.list.size());
    const int pieceCount = std::min(std::max(kPieceSamples / (size * size), kLeast), count);
    const FaceStrip strip(size);
    const SampleBuffer buffer(program);
    const SummingGuard sums;
    SetPassSize(strip.width(), strip.cell);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glBindTexture(GL_TEXTURE_CUBE_MAP, m_environmentMap);
    buffer.fill(samples.list);
    program.SetUniformValue("g_environmentmap", 0);
    program.SetUniformValue("g_scale", samples.scale);
    for (int first = 0; first < count; first += pieceCount) {
        const int end = std::min(first + pieceCount, count);
        program.SetUniformValue("g_first", first);
        program.SetUniformValue("g_count", end - first);
        for (int face = 0; face < kCubeFaces; ++face) {
            glViewport(strip.left(face), 0, size, size);
            SetFaceMatrices(program, face, kIdentity);
            RenderEnvCube();
        }
        endOfPiece(step, static_cast<double>(end) / count);
    }
    strip.copyTo(cube, level, size);
}

void NImageBasedLightHandler::CaptureBRDFLUTTexture() {
    constexpr int kPieceRows = 64;
    Program& program = *m_brdfProgram;
    SetPassSize(kBrdfTableSize, kBrdfTableSize);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, m_brdfTable, 0);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    program.UseProgram(true);
    program.SetUniformValue("g_count", kHalfVectors);
    const SampleBuffer buffer(program);
    std::vector<LightSample> halfVectors;
    glEnable(GL_SCISSOR_TEST);
    for (int first = 0; first < kBrdfTableSize; first += kPieceRows) {
        halfVectors.clear();
        for (int row = first; row < first + kPieceRows; ++row)
            appendHalfVectors((static_cast<float>(row) + 0.5f) / kBrdfTableSize, halfVectors);
        buffer.fill(halfVectors);
        program.SetUniformValue("g_first", first);
        glScissor(0, first, kBrdfTableSize, kPieceRows);
        RenderQuad();
        endOfPiece(BrdfTableStep, static_cast<double>(first + kPieceRows) / kBrdfTableSize);
    }
    glDisable(GL_SCISSOR_TEST);
}
