// Lights and materials of the mesh renderer in the texture buffer that a program of it reads.
#pragma once

#include <array>

#include "NRenderUtl/mesh/parameterblock.h"
#include "NRenderUtl/shaders/blocklayout.h"
#include "NRenderUtl/shaders/nshaders.h"

/// Makes the unit of the block active for the length of a block of code, and keeps the host's texture there.
class BlockUnitGuard {
public:
    BlockUnitGuard();
    ~BlockUnitGuard();
    BlockUnitGuard(const BlockUnitGuard&) = delete;
    BlockUnitGuard& operator=(const BlockUnitGuard&) = delete;

private:
    int m_activeUnit = 0, m_texture = 0, m_buffer = 0;
};

class MeshRendererBlock {
public:
    using Texels = std::array<BlockTexel, BlockCellMap>; ///< a block without a colour scale

    /// Whether there is a texture, which is made at the first call. It needs texture buffers and a context
    /// that the host has declared.
    bool isUsable();
    void set(const Texels& texels);
    /// Binds the texture to the active unit, with what was set.
    void bind();

private:
    RenderGLTBO m_texture;
    Texels m_texels{};
    bool m_stale = true;
};
