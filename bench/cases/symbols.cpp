// Symbols of a constant size on the screen: springs between two points, drawn and picked.
#include "bench/cases/cases.h"

namespace nrubench {

namespace {

constexpr int kSpring = 1; // slot 3: leads that are stretched, and a coil between them

void defineSpring() {
    static const _NgPoint3Str coil[] = {{0, 0, 0}, {3, 4, 0}, {8, -4, 0}, {13, 4, 0}, {16, 0, 0}};
    static const utl_symbol_primitive_s lead[] = {{1, 0, {.points = {{0, 0, 0}, {4, 0, 0}}}},
                                                  {0, 1, {.points = {{4, 0, 0}, {}}}}};
    static const utl_symbol_primitive_s middle[] = {{2, 5, {.array = coil}},
                                                    {0, 2, {.points = {{16, 0, 0}, {}}}}};
    static const utl_parametric_symbol_data_s parts[] = {
        {0, 0, 2, lead, 4, nullptr}, {1, 1, 2, middle, 16, nullptr}, {2, 2, 1, lead, 0, nullptr}};
    static utl_symbols list[16];
    list[3] = {nullptr, 3, parts};
    UtlSetSymbolList(list, 16);
}

/// Of 30 to 36 pixels' length, in rows.
std::array<_NgPoint3Str, 2> springEnds(unsigned i) {
    const double x = 10 + i % 20 * 50.0, y = 10 + i / 20 % 50 * 15.0;
    return {{{x, y, 0}, {x + 30, y + i % 7 - 3.0, 0}}};
}

Work draw(unsigned size) {
    openPixelView();
    ngl_disable_depth_test(); // on top, as those by hand
    defineSpring();
    return {[=](unsigned) {
                ngl_set_color(7);
                for (unsigned i = 0; i < size; ++i)
                    utl_disp_line_symbol(springEnds(i).data(), kSpring);
            },
            true, 0.01};
}

/// Every spring is tested against one pixel.
Work pick(unsigned size) {
    openPixelView();
    defineSpring();
    return {[=](unsigned) {
                unsigned hits = 0;
                for (unsigned i = 0; i < size; ++i)
                    hits += utl_pick_line_symbol(springEnds(i).data(), kSpring, 25, kHeight - 10) == 0;
                check(hits > 0, "no spring is hit");
            },
            false};
}

} // namespace

std::vector<Case> symbolCases() {
    return {{"symbols.draw", kTurns, draw}, {"symbols.pick", {kPerTurn}, pick}};
}

} // namespace nrubench
