#include "tests/support/virtualdisplay.h"

#include <csignal>
#include <cstdlib>
#include <string>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace nrutest {

namespace {

[[noreturn]] void becomeServer(int numberEnd) {
    prctl(PR_SET_PDEATHSIG, SIGTERM); // also when the test crashes
    const int null = open("/dev/null", O_WRONLY);
    dup2(null, STDOUT_FILENO);
    dup2(null, STDERR_FILENO); // an open output would keep whoever reads the test's output waiting
    const std::string number = std::to_string(numberEnd);
    execlp("Xvfb", "Xvfb", "-displayfd", number.c_str(), "-screen", "0", "320x240x24", "-nolisten", "tcp",
           nullptr);
    _exit(127);
}

} // namespace

VirtualDisplay::VirtualDisplay() {
    int ends[2];
    if (pipe(ends) != 0)
        return;
    m_server = fork();
    if (m_server == 0) {
        close(ends[0]);
        becomeServer(ends[1]);
    }
    close(ends[1]);
    // The server writes its display number and a newline once it accepts clients.
    std::string name = ":";
    for (char c; read(ends[0], &c, 1) == 1 && c != '\n';)
        name += c;
    close(ends[0]);
    m_up = name.size() > 1;
    setenv("DISPLAY", name.c_str(), 1);
}

VirtualDisplay::~VirtualDisplay() {
    if (m_server <= 0)
        return;
    kill(m_server, SIGTERM);
    waitpid(m_server, nullptr, 0);
}

} // namespace nrutest
