// Draws with a texture buffer off-screen to see whether the driver's texture buffers work: some that claim
// them read wrong texels.
#pragma once

#include <cstdint>

#include "NRenderUtl/host/hostgl.h"
#include "NRenderUtl/shaders/nshaders.h"

/// Needs a current context whose driver claims shader objects and texture buffers.
class TextureBufferProbe : public NShaderProgram {
public:
    TextureBufferProbe();
    TextureBufferProbe(const TextureBufferProbe&) = delete;
    TextureBufferProbe& operator=(const TextureBufferProbe&) = delete;
    ~TextureBufferProbe() override;

    /// Whether texels of a format (GL_R8UI, GL_R32F, GL_R32I or GL_RGBA8UI) arrive as they were stored; once
    /// for a probe. Leaves the GL state as it was, but when the driver refuses the vertices the attributes
    /// stay pushed. Without off-screen framebuffers there is nothing to see, and the answer is yes.
    bool run(GLenum format = GL_R8UI);

private:
    bool makeTextureBuffer(GLenum format);
    bool makeQuad();
    void draw(GLenum format);
    bool drawsGreen(GLenum format, const struct _NglFBOInfoStr& target);

    std::int32_t m_viewport[4]{};                    ///< x, y, width, height
    std::int32_t m_textureBuffer = 0, m_texture = 0; ///< -1 = could not be made
    std::uint32_t m_vertexBuffer = 0, m_indexBuffer = 0;
};
