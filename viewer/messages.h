// The library's messages on standard error.
#pragma once

namespace nruview {

/// From here on a line each: notes, advice to the user and misuse always; decisions and counts only when
/// verbose.
void routeMessages(bool verbose);

} // namespace nruview
