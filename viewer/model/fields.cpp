// Field lookup and the scalars that are made of fields.
#include "viewer/model/fields.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <functional>
#include <tuple>

#include "viewer/error.h"
#include "viewer/labels/text.h"

namespace nruview {

namespace {

using Tuple = std::span<const double>;
using Reduce = std::function<double(Tuple)>;

/// A name that ends in a number of at most nine digits.
struct NumberedName {
    std::string stem;
    int number = 0;
};

std::optional<NumberedName> splitNumber(const std::string& name) {
    std::size_t start = name.size();
    while (start > 0 && std::isdigit(static_cast<unsigned char>(name[start - 1])))
        --start;
    if (start == 0 || start == name.size() || name.size() - start > 9)
        return std::nullopt;
    NumberedName result{name.substr(0, start), 0};
    std::from_chars(name.data() + start, name.data() + name.size(), result.number);
    return result;
}

/// One field among those of its series, with all that these share in front.
struct Step {
    std::string name;
    FieldLocation location;
    int components;
    int number; ///< of the model's step, or in the field's name
    std::size_t field;

    bool sameSeries(const Step& other) const {
        return name == other.name && location == other.location && components == other.components;
    }
};

/// The fields that belong to steps, or those with numbered names, series by series.
std::vector<Step> sortedSteps(const Model& model, bool ofModelSteps) {
    std::vector<Step> steps;
    for (std::size_t i = 0; i < model.fields.size(); ++i) {
        const Field& field = model.fields[i];
        if (field.step && ofModelSteps)
            steps.push_back({field.name, field.location, field.components, static_cast<int>(*field.step), i});
        const auto name = splitNumber(field.name);
        if (name && !field.step && !ofModelSteps)
            steps.push_back({name->stem, field.location, field.components, name->number, i});
    }
    const auto key = [](const Step& s) {
        return std::tie(s.name, s.location, s.components, s.number, s.field);
    };
    std::sort(steps.begin(), steps.end(), [&](const Step& a, const Step& b) { return key(a) < key(b); });
    return steps;
}

/// Calls visit(first, last) for the steps of each series.
template <typename Visit>
void forEachSeries(const std::vector<Step>& steps, Visit visit) {
    for (auto first = steps.begin(); first != steps.end();) {
        const auto last =
            std::find_if(first, steps.end(), [&](const Step& s) { return !s.sameSeries(*first); });
        visit(std::span(first, last));
        first = last;
    }
}

std::string_view locationSuffix(FieldLocation location) {
    return location == FieldLocation::Node ? "@node" : "@cell";
}

std::string describe(const Field& field) {
    return field.name + " (" + std::to_string(field.components) + ", " +
           (field.location == FieldLocation::Node ? "nodes)" : "cells)");
}

[[noreturn]] void refuseName(const Model& model, const std::string& name) {
    std::string list;
    for (const StepSeries& series : stepSeries(model))
        list += (list.empty() ? "" : ", ") + series.name + " (" + std::to_string(series.fields.size()) +
                " steps)";
    for (const Field& field : model.fields)
        if (!field.step)
            list += (list.empty() ? "" : ", ") + describe(field);
    throw ViewerError("field " + name,
                      list.empty() ? "the model has no fields" : "not there; the model has " + list);
}

const Field* findExact(const Model& model, std::string_view name, FieldLocation location) {
    const auto same = [&](const Field& field) {
        return field.name == name && field.location == location && !field.step;
    };
    const auto found = std::find_if(model.fields.begin(), model.fields.end(), same);
    return found == model.fields.end() ? nullptr : &*found;
}

std::string join(const std::vector<int>& numbers) {
    std::string list;
    for (const int number : numbers)
        list += (list.empty() ? "" : " ") + std::to_string(number);
    return list;
}

const Field& stepOf(const Model& model, const StepSeries& series, std::optional<int> step) {
    const int wanted = step.value_or(series.steps.back());
    const auto found = std::find(series.steps.begin(), series.steps.end(), wanted);
    if (found == series.steps.end()) {
        const int first = series.steps.front(), last = series.steps.back();
        const bool isWhole = last - first + 1 == static_cast<int>(series.steps.size());
        throw ViewerError(
            "field " + series.name,
            "step " + std::to_string(wanted) + " is not there; the steps are " +
                (isWhole ? std::to_string(first) + " to " + std::to_string(last) : join(series.steps)));
    }
    return model.fields[series.fields[static_cast<std::size_t>(found - series.steps.begin())]];
}

const Field* findStep(const Model& model, std::string_view name, FieldLocation location,
                      std::optional<int> step) {
    for (const StepSeries& series : stepSeries(model))
        if (series.name == name && model.fields[series.fields.front()].location == location)
            return &stepOf(model, series, step);
    return nullptr;
}

/// The field or the step of a series; null when there is neither. Names can end in @node or have colons
/// themselves: the whole name is tried first, here and in splitSelector.
const Field* lookUp(const Model& model, const std::string& name, std::optional<int> step) {
    constexpr std::array kLocations = {FieldLocation::Node, FieldLocation::Cell};
    for (const FieldLocation location : kLocations)
        if (const Field* field = findExact(model, name, location))
            return field;
    for (const FieldLocation location : kLocations)
        if (const Field* field = findStep(model, name, location, step))
            return field;
    for (const FieldLocation location : kLocations)
        if (name.ends_with(locationSuffix(location))) {
            const auto stem = std::string_view(name).substr(0, name.size() - locationSuffix(location).size());
            const Field* field = findExact(model, stem, location);
            return field ? field : findStep(model, stem, location, step);
        }
    return nullptr;
}

double magnitude(Tuple values) {
    double sum = 0;
    for (const double value : values)
        sum += value * value;
    return std::sqrt(sum);
}

/// Of a full tensor the symmetric part counts.
double mises(Tuple t) {
    if (t.size() == 6)
        return vonMises({t[0], t[1], t[2], t[3], t[4], t[5]});
    return vonMises({t[0], t[4], t[8], (t[1] + t[3]) / 2, (t[5] + t[7]) / 2, (t[2] + t[6]) / 2});
}

bool isTensor(const Field& field) {
    return field.components == 6 || field.components == 9;
}

/// The place of a component by number or name; nothing when the field has no such.
std::optional<std::size_t> componentIndex(const Field& field, const std::string& name) {
    std::size_t index = 0;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), index);
    if (error == std::errc() && end == name.data() + name.size())
        return index < static_cast<std::size_t>(field.components) ? std::optional(index) : std::nullopt;
    constexpr std::array<std::string_view, 3> kAxes = {"x", "y", "z"};
    constexpr std::array<std::string_view, 6> kTensor = {"xx", "yy", "zz", "xy", "yz", "xz"};
    constexpr std::array<std::size_t, 6> kFullTensor = {0, 4, 8, 1, 5, 2};
    const auto axis = std::find(kAxes.begin(), kAxes.end(), name);
    if (axis != kAxes.end() && (field.components == 2 || field.components == 3)) {
        index = static_cast<std::size_t>(axis - kAxes.begin());
        return index < static_cast<std::size_t>(field.components) ? std::optional(index) : std::nullopt;
    }
    const auto pair = std::find(kTensor.begin(), kTensor.end(), name);
    if (pair == kTensor.end() || !isTensor(field))
        return std::nullopt;
    index = static_cast<std::size_t>(pair - kTensor.begin());
    return field.components == 9 ? kFullTensor[index] : index;
}

