// Long work with something to see meanwhile.
#pragma once

#include <functional>
#include <mutex>
#include <optional>
#include <string>

#include "viewer/app/options.h"

struct GLFWwindow;

namespace nruview {

/// What is being done and how much of it, told from any thread.
class Progress {
public:
    struct State {
        std::string what, detail;
        std::optional<double> fraction; ///< nothing: nobody knows
    };
    void begin(const std::string& what);
    void tell(const std::string& detail, double fraction);
    State state() const;

private:
    mutable std::mutex m_mutex;
    State m_state;
};

/// Does work in a thread of its own. Until it is done show() is called in this one, again and again. Throws
/// what the work throws.
void workAside(const std::function<void()>& work, const std::function<void()>& show);

/// "Reading part.vtu (120 MB)"
std::string readingText(const Options& options);

/// Builds the maps of the library's environment, unless they are there, in a context that shares
/// its objects with the window's. GL is this thread's own meanwhile, the library the other's.
void buildEnvironment(GLFWwindow* window, Progress& progress, const std::function<void()>& show);

} // namespace nruview
