// Contour colours, from colour bands or from a texture.

struct g_ColorBands {
    float min_val;
    float max_val;
    vec3 color;
};
uniform g_ColorBands g_clr_bands[64]; // ascending, without overlap
uniform int g_num_clr_bands;
uniform float g_band_min_val;
uniform float g_band_max_val;
uniform vec3 g_oor_min_clr;
uniform vec3 g_oor_max_clr;
uniform int g_bts;
uniform float g_ttf;
uniform float g_tsf;
uniform samplerBuffer g_tbuff; // a value, or a texture coordinate, for each element
uniform sampler2D g_ctt;

// Band that holds a value, or -1. The search of RenderColorScale, step by step: it finds the same band where
// bands overlap or descend too.
int findBandIndex(float value) {
    int low = 0, high = g_num_clr_bands - 1;
    while (low <= high) {
        int mid = (low + high) / 2;
        if (g_clr_bands[mid].min_val > value)
            high = mid - 1;
        else if (g_clr_bands[mid].max_val > value)
            return mid;
        else
            low = mid + 1;
    }
    return -1;
}

// Towards the colour of the next band.
vec3 smearedColor(int band, float value) {
    float low = g_clr_bands[band].min_val, high = g_clr_bands[band].max_val;
    return mix(g_clr_bands[band].color, g_clr_bands[band + 1].color, (value - low) / (high - low));
}

// Deliberate, and unlike RenderColorScale: out of range comes before equal limits, and what lies between
// bands has the colour below the range.
vec4 getContourColorFromColorScale(int primID, int ctype, float bandvalue) {
    float value = ctype == 2 ? texelFetch(g_tbuff, primID).r : bandvalue;
    int last = g_num_clr_bands - 1;
    bool oneValue = g_band_min_val == g_band_max_val;
    int band = value == g_band_max_val ? last : findBandIndex(value);
    vec3 color = band == -1 ? g_oor_min_clr : g_clr_bands[band].color;
    if (ctype == 1 && band != -1 && band != last)
        color = smearedColor(band, value);
    if (oneValue)
        color = g_clr_bands[g_num_clr_bands / 2].color;
    if (value > g_band_max_val)
        color = g_oor_max_clr;
    if (value < g_band_min_val)
        color = g_oor_min_clr;
    return vec4(color, 1.0);
}

vec4 getContourColorFromTexture(int primID, int ctype, vec2 texcoord) {
    if (ctype == 2) {
        vec4 texel = texelFetch(g_tbuff, primID);
        texel.r -= g_ttf;
        texcoord = g_bts == 1 ? texel.st * g_tsf : texel.st;
    }
    return texture(g_ctt, texcoord);
}

void getContourColor(int useColorScale, int primID, int ctype, vec2 texcoord, out vec4 color) {
    color = useColorScale == 1 ? getContourColorFromColorScale(primID, ctype, texcoord.s)
                               : getContourColorFromTexture(primID, ctype, texcoord);
}
