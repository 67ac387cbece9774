// The record of host services in force, and the rules for replacing it.
#include "NRenderUtl/host/services.h"

namespace {

struct ServicesState {
    NHostServices current{};
};

// Nothing in it is destroyed: blocks are freed and messages written during exit too.
ServicesState& state() {
    static ServicesState state;
    return state;
}

bool allOrNone(bool a, bool b) {
    return a == b;
}

bool isComplete(const NHostServices& s) {
    const bool image = s.loadImage != nullptr;
    return allOrNone(s.allocate != nullptr, s.release != nullptr) &&
           allOrNone(image, s.loadFloatImage != nullptr) && allOrNone(image, s.freeImage != nullptr);
}

// The memory functions receive the context: another context is another allocator.
bool changesMemory(const NHostServices& from, const NHostServices& to) {
    const bool contextMatters = from.allocate != nullptr && from.context != to.context;
    return from.allocate != to.allocate || from.release != to.release || contextMatters;
}

} // namespace

const NHostServices& hostServices() {
    return state().current;
}

int NHostSetServices(const NHostServices* services) noexcept {
    const NHostServices wanted = services != nullptr ? *services : NHostServices{};
    if (!isComplete(wanted))
        return -1;
    if (changesMemory(state().current, wanted) && NHostLiveBlocks() > 0)
        return -1;
    state().current = wanted;
    return 0;
}
