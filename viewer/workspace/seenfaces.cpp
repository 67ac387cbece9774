// Each face is an element of a mesh without light, in the colour that is its number.
#include "viewer/workspace/seenfaces.h"

#include <epoxy/gl.h>

#include <new>
#include <numeric>

#include "NRenderUtl/NRenderUtl.h"
#include "viewer/error.h"
#include "viewer/scene/frame.h"
#include "viewer/section/capscene.h"
#include "viewer/section/clipplane.h"

namespace nruview {

namespace {

constexpr float kDepthSlack = 1e-4f;      ///< a beam along a face lies at the face's depth
constexpr std::uint32_t kNone = 0xFFFFFF; ///< background

/// The window's place taken by a framebuffer object for the length of a block.
class OwnFramebuffer {
public:
    OwnFramebuffer(int width, int height) : m_bound(NglGetBoundFBO()) {
        NglCreateFBO(static_cast<unsigned>(width), static_cast<unsigned>(height), GL_RGBA, GL_UNSIGNED_BYTE,
                     &m_info);
        if (m_info.framebuffer == 0)
            throw ViewerError("selection", "the driver has no framebuffer to find what is visible");
    }
    ~OwnFramebuffer() {
        NglBindFrameBuffer(static_cast<unsigned>(m_bound));
        NglDestroyFBO(&m_info);
    }
    OwnFramebuffer(const OwnFramebuffer&) = delete;
    OwnFramebuffer& operator=(const OwnFramebuffer&) = delete;

private:
    int m_bound;
    _NglFBOInfoStr m_info{};
};

/// The shown faces, each an element of the mesh.
ngl::NglElementMesh numberedFaces(const ShownModel& shown) {
    const Surface& surface = shown.surface;
    std::vector<std::uint32_t> numbers(surface.triangles.size() + surface.quads.size());
    std::iota(numbers.begin(), numbers.end(), 0u);
    ngl::NglElementMesh mesh;
    ngl::NglElementMeshInput input;
    input.nodeCount = static_cast<std::uint32_t>(shown.points.size());
    input.nodes = shown.points.data()->data();
    input.triangleCount = static_cast<std::uint32_t>(surface.triangles.size());
    input.triangles = input.triangleCount != 0 ? surface.triangles.data()->data() : nullptr;
    input.triangleElements = numbers.data();
    input.quadCount = static_cast<std::uint32_t>(surface.quads.size());
    input.quads = input.quadCount != 0 ? surface.quads.data()->data() : nullptr;
    input.quadElements = numbers.data() + surface.triangles.size();
    input.elementCount = static_cast<std::uint32_t>(numbers.size());
    if (numbers.empty())
        return mesh;
    if (numbers.size() >= kNone)
        throw ViewerError("selection", "there are too many faces to tell which of them are visible");
    if (mesh.Create(input) != 0 ||
        mesh.SetColors(ngl::NglElements::Range(0, input.elementCount), numbers.data()) != 0)
        throw std::bad_alloc();
    std::uint32_t face = 0;
    forEachFace(surface, [&](auto, std::uint32_t cell) {
        if (!shown.elements.isShown(cell) && mesh.SetVisible(ngl::NglElements::One(face), false) != 0)
            throw std::bad_alloc();
        ++face;
    });
    ngl::NglElementAttributes attributes;
    attributes.lit = false;
    mesh.SetAttributes(attributes);
    return mesh;
}

/// The polygons that close a cut, with numbers behind those of the faces.
CapScene numberedCut(const ShownModel& shown) {
    const Surface& surface = shown.surface;
    const auto first = static_cast<std::uint32_t>(surface.triangles.size() + surface.quads.size());
    CapLook look;
    look.color = [&shown, first](const Cut::Polygon& polygon) {
        return first + static_cast<std::uint32_t>(&polygon - shown.section->cut.polygons.data());
    };
    look.lit = false;
    return {shown, look};
}

} // namespace

SeenFaces::SeenFaces(const ShownModel& shown, const Camera& camera, int width, int height)
    : m_width(width), m_height(height), m_isSeen(shown.surface.triangles.size() + shown.surface.quads.size() +
                                                 (shown.section ? shown.section->cut.polygons.size() : 0)) {
    ngl::NglElementMesh mesh = numberedFaces(shown);
    const OwnFramebuffer framebuffer(width, height);
    beginFrame(camera, shown.bounds, width, height, kNone);
    if (shown.section) {
        const PlaneInForce plane(shown.section->plane);
        mesh.Draw();
    } else {
        mesh.Draw();
    }
    if (shown.section)
        numberedCut(shown).drawFaces();
    readBack();
}

void SeenFaces::readBack() {
    std::vector<std::uint32_t> pixels(static_cast<std::size_t>(m_width) * m_height);
    m_depths.resize(pixels.size());
    glReadPixels(0, 0, m_width, m_height, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    glReadPixels(0, 0, m_width, m_height, GL_DEPTH_COMPONENT, GL_FLOAT, m_depths.data());
    for (const std::uint32_t pixel : pixels)
        if (const std::uint32_t face = pixel & kNone; face < m_isSeen.size())
            m_isSeen[face] = true;
}

bool SeenFaces::isInFront(const Point& point) const {
    double sx = 0.0, sy = 0.0, depth = 0.0;
    ngl_transform_33(point[0], point[1], point[2], &sx, &sy, &depth);
    const auto x = static_cast<int>(sx), y = m_height - 1 - static_cast<int>(sy);
    if (x < 0 || x >= m_width || y < 0 || y >= m_height)
        return false;
    return static_cast<float>(depth) <= m_depths[static_cast<std::size_t>(y) * m_width + x] + kDepthSlack;
}

} // namespace nruview
