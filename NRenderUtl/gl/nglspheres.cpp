// Spheres that keep their size on the screen.
#include <span>

#include "NRenderUtl/gl/nglrecord.h"
#include "NRenderUtl/gl/spherepolyhedron.h"
#include "NRenderUtl/gl/stateguards.h"

namespace {

using Floats = std::span<const float>;

/// How a sphere finds its colour in the contour texture.
struct Texturing {
    bool on, first, second;
    void issue(float value) const {
        if (!on)
            return; // the current coordinate stays in force
        if (!first && !second)
            glTexCoord2f(value, 0);
        if (first)
            glTexCoord2f(0, 0.25f);
        if (second)
            glTexCoord2f(0, 0.5f);
    }
};

float valueAt(Floats values, std::size_t i) {
    return i < values.size() ? values[i] : 0;
}

/// The polyhedron's triangles run the other way round than those of other shapes. Seen from outside they are
/// fronts none the less, for hosts that cull or light both sides.
class ReversedFrontsGuard {
public:
    ReversedFrontsGuard() {
        glGetIntegerv(GL_FRONT_FACE, &m_was);
        glFrontFace(m_was == GL_CW ? GL_CCW : GL_CW); // CW in a mirrored view
    }
    ~ReversedFrontsGuard() { glFrontFace(static_cast<GLenum>(m_was)); }
    ReversedFrontsGuard(const ReversedFrontsGuard&) = delete;
    ReversedFrontsGuard& operator=(const ReversedFrontsGuard&) = delete;

private:
    GLint m_was;
};

void drawSphere(const _NgFPoint3Str& center, float radius, const SpherePolyhedron& sphere) {
    glPushMatrix();
    glTranslatef(center.x, center.y, center.z);
    glScalef(radius, radius, radius);
    glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(sphere.indices.size()), GL_UNSIGNED_INT,
                   sphere.indices.data());
    glPopMatrix();
}

void drawSpheres(std::span<const _NgFPoint3Str> centers, Floats radiiPx, Floats values,
                 const Texturing& texturing) {
    // Deliberate: both stay, as hosts draw other lit shapes after the spheres.
    glShadeModel(GL_SMOOTH);
    glEnable(GL_NORMALIZE);
    const SpherePolyhedron& sphere = nglSpherePolyhedron();
    const ClientArraysGuard arrays;
    const PlainIndicesGuard indices;
    const ReversedFrontsGuard fronts;
    const MatrixModeGuard mode;
    GLfloat normal[3];
    glGetFloatv(GL_CURRENT_NORMAL, normal);
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_NORMAL_ARRAY);
    glVertexPointer(3, GL_FLOAT, 0, sphere.vertices.data());
    glNormalPointer(GL_FLOAT, 0, sphere.vertices.data());
    glMatrixMode(GL_MODELVIEW);
    for (std::size_t i = 0; i < centers.size(); ++i) {
        texturing.issue(valueAt(values, i));
        drawSphere(centers[i], nglRecord().live.pixelSize * valueAt(radiiPx, i), sphere);
    }
    glNormal3fv(normal); // the array leaves it undefined
}

/// An array of the host's; none when it is null.
template <class T>
std::span<const T> elements(const T* data, int count) {
    return {data, data && count > 0 ? static_cast<std::size_t>(count) : 0};
}

} // namespace

void NglDrawSpheresWithRadius(int count, const float* centers, const float* radii, const float* values,
                              int textured, int a, int b) {
    static_assert(sizeof(_NgFPoint3Str) == 3 * sizeof(float));
    const auto* points = reinterpret_cast<const _NgFPoint3Str*>(centers);
    drawSpheres(elements(points, count), elements(radii, count), elements(values, count),
                {textured != 0, a != 0, b != 0});
}

void NglDrawSpheres(const std::vector<_NgFPoint3Str>& centers, const std::vector<float>& radii,
                    const std::vector<float>& values, int textured, int a, int b) {
    drawSpheres(centers, radii, values, {textured != 0, a != 0, b != 0});
}

void NglDrawSpheres(int count, const _NgFPoint3Str* centers, float radius, const float* values, int textured,
                    int a, int b) {
    const auto points = elements(centers, count);
    const std::vector<float> radii(points.size(), radius);
    drawSpheres(points, radii, elements(values, count), {textured != 0, a != 0, b != 0});
}
