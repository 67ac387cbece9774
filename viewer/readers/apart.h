// Work on files in a process of its own: what goes wrong in it ends in a refusal.
#pragma once

#include <functional>

#include "viewer/readers/readers.h"

namespace nruview::readers {

/// Memory that reading a file of a size may take.
std::size_t memoryFor(std::size_t fileSize);

/// The model that read gives, made in a child process with its memory and time limited by the size of the
/// file. A Refusal in it is one here; so are a crash and a limit reached.
Model readApart(const std::function<Model()>& read, std::size_t fileSize);

} // namespace nruview::readers
