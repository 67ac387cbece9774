// Line width and style for other rooms: what is current, and setting a width whatever is current.
#pragma once

#include <cstdint>

struct NglLineState {
    std::int32_t width = 0; ///< so that the first setting is issued
    std::int32_t style = 0;
};

const NglLineState& nglLineState();

/// Issues a width, 1 or more, to GL and keeps it as the current one.
void nglIssueLineWidth(int width);
