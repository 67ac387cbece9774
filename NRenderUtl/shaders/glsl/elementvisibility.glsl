// Which elements are drawn, and in which colour of their own.

uniform int g_bem;
uniform int g_bao;
uniform int g_behs;
uniform int g_nvlp;
uniform isamplerBuffer g_osbuff;  // 0 = hidden
uniform isamplerBuffer g_shcbuff; // 1 = selected, 2 = highlighted
uniform isamplerBuffer g_mcbuff;  // colour 0 to 255; in a 1 = the element's own, any but 0 = it is drawn
#ifdef PARAMETER_BLOCK
vec3 selectionColor(int selection) {
    return colorOfCode(g_sides[selection == 1 ? 2 : 3]);
}
vec4 ownColorOf(ivec3 bytes, float alpha) {
    return vec4(vec3(bytes) * (1.0 / 255.0), alpha); // alphas are those of the draw
}
#else
uniform vec3 g_es_col;
uniform vec3 g_eh_col;

vec3 selectionColor(int selection) {
    return selection == 1 ? g_es_col : g_eh_col;
}

vec4 ownColorOf(ivec3 bytes, float alpha) {
    return vec4(bytes, alpha) / 255.0; // deliberate: the alpha is scaled down as well
}
#endif

// Whether an element is drawn. `selected` is true for a highlighted element too. color becomes that of its
// selection, else its own, else stays.
bool isElementVisible(int element, int derived, inout vec4 color, out bool ownColor, out bool selected) {
    bool visible = true;
    if ((derived == 1 && g_nvlp == 1) || g_bao == 0)
        visible = texelFetch(g_osbuff, element).r != 0;

    int selection = g_behs == 1 ? texelFetch(g_shcbuff, element).r : 0;
    selected = selection == 1 || selection == 2;
    if (selected)
        color = vec4(selectionColor(selection), 1.0);

    ownColor = false;
    if (g_bem == 1 && !selected) {
        ivec4 texel = texelFetch(g_mcbuff, element);
        ownColor = texel.a != 0;
        if (texel.a == 1)
            color = ownColorOf(texel.rgb, color.a);
    }
    return visible || selected || ownColor;
}
