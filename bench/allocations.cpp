// The functions of the C library and C++ that allocate, in the program's own place: shared libraries find
// them here first. Who called tells the return address.
#include "bench/allocations.h"

#include <dlfcn.h>
#include <link.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <new>
#include <string_view>

extern "C" {
void* __libc_malloc(std::size_t bytes);
void* __libc_calloc(std::size_t count, std::size_t bytes);
void* __libc_realloc(void* block, std::size_t bytes);
void __libc_free(void* block);
}

namespace {

struct Range {
    std::uintptr_t first = 0, last = 0;
};

struct Counted {
    Range library, standard; ///< where their code lies; empty until the first question
    std::atomic<long> calls{0};
};
Counted g_counted; // constant-initialised: allocations come before main

void noteCaller(const void* caller) {
    const auto address = reinterpret_cast<std::uintptr_t>(caller);
    const auto isIn = [&](const Range& range) { return address >= range.first && address < range.last; };
    if (isIn(g_counted.library) || isIn(g_counted.standard))
        ++g_counted.calls;
}

int noteObject(dl_phdr_info* info, std::size_t, void*) {
    const std::string_view name = info->dlpi_name;
    Range* range = name.find("libNRenderUtl") != name.npos ? &g_counted.library
                   : name.find("libstdc++") != name.npos   ? &g_counted.standard
                                                           : nullptr;
    for (int i = 0; range && i < info->dlpi_phnum; ++i)
        if (const auto& part = info->dlpi_phdr[i]; part.p_type == PT_LOAD && (part.p_flags & PF_X))
            *range = {info->dlpi_addr + part.p_vaddr, info->dlpi_addr + part.p_vaddr + part.p_memsz};
    return 0;
}

void* newBlock(std::size_t bytes, const void* caller) {
    noteCaller(caller);
    return __libc_malloc(bytes ? bytes : 1);
}

} // namespace

#define NRUBENCH_SEEN __attribute__((visibility("default"), noinline))

extern "C" {

NRUBENCH_SEEN void* malloc(std::size_t bytes) {
    noteCaller(__builtin_return_address(0));
    return __libc_malloc(bytes);
}

NRUBENCH_SEEN void* calloc(std::size_t count, std::size_t bytes) {
    noteCaller(__builtin_return_address(0));
    return __libc_calloc(count, bytes);
}

NRUBENCH_SEEN void* realloc(void* block, std::size_t bytes) {
    noteCaller(__builtin_return_address(0));
    return __libc_realloc(block, bytes);
}

} // extern "C"

NRUBENCH_SEEN void* operator new(std::size_t bytes) {
    void* block = newBlock(bytes, __builtin_return_address(0));
    if (!block)
        throw std::bad_alloc();
    return block;
}

NRUBENCH_SEEN void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
    return newBlock(bytes, __builtin_return_address(0));
}

NRUBENCH_SEEN void operator delete(void* block) noexcept {
    __libc_free(block);
}

NRUBENCH_SEEN void operator delete(void* block, std::size_t) noexcept {
    __libc_free(block);
}

namespace nrubench {

long libraryAllocations() {
    static const int searched = dl_iterate_phdr(noteObject, nullptr);
    (void)searched;
    return g_counted.calls;
}

} // namespace nrubench
