// Cylinders and spheres as instances of a unit shape, and spheres found by rays in point sprites.
#include "bench/peers/gl/gl.h"

namespace nrubench {

namespace {

constexpr const char* kInstanceVertex = R"(#version 130
in vec3 position, normal, start, axis;
in float ratio;
in vec4 color;
flat out vec3 v_color;
out vec3 v_eye, v_normal;
uniform bool isSphere;
void main() {
    float size = length(axis);
    vec3 z = axis / size, x = normalize(abs(z.x) < 0.9 ? cross(z, vec3(1.0, 0.0, 0.0)) : cross(z, vec3(0.0, 1.0, 0.0)));
    mat3 turn = mat3(x, cross(z, x), z);
    vec3 scale = isSphere ? axis : vec3(ratio * size, ratio * size, size);
    if (isSphere)
        turn = mat3(1.0);
    vec4 eye = gl_ModelViewMatrix * vec4(start + turn * (position * scale), 1.0);
    v_eye = eye.xyz;
    v_normal = gl_NormalMatrix * (turn * normal);
    v_color = color.rgb;
    gl_Position = gl_ProjectionMatrix * eye;
}
)";
constexpr const char* kInstanceFragment = R"(#version 130
flat in vec3 v_color;
in vec3 v_eye, v_normal;
out vec4 result;
vec3 lit(vec3 color, vec3 normal, vec3 eye) {
    return color * (0.2 + 0.8 * abs(dot(normalize(normal), normalize(vec3(-2000.0, 3000.0, 4000.0) - eye))));
}
void main() {
    result = vec4(lit(v_color, v_normal, v_eye), 1.0);
}
)";
constexpr const char* kRayVertex = R"(#version 130
in vec3 centre, diameter;
in vec4 color;
flat out vec3 v_color;
flat out vec4 v_sphere;
void main() {
    vec4 eye = gl_ModelViewMatrix * vec4(centre, 1.0);
    v_sphere = vec4(eye.xyz, 0.5 * diameter.x);
    v_color = color.rgb;
    gl_Position = gl_ProjectionMatrix * eye;
    gl_PointSize = diameter.x; // model units are pixels
}
)";
constexpr const char* kRayFragment = R"(#version 130
flat in vec3 v_color;
flat in vec4 v_sphere;
out vec4 result;
vec3 lit(vec3 color, vec3 normal, vec3 eye) {
    return color * (0.2 + 0.8 * abs(dot(normalize(normal), normalize(vec3(-2000.0, 3000.0, 4000.0) - eye))));
}
void main() {
    vec2 at = 2.0 * gl_PointCoord - 1.0;
    float rest = 1.0 - dot(at, at);
    if (rest < 0.0)
        discard;
    vec3 normal = vec3(at.x, -at.y, sqrt(rest)), eye = v_sphere.xyz + v_sphere.w * normal;
    result = vec4(lit(v_color, normal, eye), 1.0);
    vec4 clip = gl_ProjectionMatrix * vec4(eye, 1.0);
    gl_FragDepth = 0.5 * clip.z / clip.w + 0.5;
}
)";

using Sets = std::vector<Markers>;

std::shared_ptr<Sets> openSets(unsigned size) {
    openWindow();
    loadBox(kPixelView);
    return std::make_shared<Sets>(markerSets(size));
}

