// Triangles first, then quads as lines with adjacency, which have four corners too.
#include "viewer/scene/flatfaces.h"

#include <epoxy/gl.h>

#include <array>

#include "viewer/bodies/bodies.h"
#include "viewer/error.h"
#include "viewer/model/surface.h"
#include "viewer/scene/blockcolors.h"

namespace nruview {

namespace {

std::vector<NgColorLong> cellColors(const ShownModel& shown, const BodySettings& body) {
    std::vector<NgColorLong> colors(shown.model.cellCount(), partColor({}, body));
    for (const ModelPart& part : shown.model.parts)
        for (std::size_t i = 0; i < part.cellCount; ++i)
            colors[part.firstCell + i] = partColor(part, body);
    const std::vector<NgColorLong> own = ownColors(shown);
    for (std::size_t i = 0; i < own.size(); ++i)
        colors[i] = own[i] != 0 ? own[i] : colors[i];
    return colors;
}

/// Light 0 turned with the model for the length of a block: the programs take the normals of faces as they
/// are in model space, but the lamp, which is far away, as it stands before the eye.
class LampOfModel {
public:
    LampOfModel() {
        std::array<float, 16> view{};
        std::array<float, 4> turned{};
        glGetFloatv(GL_MODELVIEW_MATRIX, view.data());
        glGetLightfv(GL_LIGHT0, GL_POSITION, m_position.data());
        for (std::size_t i = 0; i < 3; ++i)
            for (std::size_t k = 0; k < 3; ++k)
                turned[i] += view[4 * i + k] * m_position[k];
        place(turned);
    }
    ~LampOfModel() { place(m_position); }
    LampOfModel(const LampOfModel&) = delete;
    LampOfModel& operator=(const LampOfModel&) = delete;

private:
    static void place(const std::array<float, 4>& eyePosition) {
        glPushMatrix();
        glLoadIdentity();
        glLightfv(GL_LIGHT0, GL_POSITION, eyePosition.data());
        glPopMatrix();
    }
    std::array<float, 4> m_position{};
};

} // namespace

void drawFlatFaces(const ShownModel& shown, const BodySettings& body) {
    const std::vector<NgColorLong> colors = cellColors(shown, body);
    const LampOfModel lamp;
    for (const int kind : {GL_TRIANGLES, GL_LINES_ADJACENCY}) {
        const std::size_t corners = kind == GL_TRIANGLES ? 3 : 4;
        if (NglInitMeshRenderShader(kind) != 0)
            throw ViewerError("--legacy", "the driver has no programs with geometry stages");
        glBegin(static_cast<GLenum>(kind));
        forEachFace(shown.surface, [&](std::span<const std::uint32_t> face, std::uint32_t cell) {
            if (face.size() != corners || !shown.elements.isShown(cell))
                return;
            ngl_set_color_long(colors[cell]);
            for (const std::uint32_t corner : face)
                glVertex3dv(shown.points[corner].data());
        });
        glEnd();
        NglEndMeshRenderShader();
    }
}

} // namespace nruview
