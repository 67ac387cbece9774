// Colours of values.
#include "bench/cases/cases.h"

namespace nrubench {

namespace {

volatile unsigned g_sink; // keeps what is looked up

std::function<Work(unsigned)> lookUp(bool smeared) {
    return [=](unsigned size) {
        RenderColorScale scale = makeScale();
        scale.SetSmearedMode(smeared);
        return Work{[=](unsigned) {
                        unsigned sum = 0;
                        for (unsigned i = 0; i < size; ++i)
                            sum += scale.GetColor(static_cast<float>(i * 2654435761u >> 8) / (1 << 24));
                        g_sink = sum;
                    },
                    false};
    };
}

} // namespace

std::vector<Case> colorCases() {
    return {{"colors.look_up", {1000000}, lookUp(false)},
            {"colors.look_up_smeared", {1000000}, lookUp(true)}};
}

} // namespace nrubench
