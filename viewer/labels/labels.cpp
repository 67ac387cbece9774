// A column at the left holds the legend above the axes, a row at the top the title; marks stand in the rest.
#include "viewer/labels/labels.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>

#include "viewer/labels/axes.h"
#include "viewer/labels/blocklegend.h"
#include "viewer/labels/legend.h"
#include "viewer/labels/marks.h"
#include "viewer/labels/screen.h"
#include "viewer/markers/markers.h"
#include "viewer/scene/sight.h"

namespace nruview {

namespace {

constexpr double kTitle_em = 1.2, kIcon_em = 2.4;
constexpr double kWidestColumn = 0.4, kHighestRow = 0.15; ///< of the picture

int titleSize_px(int em_px) {
    return static_cast<int>(std::lround(kTitle_em * em_px));
}

} // namespace

std::string titleOf(const ShownModel& shown, const Options& options) {
    if (options.labels.title)
        return *options.labels.title;
    const ShownSettings& settings = options.shown;
    std::string text =
        options.sample.empty() ? std::filesystem::path(options.file).filename().string() : options.sample;
    if (shown.scalars) {
        text += ", " + shown.scalars->label;
        const Field& field = selectedField(shown.model, settings.field, settings.step);
        if (const std::string step = stepText(shown.model, field); !step.empty())
            text += ", " + step;
    }
    if (settings.deformed && shown.deformFactor != 0.0) {
        char factor[40];
        std::snprintf(factor, sizeof factor, ", deformed × %.4g", shown.deformFactor);
        text += factor;
    }
    return text;
}

struct PictureLabels::Layout {
    int em_px = 0, margin = 0;
    TextStyle style, titleStyle;
    std::string title;
    int titleBase = 0;
    bool hasTriad = false;
    std::optional<BlockLegend> blocks;
    std::vector<Legend> legends;
    PictureArea area;
};

PictureLabels::PictureLabels(const ShownModel& shown, std::vector<LegendContent> legends,
                             const LabelSettings& settings, std::string title)
    : m_shown(shown), m_settings(settings) {
    renew(std::move(legends), std::move(title));
    if (!m_settings.logo.empty())
        m_logo.emplace(m_settings.logo);
    if (!m_settings.icons.empty())
        m_icon.emplace(m_settings.icons);
    if (m_icon && m_settings.iconNodes)
        m_iconNodes = chosenNodes(shown.model, *m_settings.iconNodes, "--marker-nodes");
}

void PictureLabels::renew(std::vector<LegendContent> legends, std::string title) {
    m_title = std::move(title);
    m_legends.clear();
    if (m_settings.legend)
        for (const LegendContent& legend : legends) // their bands are references
            m_legends.push_back(legend);
    m_extremes = m_settings.marks && m_shown.scalars ? findExtremes(m_shown) : std::nullopt;
    const bool namesBlocks = m_settings.legend && m_shown.colorBy == ColorBy::Block;
    if (!m_title.empty() || !m_legends.empty() || m_extremes || m_settings.axes || namesBlocks)
        makeText();
}

/// Size of the labels' letters: readable in small pictures, in proportion in large ones.
int PictureLabels::emFor(int width, int height) const {
    const double side = std::min<double>(height, 0.75 * width) / m_scale;
    return static_cast<int>(std::lround(m_scale * std::max({9.0, 7.0 + 0.008 * side, 0.014 * side})));
}

void PictureLabels::makeText() {
    if (m_text)
        return;
    m_text.emplace(fontFile());
    if (!m_text->problem().empty())
        std::fprintf(stderr, "nruview: %s; the picture has no text\n", m_text->problem().c_str());
}

void* PictureLabels::font(int size_px) {
    return m_text ? m_text->font(size_px) : nullptr;
}

PictureLabels::Layout PictureLabels::layOut(int width, int height, NgColorLong color) {
    Layout layout;
    layout.em_px = layout.margin = emFor(width, height);
    layout.style = {font(layout.em_px), color};
    layout.titleStyle = {font(titleSize_px(layout.em_px)), color};
    layout.area = {width, height, 0, 0};
    layOutTitle(layout);
    layOutColumn(layout);
    return layout;
}

void PictureLabels::layOutTitle(Layout& layout) const {
    PictureArea& area = layout.area;
    const std::string title = elided(m_title, area.width - 2 * layout.margin, layout.titleStyle);
    const TextSize size = textSize(title, layout.titleStyle);
    const int row = layout.margin + size.ascent + size.descent;
    if (size.width == 0 || row > kHighestRow * area.height)
        return;
    layout.title = title;
    layout.titleBase = area.height - layout.margin * 3 / 4 - size.ascent;
    area.top = row;
}

/// Legends come before the axes where there is no room for both, the first one before the others.
void PictureLabels::layOutColumn(Layout& layout) const {
    PictureArea& area = layout.area;
    const int margin = layout.margin, triad = triadSize_px(layout.em_px);
    const auto widest = static_cast<int>(kWidestColumn * area.width);
    const bool fitsTriad = m_settings.axes && margin / 2 + triad <= std::min(widest, area.height / 2);
    PixelRect room = {margin, margin, widest, area.height - area.top - margin};
    bool isPlaced = false;
    const auto place = [&](const PixelRect& box, bool withTriad) {
        isPlaced = true;
        layout.hasTriad = withTriad;
        room.left = box.right + margin;
        area.left = box.right + margin / 2;
    };
    for (const bool withTriad : {fitsTriad, false}) {
        room.bottom = margin + (withTriad ? triad : 0);
        if (m_settings.legend && !layout.blocks)
            layout.blocks = layOutBlocks(m_shown, room, layout.em_px, layout.style);
        if (layout.blocks && !isPlaced)
            place(layout.blocks->box, withTriad);
    }
    for (const LegendContent& content : m_legends)
        for (const bool withTriad : {fitsTriad, false}) {
            if (isPlaced && withTriad != layout.hasTriad)
                continue;
            room.bottom = margin + (withTriad ? triad : 0);
            const auto legend = layOutLegend(content, room, layout.em_px, layout.style);
            if (!legend)
                continue;
            layout.legends.push_back(*legend);
            place(legend->box, withTriad);
            break;
        }
    layout.hasTriad |= fitsTriad && !isPlaced;
    if (layout.hasTriad)
        area.left = std::max(area.left, margin / 2 + triad);
}

PictureArea PictureLabels::area(int width, int height) {
    return layOut(width, height, 0).area;
}

void PictureLabels::draw(const Camera& camera, int width, int height, NgColorLong background) {
    const NgColorLong color = NglGetColorBasedOnWinColor(0xFFFFFFFF);
    const Layout layout = layOut(width, height, color);
    if (m_extremes)
        drawMarks(m_shown, *m_extremes, camera.axes.toward,
                  {layout.area.left, 0, width, height - layout.area.top}, height, layout.em_px, layout.style,
                  background);
    if (m_icon)
        drawIcons(camera, layout);
    if (m_logo)
        m_logo->drawInCorner(width, height, layout.margin);
    if (layout.blocks) {
        drawPanel(layout.blocks->box.grownBy(layout.margin * 2 / 5), layout.margin / 2, background, color);
        drawBlocks(*layout.blocks, layout.style);
    }
    for (const Legend& legend : layout.legends) {
        const PixelRect panel = legend.box.grownBy(layout.margin * 2 / 5);
        drawPanel(panel, layout.margin / 2, background, color);
        drawLegend(legend, layout.style);
    }
    // An environment behind the model may be bright here and dark there.
    if (layout.hasTriad) {
        const int corner = layout.margin / 2, end = corner + triadSize_px(layout.em_px);
        drawTriad(camera.axes, corner, corner, layout.em_px,
                  {layout.style.font, colorOver({corner, corner, end, end})});
    }
    if (!layout.title.empty()) {
        const int right = layout.margin + textSize(layout.title, layout.titleStyle).width;
        drawText(
            layout.margin, layout.titleBase, layout.title,
            {layout.titleStyle.font, colorOver({layout.margin, height - layout.area.top, right, height})});
    }
}

/// Of a constant size on the screen, and in front of the model, as marks are.
void PictureLabels::drawIcons(const Camera& camera, const Layout& layout) {
    std::vector<Point> points;
    for (const std::uint32_t node : m_iconNodes)
        points.push_back(m_shown.points[node]);
    if (const auto extremes = findExtremes(m_shown); !m_settings.iconNodes && extremes)
        for (const Extreme& extreme : *extremes)
            points.push_back(positionOf(m_shown, nearestOf(m_shown, extreme, camera.axes.toward)));
    const int diameter = static_cast<int>(kIcon_em * layout.em_px);
    for (const Point& point : points) {
        const auto [x, y] = windowPosition(point);
        m_icon->drawAround({x, layout.area.height - y}, diameter, layout.style.color);
    }
}

void PictureLabels::drawReadOut(const std::string& text, const std::array<int, 2>& pixel, int width,
                                int height, NgColorLong background) {
    if (!m_settings.readOut)
        return;
    makeText();
    const int em_px = emFor(width, height), pad = em_px / 2;
    const TextStyle style = {font(em_px), NglGetColorBasedOnWinColor(0xFFFFFFFF)};
    const std::string shown = elided(text, width - 4 * pad, style);
    const TextSize size = textSize(shown, style);
    if (size.width == 0)
        return;
    const int boxWidth = size.width + 2 * pad, boxHeight = size.ascent + size.descent + 2 * pad;
    const int x = pixel[0], y = height - 1 - pixel[1];
    const int left = std::clamp(x + em_px, pad, std::max(pad, width - pad - boxWidth));
    const bool isAbove = y + em_px + boxHeight + pad <= height;
    const int bottom = isAbove ? y + em_px : y - em_px - boxHeight;
    drawPanel({left, bottom, left + boxWidth, bottom + boxHeight}, pad, background, style.color);
    drawText(left + pad, bottom + pad + size.descent, shown, style);
    const _NgPoint2Str at = {x + 0.5, y + 0.5};
    fillDisc(at, 3.5, style.color);
    fillDisc(at, 2.0, background);
}

} // namespace nruview
