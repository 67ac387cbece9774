// Fragment stage of the face shading programs.
in vec4 Color;

uniform int bTransparent;
uniform float alphaValue;

void main() {
    gl_FragColor = Color;
    if (1 == bTransparent)
        gl_FragColor.a = alphaValue;
}
