// Buffers and texture buffers: names made and deleted only in a declared context, and what they feed.
#include <utility>

#include "tests/shaders/testprogram.h"

using namespace nrutest;

namespace {

constexpr unsigned kFailed = 0xFFFFFFFF;
constexpr float kValues[6] = {0.25f, 0.5f, 0.75f, 1, 0.5f, 0}, kOther[6] = {1, 0, 0.5f, 0.5f, 0, 1};

class RenderGLObjects : public GlTest {
protected:
    void SetUp() override {
        GlTest::SetUp();
        captureHostLog();
        SetRenderingContextActive(true);
    }
    static void create(RenderGLBuffer& buffer) {
        buffer.Create(GL_ARRAY_BUFFER, sizeof kValues, kValues, GL_STATIC_DRAW);
    }
    static void create(RenderGLTBO& texture, unsigned unit) {
        texture.Create(GL_TEXTURE_BUFFER, kValues, sizeof kValues, GL_STATIC_DRAW, GL_R32F, unit);
    }
    static int names() { return living(glIsBuffer) + living(glIsTexture); }
};

TEST_F(RenderGLObjects, FailedBuffersStayFailedUntilReset) {
    RenderGLBuffer buffer;
    SetRenderingContextActive(false);
    create(buffer);
    SetRenderingContextActive(true);
    for (int retry = 0; retry < 2; ++retry) {
        EXPECT_EQ(buffer.GetBufferID(), kFailed);
        EXPECT_FALSE(buffer.IsValid() || buffer.IsCreated());
        create(buffer);
        buffer.Update(kOther);
        buffer.Bind();
        buffer.Destroy(false);
    }
    buffer.Destroy(true);
    create(buffer);
    EXPECT_TRUE(buffer.IsValid() && buffer.IsCreated());
    const unsigned name = buffer.GetBufferID();
    create(buffer);
    EXPECT_EQ(buffer.GetBufferID(), name) << "made twice";
    EXPECT_EQ(RenderGLBuffer(buffer).GetBufferID(), name);
    buffer.Destroy(true); // the copy took the buffer with it
    create(buffer);
    for (const float* expected : {kValues, kOther}) {
        float content[6] = {};
        buffer.Bind();
        glGetBufferSubData(GL_ARRAY_BUFFER, 0, sizeof content, content);
        EXPECT_TRUE(std::equal(content, content + 6, expected));
        buffer.Update(kOther);
        EXPECT_EQ(integer(GL_ARRAY_BUFFER_BINDING), 0);
    }
    char label[64] = {};
    glGetObjectLabel(GL_BUFFER, buffer.GetBufferID(), sizeof label, nullptr, label);
    EXPECT_STREQ(label, "NRenderUtl vertex buffer");
}

// What a driver without memory may do; no name may stay.
TEST_F(RenderGLObjects, DriversThatFailLeaveNoNames) {
    const auto real = std::tuple(epoxy_glGenBuffers, epoxy_glGenTextures, epoxy_glGetBufferParameteriv);
    void (*const faults[])() = {
        [] { epoxy_glGenBuffers = [](GLsizei, GLuint* name) { *name = 0; }; },
        [] { epoxy_glGenTextures = [](GLsizei, GLuint* name) { *name = 0; }; },
        [] {
            epoxy_glGetBufferParameteriv = [](GLenum, GLenum, GLint* size) { *size = sizeof kValues - 4; };
        },
    };
    for (const auto& fault : faults) {
        SCOPED_TRACE(&fault - faults);
        RenderGLBuffer buffer;
        RenderGLTBO texture;
        fault();
        create(buffer);
        create(texture, 1);
        std::tie(epoxy_glGenBuffers, epoxy_glGenTextures, epoxy_glGetBufferParameteriv) = real;
        EXPECT_EQ(buffer.IsValid(), &fault == &faults[1]);
        EXPECT_EQ(names(), buffer.IsValid());
        texture.Destroy(false);
        create(texture, 1);
        EXPECT_FALSE(texture.IsValid() || texture.IsCreated());
        texture.Destroy(true);
        create(texture, 1);
        EXPECT_TRUE(texture.IsValid());
    }
    EXPECT_EQ(names(), 0);
}

TEST_F(RenderGLObjects, AttributesReadTheBufferOrElseClientMemory) {
    const auto attribute = [](GLenum query) {
        GLint value = 0;
        glGetVertexAttribiv(2, query, &value);
        return value;
    };
    for (const bool made : {false, true}) {
        SCOPED_TRACE(made);
        RenderGLBuffer buffer;
        if (made)
            create(buffer);
        buffer.Bind(-1, 3, kValues);
        EXPECT_EQ(integer(GL_ARRAY_BUFFER_BINDING), 0);
        buffer.Bind(2, 3, kValues);
        void* pointer = nullptr;
        glGetVertexAttribPointerv(2, GL_VERTEX_ATTRIB_ARRAY_POINTER, &pointer);
        EXPECT_EQ(pointer, made ? nullptr : kValues);
        EXPECT_EQ(attribute(GL_VERTEX_ATTRIB_ARRAY_BUFFER_BINDING), static_cast<int>(buffer.GetBufferID()));
        EXPECT_EQ(attribute(GL_VERTEX_ATTRIB_ARRAY_SIZE), 3);
        for (const int enabled : {1, 0}) {
            EXPECT_EQ(attribute(GL_VERTEX_ATTRIB_ARRAY_ENABLED), enabled);
            buffer.Unbind();
        }
        EXPECT_EQ(integer(GL_ARRAY_BUFFER_BINDING), 0);
    }
}

TEST_F(RenderGLObjects, TextureBuffersReachPrograms) {
    TestProgram program;
    ASSERT_TRUE(program.build("#version 150 compatibility\nvoid main() { gl_Position = gl_Vertex; }\n",
                              "#version 150 compatibility\nuniform samplerBuffer g_tbuff;\n"
                              "void main() { gl_FragColor = texelFetch(g_tbuff, int(gl_FragCoord.x)); }\n"));
    program.UseProgram(true);
    program.SetUniformValue(RenderUniformElementValues, 3);
    RenderGLTBO texture;
    create(texture, 3);
    create(texture, 3); // does nothing: the unit stays 3
    for (const float* expected : {kValues, kOther}) {
        texture.Bind(true);
        EXPECT_EQ(integer(GL_ACTIVE_TEXTURE), GL_TEXTURE3);
        glRectf(-1, -1, 1, 1);
        texture.Unbind();
        EXPECT_EQ(integer(GL_TEXTURE_BINDING_BUFFER), 0);
        for (int x = 0; x < 6; ++x)
            EXPECT_NEAR(read().at(x, 9) & 0xFF, 255 * expected[x], 0.5) << x;
        texture.Update(kOther);
    }
    texture.Destroy(false);
    create(texture, 1);
    glActiveTexture(GL_TEXTURE2);
    texture.Bind(false);
    EXPECT_EQ(integer(GL_ACTIVE_TEXTURE), GL_TEXTURE2);
    texture.Unbind();
    texture.Bind(true);
    EXPECT_EQ(integer(GL_ACTIVE_TEXTURE), GL_TEXTURE1) << "offsets added up";
}

std::vector<GLuint> deleted;
decltype(epoxy_glDeleteBuffers) realDeleteBuffers;

TEST_F(RenderGLObjects, AreDeletedAtOnceOrWithTheCleanUp) {
    glDeleteBuffers(0, nullptr); // the loader now has the driver's function
    realDeleteBuffers = epoxy_glDeleteBuffers;
    epoxy_glDeleteBuffers = [](GLsizei count, const GLuint* names) {
        deleted.insert(deleted.end(), names, names + count);
        deleted.push_back(0); // end of a call
        realDeleteBuffers(count, names);
    };
    std::vector<GLuint> expected;
    {
        RenderGLBuffer buffers[5];
        RenderGLTBO texture;
        for (RenderGLBuffer& buffer : buffers)
            create(buffer);
        create(texture, 0);
        SetRenderingContextActive(false);
        for (const int i : {3, 0, 4, 1, 2}) {
            expected.insert(expected.end(), {buffers[i].GetBufferID(), 0});
            buffers[i].Destroy(false);
            EXPECT_EQ(buffers[i].GetBufferID(), 0u);
        }
    }
    RenderGLCleanupBuffers();
    EXPECT_EQ(std::exchange(hostLog(), ""),
              "-1 OpenGL buffer cleanup is being done whileno rendering context is active, please review the "
              "calls to avoid GPU memory leak!\n");
    EXPECT_EQ(names(), 7);
    SetRenderingContextActive(true);
    RenderGLCleanupBuffers();
    RenderGLCleanupBuffers(); // finds nothing
    EXPECT_EQ(hostLog(), "-2 2 vbo data cleaned\n");
    EXPECT_EQ(names(), 0);
    ASSERT_EQ(deleted.size(), 12u);
    deleted.resize(10); // and the texture buffer
    EXPECT_EQ(deleted, expected);
}

} // namespace
