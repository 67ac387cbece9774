// Library meshes, glyphs, boundary meshes and element meshes.
#include <epoxy/gl.h>

#include <array>
#include <memory>

#include "NRenderUtl/NRenderUtl.h"
#include "viewer/contract/families.h"

namespace nruview {

namespace {

// --- library meshes ----------------------------------------------------------------------------------------

std::array<double, 24> cubeCoords() {
    std::array<double, 24> coords;
    for (std::size_t i = 0; i < 8; ++i)
        for (std::size_t k = 0; k < 3; ++k)
            coords[3 * i + k] = (i >> k & 1) != 0 ? 0.55 : -0.55;
    return coords;
}

std::array<unsigned, 24> cubeQuads() {
    return {0, 2, 3, 1, 4, 5, 7, 6, 0, 1, 5, 4, 1, 3, 7, 5, 3, 2, 6, 7, 2, 0, 4, 6};
}

void freeMesh(_NgMeshStr* mesh) {
    NglDestroyMesh(mesh);
    NHostFree(mesh);
}

std::shared_ptr<_NgMeshStr> cube() {
    std::array<double, 24> coords = cubeCoords();
    std::array<unsigned, 24> quads = cubeQuads();
    _NgMeshStr* mesh = ngl_create_mesh(8, coords.data(), coords.data(), 0, 0, 1);
    ngl_add_connect(mesh, 6, 4, quads.data(), 1);
    return {mesh, freeMesh};
}

template <unsigned flags>
std::function<void()> makeMesh() {
    return [mesh = cube()] { ngl_mesh(mesh.get(), flags); };
}

std::function<void()> makeContourMesh() {
    return [mesh = cube()] {
        std::array<float, 8> values = {0.05f, 0.4f, 0.9f, 0.2f, 0.7f, 0.1f, 0.5f, 0.8f};
        NglEnableTexture(GL_TEXTURE_2D);
        ngl_mesh_contour_draw(mesh.get(), NglMeshFaces, values.data());
        NglDisableTexture(GL_TEXTURE_2D);
    };
}

void drawScaledMesh() {
    NglSetMeshScaleFactor(-1);
    const auto mesh = cube();
    ngl_mesh(mesh.get(), NglMeshFaces);
    NglSetMeshScaleFactor(0);
}

void drawGlyphs() {
    Ngl_Shape_Hyper_Ellipsoid(0.8, 0.4, 0.5, 4, 16);
}

std::function<void()> makeDiscs() {
    _NgMeshStr* disc = nullptr;
    ngl_create_elliptic_mesh(2, 16, 2, nullptr, &disc);
    return [disc = std::shared_ptr<_NgMeshStr>(disc, freeMesh)] {
        double matrix[4][4];
        _NgPoint3Str centre{0.2, 0.1, 0.2};
        ngl_get_global_matrix(matrix);
        ngl_draw_ellip_ngmesh(disc.get(), 0.7, 0.4, &centre, &matrix, 1, NglMeshFaces);
    };
}

// --- boundary meshes ---------------------------------------------------------------------------------------

/// A cube of twelve triangles in the host's own form.
struct Boundary {
    Boundary() {
        const std::array<double, 24> coords = cubeCoords();
        const std::array<unsigned, 24> quads = cubeQuads();
        for (std::size_t i = 0; i < 24; ++i) {
            vertices[i] = static_cast<float>(coords[i]);
            normals[i] = static_cast<float>(coords[i] * 1.05);
        }
        for (std::size_t quad = 0; quad < 6; ++quad)
            for (std::size_t k = 0; k < 6; ++k)
                indices[6 * quad + k] = quads[4 * quad + std::array<std::size_t, 6>{0, 1, 2, 0, 2, 3}[k]];
        block = {3, 12, indices.data(), nullptr};
        mesh = {8, vertices.data(), normals.data(), &block};
    }
    ~Boundary() {
        if (buffers)
            NRenderNgMeshRenderer::DeleteVboInfo(buffers);
    }
    Boundary(const Boundary&) = delete;
    Boundary& operator=(const Boundary&) = delete;
    void makeBuffers() {
        NRenderNgMeshRenderer::CreateVboInfo(buffers);
        NRenderNgMeshRenderer::UpdateBuffers(&mesh, buffers);
    }
    std::array<float, 24> vertices, normals;
    std::array<std::uint32_t, 36> indices;
    _NskBdryElemStr block;
    _NskBdryMeshStr mesh;
    _RenderFMeshVboStr* buffers = nullptr;
};

/// Colours are the host's to set around it, as the interface asks.
template <class Draw>
void shaded(const Draw& draw) {
    NRenderNgMeshRenderer::SetShadingProperties(0, 4, false, 0);
    draw();
    NRenderNgMeshRenderer::ResetShadingProperties();
}

template <bool bySide>
std::function<void()> makeBufferedBoundary() {
    auto boundary = std::make_shared<Boundary>();
    boundary->makeBuffers();
    return [boundary] {
        shaded([&] {
            bySide ? NRenderNgMeshRenderer::BindAndDrawMesh(boundary->buffers, &boundary->mesh, 3, 5)
                   : NRenderNgMeshRenderer::BindAndDrawMesh(boundary->buffers, &boundary->mesh);
        });
    };
}

template <bool bySide>
std::function<void()> makeBoundary() {
    return [boundary = std::make_shared<Boundary>()] {
        shaded([&] {
            bySide ? NRenderNgMeshRenderer::DrawWithoutVBO(&boundary->mesh, false, 3, 5)
                   : NRenderNgMeshRenderer::DrawWithoutVBO(&boundary->mesh, false);
        });
    };
}

// --- element meshes ----------------------------------------------------------------------------------------

constexpr std::uint32_t kSide = 5, kRow = kSide + 1;

/// A wavy sheet of quads, every third of them two triangles of one element.
struct Sheet {
    Sheet() {
        for (std::uint32_t i = 0; i < kRow * kRow; ++i) {
            const double x = 1.8 * (i % kRow) / kSide - 0.9, y = 1.8 * (i / kRow) / kSide - 0.9;
            nodes.insert(nodes.end(), {x, y, 0.3 * x * y + 0.1 * x});
            values.push_back(static_cast<float>(0.5 + 0.3 * x + 0.25 * y));
        }
        for (std::uint32_t cell = 0; cell < kSide * kSide; ++cell) {
            const std::uint32_t a = cell / kSide * kRow + cell % kSide, b = a + 1, c = b + kRow, d = a + kRow;
            if (cell % 3 == 0) {
                triangles.insert(triangles.end(), {a, b, c, a, c, d});
                ofTriangles.insert(ofTriangles.end(), 2, cell);
            } else {
                quads.insert(quads.end(), {a, b, c, d});
                ofQuads.push_back(cell);
            }
        }
    }
    ngl::NglElementMeshInput input() const {
        ngl::NglElementMeshInput input;
        input.nodeCount = kRow * kRow;
        input.nodes = nodes.data();
        input.triangleCount = static_cast<std::uint32_t>(ofTriangles.size());
        input.triangles = triangles.data();
        input.triangleElements = ofTriangles.data();
        input.quadCount = static_cast<std::uint32_t>(ofQuads.size());
        input.quads = quads.data();
        input.quadElements = ofQuads.data();
        return input;
    }
    std::vector<double> nodes;
    std::vector<float> values;
    std::vector<std::uint32_t> triangles, ofTriangles, quads, ofQuads;
};

enum Look { NodeBands, ElementBands, Facts, Transparent };

void dress(ngl::NglElementMesh& mesh, Look look, ngl::NglElementAttributes& how) {
    RenderColorScale scale = NglGetActiveTextureInfo()->colorScale;
    const std::vector<float> values = Sheet().values;
    if (look == NodeBands || look == ElementBands) {
        mesh.SetColorScale(&scale);
        look == NodeBands ? mesh.SetNodeValues(values.data()) : mesh.SetElementValues(values.data());
        return;
    }
    how.frontAndBack = true;
    how.frontColor = 0xFF40A0E0;
    how.backColor = 0xFFE04060;
    mesh.SetColor(ngl::NglElements::Range(5, 6), 0xFF30E0A0);
    mesh.SetVisible(ngl::NglElements::Range(12, 2), false);
    mesh.SetSelection(ngl::NglElements::One(17), ngl::NglElementSelected);
    mesh.SetSelection(ngl::NglElements::One(7), ngl::NglElementHighlighted);
    if (look == Transparent)
        how.opacity = 0.6f;
}

/// In a frame of its own when what is picked under the middle of the window is not an element of the mesh.
template <Look look, ngl::NglElementRoute route>
std::function<void()> makeElements() {
    auto mesh = std::make_shared<ngl::NglElementMesh>();
    mesh->Create(Sheet().input());
    ngl::NglElementAttributes how;
    how.route = route;
    dress(*mesh, look, how);
    mesh->SetAttributes(how);
    return [mesh] {
        ngl::NglElementPick picked;
        if (mesh->PickPixel(40, 20, &picked))
            mesh->Draw();
    };
}

} // namespace

std::vector<Family> meshFamilies() {
    using enum FamilyKind;
    using namespace ngl;
    return {
        {"library mesh, faces and edges", Lit, nullptr, makeMesh<NglMeshFaces | NglMeshEdges>},
        {"library mesh, flat and silhouette", Lit, nullptr,
         makeMesh<NglMeshFaces | NglMeshFlat | NglMeshSilhouette>},
        {"library mesh, contoured", Lit, nullptr, makeContourMesh},
        {"library mesh, scaled", Lit, drawScaledMesh},
        {"hyper-ellipsoids", Lit, drawGlyphs},
        {"elliptic discs", Lit, nullptr, makeDiscs},
        {"boundary mesh, buffers", Lit, nullptr, makeBufferedBoundary<false>},
        {"boundary mesh, buffers, by side", Lit, nullptr, makeBufferedBoundary<true>},
        {"boundary mesh, memory", Lit, nullptr, makeBoundary<false>},
        {"boundary mesh, memory, by side", Lit, nullptr, makeBoundary<true>},
        {"element mesh, node bands", Elements, nullptr, makeElements<NodeBands, NglElementRouteAutomatic>,
         true},
        {"element mesh, element bands", Elements, nullptr,
         makeElements<ElementBands, NglElementRouteAutomatic>, true},
        {"element mesh, marked", Elements, nullptr, makeElements<Facts, NglElementRouteAutomatic>, true},
        {"element mesh, transparent", Elements, nullptr, makeElements<Transparent, NglElementRouteAutomatic>,
         true},
        {"element mesh, catalogue, bands", Elements, nullptr, makeElements<NodeBands, NglElementRouteMesh>,
         true},
        {"element mesh, catalogue, marked", Elements, nullptr, makeElements<Facts, NglElementRouteMesh>,
         true},
        {"element mesh, geometry stages", Elements, nullptr, makeElements<Facts, NglElementRouteGeometry>,
         true},
        {"element mesh, fixed, node bands", FixedElements, nullptr,
         makeElements<NodeBands, NglElementRouteFixed>},
        {"element mesh, fixed, marked", FixedElements, nullptr, makeElements<Facts, NglElementRouteFixed>},
        {"element mesh, fixed, transparent", FixedElements, nullptr,
         makeElements<Transparent, NglElementRouteFixed>},
    };
}

} // namespace nruview
