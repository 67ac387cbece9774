#include "NRenderUtl/mesh/elementprograms.h"

#include <cstring>

#include "NRenderUtl/gl/stateguards.h"
#include "NRenderUtl/host/hostgl.h"
#include "NRenderUtl/shaders/programinuse.h"
#include "NRenderUtl/shaders/samplerunits.h"

namespace {

bool canDraw() {
    return IsFastRendererEnabled() != 0 && IsRenderingContextActive() && GLeeEnabled(GLeeGL30) &&
           RenderingGetShaderProgram(RenderShaderMesh)->IsProgramValid();
}

/// A vertex array object for the length of a block, so that the host's arrays are neither seen nor changed.
class OwnArraysGuard {
public:
    OwnArraysGuard() {
        glGetIntegerv(GL_VERTEX_ARRAY_BINDING, &m_hosts);
        glGetIntegerv(GL_ARRAY_BUFFER_BINDING, &m_buffer);
        glGenVertexArrays(1, &m_own);
        glBindVertexArray(m_own);
    }
    ~OwnArraysGuard() {
        glBindVertexArray(static_cast<GLuint>(m_hosts));
        glBindBuffer(GL_ARRAY_BUFFER, static_cast<GLuint>(m_buffer));
        glDeleteVertexArrays(1, &m_own);
    }
    OwnArraysGuard(const OwnArraysGuard&) = delete;
    OwnArraysGuard& operator=(const OwnArraysGuard&) = delete;

private:
    GLint m_hosts, m_buffer;
    GLuint m_own;
};

std::size_t triangleIndexCount(const ElementSurface& surface) {
    return 3 * std::size_t{surface.triangleCount} + 6 * std::size_t{surface.quadCount};
}

ElementUniforms::Matrix projectionMatrix() {
    ElementUniforms::Matrix projection;
    glGetFloatv(GL_PROJECTION_MATRIX, projection.data());
    return projection;
}

ElementUniforms::Matrix inSinglePrecision(const double matrix[16]) {
    ElementUniforms::Matrix single;
    std::transform(matrix, matrix + 16, single.begin(), [](double x) { return static_cast<float>(x); });
    return single;
}

// --- passes ------------------------------------------------------------------------------------------------

/// Back faces first, blended over what is there, without writing depth.
template <class Draw>
void drawTransparent(const Draw& draw) {
    const AttributesGuard attributes(GL_ENABLE_BIT | GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT |
                                     GL_POLYGON_BIT);
    const AddingGuard adds;
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glDepthMask(GL_FALSE);
    glEnable(GL_CULL_FACE);
    for (const GLenum culled : {GL_FRONT, GL_BACK}) {
        glCullFace(culled);
        draw();
    }
}

} // namespace

/// Texture units that a draw uses, given back at its end, the first of two at one unit last.
class ElementPrograms::Bindings {
public:
    Bindings() = default;
    ~Bindings() {
        if (m_count == 0)
            return;
        while (m_count > 0) {
            const auto& [unit, texture] = m_saved[--m_count];
            glActiveTexture(unit);
            glBindTexture(GL_TEXTURE_BUFFER, static_cast<GLuint>(texture));
        }
        glActiveTexture(static_cast<GLenum>(m_activeUnit));
        if (m_buffer != 0)
            glBindBuffer(GL_TEXTURE_BUFFER, static_cast<GLuint>(m_buffer));
    }
    Bindings(const Bindings&) = delete;
    Bindings& operator=(const Bindings&) = delete;

