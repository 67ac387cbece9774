// The commands of a script that are mouse and keys.
#pragma once

#include "viewer/window/interaction.h"
#include "viewer/workspace/commands.h"

namespace nruview {

/// move X Y | press [left|middle|right] [shift] [ctrl] | release | wheel N | key NAME | rest. Throws
/// ViewerError for other words.
WindowRequest runInput(Interaction& interaction, const Words& words);

} // namespace nruview
