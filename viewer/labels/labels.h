// All that is written on a picture, and the room that it takes.
#pragma once

#include <optional>
#include <string>

#include "viewer/app/options.h"
#include "viewer/labels/hosttext.h"
#include "viewer/labels/legend.h"
#include "viewer/labels/marks.h"
#include "viewer/labels/overlaypicture.h"
#include "viewer/scene/camera.h"
#include "viewer/scene/shownmodel.h"

namespace nruview {

/// The text above the picture: that asked for, else the model's name with what is shown of it, such as
/// "beam.vtu, S:mises, step 2, deformed × 50".
std::string titleOf(const ShownModel& shown, const Options& options);

/// Needs the current context, and for drawing the view that beginFrame has set. The sizes of texts follow
/// that of the picture. What finds no room in a small picture is left out: the legend, the axes, the title.
class PictureLabels {
public:
    /// The first legend stands at the left. An empty title is none. Says on standard error when there is no
    /// font.
    PictureLabels(const ShownModel& shown, std::vector<LegendContent> legends, const LabelSettings& settings,
                  std::string title);

    /// Other values under the same settings.
    void renew(std::vector<LegendContent> legends, std::string title);
    /// Of letters, lines and distances, for screens with small pixels.
    void setScale(double scale) { m_scale = scale; }
    /// The picture with a column for legend and axes at its left and a row for the title at its top.
    PictureArea area(int width, int height);
    void draw(const Camera& camera, int width, int height, NgColorLong background);
    /// A text on a panel beside a window pixel, y from the top.
    void drawReadOut(const std::string& text, const std::array<int, 2>& pixel, int width, int height,
                     NgColorLong background);

private:
    struct Layout;
    Layout layOut(int width, int height, NgColorLong color);
    int emFor(int width, int height) const;
    void layOutTitle(Layout& layout) const;
    void layOutColumn(Layout& layout) const;
    void makeText();
    void drawIcons(const Camera& camera, const Layout& layout);
    void* font(int size_px);

    const ShownModel& m_shown;
    std::vector<LegendContent> m_legends; ///< those wanted
    LabelSettings m_settings;
    std::string m_title;
    double m_scale = 1.0;
    std::optional<std::array<Extreme, 2>> m_extremes;
    std::optional<HostText> m_text;
    std::vector<std::uint32_t> m_iconNodes; ///< those given; else icons stand where the extremes are
    std::optional<OverlayPicture> m_logo, m_icon;
};

} // namespace nruview