    /// Makes the unit of a texture active, to be bound there.
    void open(const ElementTexture& texture) {
        if (m_count == 0) {
            glGetIntegerv(GL_ACTIVE_TEXTURE, &m_activeUnit);
            glGetIntegerv(GL_TEXTURE_BUFFER, &m_buffer); // what creating and updating leave unbound
        }
        const GLenum unit = GL_TEXTURE0 + static_cast<GLenum>(texture.unit());
        GLint bound = 0;
        glActiveTexture(unit);
        glGetIntegerv(GL_TEXTURE_BINDING_BUFFER, &bound);
        m_saved[m_count++] = {unit, bound};
    }

private:
    GLint m_activeUnit = 0, m_buffer = 0;
    /// The facts, the block, and elements and normals of two pieces at most.
    std::array<std::pair<GLenum, GLint>, FactCount + 5> m_saved;
    std::size_t m_count = 0;
};

ElementPrograms::ElementPrograms()
    : m_facts{{{samplerUnit(RenderUniformVisibilityBuffer), GL_R8UI, 1},
               {samplerUnit(RenderUniformSelectionBuffer), GL_R8UI, 1},
               {samplerUnit(RenderUniformElementColorBuffer), GL_RGBA8UI, 4},
               {samplerUnit(RenderUniformClipCodeBuffer), GL_R8UI, 1},
               {samplerUnit(RenderUniformFailureLevelBuffer), GL_R32I, 4},
               {samplerUnit(RenderUniformFailureBelowBuffer), GL_R32I, 4},
               {samplerUnit(RenderUniformElementValues), GL_R32F, 4}}},
      m_derived(samplerUnit(RenderUniformDerivedBuffer), GL_R32I, 4),
      m_derivedQuads(samplerUnit(RenderUniformDerivedBuffer), GL_R32I, 4),
      m_normals(samplerUnit(RenderUniformElementNormalBuffer), GL_RGBA32F, 16),
      m_block(kBlockUnit, GL_RGBA32F, sizeof(BlockTexel)) {}

// --- what is drawn -----------------------------------------------------------------------------------------

ElementPrograms::Piece ElementPrograms::ownPiece(const ElementSurface& surface, const ElementPlan& plan) {
    const bool ofFaces = plan.look == ElementLook::Faces;
    const auto numbering = ofFaces ? ElementNumbering::Faces : ElementNumbering::Elements;
    const bool derived = plan.needsElements() && !countsElements(surface, numbering);
    ElementProgram& own = ownProgram(plan, derived);
    return {own.program,
            &own,
            numbering,
            GL_TRIANGLES,
            ofFaces || plan.needsElements() ? m_buffers.numbered : m_buffers.triangles,
            triangleIndexCount(surface),
            derived ? &m_derived : nullptr};
}

void ElementPrograms::findPieces(const ElementSurface& surface, ElementPlan& plan) {
    m_pieces.clear();
    if (plan.way == ElementWay::Attribute) {
        const Piece piece = ownPiece(surface, plan);
        if (piece.program.IsProgramValid()) {
            m_pieces.push_back(piece);
            return;
        }
        plan.way = ElementWay::Mesh;
    }
    const auto add = [&](_RenderingShaderType type, ElementNumbering numbering, GLenum mode,
                         RenderGLBuffer& indices, std::size_t count, ElementTexture& texture) {
        const bool derived = plan.needsElements() && !countsElements(surface, numbering);
        m_pieces.push_back({*RenderingGetShaderProgram(type), nullptr, numbering, mode, indices, count,
                            derived ? &texture : nullptr});
    };
    if (plan.way == ElementWay::Mesh || surface.quadCount == 0 || plan.look == ElementLook::Facets)
        return add(plan.way == ElementWay::Mesh ? RenderShaderMesh : RenderShaderMeshTriangles,
                   ElementNumbering::Triangles, GL_TRIANGLES, m_buffers.triangles,
                   triangleIndexCount(surface), m_derived);
    if (surface.triangleCount > 0) // in the order of the faces, which transparency shows
        add(RenderShaderMeshTriangles, ElementNumbering::Faces, GL_TRIANGLES, m_buffers.triangles,
            3 * std::size_t{surface.triangleCount}, m_derived);
    add(RenderShaderMeshQuads, ElementNumbering::Quads, GL_LINES_ADJACENCY, m_buffers.quads,
        4 * std::size_t{surface.quadCount}, m_derivedQuads);
}

