// Data sections of Gmsh files: reading them, and the model's fields and steps made of them.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <set>
#include <tuple>

#include "viewer/readers/gmshfile.h"

namespace nruview::readers {

namespace {

constexpr double kNoValue = std::numeric_limits<double>::quiet_NaN();
constexpr std::size_t kMostComponents = 1 << 16;
constexpr std::size_t kMemoryBase = std::size_t{256} << 20, kMemoryPerFileByte = 128;

// --- reading -----------------------------------------------------------------------------------------------

/// The number of tags that follow, each on a line of its own.
std::size_t tagCount(GmshCursor& cursor) {
    const auto count = cursor.numberLine<std::int64_t>();
    cursor.checkCount(count, "number of tags", 1);
    return static_cast<std::size_t>(count);
}

/// Tags: the name; the time; the step, the number of components and that of nodes or elements. Returns the
/// last.
std::size_t readTags(GmshCursor& cursor, GmshData& data) {
    for (std::size_t i = 0, count = tagCount(cursor); i < count; ++i) {
        std::string text = cursor.quotedLine();
        if (i == 0 && !text.empty())
            data.name = std::move(text);
    }
    for (std::size_t i = 0, count = tagCount(cursor); i < count; ++i) {
        const auto number = cursor.numberLine<double>();
        data.time = i == 0 && std::isfinite(number) ? number : data.time;
    }
    std::array<std::int64_t, 3> numbers{};
    const std::size_t count = tagCount(cursor);
    for (std::size_t i = 0; i < count; ++i) {
        const auto number = cursor.numberLine<std::int64_t>();
        if (i < numbers.size())
            numbers[i] = number;
    }
    if (count < numbers.size() || numbers[1] < 1 || numbers[1] > std::int64_t{kMostComponents})
        throw Refusal("of " + data.name + " does not say its components");
    data.step = numbers[0];
    data.components = static_cast<std::size_t>(numbers[1]);
    cursor.checkCount(numbers[2], "number of values", 1 + data.components);
    return static_cast<std::size_t>(numbers[2]);
}

// --- fields ------------------------------------------------------------------------------------------------

class FieldBuilder {
public:
    FieldBuilder(Model& model, const GmshFile& file, std::span<const std::uint32_t> places)
        : m_model(model), m_file(file), m_places(places), m_nodes(file.nodeNumbers),
          m_elements(file.elements.numbers), m_memory(kMemoryBase + kMemoryPerFileByte * file.size) {
        collectSteps();
    }

    void add(const GmshData& data);
    void noteForeign();

private:
    using Key = std::tuple<std::string, FieldLocation, std::optional<std::uint32_t>>;

    void collectSteps();
    std::optional<std::uint32_t> stepOf(const GmshData& data) const;
    std::size_t tupleCount(FieldLocation location) const;
    void reserve(std::size_t values);
    Field& target(const GmshData& data);
    bool fill(Field& field, std::size_t tuple, const double* values) const;
    bool fillEach(const GmshData& data, Field& field);
    bool fillMeans(const GmshData& data, Field& field);

