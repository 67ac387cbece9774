// The picture of the programs that draw with an OpenGL context of their own, made without a display.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "bench/harness/models.h"

namespace nrubench {

/// Makes the process's one context current, with a viewport of the whole picture and the depth test on.
void openWindow();
void clearWindow();
void finishWindow();
std::vector<std::uint32_t> readWindow();
std::string driverOfWindow();

/// Load matrices of the fixed function.
void loadBox(const Box& box);
void loadTorusView();

} // namespace nrubench
