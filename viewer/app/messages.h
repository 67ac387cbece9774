// The library's messages on standard error.
#pragma once

#include <string>
#include <vector>

namespace nruview {

/// From here on a line each: notes, advice to the user and misuse always; decisions and counts only when
/// verbose.
void routeMessages(bool verbose);

/// A decision of the viewer's own: a line when verbose.
void tell(const std::string& text);

/// Keeps the library's lines from standard error for the length of a block, for a report of the caller's.
class HeldMessages {
public:
    HeldMessages();
    ~HeldMessages();
    HeldMessages(const HeldMessages&) = delete;
    HeldMessages& operator=(const HeldMessages&) = delete;
    /// The last line, or nothing.
    std::string last() const;
    const std::vector<std::string>& all() const;
};

} // namespace nruview
