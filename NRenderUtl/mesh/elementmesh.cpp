// The element mesh that a host sees: it keeps geometry, facts and values, and hands drawing and picking to
// the rooms that do them.
#include <algorithm>
#include <limits>
#include <new>
#include <optional>

#include "NRenderUtl/gl/nglproject.h"
#include "NRenderUtl/host/hostgl.h"
#include "NRenderUtl/host/hostmath.h"
#include "NRenderUtl/mesh/elementmeshstate.h"

namespace ngl {

namespace {

constexpr int kRefused = -1, kNoMemory = -2;

/// Runs what may not find memory; nothing is thrown to the host.
template <class Run>
int withMemory(const Run& run) {
    try {
        return run();
    } catch (const std::bad_alloc&) {
        return kNoMemory;
    }
}

std::uint32_t elementAt(const NglElements& elements, std::uint32_t i) {
    return elements.list ? elements.list[i] : elements.first + i;
}

/// From the lowest to the highest of them; nothing where one is out of range.
std::optional<ElementSpan> spanOf(const NglElements& elements, std::uint32_t elementCount) {
    if (elements.count == 0)
        return ElementSpan{};
    std::uint32_t lowest = elements.first;
    std::uint64_t highest = std::uint64_t{elements.first} + elements.count - 1;
    if (elements.list) {
        const auto [low, high] = std::minmax_element(elements.list, elements.list + elements.count);
        lowest = *low;
        highest = *high;
    }
    if (highest >= elementCount)
        return {};
    return ElementSpan{lowest, static_cast<std::uint32_t>(highest) + 1};
}

/// Writes one value for each of some elements of a mesh, from a callable of their position among them.
template <class State, class Value, class Source>
int setFact(State* state, ElementFact<Value> ElementFacts::*fact, ElementPrograms::Fact kind,
            const NglElements& elements, const Source& source) {
    if (!state || !state->created)
        return kRefused;
    const std::optional<ElementSpan> span = spanOf(elements, state->surface.elementCount);
    if (!span || span->empty())
        return span ? 0 : kRefused;
    return withMemory([&] {
        std::vector<Value>& values = (state->facts.*fact).writable(state->surface.elementCount);
        for (std::uint32_t i = 0; i < elements.count; ++i)
            values[elementAt(elements, i)] = source(i);
        state->changed(kind, *span);
        return 0;
    });
}

/// Both levels, or neither.
template <class State, class Lower, class Upper>
int setLevels(State* state, const NglElements& elements, const Lower& lower, const Upper& upper) {
    if (state && state->created && withMemory([&] {
                                       state->facts.upper.writable(state->surface.elementCount);
                                       return 0;
                                   }) != 0)
        return kNoMemory;
    const int result = setFact(state, &ElementFacts::lower, ElementPrograms::LowerLevel, elements, lower);
    return result != 0 ? result
                       : setFact(state, &ElementFacts::upper, ElementPrograms::UpperLevel, elements, upper);
}

std::uint32_t ownColor(NgColorLong color) {
    return 0x01000000 | (color & 0xFFFFFF);
}

/// Model-view of a mesh's own space. Where GL holds the record's matrix it is taken in double precision, for
/// coordinates far from zero.
void modelViewOf(const ElementSurface& surface, double modelView[4][4]) {
    float current[4][4], record[4][4];
    glGetFloatv(GL_MODELVIEW_MATRIX, current[0]);
    const _NglInfoStr& info = *NglGetNglInfo();
    NglToFloat(info.modelView, record);
    if (const float* held = current[0]; std::equal(held, held + 16, record[0]))
        std::copy_n(info.modelView[0], 16, modelView[0]);
    else
        NglToDouble(current, modelView);
    NglTranslate(modelView, surface.origin[0], surface.origin[1], surface.origin[2]);
}

/// Another one for each scale of any mesh.
std::uint64_t nextScaleNumber() {
    static std::uint64_t number = 0;
    return ++number;
}

} // namespace

void NglElementMesh::State::draw() {
    if (compacted != revision)
        facts.compact();
    compacted = revision;
    double modelView[4][4];
    modelViewOf(surface, modelView);
    if (attributes.route != NglElementRouteFixed && programs.draw(scene(), modelView[0]))
        fixed.clear();
    else
        fixed.draw(scene(), modelView[0]);
}

void NglElementMesh::State::setValues(ElementValues::Kind kind, const float* given, std::uint32_t count) {
    std::vector<float> copy;
    if (given)
        copy.assign(given, given + count);
    values.values = std::move(copy);
    values.kind = kind;
    ++revision;
}

bool NglElementMesh::State::pick(const ElementRay& ray, NglElementPick& picked) {
    const auto shown = [this](std::uint32_t element) { return isElementShown(facts, element, attributes); };
    return picker.pick(surface, ray, shown, picked);
}

/// The pixel is taken to positions about the mesh's origin, where coordinates are small. The depth of the
/// ray's second point is one that every perspective has, also one without a far plane.
bool NglElementMesh::State::pickPixel(int x, int y, NglElementPick& picked) {
    NglProjection view = nglRecordProjection(*NglGetNglInfo());
    const _NgPoint3Str origin = {surface.origin[0], surface.origin[1], surface.origin[2]};
    NgMatrix modelView;
    std::copy_n(view.modelView, 16, modelView[0]);
    NglTranslate(modelView, origin.x, origin.y, origin.z);
    std::copy_n(modelView[0], 16, view.modelView);
    const double wx = x + 0.5, wy = view.viewport[3] - y - 0.5; // as NglGetViewVector turns y
    const _NgPoint3Str start = nglUnproject(view, wx, wy, 0.0);
    NglElementPick found;
    if (!pick({start, MathDifference(nglUnproject(view, wx, wy, 0.5), start)}, found) ||
        nglProject(view, MathDifference(found.point, origin)).z > 1.0)
        return false;
    picked = found;
    return true;
}

// --- life cycle --------------------------------------------------------------------------------------------

// The state is made on the first need, so that a mesh that was moved from is as good as new.
NglElementMesh::NglElementMesh() = default;
NglElementMesh::~NglElementMesh() = default;
NglElementMesh::NglElementMesh(NglElementMesh&&) noexcept = default;
NglElementMesh& NglElementMesh::operator=(NglElementMesh&&) noexcept = default;

int NglElementMesh::Create(const NglElementMeshInput& input) {
    return withMemory([&] {
        std::optional<ElementSurface> surface = makeElementSurface(input);
        if (!surface)
            return kRefused;
        auto fresh = std::make_unique<State>();
        fresh->surface = std::move(*surface);
        fresh->created = true;
        if (m_state) {
            fresh->attributes = m_state->attributes;
            fresh->values.scale = m_state->values.scale;
            fresh->values.smeared = m_state->values.smeared;
            fresh->values.entries = m_state->values.entries;
            fresh->values.cells = m_state->values.cells;
            fresh->values.scaleNumber = m_state->values.scaleNumber;
        }
        m_state = std::move(fresh);
        return 0;
    });
}

void NglElementMesh::Clear() {
    if (Create({}) == 0)
        m_state->created = false;
    else
        m_state.reset();
}

// --- queries -----------------------------------------------------------------------------------------------

std::uint32_t NglElementMesh::ElementCount() const {
    return m_state ? m_state->surface.elementCount : 0;
}

std::uint32_t NglElementMesh::NodeCount() const {
    return m_state ? m_state->surface.nodeCount : 0;
}

const NglElementAttributes& NglElementMesh::Attributes() const {
    static const NglElementAttributes initial;
    return m_state ? m_state->attributes : initial;
}

bool NglElementMesh::IsElementShown(std::uint32_t element) const {
    return element < ElementCount() && isElementShown(m_state->facts, element, m_state->attributes);
}

// --- appearance and values ---------------------------------------------------------------------------------

void NglElementMesh::SetAttributes(const NglElementAttributes& attributes) {
    if (!m_state)
        m_state.reset(new (std::nothrow) State);
    if (m_state)
        m_state->attributes = attributes;
}

int NglElementMesh::SetColorScale(const RenderColorScale* scale) {
    return withMemory([&] {
        RenderColorScale copy = scale ? *scale : RenderColorScale();
        if (!m_state)
            m_state = std::make_unique<State>();
        ElementValues& values = m_state->values;
        values.smeared = isSmearedScale(copy);
        values.entries = makeScaleEntries(copy);
        values.cells = values.entries ? makeScaleCells(*values.entries) : std::nullopt;
        values.scale = copy;
        values.scaleNumber = nextScaleNumber();
        ++m_state->revision;
        return 0;
    });
}

int NglElementMesh::SetNodeValues(const float* values) {
    if (!m_state || !m_state->created)
        return kRefused;
    return withMemory([&] {
        m_state->setValues(values ? ElementValues::OfNodes : ElementValues::None, values, NodeCount());
        m_state->programs.nodeValuesChanged();
        return 0;
    });
}

int NglElementMesh::SetElementValues(const float* values) {
    if (!m_state || !m_state->created)
        return kRefused;
    return withMemory([&] {
        m_state->setValues(values ? ElementValues::OfElements : ElementValues::None, values, ElementCount());
        m_state->programs.changed(ElementPrograms::Value, {0, ElementCount()});
        return 0;
    });
}

int NglElementMesh::SetElementValues(const NglElements& elements, const float* values) {
    if (!m_state || !m_state->created || !values)
        return kRefused;
    const std::optional<ElementSpan> span = spanOf(elements, ElementCount());
    if (!span || span->empty())
        return span ? 0 : kRefused;
    return withMemory([&] {
        ElementValues& all = m_state->values;
        const bool anew = all.kind != ElementValues::OfElements;
        if (anew)
            all.values.assign(ElementCount(), std::numeric_limits<float>::quiet_NaN());
        all.kind = ElementValues::OfElements;
        for (std::uint32_t i = 0; i < elements.count; ++i)
            all.values[elementAt(elements, i)] = values[i];
        m_state->changed(ElementPrograms::Value, anew ? ElementSpan{0, ElementCount()} : *span);
        return 0;
    });
}

// --- facts -------------------------------------------------------------------------------------------------

int NglElementMesh::SetVisible(const NglElements& elements, bool visible) {
    const int result = setFact(m_state.get(), &ElementFacts::visible, ElementPrograms::Visible, elements,
                               [=](std::uint32_t) { return static_cast<std::uint8_t>(visible); });
    if (result == 0) // the colours of hidden elements are kept from the programs
        m_state->changed(ElementPrograms::Color, *spanOf(elements, ElementCount()));
    return result;
}

int NglElementMesh::SetSelection(const NglElements& elements, NglElementSelection selection) {
    if (selection < NglElementNotSelected || selection > NglElementHighlighted)
        return kRefused;
    return setFact(m_state.get(), &ElementFacts::selection, ElementPrograms::Selection, elements,
                   [=](std::uint32_t) { return static_cast<std::uint8_t>(selection); });
}

int NglElementMesh::SetColor(const NglElements& elements, NgColorLong color) {
    return setFact(m_state.get(), &ElementFacts::color, ElementPrograms::Color, elements,
                   [=](std::uint32_t) { return ownColor(color); });
}

int NglElementMesh::SetColors(const NglElements& elements, const NgColorLong* colors) {
    if (!colors)
        return kRefused;
    return setFact(m_state.get(), &ElementFacts::color, ElementPrograms::Color, elements,
                   [=](std::uint32_t i) { return ownColor(colors[i]); });
}

int NglElementMesh::ClearColors(const NglElements& elements) {
    return setFact(m_state.get(), &ElementFacts::color, ElementPrograms::Color, elements,
                   [](std::uint32_t) { return 0u; });
}

int NglElementMesh::SetClipCode(const NglElements& elements, int code) {
    if (code < 0 || code > 255)
        return kRefused;
    return setFact(m_state.get(), &ElementFacts::clipCode, ElementPrograms::ClipCode, elements,
                   [=](std::uint32_t) { return static_cast<std::uint8_t>(code); });
}

int NglElementMesh::SetFailureLevel(const NglElements& elements, int lower, int upper) {
    return setLevels(
        m_state.get(), elements, [=](std::uint32_t) { return lower; }, [=](std::uint32_t) { return upper; });
}

int NglElementMesh::SetFailureLevels(const NglElements& elements, const int* lower, const int* upper) {
    if (!lower || !upper)
        return kRefused;
    return setLevels(
        m_state.get(), elements, [=](std::uint32_t i) { return lower[i]; },
        [=](std::uint32_t i) { return upper[i]; });
}

// --- drawing and picking -----------------------------------------------------------------------------------

int NglElementMesh::Draw() {
    if (!m_state || m_state->surface.faceCount() == 0 || !glContextIsCurrent())
        return 0;
    return withMemory([&] {
        m_state->draw();
        return 0;
    });
}

bool NglElementMesh::Pick(const _NgPoint3Str* start, const _NgPoint3Str* end, NglElementPick* picked) {
    return m_state && start && end && picked &&
           withMemory([&] {
               return m_state->pick(elementRay(m_state->surface, *start, *end), *picked) ? 1 : 0;
           }) == 1;
}

bool NglElementMesh::PickPixel(int x, int y, NglElementPick* picked) {
    return m_state && picked && withMemory([&] { return m_state->pickPixel(x, y, *picked) ? 1 : 0; }) == 1;
}

} // namespace ngl
