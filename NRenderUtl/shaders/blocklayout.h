// The buffer from which blocklighting.glsl and blockbands.glsl read what a draw sets: places of its texels.
#pragma once

enum BlockLayout : int {
    BlockEmission, ///< of both sides
    BlockFront,    ///< specular, shininess
    BlockBack,
    BlockLights, ///< of each light that is on: position, constant attenuation; ambient, linear;
                 ///< diffuse, quadratic; specular, 1 where another follows
    BlockEntries = BlockLights + 32 ///< of the scale: start, end, colour, colour at the end or -1
};
