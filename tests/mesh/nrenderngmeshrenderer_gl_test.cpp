// Boundary meshes by their pixels, from buffers and from memory, with what they own.
#include <tuple>
#include <utility>
#include <vector>

#include "NRenderUtl/gl/ngl.h"
#include "NRenderUtl/mesh/nmesh.h"
#include "tests/shaders/testprogram.h"
#include "tests/support/glsnapshot.h"
#include "tests/support/subprocess.h"

using namespace nrutest;

namespace {

using Renderer = NRenderNgMeshRenderer;
using Vbo = _RenderFMeshVboStr;
using Block = std::pair<std::int16_t, std::vector<std::uint32_t>>; ///< kind and indices

constexpr int kFront = 1, kBack = 2, kWhite = 3;
constexpr NgColorLong kPalette[] = {0, 0xFF20F0F0, 0xFFF040A0, 0xFFFFFFFF};
constexpr std::uint32_t kGreen = 0xFF00FF00;

const Block kLeft{3, {0, 1, 2, 0, 2, 3}}, kRight{4, {1, 4, 5, 2}};
const std::vector<float> kFacing{0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1};
const std::vector<float> kTilted{0, 0, 1, .6f, 0, .8f, 0, .96f, .28f, 0, 0, 1, .8f, 0, .6f, 0, .8f, .6f};

/// The square -1..1 at z = 0; its left half has the vertices 0 to 3, the right half 1, 4, 5 and 2.
class BoundaryMesh : public _NskBdryMeshStr {
public:
    explicit BoundaryMesh(std::vector<Block> blocks, std::vector<float> normalsOfMesh = kFacing)
        : m_blocks(std::move(blocks)), m_normals(std::move(normalsOfMesh)) {
        static_cast<_NskBdryMeshStr&>(*this) = {6, m_vertices.data(), m_normals.data(), nullptr};
        m_records.resize(m_blocks.size());
        for (std::size_t i = m_blocks.size(); i-- > 0;) {
            auto& [kind, indices] = m_blocks[i];
            const auto count = static_cast<std::uint32_t>(indices.size()) / (kind == 4 ? 4 : 3);
            m_records[i] = {kind, count, indices.data(), elements};
            elements = &m_records[i];
        }
    }
    BoundaryMesh(const BoundaryMesh&) = delete;
    BoundaryMesh& operator=(const BoundaryMesh&) = delete;

private:
    std::vector<float> m_vertices{-1, -1, 0, 0, -1, 0, 0, 1, 0, -1, 1, 0, 1, -1, 0, 1, 1, 0};
    std::vector<Block> m_blocks;
    std::vector<float> m_normals;
    std::vector<_NskBdryElemStr> m_records;
};

/// A record with the buffers of a mesh.
struct Buffers {
    explicit Buffers(const _NskBdryMeshStr& mesh) {
        Renderer::CreateVboInfo(vbo);
        Renderer::UpdateBuffers(&mesh, vbo);
    }
    ~Buffers() { Renderer::DeleteVboInfo(vbo); }
    Vbo* vbo;
};

/// A view along -z of the square -2..2, and a light at the eye that makes faces green.
class NRenderNgMesh : public GlTest {
protected:
    void SetUp() override {
        GlTest::SetUp();
        SetRenderingContextActive(true);
        glMatrixMode(GL_PROJECTION);
        glOrtho(-2, 2, -2, 2, -4, 4);
        glMatrixMode(GL_MODELVIEW);
        glEnable(GL_LIGHT0);
        const float black[4] = {0, 0, 0, 1}, green[4] = {0, 1, 0, 1};
        glMaterialfv(GL_FRONT_AND_BACK, GL_AMBIENT, black);
        glMaterialfv(GL_FRONT_AND_BACK, GL_DIFFUSE, green);
        NglUpdateColor(4, kPalette);
        ngl_set_color(kWhite);
    }
    template <class Draw>
    Picture picture(const Draw& draw) {
        clear();
        draw();
        return read();
    }
    Picture fromMemory(const _NskBdryMeshStr& mesh, bool singleNormal = false) {
        return picture([&] { Renderer::DrawWithoutVBO(&mesh, singleNormal); });
    }
    Picture fromBuffers(const _NskBdryMeshStr& mesh) {
        const Buffers buffers(mesh);
        return picture([&] { EXPECT_FALSE(Renderer::BindAndDrawMesh(buffers.vbo, &mesh)); });
    }
    void expectNothingDrawn(Vbo* vbo, const _NskBdryMeshStr* mesh) {
        const GlSnapshot before = GlSnapshot::take();
        EXPECT_TRUE(Renderer::BindAndDrawMesh(vbo, mesh));
        EXPECT_TRUE(Renderer::BindAndDrawMesh(vbo, mesh, kFront, kBack));
        EXPECT_TRUE(before.equals(GlSnapshot::take()));
        EXPECT_EQ(read().countOtherThan(kClear), 0);
    }
};

int count(const Picture& p, std::uint32_t color) {
    return p.width() * p.height() - p.countOtherThan(color);
}

} // namespace

