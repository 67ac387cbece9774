// Boundary meshes by their pixels, from buffers and from memory, with what they own and the state they leave.
#include <tuple>
#include <utility>
#include <vector>

#include "NRenderUtl/gl/ngl.h"
#include "NRenderUtl/host/nhost.h"
#include "NRenderUtl/mesh/nmesh.h"
#include "NRenderUtl/shaders/nshaders.h"
#include "tests/support/glsnapshot.h"
#include "tests/support/gltest.h"
#include "tests/support/subprocess.h"

using namespace nrutest;

namespace {

using Renderer = NRenderNgMeshRenderer;

constexpr int kFront = 1, kBack = 2;
constexpr NgColorLong kPalette[] = {0, 0xFF20F0F0, 0xFFF040A0, 0xFFFFFFFF};
constexpr std::uint32_t kGreen = 0xFF00FF00;

struct Block {
    std::int16_t kind;
    std::vector<std::uint32_t> indices;
    std::size_t indicesEach = 3;
};
const Block kLeft{3, {0, 1, 2, 0, 2, 3}}, kRight{4, {1, 4, 5, 2}, 4};
const std::vector<float> kFacing{0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1};
const std::vector<float> kTilted{0, 0, 1, .6f, 0, .8f, 0, .6f, .8f, 0, 0, 1, .8f, 0, .6f, 0, .8f, .6f};

/// The square -1..1 at z = 0, of which the left half has the vertices 0 to 3 and the right half 1, 4, 5
/// and 2.
class BoundaryMesh : public _NskBdryMeshStr {
public:
    explicit BoundaryMesh(std::vector<Block> blocks, std::vector<float> normalsOfMesh = kFacing)
        : m_blocks(std::move(blocks)), m_normals(std::move(normalsOfMesh)), m_records(m_blocks.size()) {
        vertexCount = 6;
        vertices = m_vertices.data();
        normals = m_normals.data();
        elements = m_records.data();
        for (std::size_t i = 0; i < m_blocks.size(); ++i) {
            auto& [kind, indices, each] = m_blocks[i];
            m_records[i] = {kind, static_cast<std::uint32_t>(indices.size() / each), indices.data(),
                            i + 1 < m_blocks.size() ? &m_records[i + 1] : nullptr};
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
    explicit Buffers(const _NskBdryMeshStr* mesh) {
        Renderer::CreateVboInfo(vbo);
        Renderer::UpdateBuffers(mesh, vbo);
    }
    ~Buffers() { Renderer::DeleteVboInfo(vbo); }
    _RenderFMeshVboStr* vbo;
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
        ngl_set_color(3);
    }
    template <class Draw>
    Picture picture(const Draw& draw) {
        clear();
        draw();
        return read();
    }
    Picture fromMemory(const _NskBdryMeshStr& mesh, bool single = false) {
        return picture([&] { Renderer::DrawWithoutVBO(&mesh, single); });
    }
    static void expectNothingDrawn(_RenderFMeshVboStr* vbo, const _NskBdryMeshStr* mesh) {
        const GlSnapshot before = GlSnapshot::take();
        EXPECT_TRUE(Renderer::BindAndDrawMesh(vbo, mesh));
        EXPECT_TRUE(Renderer::BindAndDrawMesh(vbo, mesh, kFront, kBack));
        EXPECT_TRUE(before.equals(GlSnapshot::take()));
        EXPECT_EQ(Picture::read(kSize, kSize).countOtherThan(kClear), 0);
    }
    Picture fromBuffers(const _NskBdryMeshStr& mesh) {
        const Buffers buffers(&mesh);
        return picture([&] { EXPECT_FALSE(Renderer::BindAndDrawMesh(buffers.vbo, &mesh)); });
    }
    static int bufferNames() {
        int count = 0;
        for (GLuint name = 1; name < 64; ++name)
            count += glIsBuffer(name);
        return count;
    }
};

GLint integer(GLenum query) {
    GLint value = 0;
    glGetIntegerv(query, &value);
    return value;
}

int count(const Picture& p, std::uint32_t color) {
    return p.width() * p.height() - p.countOtherThan(color);
}

} // namespace

TEST_F(NRenderNgMesh, BuffersDrawTheFirstBlockAsTriangles) {
    const std::tuple<const char*, std::vector<Block>, std::vector<std::uint32_t>> rows[] = {
        // from buffers, and the triangles that memory draws as the same picture
        {"one block", {kLeft}, kLeft.indices},
        {"the second is left out", {kLeft, kRight}, kLeft.indices},
        {"any kind", {{7, kLeft.indices}}, kLeft.indices},
        {"quads: three of their indices each", {{4, {0, 1, 2, 3, 1, 4, 5, 2}, 4}}, {0, 1, 2, 3, 1, 4}},
        {"foreign indices", {{3, {0, 6, 2, 0, 1, 2, 0, 2, 3, ~0u, 1, 2}}}, {0, 1, 2, 0, 2, 3}}};
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
    const Buffers buffers(&grown);
    grown.elements->elementCount = 0xFFFFFFFF; // more than its buffer holds
    EXPECT_EQ(count(picture([&] { Renderer::BindAndDrawMesh(buffers.vbo, &grown); }), kGreen), 16 * 32);
}

TEST_F(NRenderNgMesh, MemoryDrawsTrianglesAndQuads) {
    const std::vector<Block> blocks{{2, {0, 5}, 2}, kLeft, {5, {0, 1, 4, 5, 3}, 5}, {3, {}}, kRight};
    const BoundaryMesh mesh(blocks), tilted(blocks, kTilted), single(blocks, {0, 0, 1});
    glEnable(GL_LIGHTING);
    const Picture whole = fromMemory(mesh);
    EXPECT_EQ(count(whole, kGreen), 32 * 32);
    const Picture smooth = fromMemory(tilted);
    EXPECT_LT(smooth.at(32, 17) >> 8 & 0xFF, 0xD4u);
    EXPECT_GT(smooth.at(17, 32) >> 8 & 0xFF, 0xE8u);
    glNormal3f(1, 0, 0);
    EXPECT_TRUE(samePicture(fromMemory(single, true), whole));
    float normal[3];
    glGetFloatv(GL_CURRENT_NORMAL, normal);
    EXPECT_EQ(normal[2], 1.0f);
    _NskBdryMeshStr without = mesh;
    without.normals = nullptr; // the current normal serves
    EXPECT_TRUE(samePicture(fromMemory(without), whole));
}

TEST_F(NRenderNgMesh, ColorsByFacing) {
    const BoundaryMesh mesh({{3, {0, 1, 2, 0, 2, 3, 1, 5, 4, 1, 2, 5}}});
    const Buffers buffers(&mesh);
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
        GLint mode[2], culled;
        glGetIntegerv(GL_POLYGON_MODE, mode);
        glGetIntegerv(GL_CULL_FACE_MODE, &culled);
        EXPECT_EQ(std::tuple(mode[0], culled, ngl_get_color()), std::tuple(GL_FILL, GL_FRONT, kBack));
        EXPECT_EQ(glIsEnabled(GL_CULL_FACE), buffered);
    }
}

