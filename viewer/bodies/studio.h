// A made-up room of lamps around the model, for pictures without an environment file.
#pragma once

#include <string>

namespace nruview {

/// Writes it as a Radiance picture, all directions about an upward axis. Throws ViewerError when the file
/// cannot be written.
void writeStudio(const std::string& path);

} // namespace nruview