TEST_F(NRenderNgMesh, BuffersDrawTheFirstBlockAsTriangles) {
    const std::tuple<const char*, std::vector<Block>, std::vector<std::uint32_t>> rows[] = {
        // from buffers, and the triangles that memory draws as the same picture
        {"the second block is left out", {kLeft, kRight}, kLeft.second},
        {"any kind", {{7, kLeft.second}}, kLeft.second},
        {"quads: three of their indices each", {{4, {0, 1, 2, 3, 1, 4, 5, 2}}}, {0, 1, 2, 3, 1, 4}},
        {"foreign indices", {{3, {1, 6, 4, 0, 1, 2, 0, 2, 3, 4, ~0u, 5}}}, kLeft.second}};
    for (const auto& [name, blocks, triangles] : rows) {
        SCOPED_TRACE(name);
        glEnable(GL_LIGHTING);
        const Picture expected = fromMemory(BoundaryMesh({{3, triangles}}, kTilted));
        EXPECT_GT(expected.countOtherThan(kClear), 400);
        glDisable(GL_LIGHTING); // switched on for the length of the draw
        glShadeModel(GL_FLAT);  // smooth from then on
        EXPECT_TRUE(samePicture(fromBuffers(BoundaryMesh(blocks, kTilted)), expected));
        EXPECT_FALSE(glIsEnabled(GL_LIGHTING));
    }
    BoundaryMesh grown({kLeft});
    const Buffers buffers(grown);
    grown.elements->elementCount = 1 << 30; // more than its buffer holds, and than a draw may count
    EXPECT_EQ(count(picture([&] { Renderer::BindAndDrawMesh(buffers.vbo, &grown); }), kGreen), 16 * 32);
}

TEST_F(NRenderNgMesh, MemoryDrawsTrianglesAndQuads) {
    const std::vector<Block> blocks{{2, {0, 5, 1}}, kLeft, {5, {0, 1, 4, 5, 3}}, {3, {}}, kRight};
    const BoundaryMesh mesh(blocks), tilted(blocks, kTilted), single(blocks, {.8f, 0, .6f}),
        six(blocks, {.8f, 0, .6f, .8f, 0, .6f, .8f, 0, .6f, .8f, 0, .6f, .8f, 0, .6f, .8f, 0, .6f});
    glEnable(GL_LIGHTING);
    const Picture whole = fromMemory(mesh), smooth = fromMemory(tilted);
    EXPECT_EQ(count(whole, kGreen), 32 * 32);
    EXPECT_TRUE(samePicture(smooth, fromMemory(BoundaryMesh({kLeft, kRight}, kTilted)))) << "other kinds";
    EXPECT_GT(compare(smooth, whole).largest, 100) << "its own normals";
    glNormal3f(1, 0, 0);
    const Picture leaning = fromMemory(single, true);
    EXPECT_TRUE(samePicture(leaning, fromMemory(six)));
    _NskBdryMeshStr without = mesh;
    without.normals = nullptr;
    EXPECT_TRUE(samePicture(fromMemory(without), leaning)) << "the single normal stays current";
}

TEST_F(NRenderNgMesh, ColorsByFacing) {
    const BoundaryMesh mesh({{3, {0, 1, 2, 0, 2, 3, 1, 5, 4, 1, 2, 5}}});
    const Buffers buffers(mesh);
    for (const bool buffered : {true, false}) {
        SCOPED_TRACE(buffered);
        glPolygonMode(GL_FRONT_AND_BACK, GL_LINE);
        buffered ? glDisable(GL_CULL_FACE) : glEnable(GL_CULL_FACE);
        const Picture p = picture([&] {
            if (buffered)
                EXPECT_FALSE(Renderer::BindAndDrawMesh(buffers.vbo, &mesh, kFront, kBack));
            else
                Renderer::DrawWithoutVBO(&mesh, true, kFront, kBack);
        });
        for (int x = 16; x < 48; ++x)
            EXPECT_EQ(p.at(x, 32) & 0xFFFFFF, kPalette[x < 32 ? kFront : kBack] & 0xFFFFFF) << x;
        EXPECT_EQ(glIsEnabled(GL_CULL_FACE), buffered);
        EXPECT_EQ(std::pair(integer(GL_CULL_FACE_MODE), ngl_get_color()), std::pair(GL_FRONT, kBack));
    }
}

