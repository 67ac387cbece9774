// Scope guards that switch features of GL off which would show in what is drawn.
#pragma once

#include <algorithm>
#include <array>
#include <initializer_list>

#include "NRenderUtl/host/hostgl.h"

/// Features that were on and have been switched off.
class DisabledFeatures {
public:
    bool empty() const { return m_count == 0; }
    void disable(GLenum feature) {
        if (m_count == m_wereOn.size() || !glIsEnabled(feature))
            return;
        glDisable(feature);
        m_wereOn[m_count++] = feature;
    }
    void restore() const {
        for (std::size_t i = 0; i < m_count; ++i)
            glEnable(m_wereOn[i]);
    }

private:
    std::array<GLenum, 16> m_wereOn{}; ///< no guard has more
    std::size_t m_count = 0;
};

/// Switches features off.
class DisabledGuard {
public:
    DisabledGuard(std::initializer_list<GLenum> features) {
        for (const GLenum feature : features)
            disable(feature);
    }
    ~DisabledGuard() { m_features.restore(); }
    DisabledGuard(const DisabledGuard&) = delete;
    DisabledGuard& operator=(const DisabledGuard&) = delete;

protected:
    DisabledGuard() = default;
    void disable(GLenum feature) { m_features.disable(feature); }

private:
    DisabledFeatures m_features;
};

/// Fixed function gives fragments the colour of their vertices, or that of one texture at the coordinates of
/// unit 0 as they are sent. The active unit is kept.
class PlainFragmentsGuard {
public:
    PlainFragmentsGuard() {
        GLint active, count = 0;
        glGetIntegerv(GL_ACTIVE_TEXTURE, &active);
        glGetIntegerv(GL_MAX_TEXTURE_UNITS, &count);
        m_count = std::min(static_cast<GLenum>(count), static_cast<GLenum>(m_units.size()));
        m_others.disable(GL_FOG);
        m_others.disable(GL_COLOR_SUM);
        if (glVersion() >= 20)
            m_others.disable(GL_POINT_SPRITE);
        const bool hasRectangles = glVersion() >= 31;
        for (GLenum unit = m_count; unit-- > 0;) {
            glActiveTexture(GL_TEXTURE0 + unit);
            for (const GLenum target : {GL_TEXTURE_1D, GL_TEXTURE_2D, GL_TEXTURE_3D, GL_TEXTURE_CUBE_MAP})
                m_units[unit].disable(target);
            if (hasRectangles)
                m_units[unit].disable(GL_TEXTURE_RECTANGLE);
        }
        for (const GLenum generated :
             {GL_TEXTURE_GEN_S, GL_TEXTURE_GEN_T, GL_TEXTURE_GEN_R, GL_TEXTURE_GEN_Q})
            m_units[0].disable(generated);
        glActiveTexture(static_cast<GLenum>(active));
    }
    ~PlainFragmentsGuard() {
        GLint active = 0;
        for (GLenum unit = 0; unit < m_count; ++unit) {
            if (m_units[unit].empty())
                continue;
            if (active == 0)
                glGetIntegerv(GL_ACTIVE_TEXTURE, &active);
            glActiveTexture(GL_TEXTURE0 + unit);
            m_units[unit].restore();
        }
        if (active != 0)
            glActiveTexture(static_cast<GLenum>(active));
        m_others.restore();
    }
    PlainFragmentsGuard(const PlainFragmentsGuard&) = delete;
    PlainFragmentsGuard& operator=(const PlainFragmentsGuard&) = delete;

private:
    /// Point sprites among them: drivers in software give other primitives their coordinates.
    DisabledFeatures m_others;
    std::array<DisabledFeatures, 32> m_units; ///< of fixed function, which has 8 as a rule
    GLenum m_count = 0;
};

/// No clip planes: programs that write no clip distance leave it undefined.
class NoClipPlanesGuard : public DisabledGuard {
public:
    NoClipPlanesGuard() {
        GLint planes = 0;
        glGetIntegerv(GL_MAX_CLIP_PLANES, &planes);
        for (GLint i = 0; i < planes; ++i)
            disable(GL_CLIP_PLANE0 + static_cast<GLenum>(i));
    }
};

/// Faces are filled, whichever way they turn.
class FilledFacesGuard : public DisabledGuard {
public:
    FilledFacesGuard() : DisabledGuard({GL_CULL_FACE, GL_POLYGON_STIPPLE, GL_POLYGON_SMOOTH}) {
        glGetIntegerv(GL_POLYGON_MODE, m_modes);
        glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    }
    ~FilledFacesGuard() {
        glPolygonMode(GL_FRONT, static_cast<GLenum>(m_modes[0]));
        glPolygonMode(GL_BACK, static_cast<GLenum>(m_modes[1]));
    }

private:
    GLint m_modes[2];
};
