// The one kind of failure that the viewer reports: a subject (usually a file) and the reason.
#pragma once

#include <stdexcept>
#include <string>

namespace nruview {

class ViewerError : public std::runtime_error {
public:
    ViewerError(const std::string& subject, const std::string& reason)
        : std::runtime_error(subject + ": " + reason) {}
};

} // namespace nruview
