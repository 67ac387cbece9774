// Layout first, in whole pixels, then drawing: tests read the layout.
#include "viewer/labels/legend.h"

#include <algorithm>
#include <cmath>

#include "viewer/labels/labelnumbers.h"

namespace nruview {

namespace {

constexpr int kFewestRows = 4; ///< of labels, below which there is no bar
constexpr double kLine_em = 1.4, kLongestBar_em = 30.0, kWidestHeading_em = 10.0;
constexpr const char* kNoValueText = "no value";
constexpr int kLeastBandRows_px = 5; ///< a longer bar where bands would be thinner

int scaled(double part, int em_px) {
    return static_cast<int>(std::lround(part * em_px));
}

/// Height of the bar: whole pixels for each band where there are enough.
int barHeight(int bands, int available, int em_px) {
    const int wanted = std::max(scaled(kLongestBar_em, em_px), bands * kLeastBandRows_px);
    const int height = std::min(available, wanted);
    return height >= 3 * bands ? height / bands * bands : height;
}

/// Pixel row at a part of the bar.
int rowAt(const PixelRect& bar, int i, int count) {
    return bar.bottom + static_cast<int>(std::lround(static_cast<double>(bar.height()) * i / count));
}

std::vector<Legend::Box> boxesOf(const ColorBands& bands, const PixelRect& bar) {
    std::vector<Legend::Box> boxes;
    if (bands.smeared()) {
        for (int row = 0; row < bar.height(); ++row)
            boxes.push_back({bar.bottom + row, bar.bottom + row + 1,
                             bands.scale().GetColor((static_cast<float>(row) + 0.5f) /
                                                    static_cast<float>(bar.height()))});
        return boxes;
    }
    for (int i = 0; i < bands.count(); ++i)
        boxes.push_back({rowAt(bar, i, bands.count()), rowAt(bar, i + 1, bands.count()), bands.color(i)});
    return boxes;
}

std::vector<double> limitsOf(const ColorBands& bands) {
    std::vector<double> limits;
    for (int i = 0; i <= bands.count(); ++i)
        limits.push_back(bands.limit(i));
    return limits;
}

/// A range of no length has one value, which all of the middle band stands for.
std::vector<Legend::Label> labelsOf(const ColorBands& bands, const NumberLabels& numbers,
                                    const PixelRect& bar, int lineHeight) {
    const int count = bands.count();
    if (!(bands.limit(0) < bands.limit(count)))
        return {{count / 2, numbers.texts[0], (bar.bottom + bar.top) / 2}};
    std::vector<Legend::Label> labels;
    const int apart = (lineHeight * count + bar.height() - 1) / bar.height();
    for (const int limit : labelledLimits(count, std::max(1, apart)))
        if (labels.empty() || labels.back().text != numbers.texts[static_cast<std::size_t>(limit)])
            labels.push_back(
                {limit, numbers.texts[static_cast<std::size_t>(limit)], rowAt(bar, limit, count)});
    return labels;
}

int widest(const std::vector<Legend::Label>& labels, const TextStyle& style) {
    int width = 0;
    for (const Legend::Label& label : labels)
        width = std::max(width, textSize(label.text, style).width);
    return width;
}

/// Heading and factor from the top of an area on. Returns where they end.
int layOutHeading(Legend& legend, const std::string& heading, const std::string& factor,
                  const PixelRect& area, int em_px, const TextStyle& style) {
    const int lineHeight = scaled(kLine_em, em_px);
    legend.heading = elided(heading, std::min(area.width(), scaled(kWidestHeading_em, em_px)), style);
    legend.factor = factor;
    legend.headingLeft = area.left;
    legend.headingBase =
        area.top - std::max(textSize("X", style).ascent, textSize(legend.heading, style).ascent);
    legend.factorBase = legend.headingBase - (legend.heading.empty() ? 0 : lineHeight);
    return area.top - ((legend.heading.empty() ? 0 : 1) + (factor.empty() ? 0 : 1)) * lineHeight;
}

} // namespace

std::vector<int> labelledLimits(int bands, int apart) {
    // A somewhat wider distance that divides the bands is better than a gap at the end.
    for (int distance = apart; distance <= 2 * apart && distance <= bands; ++distance)
        if (bands % distance == 0) {
            apart = distance;
            break;
        }
    std::vector<int> limits;
    for (int limit = 0; limit + apart <= bands; limit += apart)
        limits.push_back(limit);
    if (limits.empty())
        limits.push_back(0);
    limits.push_back(bands);
    return limits;
}

std::optional<Legend> layOutLegend(const LegendContent& content, const PixelRect& area, int em_px,
                                   const TextStyle& style) {
    const ColorBands& bands = content.bands;
    const int lineHeight = scaled(kLine_em, em_px), half = lineHeight / 2;
    const NumberLabels numbers = labelNumbers(limitsOf(bands));
    Legend legend;
    const int top = layOutHeading(legend, content.heading, numbers.factor, area, em_px, style) - half;
    const int below = half + (content.lacksValues ? lineHeight + half : 0);
    const int available = top - area.bottom - below;
    if (available < kFewestRows * lineHeight)
        return {};
    const int left = area.left + 1; // its outline stands under the title's first letter
    legend.bar = {left, top - barHeight(bands.count(), available, em_px), left + scaled(1.6, em_px), top};
    legend.boxes = boxesOf(bands, legend.bar);
    legend.labels = labelsOf(bands, numbers, legend.bar, lineHeight);
    if (content.lacksValues)
        legend.noValue = {left, legend.bar.bottom - below + 1, legend.bar.right,
                          legend.bar.bottom - below + lineHeight};
    const int labelWidth = widest(legend.labels, style), gap = scaled(1.0, em_px);
    legend.labelsRight = legend.bar.right + gap + labelWidth;
    legend.right = std::max({labelWidth > 0 ? legend.labelsRight : legend.bar.right,
                             area.left + textSize(legend.heading, style).width,
                             area.left + textSize(legend.factor, style).width});
    if (content.lacksValues)
        legend.right = std::max(legend.right, legend.bar.right + gap + textSize(kNoValueText, style).width);
    if (legend.right > area.right)
        return {};
    legend.box = {area.left, legend.bar.bottom - below, legend.right, area.top};
    return legend;
}

void drawLegend(const Legend& legend, const TextStyle& style) {
    const PixelRect& bar = legend.bar;
    outlineRect({bar.left - 1, bar.bottom - 1, bar.right + 1, bar.top + 1}, style.color);
    for (const Legend::Box& box : legend.boxes)
        fillRect({bar.left, box.bottom, bar.right, box.top}, box.color);
    const int tick = std::max(3, bar.width() / 4), middle = textSize("0", style).ascent / 2;
    for (const Legend::Label& label : legend.labels) {
        const int y =
            label.y > bar.bottom ? label.y : bar.bottom - 1; // the ends' ticks go on from the outline
        fillRect({bar.right + 1, y, bar.right + 1 + tick, y + 1}, style.color);
        drawText(legend.labelsRight - textSize(label.text, style).width, y - middle, label.text, style);
    }
    if (const PixelRect& box = legend.noValue; box.width() > 0) {
        outlineRect({box.left - 1, box.bottom - 1, box.right + 1, box.top + 1}, style.color);
        fillRect(box, kNoValueColor);
        drawText(legend.bar.right + 1 + 2 * tick, (box.bottom + box.top) / 2 - middle, kNoValueText, style);
    }
    drawText(legend.headingLeft, legend.headingBase, legend.heading, style);
    drawText(legend.headingLeft, legend.factorBase, legend.factor, style);
}

} // namespace nruview
