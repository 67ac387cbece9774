// Console messages, posted diagnostics and the formatting of their texts.
#include <cstdarg>
#include <cstdio>

#include "NRenderUtl/host/hostutl.h"
#include "NRenderUtl/host/services.h"

namespace {

// Texts from a driver's log end with a newline already; every message takes one line of its own.
void writeLine(const char* text) {
    const std::string_view line(text);
    const bool ended = !line.empty() && line.back() == '\n';
    std::fprintf(stderr, ended ? "%s" : "%s\n", text);
}

} // namespace

void hostMessage(int kind, const char* text) {
    const NHostServices& services = hostServices();
    if (services.message != nullptr)
        services.message(services.context, kind, text);
    else
        writeLine(text);
}

void hostDiagnostic(int level, const char* text) {
    const NHostServices& services = hostServices();
    if (services.diagnostic != nullptr)
        services.diagnostic(services.context, level, text);
    else
        writeLine(text);
}

std::string hostFormat(const char* format, ...) {
    std::va_list arguments, again;
    va_start(arguments, format);
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, arguments);
    va_end(arguments);
    std::string text(length > 0 ? static_cast<std::size_t>(length) : 0, '\0');
    if (!text.empty())
        std::vsnprintf(text.data(), text.size() + 1, format, again);
    va_end(again);
    return text;
}
