// A torus in one colour: two lights with highlights in a fragment stage, from memory or from buffers, and by
// fixed function.
#include "bench/peers/gl/gl.h"

namespace nrubench {

namespace {

constexpr const char* kVertex = R"(#version 120
attribute vec3 position, normal;
varying vec3 v_eye, v_normal;
void main() {
    vec4 eye = gl_ModelViewMatrix * vec4(position, 1.0);
    v_eye = eye.xyz;
    v_normal = gl_NormalMatrix * normal;
    gl_Position = gl_ProjectionMatrix * eye;
}
)";
constexpr const char* kFragment = R"(#version 120
varying vec3 v_eye, v_normal;
void main() {
    vec3 normal = normalize(v_normal), view = normalize(-v_eye), color = vec3(0.8, 0.5, 0.2), sum = color * 0.2;
    vec3 lights[2];
    lights[0] = vec3(-2.0, 3.0, 4.0);
    lights[1] = vec3(3.0, 1.0, 2.0);
    for (int i = 0; i < 2; ++i) {
        vec3 toward = normalize(lights[i] - v_eye);
        sum += color * 0.8 * max(dot(normal, toward), 0.0);
        sum += vec3(0.48) * pow(max(dot(normal, normalize(toward + view)), 0.0), 30.0);
    }
    gl_FragColor = vec4(sum, 1.0);
}
)";
constexpr double kCovered = 0.4;

GLsizei indexCount(const Torus& torus) {
    return static_cast<GLsizei>(torus.triangles.size());
}

Work fromMemory(unsigned size) {
    openWindow();
    loadTorusView();
    const auto torus = std::make_shared<Torus>(size);
    makeProgram(kVertex, kFragment, {"position", "normal"});
    return {[=](unsigned) {
                setAttribute(0, 0, 3, GL_FLOAT, torus->positions.data());
                setAttribute(1, 0, 3, GL_FLOAT, torus->normals.data());
                glDrawElements(GL_TRIANGLES, indexCount(*torus), GL_UNSIGNED_INT, torus->triangles.data());
            },
            true, kCovered};
}

// --- fixed function ----------------------------------------------------------------------------------------

void setLight(GLenum light, const std::array<float, 4>& position) {
    const std::array dim = {0.2f, 0.2f, 0.2f, 1.0f}, grey = {0.8f, 0.8f, 0.8f, 1.0f};
    glPushMatrix();
    glLoadIdentity();
    glLightfv(light, GL_POSITION, position.data());
    glPopMatrix();
    glLightfv(light, GL_AMBIENT, dim.data());
    glLightfv(light, GL_DIFFUSE, grey.data());
    glLightfv(light, GL_SPECULAR, grey.data());
    glEnable(light);
}

void openFixed() {
    openWindow();
    loadTorusView();
    setLight(GL_LIGHT0, {-2, 3, 4, 1});
    setLight(GL_LIGHT1, {3, 1, 2, 1});
    const std::array shine = {0.6f, 0.6f, 0.6f, 1.0f};
    glMaterialfv(GL_FRONT_AND_BACK, GL_SPECULAR, shine.data());
    glMaterialf(GL_FRONT_AND_BACK, GL_SHININESS, 30);
    glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, GL_TRUE);
    glEnable(GL_LIGHTING);
    glEnable(GL_COLOR_MATERIAL);
    glColor3f(0.8f, 0.5f, 0.2f);
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_NORMAL_ARRAY);
}

Work fixedFromMemory(unsigned size) {
    openFixed();
    const auto torus = std::make_shared<Torus>(size);
    return {[=](unsigned) {
                glVertexPointer(3, GL_FLOAT, 0, torus->positions.data());
                glNormalPointer(GL_FLOAT, 0, torus->normals.data());
                glDrawElements(GL_TRIANGLES, indexCount(*torus), GL_UNSIGNED_INT, torus->triangles.data());
            },
            true, kCovered};
}

Work fixedFromBuffers(unsigned size) {
    openFixed();
    const Torus torus(size);
    makeBuffer(GL_ARRAY_BUFFER, torus.positions);
    glVertexPointer(3, GL_FLOAT, 0, nullptr);
    makeBuffer(GL_ARRAY_BUFFER, torus.normals);
    glNormalPointer(GL_FLOAT, 0, nullptr);
    makeBuffer(GL_ELEMENT_ARRAY_BUFFER, torus.triangles);
    return {[count = indexCount(torus)](unsigned) {
                glDrawElements(GL_TRIANGLES, count, GL_UNSIGNED_INT, nullptr);
            },
            true, kCovered};
}

} // namespace

std::vector<Case> bodyCases() {
    const std::vector<unsigned> all = {1000, 10000, 100000, 1000000};
    return {{"body.renderer", all, fromMemory, "two lights written out; front faces only"},
            {"body.memory", all, fixedFromMemory, "indices are not checked, no state kept"},
            {"body.buffers", all, fixedFromBuffers, "no state kept"},
            {"body.library_mesh", {100000}, fixedFromMemory, "single precision; indices are not checked"}};
}

} // namespace nrubench
