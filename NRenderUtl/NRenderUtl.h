// Includes every public header of the library.
#pragma once

#include "NRenderUtl/Texture/ntexture.h"
#include "NRenderUtl/gl/ngl.h"
#include "NRenderUtl/host/nhost.h"
#include "NRenderUtl/lighting/nlighting.h"
#include "NRenderUtl/markers/nmarkers.h"
#include "NRenderUtl/mesh/nmesh.h"
#include "NRenderUtl/ntypes.h"
#include "NRenderUtl/shaders/nshaders.h"
