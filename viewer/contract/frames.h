// The frames that pictures of the contract are drawn into, and the pictures themselves.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace nruview {

enum class Target {
    Window,
    Encoding,     ///< stores sRGB where the host asks for it
    Multisampled, ///< 4 samples a pixel
};
constexpr std::size_t kTargetCount = 3;

/// Colours and depths of a frame.
struct Picture {
    std::vector<std::uint32_t> colors;
    std::vector<float> depths;
    bool operator==(const Picture&) const = default;
};

/// Where two pictures differ, in words such as "12 pixels, the first at (3, 5): 0xFF0000FF against
/// 0xFF00FF00".
std::string difference(const Picture& a, const Picture& b);

/// The frames of the context that is current, whose window they share.
class Frames {
public:
    static constexpr int kSize = 64;

    Frames();
    ~Frames();
    Frames(const Frames&) = delete;
    Frames& operator=(const Frames&) = delete;

    /// Starts a frame, in OpenGL's initial state, as a host does: cleared, with something already there in a
    /// third of it, with view, lights and palette handed over to the library.
    void begin(Target target) const;
    /// What has been drawn since. Leaves OpenGL in its initial state.
    Picture end(Target target) const;

private:
    struct Framebuffer {
        std::uint32_t name = 0, color = 0, depth = 0;
    };
    static Framebuffer make(std::uint32_t colorFormat, int samples);
    std::int32_t m_windowBuffer = 0; ///< that is drawn to
    Framebuffer m_encoding, m_samples, m_resolved;
};

} // namespace nruview
