// Fixture of tests that draw models: the library started, a frame begun, places of the model in its picture.
#pragma once

#include <algorithm>
#include <cmath>
#include <optional>

#include "tests/support/gltest.h"
#include "viewer/scene/frame.h"
#include "viewer/scene/pick.h"
#include "viewer/scene/scene.h"

namespace nrutest {

using namespace nruview;

/// From where a frame is seen, and by which route.
struct View {
    const char* axes = "xy";
    bool perspective = false;
    bool fixed = false; ///< without programs
};

inline double channel(NgColorLong color, int k) {
    return static_cast<double>(color >> 8 * k & 0xFF);
}

/// How far a colour is from all shades of another; 255 where it is too dark for one.
inline double differenceInHue(NgColorLong found, NgColorLong color) {
    double shade = 0.0, size = 0.0, largest = 0.0;
    for (int k = 0; k < 3; ++k) {
        shade += channel(found, k) * channel(color, k);
        size += channel(color, k) * channel(color, k);
    }
    shade /= size;
    for (int k = 0; k < 3; ++k)
        largest = std::max(largest, std::abs(channel(found, k) - shade * channel(color, k)));
    return shade > 0.4 ? largest : 255.0;
}

/// As edges are, over whatever lies behind them.
inline bool isDark(NgColorLong color) {
    return (color & 0xFF) < 0x48 && (color >> 8 & 0xFF) < 0x48;
}

class SceneTest : public GlTest {
protected:
    static constexpr NgColorLong kBackground = 0xFF80FF80;

    /// The library, begun anew where the other route is asked for.
    void start(bool fixed = false) {
        if (m_session && fixed == m_isFixed)
            return;
        m_session.reset();
        m_session.emplace(fixed);
        m_isFixed = fixed;
    }
    void begin(const ShownModel& shown, const View& view = {}) {
        start(view.fixed);
        beginFrame(fitCamera(parseView(view.axes), shown.bounds, 1.0, view.perspective), shown.bounds, kSize,
                   kSize, m_background);
        m_shape = shown;
    }
    Picture picture(const ShownModel& shown, const SceneSettings& settings, const View& view = {},
                    const BodySettings& body = {}, const Markers* markers = nullptr) {
        begin(shown, view);
        Scene scene(shown, settings, body, markers);
        scene.draw();
        return read();
    }

    /// Where a model position stands in the picture, in pixels from its lower left corner.
    std::array<double, 2> placeOf(const Point& position) const {
        const Point p = m_shape.drawn(position);
        double x = 0.0, y = 0.0;
        ngl_transform_32(p[0], p[1], p[2], &x, &y);
        return {x, kSize - y};
    }
    /// The pixel there, y from the top.
    std::array<int, 2> pixelOf(const Point& position) const {
        const auto [x, y] = placeOf(position);
        return {static_cast<int>(std::floor(x)), static_cast<int>(std::floor(kSize - y))};
    }
    NgColorLong colorAt(const Picture& picture, const Point& p) const {
        const auto [x, y] = pixelOf(p);
        return picture.at(x, kSize - 1 - y);
    }
    bool isShown(const Picture& picture, const Point& p) const {
        return ((colorAt(picture, p) ^ kBackground) & 0xFFFFFF) != 0;
    }
    Picked pickAt(const ShownModel& shown, const Point& p, int right = 0, int down = 0) const {
        const auto [x, y] = pixelOf(p);
        return pick(shown, x + right, y + down);
    }
    void TearDown() override {
        m_session.reset();
        GlTest::TearDown();
    }

    NgColorLong m_background = kBackground;

private:
    Shape m_shape; ///< of the last frame
    bool m_isFixed = false;
    std::optional<LibrarySession> m_session;
};

} // namespace nrutest
