// The window system's keys by the names that Interaction knows.
#pragma once

#include <string>

namespace nruview {

/// "f", "shift+f", "left"; empty for a key without a name. Letters are those that the user's keyboard shows.
std::string keyName(int key, int scancode, int modifiers);

} // namespace nruview
