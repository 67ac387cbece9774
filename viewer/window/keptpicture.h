// The picture of the model, kept until it changes: panel, read-out and rubber band come and go on top of it.
#pragma once

#include <cstdint>
#include <vector>

namespace nruview {

/// Framebuffer objects of one context: one to draw into, multisampled where that is wanted, and one with the
/// finished picture.
class KeptPicture {
public:
    /// Throws ViewerError where the driver has no framebuffer objects.
    explicit KeptPicture(int samples);
    ~KeptPicture();
    KeptPicture(const KeptPicture&) = delete;
    KeptPicture& operator=(const KeptPicture&) = delete;

    int width() const { return m_width; }
    int height() const { return m_height; }
    /// Whether the size was another one. What was drawn is then gone.
    bool resize(int width, int height);

    /// What is drawn from here on goes into the picture, with one sample for each pixel where it must be
    /// quick.
    void beginDrawing(bool quickly = false);
    void endDrawing();
    /// Binds the finished picture, to be drawn upon.
    void bindFinished() const;
    /// Copies the finished picture into the lower left corner of the window's back buffer, which is bound
    /// then.
    void show(int windowHeight) const;
    /// The finished picture as glReadPixels gives it.
    std::vector<std::uint32_t> pixels() const;

private:
    struct Target {
        unsigned int framebuffer = 0, color = 0, depth = 0;
    };
    static void make(Target& target, int width, int height, int samples);
    static void remove(Target& target);

    int m_samples, m_width = 0, m_height = 0;
    bool m_isQuick = false;
    Target m_drawn, m_finished; ///< one and the same without multisampling
};

} // namespace nruview
