// Lines of the library, told apart by what they are for.
#include "viewer/app/messages.h"

#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "NRenderUtl/NRenderUtl.h"
#include "viewer/app/datafolder.h"

namespace nruview {

namespace {

bool tellsAll = false;
bool holds = false;
std::vector<std::string> held; ///< lines since they are held back

/// The library's texts may begin and end with line ends.
void print(std::string_view text) {
    const std::size_t first = text.find_first_not_of('\n');
    if (first == std::string_view::npos)
        return;
    text = text.substr(first, text.find_last_not_of('\n') - first + 1);
    if (holds)
        held.emplace_back(text);
    else
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

/// The environment's value counts before the viewer's own.
const char* findSetting(void*, const char* name) {
    const bool isOurs = std::string_view(name) == "NU_COMMON_PATH" && std::getenv(name) == nullptr;
    return isOurs && !dataFolder().empty() ? dataFolder().c_str() : nullptr;
}

} // namespace

void tell(const std::string& text) {
    if (tellsAll)
        print(text);
}

void routeMessages(bool verbose) {
    tellsAll = verbose;
    NHostServices services{};
    services.message = verbose ? showEveryMessage : showMessage;
    services.diagnostic = verbose ? showEveryDiagnostic : showDiagnostic;
    services.setting = findSetting;
    NHostSetServices(&services);
}

HeldMessages::HeldMessages() {
    held.clear();
    holds = true;
}

HeldMessages::~HeldMessages() {
    holds = false;
}

std::string HeldMessages::last() const {
    return held.empty() ? "" : held.back();
}

const std::vector<std::string>& HeldMessages::all() const {
    return held;
}

} // namespace nruview