// The host's objects, buffers, arrays, restart index and program would each spoil a draw.
TEST_F(NRenderNgMesh, HostsBindingsNeitherDisturbNorChange) {
    const BoundaryMesh mesh({kLeft, kRight}, kTilted);
    glEnable(GL_LIGHTING);
    const Picture half = fromBuffers(mesh), whole = fromMemory(mesh);
    const char* source = "void main() { gl_FragColor = vec4(1, 0, 0, 1); }";
    GLuint vao, buffer;
    glGenVertexArrays(1, &vao);
    glGenBuffers(1, &buffer);
    glBindBuffer(GL_ARRAY_BUFFER, buffer);
    glBufferData(GL_ARRAY_BUFFER, 256, std::vector<float>(64).data(), GL_STATIC_DRAW);
    glUseProgram(glCreateShaderProgramv(GL_FRAGMENT_SHADER, 1, &source));
    glEnable(GL_PRIMITIVE_RESTART);
    glPrimitiveRestartIndex(2);
    glNormal3f(0.5f, 0.25f, 0.125f);
    for (const GLuint object : {vao, 0u}) {
        SCOPED_TRACE(object);
        glBindVertexArray(object);
        glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, buffer);
        glEnableClientState(GL_COLOR_ARRAY);
        glColorPointer(3, GL_FLOAT, 0, nullptr);
        glEnableVertexAttribArray(0);
        glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, 0, nullptr);
        const GlSnapshot before = GlSnapshot::take();
        EXPECT_TRUE(samePicture(fromBuffers(mesh), half));
        EXPECT_TRUE(samePicture(fromMemory(mesh), whole));
        EXPECT_TRUE(before.equals(GlSnapshot::take()));
        EXPECT_TRUE(glIsEnabled(GL_PRIMITIVE_RESTART));
        glEnableClientState(GL_VERTEX_ARRAY);
        fromMemory(mesh);
        EXPECT_FALSE(glIsEnabled(GL_VERTEX_ARRAY)) << "off afterwards";
    }
    glDisableVertexAttribArray(0);
    glDisableClientState(GL_COLOR_ARRAY);
    glUseProgram(0);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    for (const GLenum array : {GL_VERTEX_ARRAY, GL_NORMAL_ARRAY})
        glEnableClientState(array);
    glVertexPointer(3, GL_FLOAT, 0, mesh.vertices);
    glNormalPointer(GL_FLOAT, 0, mesh.normals);
    EXPECT_TRUE(samePicture(picture([&] { Renderer::DrawMesh(&mesh); }), whole)) << "the caller's arrays";
    EXPECT_EQ(integer(GL_ELEMENT_ARRAY_BUFFER_BINDING), static_cast<int>(buffer));
}

