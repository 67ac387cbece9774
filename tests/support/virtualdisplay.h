// An X server without a screen, for the tests that need a window.
#pragma once

#include <sys/types.h>

namespace nrutest {

/// Starts Xvfb under a display number that is free and makes it this process's DISPLAY.
class VirtualDisplay {
public:
    VirtualDisplay();
    ~VirtualDisplay();
    VirtualDisplay(const VirtualDisplay&) = delete;
    VirtualDisplay& operator=(const VirtualDisplay&) = delete;

    /// Whether the server is up.
    bool isUp() const { return m_up; }

private:
    pid_t m_server = -1;
    bool m_up = false;
};

} // namespace nrutest
