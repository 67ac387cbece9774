// A finite-element sheet from buffers: one light and bands in a fragment stage.
#include "bench/peers/gl/gl.h"

#include <algorithm>

namespace nrubench {

namespace {

constexpr const char* kVertex = R"(#version 120
attribute vec3 position, normal;
attribute float value;
varying float v_value;
varying vec3 v_eye, v_normal;
void main() {
    vec4 eye = gl_ModelViewMatrix * vec4(position, 1.0);
    gl_Position = gl_ProjectionMatrix * eye;
    v_eye = eye.xyz;
    v_normal = gl_NormalMatrix * normal;
    v_value = value;
}
)";
constexpr const char* kBandFragment = R"(#version 120
varying float v_value;
varying vec3 v_eye, v_normal;
uniform sampler1D bands;
uniform float stretch;
void main() {
    float cosine = dot(normalize(v_normal), normalize(vec3(-0.2, 0.35, 1.0) - v_eye));
    gl_FragColor = vec4(texture1D(bands, v_value * stretch).rgb * (0.5 + 0.5 * abs(cosine)), 1.0);
}
)";
constexpr const char* kColorVertex = R"(#version 130
in vec3 position, normal;
in vec4 color;
flat out vec3 v_color;
out vec3 v_eye, v_normal;
void main() {
    vec4 eye = gl_ModelViewMatrix * vec4(position, 1.0);
    gl_Position = gl_ProjectionMatrix * eye;
    v_eye = eye.xyz;
    v_normal = gl_NormalMatrix * normal;
    v_color = color.rgb;
}
)";
constexpr const char* kColorFragment = R"(#version 130
flat in vec3 v_color;
in vec3 v_eye, v_normal;
out vec4 result;
void main() {
    float cosine = dot(normalize(v_normal), normalize(vec3(-0.2, 0.35, 1.0) - v_eye));
    result = vec4(v_color * (0.5 + 0.5 * abs(cosine)), 1.0);
}
)";
constexpr double kCovered = 0.7;

std::vector<float> narrowed(const std::vector<double>& values) {
    return {values.begin(), values.end()};
}

void makeBands() {
    std::vector<unsigned char> texels;
    for (unsigned i = 0; i < kBands; ++i)
        for (const unsigned char channel : bandColor(i))
            texels.push_back(channel);
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_1D, texture);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glTexImage1D(GL_TEXTURE_1D, 0, GL_RGB8, kBands, 0, GL_RGB, GL_UNSIGNED_BYTE, texels.data());
    for (const GLenum filter : {GL_TEXTURE_MIN_FILTER, GL_TEXTURE_MAG_FILTER})
        glTexParameteri(GL_TEXTURE_1D, filter, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_1D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
}

void openSheet() {
    openWindow();
    loadBox(kSheetView);
}

void drawTriangles(const std::vector<std::uint32_t>& indices) {
    glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(indices.size()), GL_UNSIGNED_INT, nullptr);
}

// --- bands -------------------------------------------------------------------------------------------------

/// On the GPU, bound and ready to draw.
struct Banded {
    explicit Banded(const Sheet& sheet) {
        program = makeProgram(kVertex, kBandFragment, {"position", "normal", "value"});
        makeBands();
        setAttribute(0, makeBuffer(GL_ARRAY_BUFFER, narrowed(sheet.nodes)), 3, GL_FLOAT);
        setAttribute(1, makeBuffer(GL_ARRAY_BUFFER, sheet.normals), 3, GL_FLOAT);
        values = makeBuffer(GL_ARRAY_BUFFER, sheet.nodeValues);
        setAttribute(2, values, 1, GL_FLOAT);
        makeBuffer(GL_ELEMENT_ARRAY_BUFFER, sheet.triangles);
        stretch = glGetUniformLocation(program, "stretch");
        glUniform1f(stretch, 1);
    }
    GLuint program, values;
    GLint stretch;
};

using Change = std::function<void(Sheet&, const Banded&, unsigned turn)>;

std::function<Work(unsigned)> bands(const Change& change = {}) {
    return [=](unsigned size) {
        openSheet();
        const auto sheet = std::make_shared<Sheet>(size);
        const Banded banded(*sheet);
        return Work{[=](unsigned turn) {
                        if (change)
                            change(*sheet, banded, turn);
                        drawTriangles(sheet->triangles);
                    },
                    true, kCovered};
    };
}

/// The next step of an animated field.
void revalue(Sheet& sheet, const Banded& banded, unsigned) {
    std::rotate(sheet.nodeValues.begin(), sheet.nodeValues.begin() + 1, sheet.nodeValues.end());
    glBindBuffer(GL_ARRAY_BUFFER, banded.values);
    glBufferSubData(GL_ARRAY_BUFFER, 0, static_cast<GLsizeiptr>(4 * sheet.nodeValues.size()),
                    sheet.nodeValues.data());
}