/// Locations 2 to 4 hold what each instance has, uploaded in each frame.
std::function<Work(unsigned)> instances(bool spheres) {
    return [=](unsigned size) {
        const auto sets = openSets(size);
        const UnitShape shape = spheres ? makeSphere(32, 32) : makeCylinder(16);
        const GLuint program =
            makeProgram(kInstanceVertex, kInstanceFragment, {"position", "normal", "start", "axis", "color"});
        glVertexAttrib1f(static_cast<GLuint>(glGetAttribLocation(program, "ratio")), kWidthRatio);
        glUniform1i(glGetUniformLocation(program, "isSphere"), spheres);
        setAttribute(0, makeBuffer(GL_ARRAY_BUFFER, shape.positions), 3, GL_FLOAT);
        setAttribute(1, makeBuffer(GL_ARRAY_BUFFER, shape.normals), 3, GL_FLOAT);
        makeBuffer(GL_ELEMENT_ARRAY_BUFFER, shape.triangles);
        for (const GLuint location : {2u, 3u, 4u})
            glVertexAttribDivisor(location, 1);
        return Work{[=, indices = static_cast<GLsizei>(shape.triangles.size())](unsigned turn) {
                        const Markers& markers = (*sets)[turn % kMarkerSets];
                        setAttribute(2, 0, 3, GL_FLOAT, markers.starts.data());
                        setAttribute(3, 0, 3, GL_FLOAT,
                                     spheres ? markers.diameters.data() : markers.vectors.data());
                        setAttribute(4, 0, 4, GL_UNSIGNED_BYTE, markers.colors.data());
                        glDrawElementsInstanced(GL_TRIANGLES, indices, GL_UNSIGNED_INT, nullptr,
                                                static_cast<GLsizei>(markers.starts.size()));
                    },
                    true, 0.3};
    };
}

Work sphereSprites(unsigned size) {
    const auto sets = openSets(size);
    makeProgram(kRayVertex, kRayFragment, {"centre", "diameter", "color"});
    glEnable(GL_POINT_SPRITE);
    glEnable(GL_PROGRAM_POINT_SIZE);
    return {[=](unsigned turn) {
                const Markers& markers = (*sets)[turn % kMarkerSets];
                setAttribute(0, 0, 3, GL_FLOAT, markers.starts.data());
                setAttribute(1, 0, 3, GL_FLOAT, markers.diameters.data());
                setAttribute(2, 0, 4, GL_UNSIGNED_BYTE, markers.colors.data());
                glDrawArrays(GL_POINTS, 0, static_cast<GLsizei>(markers.starts.size()));
            },
            true, 0.3};
}

/// A draw and its uniforms for each marker.
std::function<Work(unsigned)> singles(bool spheres) {
    return [=](unsigned size) {
        const auto sets = openSets(size);
        const UnitShape shape = spheres ? makeSphere(32, 32) : makeCylinder(16);
        const GLuint program =
            makeProgram(kInstanceVertex, kInstanceFragment, {"position", "normal", "start", "axis", "color"});
        glVertexAttrib1f(static_cast<GLuint>(glGetAttribLocation(program, "ratio")), kWidthRatio);
        glUniform1i(glGetUniformLocation(program, "isSphere"), spheres);
        setAttribute(0, makeBuffer(GL_ARRAY_BUFFER, shape.positions), 3, GL_FLOAT);
        setAttribute(1, makeBuffer(GL_ARRAY_BUFFER, shape.normals), 3, GL_FLOAT);
        makeBuffer(GL_ELEMENT_ARRAY_BUFFER, shape.triangles);
        return Work{[=, indices = static_cast<GLsizei>(shape.triangles.size())](unsigned turn) {
                        const Markers& markers = (*sets)[turn % kMarkerSets];
                        const auto& axes = spheres ? markers.diameters : markers.vectors;
                        for (std::size_t i = 0; i < axes.size(); ++i) {
                            glVertexAttrib3fv(2, markers.starts[i].data());
                            glVertexAttrib3fv(3, axes[i].data());
                            glVertexAttrib4Nubv(4, reinterpret_cast<const GLubyte*>(&markers.colors[i]));
                            glDrawElements(GL_TRIANGLES, indices, GL_UNSIGNED_INT, nullptr);
                        }
                    },
                    true, 0.3};
    };
}

} // namespace

std::vector<Case> markerCases() {
    const std::vector<unsigned> all = {1000, 10000, 100000};
    const char *note = "one light without highlights; one colour for a marker, none selected, no alpha",
               *sprites =
                   "one light without highlights; round only in parallel views, radii alike in x, y, z";
    return {{"markers.single", {1000, 10000}, singles(false), note},
            {"markers.exact_array", all, instances(false), note},
            {"markers.array", all, instances(false), note},
            {"spheres.single", {1000}, singles(true), note},
            {"spheres.exact_array", {1000}, instances(true), note},
            {"spheres.array", all, sphereSprites, sprites}};
}

} // namespace nrubench
