// GL names of textures beyond this folder, deleted by the rule of the GPU buffers.
#pragma once

#include <cstdint>

/// Deletes a texture, or without a declared context queues it for RenderGLCleanupBuffers.
void deleteTextureOrQueue(std::uint32_t name);
