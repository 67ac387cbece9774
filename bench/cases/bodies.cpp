// Bodies of one colour: the mesh renderer, boundary meshes from buffers and from memory, library meshes.
#include <epoxy/gl.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <unistd.h>

#include "bench/cases/cases.h"

namespace nrubench {

namespace {

constexpr double kCovered = 0.4;

// --- the mesh renderer -------------------------------------------------------------------------------------

struct Look {
    bool physicallyBased = false, environment = false, transparent = false;
};

/// Surroundings of one radiance, which cost as much as any.
void setEnvironment() {
    const std::filesystem::path path =
        std::filesystem::temp_directory_path() / ("nru_bench" + std::to_string(getpid()) + ".hdr");
    std::ofstream file(path, std::ios::binary);
    file << "#?RADIANCE\nFORMAT=32-bit_rle_rgbe\n\n-Y 2 +X 4\n";
    for (int pixel = 0; pixel < 8; ++pixel)
        file << "\x80\x80\x80\x81";
    file.close();
    using Handler = NImageBasedLightHandler;
    check(!Handler::SetHDRImage(path.wstring().c_str(), Handler::ImageUpZ), "no environment");
    Handler::Initialize();
    std::filesystem::remove(path);
    check(Handler::IsValid(), "no maps");
}

void setLook(ngl::NglMeshRenderer& renderer, const Look& look) {
    NRenderMaterialApperanceHandler::Add("Steel", {0.9f, 0.35f, 1.0f, 0.6f});
    EnablePhysicallyBasedRendering(look.physicallyBased);
    EnableEnvironmentReflection(look.environment);
    if (look.environment)
        setEnvironment();
    renderer.SetColor(8);
    renderer.SetRenderMaterial(L"Steel");
    renderer.EnableTransparency(look.transparent);
    renderer.SetAlpha(look.transparent ? 128 : 0);
    if (look.transparent)
        glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
}

std::function<Work(unsigned)> renderer(const Look& look) {
    using ngl::NglMeshRenderer;
    return [=](unsigned size) {
        openTorusView();
        const auto torus = std::make_shared<Torus>(size);
        const auto renderer = std::make_shared<NglMeshRenderer>();
        setLook(*renderer, look);
        const auto pass =
            look.transparent ? NglMeshRenderer::RenderPassTransparent : NglMeshRenderer::RenderPassOpaque;
        return Work{[=](unsigned) {
                        check(renderer->RenderBegin(pass), "no program");
                        renderer->Render(torus->positions.data(), torus->normals.data(),
                                         static_cast<unsigned>(torus->triangles.size() / 3),
                                         torus->triangles.data(), 0, nullptr);
                        renderer->RenderEnd();
                    },
                    true, kCovered};
    };
}

// --- boundary meshes ---------------------------------------------------------------------------------------

struct Boundary {
    explicit Boundary(unsigned size) : torus(size) {
        elements.elementCount = static_cast<std::uint32_t>(torus.triangles.size() / 3);
        elements.indices = torus.triangles.data();
        mesh.vertexCount = static_cast<std::int32_t>(torus.positions.size() / 3);
        mesh.vertices = torus.positions.data();
        mesh.normals = torus.normals.data();
        mesh.elements = &elements;
        openTorusView();
        glEnable(GL_LIGHTING);
        glEnable(GL_COLOR_MATERIAL);
    }

    Torus torus;
    _NskBdryElemStr elements{3, 0, nullptr, nullptr};
    _NskBdryMeshStr mesh{};
};

Work fromMemory(unsigned size) {
    return {[boundary = std::make_shared<Boundary>(size)](unsigned) {
                NRenderNgMeshRenderer::SetShadingProperties(0, 8, false, 0);
                NRenderNgMeshRenderer::DrawWithoutVBO(&boundary->mesh, false);
                NRenderNgMeshRenderer::ResetShadingProperties();
            },
            true, kCovered};
}

Work fromBuffers(unsigned size) {
    const auto boundary = std::make_shared<Boundary>(size);
    _RenderFMeshVboStr* buffers = nullptr;
    NRenderNgMeshRenderer::CreateVboInfo(buffers);
    NRenderNgMeshRenderer::UpdateBuffers(&boundary->mesh, buffers);
    return {[=](unsigned) {
                NRenderNgMeshRenderer::SetShadingProperties(0, 8, false, 0);
                check(!NRenderNgMeshRenderer::BindAndDrawMesh(buffers, &boundary->mesh), "no buffers");
                NRenderNgMeshRenderer::ResetShadingProperties();
            },
            true, kCovered};
}

// --- library meshes ----------------------------------------------------------------------------------------

Work libraryMesh(unsigned size) {
    Torus torus(size);
    openTorusView();
    glEnable(GL_LIGHTING);
    glEnable(GL_COLOR_MATERIAL);
    std::vector<double> coords(torus.positions.begin(), torus.positions.end()),
        normals(torus.normals.begin(), torus.normals.end());
    _NgMeshStr* mesh =
        ngl_create_mesh(static_cast<unsigned>(coords.size() / 3), coords.data(), normals.data(), 0, 0, 1);
    ngl_add_connect(mesh, static_cast<unsigned>(torus.triangles.size() / 3), 3, torus.triangles.data(), 1);
    return {[=](unsigned) {
                ngl_set_color(8);
                ngl_mesh(mesh, NglMeshFaces);
            },
            true, kCovered};
}

} // namespace

std::vector<Case> bodyCases() {
    const std::vector<unsigned> all = {1000, 10000, 100000, 1000000}, one = {100000};
    return {{"body.renderer", all, renderer({})},
            {"body.renderer_transparent", one, renderer({.transparent = true})},
            {"body.physical", one, renderer({.physicallyBased = true})},
            {"body.environment", one, renderer({.physicallyBased = true, .environment = true})},
            {"body.memory", all, fromMemory},
            {"body.buffers", all, fromBuffers},
            {"body.library_mesh", one, libraryMesh}};
}

} // namespace nrubench