std::string componentNames(const Field& field) {
    std::string names = "0 to " + std::to_string(field.components - 1);
    if (field.components == 2 || field.components == 3)
        names += field.components == 2 ? ", x y" : ", x y z";
    if (isTensor(field))
        names += ", xx yy zz xy yz xz, mises";
    return names + ", mag";
}

Reduce reduction(const Field& field, const std::string& component) {
    if (component == "mag")
        return magnitude;
    if (component == "mises" && isTensor(field))
        return mises;
    if (const auto index = componentIndex(field, component))
        return [i = *index](Tuple values) { return values[i]; };
    throw ViewerError("field " + field.name,
                      "no component '" + component + "'; it has " + componentNames(field));
}

Scalars reduce(const Field& field, const std::string& component) {
    const Reduce reduction = nruview::reduction(field, component);
    const auto components = static_cast<std::size_t>(field.components);
    const std::string suffix = field.components == 1 && component == "0" ? "" : ":" + component;
    Scalars scalars{field.name + suffix, field.location, {}};
    scalars.values.reserve(field.values.size() / components);
    for (std::size_t i = 0; i + components <= field.values.size(); i += components)
        scalars.values.push_back(reduction({field.values.data() + i, components}));
    return scalars;
}

/// A field's name and, where there is one, the component after it.
std::array<std::string, 2> splitSelector(const Model& model, const std::string& selector,
                                         std::optional<int> step) {
    const std::size_t colon = selector.rfind(':');
    if (colon == std::string::npos || lookUp(model, selector, step))
        return {selector, ""};
    return {selector.substr(0, colon), selector.substr(colon)};
}

} // namespace

std::string trimSeparator(const std::string& stem) {
    const bool separated =
        stem.size() > 1 && std::string_view("_-. ").find(stem.back()) != std::string_view::npos;
    return separated ? stem.substr(0, stem.size() - 1) : stem;
}

