// The palette's colours of selection and highlight as the shapes draw them.
#pragma once

/// RGBA; zero until the first section that is drawn by the program, which refreshes them.
struct MarkerColors {
    float selection[4];
    float highlight[4];
};

MarkerColors& markerColors();