    Model& m_model;
    const GmshFile& m_file;
    std::span<const std::uint32_t> m_places;
    NumberIndex m_nodes, m_elements;
    std::vector<std::pair<std::int64_t, double>> m_steps;
    std::map<Key, std::size_t> m_fields; ///< index into the model's
    std::size_t m_memory;                ///< that fields may still take
    std::map<std::string, std::size_t>
        m_foreign; ///< values of nodes and elements that are not there, by field
};

std::string numberText(double number) {
    char text[32];
    std::snprintf(text, sizeof text, "%.6g", number);
    return text;
}

/// A file with one step at time 0 has a result without steps.
void FieldBuilder::collectSteps() {
    std::set<std::pair<std::int64_t, double>> steps;
    std::set<double> times;
    for (const GmshData& data : m_file.data) {
        steps.emplace(data.step, data.time);
        times.insert(data.time);
    }
    if (steps.size() == 1 && steps.begin()->second == 0)
        return;
    m_steps.assign(steps.begin(), steps.end());
    for (const auto& [number, time] : m_steps)
        m_model.steps.push_back(
            {(times.size() == steps.size() ? "" : "step " + std::to_string(number) + ", ") + "time " +
                 numberText(time),
             time});
}

std::optional<std::uint32_t> FieldBuilder::stepOf(const GmshData& data) const {
    const auto step = std::lower_bound(m_steps.begin(), m_steps.end(), std::pair(data.step, data.time));
    if (step == m_steps.end())
        return {};
    return static_cast<std::uint32_t>(step - m_steps.begin());
}

std::size_t FieldBuilder::tupleCount(FieldLocation location) const {
    return location == FieldLocation::Cell ? m_model.cellCount() : m_model.nodes.size();
}

/// A section may be short and its field long.
void FieldBuilder::reserve(std::size_t values) {
    if (values > m_memory / sizeof(double))
        throw Refusal("has fields that need more memory than a file of its size should");
    m_memory -= values * sizeof(double);
}

Field& FieldBuilder::target(const GmshData& data) {
    const FieldLocation location =
        data.kind == GmshDataKind::Element ? FieldLocation::Cell : FieldLocation::Node;
    const auto [found, isNew] =
        m_fields.try_emplace({data.name, location, stepOf(data)}, m_model.fields.size());
    if (isNew) {
        const std::size_t values = tupleCount(location) * data.components;
        reserve(values);
        m_model.fields.push_back({data.name, location, static_cast<int>(data.components),
                                  std::vector<double>(values, kNoValue), stepOf(data)});
    }
    return m_model.fields[found->second];
}

/// What is there already stays.
bool FieldBuilder::fill(Field& field, std::size_t tuple, const double* values) const {
    const auto components = static_cast<std::size_t>(field.components);
    double* place = field.values.data() + tuple * components;
    if (!std::isnan(*place))
        return false;
    std::copy(values, values + components, place);
    return true;
}

bool FieldBuilder::fillEach(const GmshData& data, Field& field) {
    const bool atNodes = data.kind == GmshDataKind::Node;
    bool filled = data.numbers.empty();
    for (std::size_t i = 0; i < data.numbers.size(); ++i) {
        const auto index = (atNodes ? m_nodes : m_elements).find(data.numbers[i]);
        if (!index)
            ++m_foreign[data.name];
        else if (fill(field, atNodes ? *index : m_places[*index], data.values.data() + i * data.components))
            filled = true;
    }
    return filled;
}

/// Values of one node in several elements are brought to their mean.
bool FieldBuilder::fillMeans(const GmshData& data, Field& field) {
    reserve(2 * field.values.size());
    std::vector<double> sums(field.values.size(), 0.0);
    std::vector<std::uint32_t> counts(m_model.nodes.size(), 0);
    const double* values = data.values.data();
    for (std::size_t i = 0; i < data.numbers.size(); ++i) {
        const auto element = m_elements.find(data.numbers[i]);
        const auto nodes = element ? m_file.elements.nodesOf(*element) : std::span<const std::uint32_t>();
        m_foreign[data.name] += data.corners[i] > nodes.size() ? 1 : 0;
        for (std::size_t k = 0; k < data.corners[i]; ++k, values += data.components) {
            if (data.corners[i] > nodes.size())
                continue;
            ++counts[nodes[k]];
            for (std::size_t c = 0; c < data.components; ++c)
                sums[nodes[k] * data.components + c] += values[c];
        }
    }
    m_memory += 2 * field.values.size() * sizeof(double);
    bool filled = data.numbers.empty();
    for (std::size_t node = 0; node < counts.size(); ++node) {
        double* sum = sums.data() + node * data.components;
        std::for_each(sum, sum + data.components, [&](double& value) { value /= counts[node]; });
        filled = (counts[node] > 0 && fill(field, node, sum)) || filled;
    }
    return filled;
}

void FieldBuilder::add(const GmshData& data) {
    Field& field = target(data);
    const bool filled =
        field.components == static_cast<int>(data.components) &&
        (data.kind == GmshDataKind::ElementNode ? fillMeans(data, field) : fillEach(data, field));
    if (!filled)
        m_model.notes.push_back("skipped a second field " + field.name + " of one name and step");
}

void FieldBuilder::noteForeign() {
    for (const auto& [name, count] : m_foreign)
        if (count > 0)
            m_model.notes.push_back("field " + name + " has " + std::to_string(count) +
                                    " values that belong to no node or element of the model");
}

/// Names of the fields whose values belong to the corners of elements, each once.
std::set<std::string> cornerFields(const GmshFile& file) {
    std::set<std::string> names;
    for (const GmshData& data : file.data)
        if (data.kind == GmshDataKind::ElementNode)
            names.insert(data.name);
    return names;
}

} // namespace

GmshData readGmshData(GmshCursor& cursor, GmshDataKind kind) {
    GmshData data;
    data.kind = kind;
    const std::size_t count = readTags(cursor, data);
    for (std::size_t i = 0; i < count; ++i) {
        data.numbers.push_back(cursor.integer());
        std::size_t corners = 1;
        if (kind == GmshDataKind::ElementNode) {
            const std::int64_t found = cursor.integer();
            cursor.checkCount(found, "number of nodes", data.components);
            corners = static_cast<std::size_t>(found);
            data.corners.push_back(static_cast<std::uint32_t>(corners));
        }
        for (std::size_t k = 0; k < corners * data.components; ++k)
            data.values.push_back(cursor.real());
    }
    return data;
}

void appendGmshFields(Model& model, const GmshFile& file, std::span<const std::uint32_t> places) {
    FieldBuilder builder(model, file, places);
    for (const GmshData& data : file.data)
        builder.add(data);
    builder.noteForeign();
    for (const std::string& name : cornerFields(file))
        model.notes.push_back("field " + name +
                              " has values at the nodes of each element; nodes show their mean");
}

} // namespace nruview::readers
