// Light on one face, by the lights and the material of fixed function, and the corners that get its colour.
#if __VERSION__ >= 150
in vec4 diffuseColor[];
out vec4 Color;
#define POSITION_IN(i) gl_in[i].gl_Position
#else
varying in vec4 diffuseColor[];
varying out vec4 Color;
#define POSITION_IN(i) gl_PositionIn[i]
#endif

uniform int numLights; // part of the interface only: the first two lights always count, and no other

float attenuation(int i, float dist) {
    return 1.0 / (gl_LightSource[i].constantAttenuation + gl_LightSource[i].linearAttenuation * dist +
                  gl_LightSource[i].quadraticAttenuation * dist * dist);
}

// The half vector takes the eye to be on +z, as Blinn (1977) with a viewer at infinity.
float highlight(vec3 N, vec3 L, float s) {
    vec3 H = vec3(0.0, 0.0, 1.0) + L;
    float NdotH = max(dot(N, H), 0.0) / max(length(H), 1e-6); // a light straight behind has no half vector
    return s > 0.0 ? pow(NdotH, s) : 1.0;                     // pow leaves 0 to the power of 0 undefined
}

void pointLight(int i, vec3 V, vec3 N, float s, inout vec4 ambient, inout vec4 diffuse, inout vec4 specular) {
    vec3 D = gl_LightSource[i].position.xyz - V;
    vec3 L = normalize(D);
    float a = attenuation(i, length(D));
    float NdotL = dot(N, L);
    if (NdotL > 0.0) {
        diffuse += gl_LightSource[i].diffuse * a * NdotL;
        specular += gl_LightSource[i].specular * a * highlight(N, L, s);
    }
    ambient += gl_LightSource[i].ambient * a;
}

// Deliberate: the normal stays in object space, so that faces keep their shade while the model turns.
vec4 faceColor(int litCorner) {
    vec3 e1 = POSITION_IN(1).xyz - POSITION_IN(0).xyz;
    vec3 e2 = POSITION_IN(2).xyz - POSITION_IN(0).xyz;
    vec3 N = normalize(cross(e1, e2));
    vec3 V = vec3(gl_ModelViewMatrix * POSITION_IN(litCorner));
    vec4 ambient = vec4(0.0), diffuse = vec4(0.0), specular = vec4(0.0);
    for (int i = 0; i < 2; ++i)
        pointLight(i, V, N, gl_FrontMaterial.shininess, ambient, diffuse, specular);
    vec4 c = diffuseColor[0];
    return gl_LightModel.ambient * c + gl_FrontMaterial.emission +
           (ambient * c + (diffuse * c + specular * gl_FrontMaterial.specular));
}

void emitCorner(int i, vec4 color) {
    Color = color;
    gl_Position = gl_ModelViewProjectionMatrix * POSITION_IN(i);
    gl_ClipVertex = gl_ModelViewMatrix * POSITION_IN(i);
    EmitVertex();
}
