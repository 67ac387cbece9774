#version 150 compatibility
// Vertex stage of the mesh renderer's physically based programs. What is constant for a draw is computed here
// and handed on flat, which a driver in software reads far faster than uniforms.

in vec3 g_pos_attrib;
in vec3 g_vnorm_attrib;

uniform mat4 g_mvmat;
uniform mat4 g_projmat;
uniform int g_clipped;
uniform vec3 g_cameraposition;
uniform vec3 g_color;
uniform int g_bfbcol;
uniform vec4 g_fcolor;
uniform vec4 g_bcolor;
struct g_PBRMatParams {
    float metalness;
    float roughness;
    float reflectivity;
    float amb_occlusion;
};
uniform g_PBRMatParams g_pbrMat;

out VertexData {
    vec3 toViewer; // not of unit length
    vec3 normal;
    flat vec3 frontAlbedo;
    flat vec3 backAlbedo;
    flat vec4 material; // metalness, roughness, reflectivity of the share that is no metal, share of diffuse light
} VertexOut;

void main() {
    vec4 eye = g_mvmat * vec4(g_pos_attrib, 1.0);
    gl_Position = g_projmat * eye;
    gl_ClipVertex = g_clipped == 1 ? eye : vec4(0.0); // zero lies on every plane: never clipped

    VertexOut.toViewer = g_cameraposition - g_pos_attrib;
    VertexOut.normal = normalize(g_vnorm_attrib);
    VertexOut.frontAlbedo = pow(g_bfbcol == 1 ? g_fcolor.rgb : g_color, vec3(2.2));
    VertexOut.backAlbedo = pow(g_bfbcol == 1 ? g_bcolor.rgb : g_color, vec3(2.2));
    VertexOut.material = vec4(g_pbrMat.metalness, g_pbrMat.roughness,
                              g_pbrMat.reflectivity * (1.0 - g_pbrMat.metalness), 1.0 - g_pbrMat.metalness);
}
