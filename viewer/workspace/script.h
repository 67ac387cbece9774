// A file of commands.
#pragma once

#include "viewer/workspace/commands.h"

namespace nruview {

/// Hands out its commands one after the other, so that a window can go on between them.
class Script {
public:
    /// Throws ViewerError for a file that cannot be read.
    explicit Script(const std::string& path);

    /// After the last command and after quit.
    bool isAtEnd() const { return m_next == m_commands.size(); }
    /// Whether the script asked to end the program.
    bool hasQuit() const { return m_hasQuit; }
    /// Whether it needs a window, and whether it makes files without one.
    bool usesInput() const;
    bool makesFiles() const;

    /// Runs the next command, and prints what it tells. Throws ViewerError("FILE:LINE", ...).
    void runNext(CommandPlace& place);

private:
    struct Command {
        int line;
        Words words;
    };
    std::string m_path;
    std::vector<Command> m_commands;
    std::size_t m_next = 0;
    bool m_hasQuit = false;
};

} // namespace nruview
