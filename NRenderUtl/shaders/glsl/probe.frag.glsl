#version 150 compatibility
#extension GL_EXT_gpu_shader4 : enable
// Green where the first five texels of every buffer switched on are as expected, nothing elsewhere.

uniform samplerBuffer g_buff1;
uniform isamplerBuffer g_ibuff1;
uniform isamplerBuffer g_ibuff2;
uniform isamplerBuffer g_ibuff3;
uniform int g_bBuff1;
uniform int g_biBuff1;
uniform int g_biBuff2;
uniform int g_biBuff3;

void main() {
    for (int i = 0; i < 5; ++i) {
        if (g_biBuff2 == 1 && texelFetch(g_ibuff2, i).r != (i + 1) * 10)
            discard;
        if (g_biBuff1 == 1 && texelFetch(g_ibuff1, i).r != i + 5)
            discard;
        if (g_biBuff3 == 1 && texelFetch(g_ibuff3, i) != ivec4(i))
            discard;
        if (g_bBuff1 == 1 && texelFetch(g_buff1, i).r != float(i))
            discard;
    }
    gl_FragColor = vec4(0.0, 1.0, 0.0, 1.0);
}
