// File names of the interface as paths of the platform, for the rooms of this folder.
#pragma once

#include <filesystem>

#include "NRenderUtl/host/nhost.h"

/// The path that a name stands for; empty for a name that holds a null character, which no file has.
std::filesystem::path hostPath(const GuString& name);
