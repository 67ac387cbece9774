// Static programs and buffers outlive main(), whatever became of the context that they were made in.
#include <unistd.h>

#include <string_view>
#include <thread>

#include "tests/shaders/testprogram.h"
#include "tests/support/subprocess.h"

using namespace nrutest;

namespace {

TestProgram program;
RenderGLBuffer buffer;
RenderGLTBO textureBuffer;
nruview::OffscreenContext* context; ///< destroyed by choice only

void makeAll(bool destroyContext) {
    context = new nruview::OffscreenContext;
    ASSERT_EQ(context->create(4, 4), "");
    const float texels[3] = {1, 2, 3};
    ASSERT_TRUE(program.build("void main() { gl_Position = gl_Vertex; }", "void main() {}"));
    SetRenderingContextActive(true); // and never taken back
    buffer.Create(GL_ARRAY_BUFFER, sizeof texels, texels, GL_STATIC_DRAW);
    textureBuffer.Create(GL_TEXTURE_BUFFER, texels, sizeof texels, GL_STATIC_DRAW, GL_R32F, 0);
    ASSERT_TRUE(buffer.IsValid() && textureBuffer.IsValid());
    if (destroyContext)
        delete context;
}

/// From here on a deletion shows in the exit code.
void refuseDeletions() {
    epoxy_glDeleteProgram = [](GLuint) { _exit(91); };
    epoxy_glDeleteBuffers = [](GLsizei, const GLuint*) { _exit(92); };
    epoxy_glDeleteTextures = [](GLsizei, const GLuint*) { _exit(93); };
}

TEST(StaticGlObjects, CallNoDriverAtProcessEnd) {
    for (const char* fate : {"none", "kept", "of another thread", "destroyed"})
        if (!ranInSubprocess({{"CONTEXT", fate}})) {
            const std::string_view wanted = std::getenv("CONTEXT");
            if (wanted == "of another thread")
                std::thread(makeAll, false).join();
            else if (wanted != "none")
                makeAll(wanted == "destroyed");
            refuseDeletions();
            return;
        }
}

// A declaration that is not true any more: nothing is made, and what was made waits.
TEST(StaticGlObjects, WaitForAContextThatIsThere) {
    captureHostLog();
    makeAll(true);
    RenderGLBuffer late;
    late.Create(GL_ARRAY_BUFFER, 4, nullptr, GL_STATIC_DRAW);
    EXPECT_EQ(late.GetBufferID(), 0xFFFFFFFF);
    EXPECT_FALSE(TestProgram().build("void main() {}", "void main() {}"));
    buffer.Destroy(true);
    textureBuffer.Destroy(true);
    RenderGLCleanupBuffers();
    EXPECT_TRUE(hostLog().starts_with("-1 OpenGL buffer cleanup")) << hostLog();
}

} // namespace