TEST_F(NRenderNgMesh, DrawsWithTheCallersOwnArrays) {
    const std::vector<float> vertices{-1, -1, 0, 0, -1, 0, 0, 1, 0, -1, 1, 0, 1, -1, 0, 1, 1, 0};
    glInterleavedArrays(GL_V3F, 0, vertices.data());
    GLuint buffer;
    glGenBuffers(1, &buffer);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, buffer); // which has no indices
    glEnable(GL_PRIMITIVE_RESTART);
    glPrimitiveRestartIndex(2);
    const BoundaryMesh mesh({kLeft, kRight}, kTilted);
    EXPECT_EQ(picture([&] { Renderer::DrawMesh(&mesh); }).countOtherThan(kClear), 32 * 32);
}

TEST_F(NRenderNgMesh, NothingIsDrawnOfWhatIsNotValid) {
    const BoundaryMesh good({kLeft, kRight});
    for (RenderGLBuffer* Vbo::*const which : {&Vbo::vertices, &Vbo::normals, &Vbo::indices}) {
        const Buffers buffers(good);
        RenderGLBuffer*& buffer = buffers.vbo->*which;
        buffer->Destroy(true); // never made
        expectNothingDrawn(buffers.vbo, &good);
        SetRenderingContextActive(false);
        buffer->Create(GL_ARRAY_BUFFER, 72, nullptr, GL_STATIC_DRAW); // failed
        SetRenderingContextActive(true);
        expectNothingDrawn(buffers.vbo, &good);
        delete std::exchange(buffer, nullptr);
        expectNothingDrawn(buffers.vbo, &good);
    }
    const Buffers whole(good);
    expectNothingDrawn(whole.vbo, nullptr);
    expectNothingDrawn(nullptr, &good);
    void (*const without[])(_NskBdryMeshStr&) = {[](auto& mesh) { mesh.elements = nullptr; },
                                                 [](auto& mesh) { mesh.elements->elementCount = 0; },
                                                 [](auto& mesh) { mesh.elements->indices = nullptr; },
                                                 [](auto& mesh) { mesh.elements->elementCount = 178956971; },
                                                 [](auto& mesh) { mesh.vertexCount = 178956971; },
                                                 [](auto& mesh) { mesh.vertexCount = -6; },
                                                 [](auto& mesh) { mesh.vertices = nullptr; },
                                                 [](auto& mesh) { mesh.normals = nullptr; }};
    for (const auto& take : without) {
        SCOPED_TRACE(&take - without);
        BoundaryMesh mesh({kLeft, kRight});
        const Buffers whole(mesh);
        take(mesh);
        const Buffers buffers(mesh);
        EXPECT_FALSE(buffers.vbo->vertices || buffers.vbo->normals || buffers.vbo->indices);
        if (&take < without + 2)
            expectNothingDrawn(whole.vbo, &mesh);
    }
    Renderer::DrawWithoutVBO(nullptr, true);
    Renderer::UpdateBuffers(nullptr, nullptr);
    Renderer::BindBuffers(nullptr);
    Renderer::UnbindBuffers(nullptr);
}

