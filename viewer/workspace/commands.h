// One line of text as a change of the workspace: the language of scripts.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "viewer/workspace/workspace.h"

namespace nruview {

/// Packed 0xAABBGGRR, rows from bottom to top.
struct Pixels {
    int width = 0, height = 0;
    std::vector<std::uint32_t> colors;
};

/// The lower left pixels of the current read buffer.
Pixels readPixels(int width, int height);

using Words = std::vector<std::string>;

/// Where commands run: off-screen or in a window.
class CommandPlace {
public:
    virtual ~CommandPlace() = default;
    virtual Workspace& workspace() = 0;
    /// Gives the picture another size.
    virtual void resize(int width, int height) = 0;
    /// The picture as it is now, drawn anew.
    virtual Pixels picture() = 0;
    /// Mouse and keys: move X Y, press [left|middle|right] [shift] [ctrl], release, rest, wheel N, key NAME.
    /// False where there are none.
    virtual bool takeInput(const Words& /*words*/) { return false; }
};

/// The words of a line, which blanks part but within '' and "", up to a #. Throws ViewerError for a quote
/// without its end.
Words wordsOf(std::string_view line);

/// Whether a command is one of the mouse and of keys, and whether it writes pictures.
bool isInput(const Words& words);
bool writesPictures(const Words& words);

/// Runs one command; no words are none. Returns what it tells, such as a pick's text, or an empty text.
/// Throws ViewerError; then nothing has changed.
std::string runCommand(CommandPlace& place, const Words& words);

} // namespace nruview