// --- buffers and textures ----------------------------------------------------------------------------------

bool ElementPrograms::updateBuffers(const Frame& frame) {
    const ElementPlan& plan = frame.plan;
    ElementBuffers::Need need;
    need.normals = plan.look == ElementLook::Smooth;
    need.values = plan.contour && !plan.ofElements;
    for (const Piece& piece : frame.pieces) {
        need.triangles |= &piece.indices == &m_buffers.triangles;
        need.quads |= &piece.indices == &m_buffers.quads;
        if (&piece.indices == &m_buffers.numbered)
            need.numbering = piece.numbering;
    }
    need.leavingOut = plan.leavingOut;
    return m_buffers.update(frame.scene, need);
}

template <class T>
bool ElementPrograms::updateFact(Fact fact, const std::vector<T>& values, Bindings& bindings) {
    ElementTexture& texture = m_facts[fact];
    const auto count = static_cast<std::uint32_t>(values.size());
    const ElementSpan span = texture.stale(count);
    bindings.open(texture);
    if (!texture.store(span, count, span.empty() ? nullptr : values.data() + span.first))
        return false;
    texture.bind();
    return true;
}

/// A hidden element is drawn for nothing but its selection: its own colour, which the programs would show, is
/// kept from them.
bool ElementPrograms::updateColors(const ElementScene& scene, Bindings& bindings) {
    const auto& [surface, facts, values, how, revision] = scene;
    if (facts.visible.isInitial())
        return updateFact(Color, facts.color.values(), bindings);
    ElementTexture& texture = m_facts[Color];
    const ElementSpan span = texture.stale(surface.elementCount);
    std::vector<std::uint32_t> texels(span.count());
    for (std::uint32_t i = 0; i < span.count(); ++i) {
        const std::uint32_t color = facts.color[span.first + i];
        texels[i] = facts.visible[span.first + i] != 0 ? color : color & 0xFFFFFF;
    }
    bindings.open(texture);
    if (!texture.store(span, surface.elementCount, texels.data()))
        return false;
    texture.bind();
    return true;
}

bool ElementPrograms::updateFacts(const ElementScene& scene, const ElementPlan& plan, Bindings& bindings) {
    const ElementFacts& facts = scene.facts;
    const bool lower = (plan.failureMode & 1) != 0, upper = (plan.failureMode & 2) != 0;
    return (!plan.hidden || updateFact(Visible, facts.visible.values(), bindings)) &&
           (!plan.selected || updateFact(Selection, facts.selection.values(), bindings)) &&
           (!plan.colored || updateColors(scene, bindings)) &&
           (plan.clipFlag == 0 || updateFact(ClipCode, facts.clipCode.values(), bindings)) &&
           (!lower || updateFact(LowerLevel, facts.lower.values(), bindings)) &&
           (!upper || updateFact(UpperLevel, facts.upper.values(), bindings)) &&
           (!plan.ofElements || updateFact(Value, scene.values.values, bindings));
}

/// The parameters of the own program.
bool ElementPrograms::updateBlock(const ElementScene& scene, Bindings& bindings) {
    const std::optional<ScaleEntries>& entries = scene.values.entries;
    const std::optional<ScaleCells>& cells = scene.values.cells;
    std::array<BlockTexel, kParameterBlockSize> block;
    const BlockLighting lighting = blockLighting();
    putParameterBlock(lighting, kindsOfLights(lighting),
                      {entries ? &*entries : nullptr, cells ? &*cells : nullptr}, block);
    const auto count = static_cast<std::uint32_t>(block.size());
    if (m_blockTexels.empty() || std::memcmp(block.data(), m_blockTexels.data(), sizeof block) != 0)
        m_block.changed({0, count});
    m_blockTexels.assign(block.begin(), block.end());
    bindings.open(m_block);
    if (!m_block.store(m_block.stale(count), count, m_blockTexels.data()))
        return false;
    m_block.bind();
    return true;
}