TEST_F(NRenderNgMesh, RecordsOwnTheirBuffers) {
    const BoundaryMesh mesh({kLeft}), other({kRight});
    const std::size_t blocks = NHostLiveBlocks();
    Vbo* vbo = nullptr;
    Renderer::CreateVboInfo(vbo);
    EXPECT_EQ(NHostLiveBlocks(), blocks + 1);
    Renderer::UpdateBuffers(&mesh, vbo);
    const unsigned vertices = vbo->vertices->GetBufferID(), normals = vbo->normals->GetBufferID();
    delete std::exchange(vbo->indices, nullptr);
    Renderer::UpdateBuffers(&other, vbo); // makes what is missing
    vbo->normals->Bind(3, 3, nullptr);
    Renderer::BindBuffers(vbo);
    GLint attribute, bytes;
    glGetBufferParameteriv(GL_ELEMENT_ARRAY_BUFFER, GL_BUFFER_SIZE, &bytes);
    EXPECT_EQ(
        std::tuple(integer(GL_VERTEX_ARRAY_BUFFER_BINDING), integer(GL_NORMAL_ARRAY_BUFFER_BINDING), bytes),
        std::tuple(static_cast<int>(vertices), static_cast<int>(normals), 12));
    Renderer::UnbindBuffers(vbo);
    glGetVertexAttribiv(3, GL_VERTEX_ATTRIB_ARRAY_ENABLED, &attribute);
    EXPECT_EQ(attribute + integer(GL_ARRAY_BUFFER_BINDING) + integer(GL_ELEMENT_ARRAY_BUFFER_BINDING), 0);
    EXPECT_FALSE(glIsEnabled(GL_VERTEX_ARRAY) || glIsEnabled(GL_NORMAL_ARRAY));
    // Without a declared context the names wait, and what is made then fails until it is deleted.
    SetRenderingContextActive(false);
    Renderer::DeleteBuffers(vbo);
    EXPECT_FALSE(vbo->vertices || vbo->normals || vbo->indices);
    EXPECT_EQ(living(glIsBuffer), 3);
    Renderer::UpdateBuffers(&mesh, vbo);
    SetRenderingContextActive(true);
    RenderGLCleanupBuffers();
    for (const int names : {0, 3}) {
        Renderer::UpdateBuffers(&mesh, vbo);
        EXPECT_EQ(living(glIsBuffer), names);
        Renderer::DeleteBuffers(vbo);
    }
    Renderer::UpdateBuffers(&mesh, vbo);
    Renderer::DeleteVboInfo(vbo);
    EXPECT_EQ(vbo, nullptr);
    Renderer::DeleteVboInfo(vbo);
    EXPECT_EQ(std::pair(living(glIsBuffer), NHostLiveBlocks()), std::pair(0, blocks));
}

TEST_F(NRenderNgMesh, ShadingPropertiesAreSetAndReset) {
    using R = Renderer;
    for (const int bits : {0, 1, 2, 4, 8, 15}) {
        SCOPED_TRACE(bits);
        const bool lit = bits & 1, flat = bits & 2, twoSided = bits & 4, transparent = bits & 8;
        lit ? glEnable(GL_LIGHTING) : glDisable(GL_LIGHTING);
        glShadeModel(flat ? GL_FLAT : GL_SMOOTH);
        glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, twoSided);
        ngl_set_blending_value(200 + bits);
        ngl_set_color(kFront);
        const GlSnapshot before = GlSnapshot::take();
        const int blending = ngl_get_blending_value();
        R::SetShadingProperties(flat ? 0 : 7, kBack, transparent, 155);
        EXPECT_EQ(integer(GL_SHADE_MODEL), flat ? GL_SMOOTH : GL_FLAT);
        EXPECT_TRUE(glIsEnabled(GL_LIGHTING) && integer(GL_LIGHT_MODEL_TWO_SIDE));
        EXPECT_EQ(std::pair(ngl_get_color(), ngl_get_blending_value() >> 24 & 0xFF),
                  std::pair(kBack, transparent ? 100 : 200 + bits));
        R::ResetShadingProperties();
        EXPECT_TRUE(before.equals(GlSnapshot::take()));
        EXPECT_EQ(std::pair(ngl_get_color(), ngl_get_blending_value()), std::pair(kFront, blending));
    }
    NglResetLastColor(); // a host that wants its next colour issued
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glColorMaterial(GL_FRONT_AND_BACK, GL_DIFFUSE);
    glEnable(GL_COLOR_MATERIAL);
    R::SetShadingProperties(0, kWhite, true, 204); // an opacity of 51: a fifth of white, the rest the ground
    EXPECT_EQ(fromMemory(BoundaryMesh({kLeft})).at(20, 32) & 0xFFFFFF, 0x5C4E41u);
    R::ResetShadingProperties();
    EXPECT_EQ(ngl_get_color(), -1);
}

TEST_F(NRenderNgMesh, WithoutBufferObjectsMemoryDraws) {
    if (ranInSubprocess({{"MESA_GL_VERSION_OVERRIDE", "1.4"},
                         {"MESA_EXTENSION_OVERRIDE", "-GL_ARB_vertex_buffer_object"}}))
        return;
    ASSERT_LT(epoxy_gl_version(), 15);
    const BoundaryMesh mesh({kLeft, kRight});
    const Buffers buffers(mesh);
    expectNothingDrawn(buffers.vbo, &mesh);
    Renderer::BindBuffers(buffers.vbo);
    Renderer::UnbindBuffers(buffers.vbo);
    glEnable(GL_LIGHTING);
    EXPECT_EQ(count(fromMemory(mesh), kGreen), 32 * 32);
}
