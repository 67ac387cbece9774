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

/// All that a frame may call: `nm -D libNRenderUtl.so | grep epoxy_gl`, without what makes and deletes
/// programs.
void watch() {
    (void)Watched<&epoxy_glActiveTexture>();
    (void)Watched<&epoxy_glBindBuffer>();
    (void)Watched<&epoxy_glBindSampler>();
    (void)Watched<&epoxy_glBindTexture>();
    (void)Watched<&epoxy_glBindVertexArray>();
    (void)Watched<&epoxy_glBlendFunc>();
    (void)Watched<&epoxy_glBufferData>();
    (void)Watched<&epoxy_glBufferSubData>();
    (void)Watched<&epoxy_glClientActiveTexture>();
    (void)Watched<&epoxy_glColor4ub>();
    (void)Watched<&epoxy_glColorPointer>();
    (void)Watched<&epoxy_glCullFace>();
    (void)Watched<&epoxy_glDeleteBuffers>();
    (void)Watched<&epoxy_glDeleteTextures>();
    (void)Watched<&epoxy_glDeleteVertexArrays>();
    (void)Watched<&epoxy_glDepthMask>();
    (void)Watched<&epoxy_glDisable>();
    (void)Watched<&epoxy_glDisableClientState>();
    (void)Watched<&epoxy_glDisableVertexAttribArray>();
    (void)Watched<&epoxy_glDrawElements>();
    (void)Watched<&epoxy_glEnable>();
    (void)Watched<&epoxy_glEnableClientState>();
    (void)Watched<&epoxy_glEnableVertexAttribArray>();
    (void)Watched<&epoxy_glGenBuffers>();
    (void)Watched<&epoxy_glGenTextures>();
    (void)Watched<&epoxy_glGenVertexArrays>();
    (void)Watched<&epoxy_glGetAttribLocation>();
    (void)Watched<&epoxy_glGetDoublev>();
    (void)Watched<&epoxy_glGetError>();
    (void)Watched<&epoxy_glGetFloatv>();
    (void)Watched<&epoxy_glGetIntegerv>();
    (void)Watched<&epoxy_glGetLightfv>();
    (void)Watched<&epoxy_glGetMaterialfv>();
    (void)Watched<&epoxy_glGetString>();
    (void)Watched<&epoxy_glGetUniformLocation>();
    (void)Watched<&epoxy_glIsEnabled>();
    (void)Watched<&epoxy_glLoadIdentity>();
    (void)Watched<&epoxy_glLoadMatrixd>();
    (void)Watched<&epoxy_glMatrixMode>();
    (void)Watched<&epoxy_glNormalPointer>();
    (void)Watched<&epoxy_glPopAttrib>();
    (void)Watched<&epoxy_glPopClientAttrib>();
    (void)Watched<&epoxy_glPopMatrix>();
    (void)Watched<&epoxy_glPushAttrib>();
    (void)Watched<&epoxy_glPushClientAttrib>();
    (void)Watched<&epoxy_glPushMatrix>();
    (void)Watched<&epoxy_glShadeModel>();
    (void)Watched<&epoxy_glUniform1f>();
    (void)Watched<&epoxy_glUniform1i>();
    (void)Watched<&epoxy_glUniform2fv>();
    (void)Watched<&epoxy_glUniform3fv>();
    (void)Watched<&epoxy_glUniform4fv>();
    (void)Watched<&epoxy_glUniformMatrix4fv>();
    (void)Watched<&epoxy_glUseProgram>();
    (void)Watched<&epoxy_glVertexAttribPointer>();
    (void)Watched<&epoxy_glVertexPointer>();
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
