// Symbols without a context: the snap test, the state and its refresh, and what is refused before drawing.
#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "NRenderUtl/gl/refreshhooks.h"
#include "NRenderUtl/markers/nmarkers.h"

namespace {

TEST(CheckLineSnap, Rows) {
    const double nan = std::nan("");
    const struct {
        const char* name;
        double tol, px, py, x1, y1, x2, y2;
        int result;
        double fx, fy;
    } rows[] = {
        {"vertical, at its tolerance", 3, 7, 5, 4, 0, 4, 10, 0, 4, 5},
        {"vertical, downwards, at its end's tolerance", 3, 4, -3, 4, 10, 4, 0, 0, 4, -3},
        {"vertical, beyond its end", 3, 4, 13.1, 4, 10, 4, 0, -1, 4, 13.1},
        {"horizontal", 3, 5, 1, 0, 0, 10, 0, 0, 5, 0},
        {"horizontal, at its tolerances", 3, 13, -3, 0, 0, 10, 0, 0, 13, 0},
        {"horizontal, beyond its end", 3, 13.1, 0, 0, 0, 10, 0, -1, 13.1, 0},
        {"horizontal, right to left", 3, 5, 1, 10, 0, 0, 0, -1, 5, 0},
        {"horizontal, right to left, short: near both ends", 3, 2, 1, 4, 0, 0, 0, 0, 2, 0},
        {"slanted, its length 5 off by 2.5", 3, 6 - 2, 8 + 1.5, 3, 4, 9, 12, 0, 6, 8},
        {"slanted, near in x and in y only", 2.4, 6 - 2, 8 + 1.5, 3, 4, 9, 12, -1, 6, 8},
        {"slanted, foot within x tolerance of its end", 3, 11.9, 16 - 4. / 30, 3, 4, 9, 12, 0, 11.9,
         16 - 4. / 30},
        {"slanted, foot beyond", 3, 12, 16, 3, 4, 9, 12, -1, 12, 16},
        {"a point", 3, 2, 3, 1, 1, 1, 1, 0, 1, 3},
        {"not a number", 3, nan, 0, 0, 0, 10, 5, -1, nan, nan},
        {"an end at infinity", 3, 5, 0, 0, 0, INFINITY, 0, 0, 5, 0},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.name);
        double fx = -1, fy = -1;
        EXPECT_EQ(UtlCheckLineSnap(r.tol, r.px, r.py, r.x1, r.y1, r.x2, r.y2, &fx, &fy), r.result);
        EXPECT_EQ(UtlCheckLineSnap(r.tol, r.px, r.py, r.x1, r.y1, r.x2, r.y2, nullptr, nullptr), r.result);
        if (!std::isnan(r.fx)) {
            EXPECT_NEAR(fx, r.fx, 1e-9);
            EXPECT_NEAR(fy, r.fy, 1e-9);
        }
    }
}

TEST(Symbols, TakeTheirScaleFromTheView) {
    EXPECT_EQ(UtlSymGetOrthoScale(), 1.0);
    const float matrix[16] = {1};
    refreshMarkersAndText(matrix, matrix, 0.25f);
    EXPECT_EQ(UtlSymGetOrthoScale(), 0.25);
    UtlSymSetOrthoScale(0.1);
    EXPECT_EQ(UtlSymGetOrthoScale(), static_cast<double>(0.1f));
    UtlSymInit(nullptr, 0, nullptr);
    EXPECT_EQ(UtlSymGetOrthoScale(), static_cast<double>(0.1f));
}

// Refusals come before any drawing, so without a context they are all that can be met.
TEST(Symbols, Refuse) {
    static const _NgPoint3Str p[2] = {{1, 2, 3}, {4, 5, 6}};
    static const int axes[] = {0};
    static const double angles[] = {30};
    const struct {
        const char* name;
        int listed; ///< symbols in the list; -1: no list
        int (*call)();
        int result;
    } rows[] = {
        {"no list", -1, [] { return utl_disp_point_symbol(p, 8); }, -1},
        {"point kind of lines", 16, [] { return utl_pick_point_symbol(p, 11, 0, 0); }, -2},
        {"point slot not listed", 6, [] { return utl_pick_point_symbol(p, 17, 0, 0); }, -2},
        {"line slot not listed", 6, [] { return utl_pick_line_symbol(p, 14, 0, 0); }, -3},
        {"line slot just not listed", 15, [] { return utl_disp_line_symbol(p, 22); }, -3},
        {"line kind of points", 16, [] { return utl_disp_line_symbol_WithContour(p, 8, 0, 1); }, -2},
        {"axis slot not listed", 7, [] { return utl_disp_axis_symbol(p, 2, 0); }, -3},
        {"direction above", 16, [] { return utl_disp_axis_symbol(p, 8, 0); }, -2},
        {"axis size mode", 16, [] { return utl_pick_axis_symbol(p, 2, 2, 0, 0); }, -2},
        {"orientation size mode", 16, [] { return utl_disp_orient_symbol(p, 0, axes, angles, -1); }, -2},
        {"no point", 16, [] { return utl_disp_point_symbol(nullptr, 8); }, -1},
        {"no axes", 16, [] { return utl_disp_orient_symbol(p, 0, nullptr, angles, 0); }, -1},
    };
    std::vector<utl_symbols> list(16);
    for (const auto& row : rows) {
        UtlSetSymbolList(row.listed < 0 ? nullptr : list.data(), static_cast<std::uint16_t>(row.listed));
        EXPECT_EQ(row.call(), row.result) << row.name;
    }
    EXPECT_EQ(UtlGetSymbolList(), list.data());
}

} // namespace
