// The services record in force, for the rooms of this folder.
#pragma once

#include "NRenderUtl/host/nhost.h"

/// What the host installed last; null members mean the default.
const NHostServices& hostServices();
