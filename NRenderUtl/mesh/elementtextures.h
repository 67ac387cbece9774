// What is known of each element, or of each primitive, as texture buffers of the current context.
#pragma once

#include <algorithm>
#include <cstdint>

#include "NRenderUtl/shaders/nshaders.h"

/// Consecutive elements; first is not below end where there are none.
struct ElementSpan {
    std::uint32_t first = 0xFFFFFFFF, end = 0;

    bool empty() const { return first >= end; }
    std::uint32_t count() const { return empty() ? 0 : end - first; }
    void add(const ElementSpan& other) {
        first = std::min(first, other.first);
        end = std::max(end, other.end);
    }
};

/// One texel for each element. What changes between two draws is uploaded as one span.
class ElementTexture {
public:
    /// format: of the texels, as of RenderGLTBO.
    ElementTexture(int unit, unsigned int format, int texelBytes)
        : m_unit(unit), m_format(format), m_texelBytes(texelBytes) {}
    ElementTexture(const ElementTexture&) = delete;
    ElementTexture& operator=(const ElementTexture&) = delete;

    int unit() const { return m_unit; }
    void changed(const ElementSpan& span) { m_changed.add(span); }
    /// What store must be given: everything at first.
    ElementSpan stale(std::uint32_t count) const;
    /// Uploads the texels of a span of count. False where the driver has no room.
    bool store(const ElementSpan& span, std::uint32_t count, const void* texels);
    /// The same for all texels, which are made afresh for a key that is not that of the last call.
    template <class Make>
    bool storeOnce(int key, const Make& make) {
        if (m_key == key && m_texture.IsValid())
            return true;
        m_texture.Destroy(true);
        m_key = key;
        const auto texels = make();
        return store({}, static_cast<std::uint32_t>(texels.size()), texels.data());
    }
    /// Binds the texture to its unit, which becomes active.
    void bind() { m_texture.Bind(true); }

private:
    const int m_unit;
    const unsigned int m_format;
    const int m_texelBytes;
    RenderGLTBO m_texture;
    ElementSpan m_changed;
    int m_key = -1;
};
