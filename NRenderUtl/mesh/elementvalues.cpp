#include "NRenderUtl/mesh/elementvalues.h"

bool isSmearedScale(RenderColorScale scale) {
    scale.SetColorBands({{0.0f, 1.0f, 0x000000}, {1.0f, 2.0f, 0x0000FF}});
    return (scale.GetColor(0.5f) & 0xFF) != 0;
}
