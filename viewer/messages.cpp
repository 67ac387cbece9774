// Lines of the library, told apart by what they are for.
#include "viewer/messages.h"

#include <cstdio>
#include <string_view>

#include "NRenderUtl/NRenderUtl.h"

namespace nruview {

namespace {

/// The library's texts may begin and end with line ends.
void print(std::string_view text) {
    const std::size_t first = text.find_first_not_of('\n');
    if (first == std::string_view::npos)
        return;
    text = text.substr(first, text.find_last_not_of('\n') - first + 1);
    std::fprintf(stderr, "nruview: %.*s\n", static_cast<int>(text.size()), text.data());
}

void showMessage(void*, int kind, const char* text) {
    if (kind != NHostMessageStatus)
        print(text);
}

void showEveryMessage(void*, int, const char* text) {
    print(text);
}

void showDiagnostic(void*, int level, const char* text) {
    if (level != NHostDiagnosticCount)
        print(text);
}

void showEveryDiagnostic(void*, int, const char* text) {
    print(text);
}

} // namespace

void routeMessages(bool verbose) {
    NHostServices services{};
    services.message = verbose ? showEveryMessage : showMessage;
    services.diagnostic = verbose ? showEveryDiagnostic : showDiagnostic;
    NHostSetServices(&services);
}

} // namespace nruview
