// The library's own data files, where the user's environment names none.
#pragma once

#include <string>

namespace nruview {

/// What the setting NU_COMMON_PATH is to be without the environment: the folder installed beside the program,
/// else that of the source tree; empty where neither has the files.
const std::string& dataFolder();

} // namespace nruview
