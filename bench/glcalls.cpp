// libepoxy's entry points are function pointers, and every call of the library goes through them.
#include "bench/glcalls.h"

#include <epoxy/egl.h>
#include <epoxy/gl.h>

#include <string_view>

namespace {

std::map<std::string, int>& calls() {
    static std::map<std::string, int> calls;
    return calls;
}

/// Name of the entry point that a specialisation of Watched is for.
template <auto* entry>
std::string nameOf() {
    const std::string_view text = __PRETTY_FUNCTION__;
    const std::size_t from = text.find("epoxy_gl") + 6;
    return std::string(text.substr(from, text.find_first_of(");]", from) - from));
}

/// Puts a counting function in the place of an entry point. It calls the driver's own, as libepoxy's would
/// put the driver's into its place on the first call.
template <auto* entry>
class Watched {
    template <class Result, class... Arguments>
    static void put(Result (*&function)(Arguments...)) {
        static int& count = calls()[nameOf<entry>()];
        static auto* original =
            reinterpret_cast<Result (*)(Arguments...)>(eglGetProcAddress(nameOf<entry>().c_str()));
        function = [](Arguments... arguments) -> Result {
            ++count;
            return original(arguments...);
        };
    }

public:
    Watched() { put(*entry); }
};

/// All that the library imports, as the build lists it.
void watch() {
#include "glcalls_list.inc"
}

} // namespace

std::map<std::string, int> takeGlCalls() {
    static const bool watching = (watch(), true);
    (void)watching;
    std::map<std::string, int> taken;
    for (auto& [name, count] : calls()) {
        if (count > 0)
            taken[name] = count;
        count = 0;
    }
    return taken;
}
