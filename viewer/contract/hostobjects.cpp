#include "viewer/contract/hostobjects.h"

#include <epoxy/gl.h>

#include <array>
#include <vector>

namespace nruview {

namespace {

constexpr const char* kVertexMain = "#version 110\n"
                                    "void main() { gl_Position = ftransform(); }\n";
constexpr const char* kFragmentMain = "#version 110\n"
                                      "void main() { gl_FragColor = vec4(1.0, 0.0, 0.5, 1.0); }\n";
constexpr const char* kSeparableMain = "#version 150 compatibility\n"
                                       "void main() { gl_FragColor = vec4(0.5, 0.0, 1.0, 1.0); }\n";

GLuint make(void (*generate)(GLsizei, GLuint*)) {
    GLuint name = 0;
    generate(1, &name);
    return name;
}

GLuint makeShader(GLenum stage, const char* source) {
    const GLuint shader = glCreateShader(stage);
    glShaderSource(shader, 1, &source, nullptr);
    glCompileShader(shader);
    return shader;
}

GLuint makeProgram() {
    const GLuint program = glCreateProgram();
    for (const auto& [stage, source] :
         {std::pair{GL_VERTEX_SHADER, kVertexMain}, std::pair{GL_FRAGMENT_SHADER, kFragmentMain}}) {
        const GLuint shader = makeShader(stage, source);
        glAttachShader(program, shader);
        glDeleteShader(shader);
    }
    glLinkProgram(program);
    return program;
}

GLuint makePipeline() {
    const GLuint pipeline = make(glGenProgramPipelines);
    const GLuint stage = glCreateShaderProgramv(GL_FRAGMENT_SHADER, 1, &kSeparableMain);
    glUseProgramStages(pipeline, GL_FRAGMENT_SHADER_BIT, stage);
    glDeleteProgram(stage);
    return pipeline;
}

template <class Upload>
GLuint makeTexture(GLenum target, const Upload& upload) {
    const GLuint texture = make(glGenTextures);
    glBindTexture(target, texture);
    glTexParameteri(target, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    upload();
    glBindTexture(target, 0);
    return texture;
}

} // namespace

HostObjects::HostObjects() {
    makeTextures();
    makeObjects();
    makeStages();
}

HostObjects::~HostObjects() {
    for (const GLuint texture : {texture1D, texture2D, texture3D, cube, rectangle})
        glDeleteTextures(1, &texture);
    glDeleteBuffers(1, &buffer);
    glDeleteQueries(1, &query);
    glDeleteProgram(program);
    if (arrays != 0)
        glDeleteVertexArrays(1, &arrays);
    if (sampler != 0)
        glDeleteSamplers(1, &sampler);
    if (pipeline != 0)
        glDeleteProgramPipelines(1, &pipeline);
    if (feedback != 0)
        glDeleteTransformFeedbacks(1, &feedback);
}

void HostObjects::makeTextures() {
    std::array<std::uint32_t, 64> texels;
    for (std::size_t i = 0; i < texels.size(); ++i)
        texels[i] = i % 2 == 0 ? 0xFF00FF40 : 0x80FF0090;
    const void* data = texels.data();
    texture1D = makeTexture(GL_TEXTURE_1D, [=] {
        glTexImage1D(GL_TEXTURE_1D, 0, GL_RGBA8, 4, 0, GL_RGBA, GL_UNSIGNED_BYTE, data);
    });
    texture2D = makeTexture(GL_TEXTURE_2D, [=] {
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 4, 4, 0, GL_RGBA, GL_UNSIGNED_BYTE, data);
    });
    texture3D = makeTexture(GL_TEXTURE_3D, [=] {
        glTexImage3D(GL_TEXTURE_3D, 0, GL_RGBA8, 4, 4, 4, 0, GL_RGBA, GL_UNSIGNED_BYTE, data);
    });
    cube = makeTexture(GL_TEXTURE_CUBE_MAP, [=] {
        for (GLenum face = GL_TEXTURE_CUBE_MAP_POSITIVE_X; face <= GL_TEXTURE_CUBE_MAP_NEGATIVE_Z; ++face)
            glTexImage2D(face, 0, GL_RGBA8, 4, 4, 0, GL_RGBA, GL_UNSIGNED_BYTE, data);
    });
    rectangle = makeTexture(GL_TEXTURE_RECTANGLE, [=] {
        glTexImage2D(GL_TEXTURE_RECTANGLE, 0, GL_RGBA8, 4, 4, 0, GL_RGBA, GL_UNSIGNED_BYTE, data);
    });
}

void HostObjects::makeObjects() {
    const std::vector<std::uint8_t> bytes(kBufferBytes, 0x3F);
    buffer = make(glGenBuffers);
    glBindBuffer(GL_ARRAY_BUFFER, buffer);
    glBufferData(GL_ARRAY_BUFFER, kBufferBytes, bytes.data(), GL_STATIC_DRAW);
    if (epoxy_gl_version() >= 30) {
        arrays = make(glGenVertexArrays);
        glBindVertexArray(arrays);
        glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, buffer);
        glEnableClientState(GL_VERTEX_ARRAY);
        glVertexPointer(3, GL_FLOAT, 0, nullptr);
        for (GLuint attribute = 0; attribute < 4; ++attribute) {
            glEnableVertexAttribArray(attribute);
            glVertexAttribPointer(attribute, 3, GL_FLOAT, GL_FALSE, 0, nullptr);
        }
        glBindVertexArray(0);
    }
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    query = make(glGenQueries);
    glBeginQuery(GL_SAMPLES_PASSED, query);
    glEndQuery(GL_SAMPLES_PASSED);
    if (epoxy_gl_version() >= 40)
        feedback = make(glGenTransformFeedbacks);
    if (epoxy_gl_version() < 33)
        return;
    sampler = make(glGenSamplers);
    const std::array<GLfloat, 4> border = {1.0f, 0.0f, 1.0f, 1.0f};
    glSamplerParameteri(sampler, GL_TEXTURE_MIN_FILTER, GL_NEAREST_MIPMAP_NEAREST);
    glSamplerParameteri(sampler, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    for (const GLenum axis : {GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T, GL_TEXTURE_WRAP_R})
        glSamplerParameteri(sampler, axis, GL_CLAMP_TO_BORDER);
    glSamplerParameteri(sampler, GL_TEXTURE_COMPARE_MODE, GL_COMPARE_REF_TO_TEXTURE);
    glSamplerParameterf(sampler, GL_TEXTURE_MAX_LOD, 0.0f);
    glSamplerParameterfv(sampler, GL_TEXTURE_BORDER_COLOR, border.data());
}

void HostObjects::makeStages() {
    if (epoxy_gl_version() >= 20)
        program = makeProgram();
    if (epoxy_gl_version() >= 41)
        pipeline = makePipeline();
}

} // namespace nruview