void rerange(Sheet&, const Banded& banded, unsigned turn) {
    glUniform1f(banded.stretch, 1 / (1 + static_cast<float>(turn % 10) / 20));
}

/// Copies the indices of what is shown, and draws these.
Work hide(unsigned size) {
    openSheet();
    const auto sheet = std::make_shared<Sheet>(size);
    const Banded banded(*sheet);
    return {[=, shown = std::vector<std::uint32_t>()](unsigned turn) mutable {
                const std::size_t tenth = sheet->elementCount() / 10 * 3;
                const auto begin = sheet->triangles.begin(),
                           hidden = begin + static_cast<std::ptrdiff_t>(turn % 10 * tenth);
                shown.assign(begin, hidden);
                shown.insert(shown.end(), hidden + static_cast<std::ptrdiff_t>(tenth),
                             sheet->triangles.end());
                glBufferSubData(GL_ELEMENT_ARRAY_BUFFER, 0, static_cast<GLsizeiptr>(4 * shown.size()),
                                shown.data());
                drawTriangles(shown);
            },
            true, kCovered - 0.1};
}

Work firstFrame(unsigned size) {
    const auto sheet = std::make_shared<Sheet>(size);
    openSheet();
    return {[=](unsigned) {
                const Banded banded(*sheet);
                drawTriangles(sheet->triangles);
            },
            true, kCovered};
}

/// From nothing to a picture.
Work toFirstFrame(unsigned size) {
    return {[sheet = Sheet(size)](unsigned) {
                openSheet();
                clearWindow();
                const Banded banded(sheet);
                drawTriangles(sheet.triangles);
                glFinish();
            },
            false};
}

// --- colours of elements -----------------------------------------------------------------------------------

/// Three vertices of its own for each triangle, in its colour.
struct Colored {
    explicit Colored(const Sheet& sheet) {
        std::vector<float> positions, normals;
        for (const std::uint32_t node : sheet.triangles)
            for (unsigned k = 0; k < 3; ++k) {
                positions.push_back(static_cast<float>(sheet.nodes[3 * node + k]));
                normals.push_back(sheet.normals[3 * node + k]);
            }
        makeProgram(kColorVertex, kColorFragment, {"position", "normal", "color"});
        setAttribute(0, makeBuffer(GL_ARRAY_BUFFER, positions), 3, GL_FLOAT);
        setAttribute(1, makeBuffer(GL_ARRAY_BUFFER, normals), 3, GL_FLOAT);
        fill(sheet.colors);
        buffer = makeBuffer(GL_ARRAY_BUFFER, colors);
        setAttribute(2, buffer, 4, GL_UNSIGNED_BYTE);
    }
    /// The last vertex provokes, but the first two need a colour's memory all the same.
    void fill(const std::vector<std::uint32_t>& ofElements) {
        colors.resize(3 * ofElements.size());
        for (std::size_t i = 0; i < ofElements.size(); ++i)
            colors[3 * i + 2] = ofElements[i];
    }

    std::vector<std::uint32_t> colors;
    GLuint buffer;
};

std::function<Work(unsigned)> colors(bool change) {
    return [=](unsigned size) {
        openSheet();
        const auto sheet = std::make_shared<Sheet>(size);
        const auto colored = std::make_shared<Colored>(*sheet);
        return Work{
            [=](unsigned) {
                if (change) {
                    std::rotate(sheet->colors.begin(), sheet->colors.begin() + 1, sheet->colors.end());
                    colored->fill(sheet->colors);
                    glBufferSubData(GL_ARRAY_BUFFER, 0, static_cast<GLsizeiptr>(4 * colored->colors.size()),
                                    colored->colors.data());
                }
                glDrawArrays(GL_TRIANGLES, 0, static_cast<GLsizei>(colored->colors.size()));
            },
            true, kCovered};
    };
}

} // namespace

std::vector<Case> meshCases() {
    const std::vector<unsigned> all = {1000, 10000, 100000, 1000000}, large = {100000, 1000000};
    const char* plain = "one light written out, bands of one width; no state kept, no facts of elements";
    return {{"start.with_context",
             {1},
             [](unsigned) {
                 return Work{[](unsigned) {
                                 openWindow();
                                 makeProgram(kVertex, kBandFragment, {});
                                 makeProgram(kColorVertex, kColorFragment, {});
                                 glFinish();
                             },
                             false};
             },
             "two small programs, of which none has drawn",
             true},
            {"start.to_first_frame", {1000}, toFirstFrame, plain, true},
            {"mesh.bands", all, bands(), plain},
            {"mesh.colors", large, colors(false), plain},
            {"mesh.hide", large, hide, "copies the shown indices; no facts of elements"},
            {"mesh.recolor", large, colors(true), plain},
            {"mesh.rerange", large, bands(rerange), "stretches the range; bands stay"},
            {"mesh.revalue", large, bands(revalue), plain},
            {"mesh.first_frame", all, firstFrame, "normals given; nothing kept for changes or picks", true}};
}

} // namespace nrubench
