// The contour colours of colorbands.glsl from entries in a buffer: its rules, out of range and between bands
// too, as ranges that meet end to start.

uniform samplerBuffer g_tbuff; // a value for each element

#ifdef BAND_CELLS
// Cells have one width and hold a limit each, so the colour is found at once.
void getContourColor(int useColorScale, int primID, int ctype, vec2 texcoord, out vec4 color) {
    float value = ctype == 2 ? texelFetch(g_tbuff, primID).r : texcoord.s;
#if defined(PLAIN_LIGHTS) && defined(NO_HIGHLIGHTS)
    vec4 map = texelFetch(g_block, BLOCK_PLAIN); // which lights fetch too
#else
    vec4 map = texelFetch(g_block, BLOCK_CELL_MAP);
#endif
    float place = value * map.y + map.z;
    int at = place >= 1.0 ? int(min(place, float(BLOCK_LAST_CELL - BLOCK_CELLS))) : 0;
    vec4 cell = texelFetch(g_block, BLOCK_CELLS + at);
    color = vec4(colorOfCode(int(value >= cell.x ? cell.z : cell.y)), 1.0);
}
#else
uniform vec3 g_entries; // index of the last; factor and offset from a value to about where its entry is

// A search by halving that first looks where the guess is. Entry 0, for what is not a number, comes last.
vec4 findEntry(float value, float guess) {
    int low = 0, high = int(g_entries.x), at = clamp(int(guess), 1, high);
    vec4 entry;
    bool again;
    do {
        entry = texelFetch(g_block, BLOCK_ENTRIES + at);
        bool below = !(entry.x <= value), above = entry.y <= value;
        high = below ? at - 1 : high;
        low = below ? low : at + 1;
        again = (below || above) && low <= high;
        // Fragments that are done fetch along with those that are not, so theirs must stay the same.
        at = again ? low + high + 1 >> 1 : at; // a shift, as a division of signed numbers is none
    } while (again);
    return entry;
}

// texcoord: the value of a node, and its guess.
void getContourColor(int useColorScale, int primID, int ctype, vec2 texcoord, out vec4 color) {
    float value = texcoord.s, guess = texcoord.t;
    if (ctype == 2) {
        value = texelFetch(g_tbuff, primID).r;
        guess = value * g_entries.y + g_entries.z;
    }
    vec4 entry = findEntry(value, guess); // start, end, colour, and to which it is smeared or -1
    vec3 plain = colorOfCode(int(entry.z));
    vec3 smeared = mix(plain, colorOfCode(int(entry.w)), (value - entry.x) / (entry.y - entry.x));
    color = vec4(ctype == 1 && entry.w >= 0.0 ? smeared : plain, 1.0);
}
#endif
