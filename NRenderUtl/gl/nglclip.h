// Whether the host's clip planes are loaded, for the shader paths that clip by themselves.
#pragma once

bool nglClipPlanesLoaded();
