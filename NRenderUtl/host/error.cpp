// Error objects: one text, kept wide and as UTF-8 because callers hand out pointers to either.
#include <utility>

#include "NRenderUtl/host/hostutl.h"

NError::NError(GuString text) noexcept : m_text(std::move(text)), m_utf8(m_text.Utf8()) {}

NErrorPtr hostError(std::string_view text) {
    return std::make_unique<NError>(GuString(text));
}
