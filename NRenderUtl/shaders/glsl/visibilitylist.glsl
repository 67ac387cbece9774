// Which elements fail at the current level, and which are clipped.

uniform int g_bvlf;
uniform int g_nvlf;
uniform int g_ncvl;
uniform isamplerBuffer g_vlbuff;  // level from which on the element fails, -1 = none
uniform isamplerBuffer g_vlabuff; // level below which the element fails, -1 = none
uniform int g_clip_flag;
uniform isamplerBuffer g_clipelembuff;

bool isElementClipped(int element) {
    if (g_clip_flag <= 0)
        return false;
    int code = texelFetch(g_clipelembuff, element).r;
    return (g_clip_flag == 1 && code >= 2) || (g_clip_flag == 3 && code <= 2);
}

// Of two levels, where both exist; those in disorder leave a band of levels between them.
bool failsBoth(int from, int below) {
    if (from < below)
        return g_ncvl < below;
    return g_ncvl >= from || g_ncvl < below;
}

bool isElementFailing(int element) {
    if (g_bvlf != 1)
        return false;
    int from = g_nvlf == 1 || g_nvlf == 3 ? texelFetch(g_vlbuff, element).r : -1;
    int below = g_nvlf == 2 || g_nvlf == 3 ? texelFetch(g_vlabuff, element).r : -1;
    if (from != -1 && below != -1)
        return failsBoth(from, below);
    return (from != -1 && g_ncvl >= from) || (below != -1 && g_ncvl < below);
}