TEST_F(NRenderNgMesh, NothingIsDrawnOfWhatIsNotValid) {
    using Vbo = _RenderFMeshVboStr;
    for (RenderGLBuffer* Vbo::*const which : {&Vbo::vertices, &Vbo::normals, &Vbo::indices})
        for (const char* name : {"null", "never made", "failed"}) {
            SCOPED_TRACE(name);
            const BoundaryMesh mesh({kLeft, kRight});
            const Buffers buffers(&mesh);
            RenderGLBuffer*& buffer = buffers.vbo->*which;
            buffer->Destroy(true);
            SetRenderingContextActive(false);
            if (name[0] == 'f')
                buffer->Create(GL_ARRAY_BUFFER, 72, nullptr, GL_STATIC_DRAW);
            if (name[2] == 'l')
                delete std::exchange(buffer, nullptr);
            SetRenderingContextActive(true);
            expectNothingDrawn(buffers.vbo, &mesh);
        }
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
        const Buffers whole(&mesh);
        take(mesh);
        const Buffers buffers(&mesh);
        EXPECT_FALSE(buffers.vbo->vertices || buffers.vbo->normals || buffers.vbo->indices);
        expectNothingDrawn(buffers.vbo, &mesh);
        if (&take < without + 2)
            expectNothingDrawn(whole.vbo, &mesh);
        expectNothingDrawn(nullptr, &mesh);
        expectNothingDrawn(whole.vbo, nullptr);
    }
    Renderer::DrawMesh(nullptr);
    Renderer::DrawWithoutVBO(nullptr, true);
    Renderer::UpdateBuffers(nullptr, nullptr);
    Renderer::BindBuffers(nullptr);
    Renderer::UnbindBuffers(nullptr);
}

