// The process-wide state of the layer's record room, for the layer itself and for the folders that draw
// through it.
#pragma once

#include "NRenderUtl/gl/ngl.h"

struct NglRecordState {
    _NglInfoStr live{};                 ///< what NglGetNglInfo returns; zero-filled at start
    _NglInfoStr saved{};                ///< the one save slot of NglPushNglInfo and NglSetCustomMatrices
    std::int32_t colorIndex = 15;       ///< current colour index; -1 forces the next colour to be issued
    NgColorLong colorLong = 0xFFFFFFFF; ///< last packed colour issued
    bool beingDrawn = false;
    std::int32_t viewOperationMode = 0;
    std::int32_t matricesCurrent = 0; ///< 1 from the loading of a record until the GL model-view changes
    std::int32_t pushCount3d = 0;     ///< pushes of ngl_push_3d_matrix since a record was loaded
    double meshScaleFactor = 0.0;
    std::int32_t meshScaleFlag = 0;
    NglPromptFunc prompt = nullptr;
    NglPromptFunc noPumpPrompt = nullptr;
};

/// The state; valid from the first call on, whatever the order of static initialisers.
NglRecordState& nglRecord();

/// Whether GL shows something else than the record's own view: a view-point push, a 3D matrix push or a
/// transformation is in force.
bool viewIsModified();
