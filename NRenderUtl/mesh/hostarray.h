// Arrays and records from the host's allocator that free themselves.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <type_traits>

#include "NRenderUtl/host/nhost.h"

struct HostFree {
    void operator()(void* block) const { NHostFree(block); }
};

template <class T>
using HostArray = std::unique_ptr<T[], HostFree>;

/// Uninitialised array tagged with the caller's position; null when there is no memory. An empty array is a
/// block.
template <class T>
HostArray<T> hostArray(std::size_t count, const char* file = __builtin_FILE(), int line = __builtin_LINE()) {
    static_assert(std::is_trivially_copyable_v<T>);
    if (count > PTRDIFF_MAX / sizeof(T))
        return nullptr;
    return HostArray<T>(
        static_cast<T*>(NHostAllocate(std::max<std::size_t>(count, 1) * sizeof(T), file, line)));
}

/// Copy of count values; null for a null source or when there is no memory.
template <class T>
HostArray<T> hostArrayCopy(const T* source, std::size_t count, const char* file = __builtin_FILE(),
                           int line = __builtin_LINE()) {
    if (!source)
        return nullptr;
    HostArray<T> copy = hostArray<T>(count, file, line);
    if (copy)
        std::copy_n(source, count, copy.get());
    return copy;
}