/// Elements and normals by the number of the primitive.
bool ElementPrograms::updatePrimitives(const Frame& frame, Bindings& bindings) {
    const ElementSurface& surface = frame.scene.surface;
    bool done = true;
    for (const Piece& piece : frame.pieces) {
        const int key = static_cast<int>(piece.numbering);
        if (piece.derived) {
            bindings.open(*piece.derived);
            done &= piece.derived->storeOnce(key, [&] { return elementsOf(surface, piece.numbering); });
        }
        if (fetchesNormals(frame.plan)) {
            const bool halves = frame.plan.look == ElementLook::Facets;
            bindings.open(m_normals);
            done &= m_normals.storeOnce(2 * key + halves,
                                        [&] { return normalsOf(surface, piece.numbering, halves); });
            m_normals.bind();
        }
    }
    return done;
}

// --- drawing -----------------------------------------------------------------------------------------------

void ElementPrograms::bindVertices(const Piece& piece, const ElementPlan& plan) {
    NShaderProgram& program = piece.program;
    m_buffers.positions.Bind(program.GetVertexAttributeLocation(RenderAttribPosition), 3, nullptr);
    if (plan.look == ElementLook::Smooth)
        m_buffers.normals.Bind(program.GetVertexAttributeLocation(RenderAttribNormal), 3, nullptr);
    if (plan.contour && !plan.ofElements)
        m_buffers.values.Bind(program.GetVertexAttributeLocation(RenderAttribTexture), 1, nullptr);
    if (&piece.indices == &m_buffers.numbered)
        m_buffers.numbers.Bind(piece.own->numberLocation, 1, nullptr);
    piece.indices.Bind();
}

void ElementPrograms::drawPieces(const Frame& frame) {
    for (const Piece& piece : frame.pieces) {
        piece.program.UseProgram(true);
        if (piece.derived)
            piece.derived->bind();
        bindVertices(piece, frame.plan);
        glDrawElements(piece.mode, static_cast<GLsizei>(piece.count), GL_UNSIGNED_INT, nullptr);
    }
}

void ElementPrograms::setUniforms(const Frame& frame, const double modelView[16]) {
    const ElementUniforms::Matrix projection = projectionMatrix(), view = inSinglePrecision(modelView);
    for (const Piece& piece : frame.pieces) {
        ElementUniforms uniforms(piece.program, piece.own ? &piece.own->memory : nullptr);
        piece.program.UseProgram(true);
        uniforms.setMatrices(projection, view);
        uniforms.setLook(frame.plan, frame.scene);
        if (!piece.own) // whose switches are compiled in
            for (const ElementSwitch& choice : switchesOf(frame.plan, piece.derived != nullptr))
                uniforms.set(choice.uniform, choice.value);
    }
}

bool ElementPrograms::draw(const ElementScene& scene, const double modelView[16]) {
    if (!canDraw())
        return false;
    std::optional<ElementPlan> plan = planElements(scene);
    if (!plan)
        return true;
    findPieces(scene.surface, *plan);
    const Frame frame{scene, *plan, m_pieces};
    const ProgramInUseGuard program;
    const OwnArraysGuard arrays;
    const PlainIndicesGuard indices;
    Bindings bindings;
    if (!updateBuffers(frame) || !updateFacts(scene, *plan, bindings) || !updatePrimitives(frame, bindings))
        return false;
    if (plan->way == ElementWay::Attribute && !updateBlock(scene, bindings))
        return false;
    setUniforms(frame, modelView);
    if (scene.attributes.opacity < 1.0f)
        drawTransparent([&] { drawPieces(frame); });
    else
        drawPieces(frame);
    return true;
}
