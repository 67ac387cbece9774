// Shapes and boxes in window pixels, many in a frame.
#include <epoxy/gl.h>

#include "bench/cases/cases.h"

namespace nrubench {

namespace {

template <class Draw>
std::function<Work(unsigned)> shapes(const Draw& draw, double covered) {
    return [=](unsigned size) {
        openPixelView();
        return Work{[=](unsigned) {
                        for (unsigned i = 0; i < size; ++i) {
                            const Label label(i);
                            ngl_set_color_long(label.color | 0xFF000000);
                            draw(label);
                        }
                    },
                    true, covered};
    };
}

void drawLine(const Label& label) {
    ngl_draw_line_on_screen(label.x, label.y, label.x + Label::kLabelWidth, label.y + Label::kLabelHeight,
                            nullptr);
}

void drawPolygon(const Label& label) {
    const double x = label.x, y = label.y, right = x + Label::kLabelWidth, top = y + Label::kLabelHeight;
    const _NgPoint2Str points[] = {{x, y}, {right, y}, {right, top}, {x, top}};
    ngl_draw_poly_on_screen(4, points, true, false, nullptr);
}

void drawCircle(const Label& label) {
    const _NgPoint2Str centre = {static_cast<double>(label.x), static_cast<double>(label.y)};
    ngl_draw_circle_on_screen(&centre, 10, true, false, nullptr);
}

/// In a view of a host, with depth test and lighting on.
std::function<Work(unsigned)> boxes(bool rounded) {
    return [=](unsigned size) {
        openPixelView();
        glEnable(GL_LIGHTING);
        return Work{[=](unsigned) {
                        N2DBoxDrawer drawer;
                        for (unsigned i = 0; i < size; ++i) {
                            const Label label(i);
                            N2DBoxDrawer::RenderInfo box;
                            box.x = label.x;
                            box.y = label.y;
                            box.width = Label::kLabelWidth;
                            box.height = Label::kLabelHeight;
                            box.fillColor = label.color;
                            if (rounded) {
                                box.roundedCorners = box.border = 1;
                                std::fill_n(box.cornerRadii, 4, 6.0f);
                                box.borderThickness = 2;
                                box.borderColor[0] = 255;
                            }
                            drawer.Render(box);
                        }
                    },
                    true, 0.3};
    };
}

} // namespace

std::vector<Case> overlayCases() {
    return {{"overlay.lines", kTurns, shapes(drawLine, 0.01)},
            {"overlay.polygons", {kPerTurn}, shapes(drawPolygon, 0.3)},
            {"overlay.circles", {kPerTurn}, shapes(drawCircle, 0.1)},
            {"boxes.plain", kTurns, boxes(false)},
            {"boxes.rounded", {kPerTurn}, boxes(true)}};
}

} // namespace nrubench