std::vector<StepSeries> stepSeries(const Model& model) {
    std::vector<StepSeries> all;
    forEachSeries(sortedSteps(model, true), [&](std::span<const Step> steps) {
        StepSeries series{steps.front().name, {}, {}, {}};
        for (const Step& step : steps) {
            series.steps.push_back(step.number);
            series.fields.push_back(step.field);
        }
        all.push_back(std::move(series));
    });
    forEachSeries(sortedSteps(model, false), [&](std::span<const Step> steps) {
        if (steps.size() == 1) // a single numbered name, as of a chemical formula, is no series
            return;
        StepSeries series{trimSeparator(steps.front().name), {}, {}, {}};
        for (const Step& step : steps) {
            series.numbers.push_back(step.number);
            series.steps.push_back(static_cast<int>(series.steps.size()));
            series.fields.push_back(step.field);
        }
        all.push_back(std::move(series));
    });
    return all;
}

int stepCount(const Model& model) {
    int count = std::max(1, static_cast<int>(model.steps.size()));
    for (const StepSeries& series : stepSeries(model))
        count = std::max(count, series.steps.back() + 1);
    return count;
}

std::string stepText(const Model& model, const Field& field) {
    if (field.step)
        return model.steps[*field.step].label;
    const auto index = static_cast<std::size_t>(&field - model.fields.data());
    for (const StepSeries& series : stepSeries(model)) {
        const auto found = std::find(series.fields.begin(), series.fields.end(), index);
        if (found != series.fields.end())
            return "step " + std::to_string(found - series.fields.begin());
    }
    return "";
}

void checkStep(const Model& model, int step) {
    const int count = stepCount(model);
    if (step < 0 || step >= count)
        throw ViewerError("--step", std::to_string(step) + " is not there; " +
                                        (count == 1 ? "the model has no steps"
                                                    : "the steps are 0 to " + std::to_string(count - 1)));
}

const Field& findField(const Model& model, const std::string& name, std::optional<int> step) {
    const Field* field = lookUp(model, name, step);
    if (!field)
        refuseName(model, name);
    return *field;
}

std::string fieldSelector(const Model& model, const Field& field) {
    const bool shared = std::any_of(model.fields.begin(), model.fields.end(), [&](const Field& other) {
        return other.name == field.name && other.location != field.location;
    });
    return field.name + (shared ? std::string(locationSuffix(field.location)) : "");
}

Scalars selectScalars(const Model& model, const std::string& selector, std::optional<int> step) {
    const auto [name, component] = splitSelector(model, selector, step);
    const Field& field = findField(model, name, step);
    return component.empty() ? defaultScalars(field) : reduce(field, lowerCase(component.substr(1)));
}

const Field& selectedField(const Model& model, const std::string& selector, std::optional<int> step) {
    return findField(model, splitSelector(model, selector, step)[0], step);
}

Scalars defaultScalars(const Field& field) {
    return reduce(field, field.components == 1 ? "0" : isTensor(field) ? "mises" : "mag");
}

double vonMises(const std::array<double, 6>& stress) {
    const auto& [xx, yy, zz, xy, yz, xz] = stress;
    const double direct = (xx - yy) * (xx - yy) + (yy - zz) * (yy - zz) + (zz - xx) * (zz - xx);
    return std::sqrt(0.5 * direct + 3 * (xy * xy + yz * yz + xz * xz));
}

const Field* findDisplacement(const Model& model, std::optional<int> step) {
    constexpr std::array<std::string_view, 8> kNames = {"displacement", "displacements", "displ", "disp", "u",
                                                        "depl",         "mode",          "modes"};
    const auto matches = [](const Field& f, std::string_view name, std::string_view wanted) {
        return f.components == 3 && f.location == FieldLocation::Node && lowerCase(name) == wanted;
    };
    const std::vector<StepSeries> allSeries = stepSeries(model);
    for (const std::string_view wanted : kNames) {
        for (const Field& field : model.fields)
            if (!field.step && matches(field, field.name, wanted))
                return &field;
        for (const StepSeries& series : allSeries)
            if (matches(model.fields[series.fields.front()], series.name, wanted))
                return &stepOf(model, series, step);
    }
    return nullptr;
}

std::optional<std::array<double, 2>> finiteRange(std::span<const double> values) {
    std::optional<std::array<double, 2>> range;
    for (const double value : values) {
        if (!std::isfinite(value))
            continue;
        if (!range)
            range = {value, value};
        (*range)[0] = std::min((*range)[0], value);
        (*range)[1] = std::max((*range)[1], value);
    }
    return range;
}

} // namespace nruview
