// GL state for drawing in a rectangle of the window, on top of the scene.
#pragma once

#include <optional>

#include "NRenderUtl/gl/stateguards.h"

/// Blends by the alpha of what is drawn.
class TranslucencyGuard {
public:
    TranslucencyGuard() : m_wasOn(glIsEnabled(GL_BLEND)), m_separate(glVersion() >= 14) {
        glGetIntegerv(m_separate ? GL_BLEND_SRC_RGB : GL_BLEND_SRC, &m_source);
        glGetIntegerv(m_separate ? GL_BLEND_DST_RGB : GL_BLEND_DST, &m_destination);
        if (m_separate) {
            glGetIntegerv(GL_BLEND_SRC_ALPHA, &m_sourceAlpha);
            glGetIntegerv(GL_BLEND_DST_ALPHA, &m_destinationAlpha);
        }
        if (!m_wasOn)
            glEnable(GL_BLEND);
        glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    }
    ~TranslucencyGuard() {
        const auto source = static_cast<GLenum>(m_source), destination = static_cast<GLenum>(m_destination);
        if (m_separate)
            glBlendFuncSeparate(source, destination, static_cast<GLenum>(m_sourceAlpha),
                                static_cast<GLenum>(m_destinationAlpha));
        else
            glBlendFunc(source, destination);
        if (!m_wasOn)
            glDisable(GL_BLEND);
    }
    TranslucencyGuard(const TranslucencyGuard&) = delete;
    TranslucencyGuard& operator=(const TranslucencyGuard&) = delete;

private:
    const AddingGuard m_adds;
    const bool m_wasOn, m_separate;
    GLint m_source, m_destination, m_sourceAlpha = 0, m_destinationAlpha = 0;
};

/// A rectangle of the window, in pixels; y upward.
struct WindowRectangle {
    int x, y, width, height; ///< sizes above 0
};

/// One unit a pixel of the rectangle, from its lower left corner; no depth test, no lighting, no program.
/// Blending only where asked for, else as the host has it. Changes of the current texture coordinate and
/// matrix mode go with the scope.
class WindowScope {
public:
    WindowScope(const WindowRectangle& window, bool translucent) : m_view(Pixels(window).matrix, kIdentity) {
        if (translucent)
            m_translucency.emplace();
        glViewport(window.x, window.y, window.width, window.height);
    }

private:
    struct Pixels {
        explicit Pixels(const WindowRectangle& window)
            : matrix{2.0 / window.width, 0, 0, 0, 0, 2.0 / window.height, 0, 0, 0, 0, -1, 0, -1, -1, 0, 1} {}
        const double matrix[16];
    };
    static constexpr double kIdentity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

    const TexCoordGuard m_coordinate;
    const AttributesGuard m_viewports{GL_VIEWPORT_BIT};
    const NoDepthTestGuard m_onTop;
    const LightingGuard m_unlit{false};
    const DisabledGuard m_asTheyAre{GL_ALPHA_TEST, GL_COLOR_LOGIC_OP};
    const NoProgramGuard m_fixedFunction;
    std::optional<TranslucencyGuard> m_translucency;
    const ViewGuard m_view;
};
