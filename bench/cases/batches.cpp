// Points and segments, each with a colour of its own, supplied again in every frame.
#include <memory>

#include "bench/cases/cases.h"

namespace nrubench {

namespace {

constexpr int kPoints = 1, kLines = 2, kColors = 1;

const _NgPoint3Str* pointsOf(const Dots& dots) {
    return reinterpret_cast<const _NgPoint3Str*>(dots.points.data()); // three doubles each
}

void addLines(const Dots& dots) {
    const _NgPoint3Str* points = pointsOf(dots);
    for (std::size_t i = 0; i < dots.colors.size(); ++i) {
        ngl_set_color_long(dots.colors[i]);
        ngl_batch_line_3d_s(&points[2 * i], &points[2 * i + 1], 0);
    }
}

void addPoints(const Dots& dots) {
    const _NgPoint3Str* points = pointsOf(dots);
    for (std::size_t i = 0; i < dots.colors.size(); ++i) {
        ngl_set_color_long(dots.colors[i]);
        ngl_batch_point_3d_given_size(1, &points[i], kDotSize);
    }
}

void drawBatch(const Dots& dots, bool lines) {
    const int mode = lines ? kLines : kPoints;
    NglBatchBegin(mode, kColors);
    lines ? addLines(dots) : addPoints(dots);
    NglBatchEnd(mode);
}

std::function<Work(unsigned)> batch(bool lines, bool fixed = false) {
    return [=](unsigned size) {
        openPixelView();
        if (fixed)
            NglSetTransformedState(); // views that are modified are drawn through fixed function
        return Work{[=, dots = std::make_shared<Dots>(size, lines)](unsigned) { drawBatch(*dots, lines); },
                    true, 1e-3};
    };
}

} // namespace

std::vector<Case> batchCases() {
    const std::vector<unsigned> all = {1000, 10000, 100000, 1000000}, one = {100000};
    return {{"lines.batch", all, batch(true)},
            {"lines.fixed_function", one, batch(true, true)},
            {"points.batch", all, batch(false)},
            {"points.fixed_function", one, batch(false, true)}};
}

} // namespace nrubench
