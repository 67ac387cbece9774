// An element mesh through the GLSL programs: buffers for the geometry, texture buffers for the facts.
#pragma once
