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

// Band that holds a value, or -1; no band holds a value that is not a number.
int findBandIndex(float value) {
    int low = 0, high = isnan(value) ? -1 : g_num_clr_bands - 1;
    while (low <= high) {
        int mid = (low + high) / 2;
        if (value >= g_clr_bands[mid].min_val && g_clr_bands[mid].max_val > value)
            return mid;
        if (g_clr_bands[mid].min_val > value)
            high = mid - 1;
        else
            low = mid + 1;
    }
    return -1;
}

vec3 bandColor(int band, int ctype, float value) {
    vec3 color = g_clr_bands[band].color;
    if (ctype != 1 || band == g_num_clr_bands - 1)
        return color;
    float width = g_clr_bands[band].max_val - g_clr_bands[band].min_val;
    return mix(color, g_clr_bands[band + 1].color, (value - g_clr_bands[band].min_val) / width);
}

vec4 getContourColorFromColorScale(int primID, int ctype, float bandvalue) {
    float value = ctype == 2 ? texelFetch(g_tbuff, primID).r : bandvalue;
    if (value < g_band_min_val)
        return vec4(g_oor_min_clr, 1.0);
    if (value > g_band_max_val)
        return vec4(g_oor_max_clr, 1.0);
    if (g_band_min_val == g_band_max_val)
        return vec4(g_clr_bands[g_num_clr_bands / 2].color, 1.0);
    if (value == g_band_max_val)
        return vec4(g_clr_bands[g_num_clr_bands - 1].color, 1.0);
    int band = findBandIndex(value);
    return vec4(band == -1 ? g_oor_min_clr : bandColor(band, ctype, value), 1.0);
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
