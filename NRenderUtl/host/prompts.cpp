// The process-wide switch that suppresses prompts.
#include "NRenderUtl/host/hostutl.h"

namespace {

struct PromptState {
    bool blocked = false;
};

PromptState& state() {
    static PromptState state;
    return state;
}

} // namespace

void hostBlockPrompts(bool block) {
    state().blocked = block;
}

bool hostPromptsBlocked() {
    return state().blocked;
}
