// Tagged memory: malloc with a list of headers by default, or the host's own functions.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>

#include "NRenderUtl/host/hostutl.h"
#include "NRenderUtl/host/services.h"

namespace {

// Header in front of every block of the default allocator; its size keeps the user's block aligned.
struct alignas(16) BlockHeader {
    BlockHeader* previous;
    BlockHeader* next;
    std::size_t bytes;
    const char* file;
    int line;
};
static_assert(alignof(std::max_align_t) >= 16 && sizeof(BlockHeader) % 16 == 0,
              "user blocks are 16-byte aligned");

struct MemoryState {
    BlockHeader* first = nullptr;
    std::size_t liveBlocks = 0;
};

// Nothing in it is destroyed: static objects may free their blocks during exit.
MemoryState& state() {
    static MemoryState state;
    return state;
}

void* allocateDefault(std::size_t bytes, const char* file, int line) {
    if (bytes > SIZE_MAX - sizeof(BlockHeader))
        return nullptr;
    void* memory = std::malloc(sizeof(BlockHeader) + bytes);
    if (memory == nullptr)
        return nullptr;
    BlockHeader* header = new (memory) BlockHeader{nullptr, state().first, bytes, file, line};
    if (header->next != nullptr)
        header->next->previous = header;
    state().first = header;
    return header + 1;
}

void freeDefault(void* block) {
    BlockHeader* header = static_cast<BlockHeader*>(block) - 1;
    (header->previous != nullptr ? header->previous->next : state().first) = header->next;
    if (header->next != nullptr)
        header->next->previous = header->previous;
    std::free(header);
}

} // namespace

void* NHostAllocate(std::size_t bytes, const char* file, int line) noexcept {
    const NHostServices& services = hostServices();
    void* block = services.allocate != nullptr ? services.allocate(services.context, bytes, file, line)
                                               : allocateDefault(bytes, file, line);
    state().liveBlocks += block != nullptr;
    return block;
}

void NHostFree(void* block) noexcept {
    if (block == nullptr)
        return;
    --state().liveBlocks;
    const NHostServices& services = hostServices();
    if (services.release != nullptr)
        services.release(services.context, block);
    else
        freeDefault(block);
}

std::size_t NHostLiveBlocks() noexcept {
    return state().liveBlocks;
}

std::size_t NHostReportLiveBlocks() noexcept {
    std::size_t count = 0;
    for (const BlockHeader* header = state().first; header != nullptr; header = header->next, ++count) {
        const std::string place =
            hostFormat("%s:%d", header->file != nullptr ? header->file : "?", header->line);
        const std::string text =
            std::to_string(header->bytes) + " bytes allocated at " + place + " are still alive";
        hostDiagnostic(NHostDiagnosticCount, text.c_str());
    }
    return count;
}