TEST_F(NRenderNgMesh, RecordsOwnTheirBuffers) {
    const BoundaryMesh mesh({kLeft}), other({kRight});
    const std::size_t blocks = NHostLiveBlocks();
    _RenderFMeshVboStr* vbo = nullptr;
    Renderer::CreateVboInfo(vbo);
    EXPECT_EQ(NHostLiveBlocks(), blocks + 1);
    Renderer::UpdateBuffers(&mesh, vbo);
    const unsigned vertices = vbo->vertices->GetBufferID(), normals = vbo->normals->GetBufferID();
    delete std::exchange(vbo->indices, nullptr);
    Renderer::UpdateBuffers(&other, vbo); // makes what is missing, and keeps the others
    EXPECT_EQ(std::pair(vbo->vertices->GetBufferID(), vbo->normals->GetBufferID()),
              std::pair(vertices, normals));
    EXPECT_EQ(bufferNames(), 3);
    vbo->normals->Bind(3, 3, nullptr);
    Renderer::BindBuffers(vbo);
    const GLenum bound[] = {GL_VERTEX_ARRAY_BUFFER_BINDING, GL_NORMAL_ARRAY_BUFFER_BINDING,
                            GL_ELEMENT_ARRAY_BUFFER_BINDING};
    int i = 0;
    for (RenderGLBuffer* buffer : {vbo->vertices, vbo->normals, vbo->indices}) {
        EXPECT_EQ(integer(bound[i]), static_cast<int>(buffer->GetBufferID()));
        glBindBuffer(GL_COPY_READ_BUFFER, buffer->GetBufferID());
        GLint bytes, usage;
        glGetBufferParameteriv(GL_COPY_READ_BUFFER, GL_BUFFER_SIZE, &bytes);
        glGetBufferParameteriv(GL_COPY_READ_BUFFER, GL_BUFFER_USAGE, &usage);
        EXPECT_EQ(std::pair(bytes, usage), std::pair(i++ < 2 ? 72 : 12, GL_STATIC_DRAW));
    }
    EXPECT_TRUE(glIsEnabled(GL_VERTEX_ARRAY) && glIsEnabled(GL_NORMAL_ARRAY));
    Renderer::UnbindBuffers(vbo);
    GLint attribute;
    glGetVertexAttribiv(3, GL_VERTEX_ATTRIB_ARRAY_ENABLED, &attribute);
    EXPECT_EQ(attribute + integer(GL_ARRAY_BUFFER_BINDING) + integer(GL_ELEMENT_ARRAY_BUFFER_BINDING), 0);
    EXPECT_FALSE(glIsEnabled(GL_VERTEX_ARRAY) || glIsEnabled(GL_NORMAL_ARRAY));
    // Without a declared context the names wait, and what is made then fails until it is deleted.
    SetRenderingContextActive(false);
    Renderer::DeleteBuffers(vbo);
    EXPECT_FALSE(vbo->vertices || vbo->normals || vbo->indices);
    EXPECT_EQ(bufferNames(), 3);
    Renderer::UpdateBuffers(&mesh, vbo);
    SetRenderingContextActive(true);
    RenderGLCleanupBuffers();
    for (const int names : {0, 3}) {
        Renderer::UpdateBuffers(&mesh, vbo);
        EXPECT_EQ(bufferNames(), names);
        EXPECT_EQ(vbo->indices->IsValid(), names != 0);
        Renderer::DeleteBuffers(vbo);
    }
    Renderer::UpdateBuffers(&mesh, vbo);
    Renderer::DeleteVboInfo(vbo);
    EXPECT_EQ(vbo, nullptr);
    Renderer::DeleteVboInfo(vbo);
    EXPECT_EQ(std::pair(bufferNames(), NHostLiveBlocks()), std::pair(0, blocks));
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
        EXPECT_EQ(std::tuple(R::m_bEnableTransparency, R::m_iOrgBlendingValue, R::m_iOrgColor),
                  std::tuple(transparent, transparent ? 200 + bits : 0, kFront));
        R::ResetShadingProperties();
        EXPECT_TRUE(before.equals(GlSnapshot::take()));
        EXPECT_EQ(std::pair(ngl_get_color(), ngl_get_blending_value()), std::pair(kFront, blending));
        EXPECT_EQ(std::tuple(R::m_bEnableTransparency, R::m_iOrgBlendingValue, R::m_iOrgColor),
                  std::tuple(false, 0, 0));
    }
    NglResetLastColor(); // a host that wants its next colour issued
    R::SetShadingProperties(0, kBack, false, 0);
    R::ResetShadingProperties();
    EXPECT_EQ(ngl_get_color(), -1);
}

TEST_F(NRenderNgMesh, TransparencyIsTheAlphaOfWhatIsDrawn) {
    const BoundaryMesh mesh({kLeft, kRight});
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glColorMaterial(GL_FRONT_AND_BACK, GL_DIFFUSE);
    glEnable(GL_COLOR_MATERIAL);
    Renderer::SetShadingProperties(0, 3, true, 204); // an opacity of 51: a fifth of white, four of the ground
    const Picture p = fromMemory(mesh, true);
    Renderer::ResetShadingProperties();
    EXPECT_EQ(p.at(20, 32) & 0xFFFFFF, 0x5C4E41u) << hex(p.at(20, 32));
}

TEST_F(NRenderNgMesh, WithoutBufferObjectsMemoryDraws) {
    if (ranInSubprocess({{"MESA_GL_VERSION_OVERRIDE", "1.4"},
                         {"MESA_EXTENSION_OVERRIDE", "-GL_ARB_vertex_buffer_object"}}))
        return;
    ASSERT_LT(epoxy_gl_version(), 15);
    const BoundaryMesh mesh({kLeft, kRight});
    const Buffers buffers(&mesh);
    EXPECT_EQ(buffers.vbo->indices->GetBufferID(), ~0u);
    expectNothingDrawn(buffers.vbo, &mesh);
    glEnable(GL_LIGHTING);
    EXPECT_EQ(count(fromMemory(mesh), kGreen), 32 * 32);
    Renderer::BindBuffers(buffers.vbo);
    Renderer::UnbindBuffers(buffers.vbo);
}
