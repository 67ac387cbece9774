// The library decides what is shown: a mesh without faces answers before there is a surface.
#include "viewer/scene/elements.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>

#include "viewer/error.h"
#include "viewer/model/fields.h"
#include "viewer/model/vectors.h"

namespace nruview {

namespace {

constexpr int kClipCode = 2; ///< of elements to leave out, which clip flag 1 does
constexpr int kClipFlag = 1;

// The library's palette keeps these two colours under fixed indices.
constexpr int kHighlightIndex = 32;
constexpr int kSelectionIndex = 33;

Point middleOf(const Model& model, std::uint32_t cell) {
    Point sum{};
    for (const std::uint32_t node : model.cellNodes(cell))
        sum = sum + 1.0 / static_cast<double>(model.cellNodes(cell).size()) * model.nodes[node];
    return sum;
}

std::vector<std::uint32_t> clippedElements(const Model& model, const std::vector<ElementClip>& clips) {
    std::vector<std::uint32_t> clipped;
    for (std::uint32_t cell = 0; !clips.empty() && cell < model.cellCount(); ++cell) {
        const Point middle = middleOf(model, cell);
        if (std::any_of(clips.begin(), clips.end(), [&](const ElementClip& clip) {
                return middle[clip.axis] < clip.low || middle[clip.axis] > clip.high;
            }))
            clipped.push_back(cell);
    }
    return clipped;
}

/// A level compares with whole numbers alone, so it may be rounded up; below zero and NaN are none.
int levelOf(double value) {
    if (!(value >= 0.0))
        return -1;
    return static_cast<int>(std::min(std::ceil(value), double{std::numeric_limits<int>::max()}));
}

/// The levels in a field of the elements; none for an empty name.
std::vector<int> levels(const Model& model, const char* option, const std::string& field,
                        std::optional<int> step) {
    std::vector<int> levels(model.cellCount(), -1);
    if (field.empty())
        return levels;
    const Scalars scalars = selectScalars(model, field, step);
    if (scalars.location != FieldLocation::Cell)
        throw ViewerError(option, "'" + field + "' is a field of the nodes, not of the elements");
    std::transform(scalars.values.begin(), scalars.values.end(), levels.begin(), levelOf);
    return levels;
}

std::vector<bool> coloredElements(const ElementSettings& settings, std::size_t count) {
    std::vector<bool> colored(settings.colored.empty() ? 0 : count, false);
    for (const ColoredElements& group : settings.colored)
        for (const auto& [first, last] : group.elements)
            std::fill(colored.begin() + first, colored.begin() + last + 1, true);
    return colored;
}

bool leavesSomeOut(const ElementFacts& facts) {
    return !facts.settings.hidden.empty() || !facts.hiddenBlocks.empty() || !facts.clipped.empty() ||
           facts.settings.failLevel;
}

std::vector<bool> shownElements(const ElementFacts& facts, std::size_t count) {
    if (!leavesSomeOut(facts))
        return {};
    ngl::NglElementMesh mesh;
    ngl::NglElementMeshInput noFaces;
    noFaces.elementCount = static_cast<std::uint32_t>(count);
    if (mesh.Create(noFaces) != 0)
        throw std::bad_alloc();
    applyFacts(facts, mesh);
    std::vector<bool> shown(count);
    for (std::uint32_t cell = 0; cell < count; ++cell)
        shown[cell] = mesh.IsElementShown(cell);
    return shown;
}

/// The library's elements of a range; the setters' results say that memory is there.
template <typename Set>
void forEachRange(const ElementList& list, Set set) {
    for (const auto& [first, last] : list)
        if (set(ngl::NglElements::Range(first, last - first + 1)) != 0)
            throw std::bad_alloc();
}

int failureMode(const ElementSettings& settings) {
    return (settings.failField.empty() ? 0 : 1) + (settings.failBeforeField.empty() ? 0 : 2);
}

ElementList elementsOf(const Model& model, const std::vector<std::string>& blocks) {
    ElementList elements;
    for (const std::string& name : blocks) {
        std::string names;
        bool isThere = false;
        for (const ModelPart& part : model.parts) {
            names += (names.empty() ? "" : ", ") + part.name;
            isThere |= part.name == name;
            if (part.name == name && part.cellCount > 0)
                elements.push_back({part.firstCell, part.firstCell + part.cellCount - 1});
        }
        if (!isThere)
            throw ViewerError("--hide-block", "there is no block " + name + "; the model has " +
                                                  (names.empty() ? "none" : names));
    }
    return elements;
}

/// Lists of numbers as lists of indices.
ElementSettings inIndices(const Model& model, ElementSettings settings) {
    settings.hidden = cellIndices(model, settings.hidden, "--hide");
    settings.selected = cellIndices(model, settings.selected, "--select");
    settings.highlighted = cellIndices(model, settings.highlighted, "--highlight");
    for (ColoredElements& group : settings.colored)
        group.elements = cellIndices(model, group.elements, "--color");
    return settings;
}

} // namespace

ElementFacts elementFacts(const Model& model, const ElementSettings& settings, std::optional<int> step) {
    const std::size_t count = model.cellCount();
    ElementFacts facts;
    facts.settings = inIndices(model, settings);
    facts.hiddenBlocks = elementsOf(model, settings.hiddenBlocks);
    facts.clipped = clippedElements(model, settings.clips);
    if (settings.failLevel) {
        facts.failFrom = levels(model, "--fail", settings.failField, step);
        facts.existFrom = levels(model, "--fail-before", settings.failBeforeField, step);
    }
    facts.colored = coloredElements(facts.settings, count);
    facts.shown = shownElements(facts, count);
    return facts;
}

void applyFacts(const ElementFacts& facts, ngl::NglElementMesh& mesh) {
    const ElementSettings& settings = facts.settings;
    for (const ElementList* hidden : {&settings.hidden, &facts.hiddenBlocks})
        forEachRange(*hidden, [&](auto range) { return mesh.SetVisible(range, false); });
    forEachRange(settings.selected,
                 [&](auto range) { return mesh.SetSelection(range, ngl::NglElementSelected); });
    forEachRange(settings.highlighted,
                 [&](auto range) { return mesh.SetSelection(range, ngl::NglElementHighlighted); });
    for (const ColoredElements& group : settings.colored)
        forEachRange(group.elements, [&](auto range) { return mesh.SetColor(range, group.color); });
    const auto clipped =
        ngl::NglElements::List(facts.clipped.data(), static_cast<std::uint32_t>(facts.clipped.size()));
    if (!facts.clipped.empty() && mesh.SetClipCode(clipped, kClipCode) != 0)
        throw std::bad_alloc();
    const auto all = ngl::NglElements::Range(0, mesh.ElementCount());
    if (settings.failLevel && mesh.SetFailureLevels(all, facts.failFrom.data(), facts.existFrom.data()) != 0)
        throw std::bad_alloc();
    ngl::NglElementAttributes attributes = mesh.Attributes();
    attributes.clipFlag = facts.clipped.empty() ? 0 : kClipFlag;
    attributes.failureMode = settings.failLevel ? failureMode(settings) : 0;
    attributes.failureLevel = settings.failLevel.value_or(0);
    mesh.SetAttributes(attributes);
}

std::vector<NgColorLong> standOutColors(const ElementFacts& facts, std::size_t count) {
    const ElementSettings& settings = facts.settings;
    if (settings.selected.empty() && settings.highlighted.empty() && settings.colored.empty())
        return {};
    std::vector<NgColorLong> colors(count, 0);
    const auto fill = [&](const ElementList& list, NgColorLong color) {
        for (const auto& [first, last] : list)
            std::fill(colors.begin() + first, colors.begin() + last + 1, color);
    };
    for (const auto& [elements, color] : settings.colored)
        fill(elements, color);
    fill(settings.selected, NglGetColorGivenIndex(kSelectionIndex));
    fill(settings.highlighted, NglGetColorGivenIndex(kHighlightIndex));
    return colors;
}

} // namespace nruview
