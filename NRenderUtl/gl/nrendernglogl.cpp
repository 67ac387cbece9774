// The view record: its process-wide state, loading it into GL, reading it back, and the switches beside it.
#include "NRenderUtl/gl/nglrecord.h"

NglRecordState& nglRecord() {
    static NglRecordState state;
    return state;
}

bool viewIsModified() {
    const NglRecordState& state = nglRecord();
    return state.live.viewPushCount > 0 || state.pushCount3d > 0 || state.live.transformed != 0;
}
