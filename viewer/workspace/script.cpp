#include "viewer/workspace/script.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iostream>

#include "viewer/error.h"

namespace nruview {

namespace {

constexpr std::size_t kLongestLine = 1 << 16;

std::string placeOf(const std::string& path, int line) {
    return path + ":" + std::to_string(line);
}

} // namespace

Script::Script(const std::string& path) : m_path(path) {
    std::ifstream file(path);
    if (!file)
        throw ViewerError(path, std::string("cannot be read: ") + std::strerror(errno));
    std::string text;
    for (int line = 1; std::getline(file, text); ++line) {
        if (text.size() > kLongestLine)
            throw ViewerError(placeOf(path, line), "the line is too long for a command");
        try {
            if (Words words = wordsOf(text); !words.empty())
                m_commands.push_back({line, std::move(words)});
        } catch (const ViewerError& error) {
            throw ViewerError(placeOf(path, line), error.what());
        }
    }
    if (file.bad())
        throw ViewerError(path, "cannot be read");
}

bool Script::usesInput() const {
    return std::any_of(m_commands.begin(), m_commands.end(),
                       [](const Command& command) { return isInput(command.words); });
}

bool Script::makesFiles() const {
    return std::any_of(m_commands.begin(), m_commands.end(),
                       [](const Command& command) { return writesPictures(command.words); });
}

void Script::runNext(CommandPlace& place) {
    const auto& [line, words] = m_commands[m_next++];
    try {
        if (words == Words{"quit"}) {
            m_next = m_commands.size();
            m_hasQuit = true;
        } else if (const std::string told = runCommand(place, words); !told.empty()) {
            std::cout << told << std::endl; // at once: whoever drives the window waits for it
        }
    } catch (const ViewerError& error) {
        throw ViewerError(placeOf(m_path, line), error.what());
    }
}

} // namespace nruview
