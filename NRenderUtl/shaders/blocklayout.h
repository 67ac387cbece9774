// The buffer from which blocklighting.glsl and blockbands.glsl read what a draw sets: places of its texels.
#pragma once

inline constexpr int kBlockCells = 128; ///< at most so many has a colour scale

enum BlockLayout : int {
    BlockEmission, ///< of both sides
    BlockFront,    ///< specular, shininess
    BlockBack,
    BlockLights, ///< of each light that is on: position, constant attenuation; ambient, linear;
                 ///< diffuse, quadratic; specular, 1 where another follows
    BlockCellMap = BlockLights + 32,         ///< of the scale: 0, factor and offset from a value to its cell
    BlockCells,                              ///< limit, colours below it and from it on
    BlockEntries = BlockCells + kBlockCells, ///< start, end, colour, colour at the end or -1

    // Of plain lights, in place of those before the scale. All carry the weights of the model.
    BlockPlain = 0, ///< ambient of all, half the shininess, specular of the first and of the second
                    ///< light. Without highlights factor and offset of the cell map stand in the middle.
                    ///< Of a light that is alone its diffuse is last.
    BlockPlainLights = 1,                     ///< of each light: position, diffuse
    BlockPlainSpecular = BlockPlainLights + 8 ///< of the third to the sixth light, of those behind
};
