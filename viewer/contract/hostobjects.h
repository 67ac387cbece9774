// OpenGL objects of a host that has drawn before: what its states bind, none of which the library should see.
#pragma once

#include <cstdint>

namespace nruview {

/// Made in the context that is current and deleted in it. Objects that the driver does not know are 0.
class HostObjects {
public:
    HostObjects();
    ~HostObjects();
    HostObjects(const HostObjects&) = delete;
    HostObjects& operator=(const HostObjects&) = delete;

    static constexpr int kBufferBytes = 1 << 16;

    /// Textures of 4 texels each way in loud colours.
    std::uint32_t texture1D = 0, texture2D = 0, texture3D = 0, cube = 0, rectangle = 0;
    std::uint32_t buffer = 0;   ///< kBufferBytes bytes
    std::uint32_t arrays = 0;   ///< a vertex array object with its arrays on
    std::uint32_t sampler = 0;  ///< takes texels from beyond the edge, and mipmaps that textures lack
    std::uint32_t program = 0;  ///< all in one colour
    std::uint32_t pipeline = 0; ///< the same as a program pipeline
    std::uint32_t query = 0;    ///< nothing passed
    std::uint32_t feedback = 0; ///< a transform feedback object

private:
    void makeTextures();
    void makeObjects();
    void makeStages();
};

} // namespace nruview
