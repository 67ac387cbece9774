// Results are named once, however many steps they have.
#include "viewer/window/choices.h"

#include <algorithm>
#include <map>

#include "viewer/model/fields.h"

namespace nruview {

namespace {

std::vector<std::string> partsOf(int components) {
    if (components == 1)
        return {};
    if (components == 3)
        return {"mag", "x", "y", "z"};
    if (components == 6 || components == 9)
        return {"mises", "xx", "yy", "zz", "xy", "yz", "xz", "mag"};
    std::vector<std::string> parts = {"mag"};
    for (int i = 0; i < components; ++i)
        parts.push_back(std::to_string(i));
    return parts;
}

ResultChoice choiceOf(const Field& field, const std::string& selector) {
    return {selector, field.location, field.components, partsOf(field.components)};
}

/// Whether it is another step of a result that is there already.
bool isKnown(const std::vector<ResultChoice>& results, const std::string& selector) {
    return std::any_of(results.begin(), results.end(),
                       [&](const ResultChoice& result) { return result.selector == selector; });
}

std::vector<std::string> stepsOf(const Model& model) {
    std::vector<std::string> steps;
    for (const ResultStep& step : model.steps)
        steps.push_back(step.label);
    for (int i = static_cast<int>(steps.size()); i < stepCount(model); ++i)
        steps.push_back("step " + std::to_string(i));
    return steps;
}

} // namespace

Choices::Choices(const Model& model) : steps(stepsOf(model)) {
    std::vector<bool> isStep(model.fields.size());
    for (const StepSeries& series : stepSeries(model)) {
        for (const std::size_t field : series.fields)
            isStep[field] = true;
        const Field& field = model.fields[series.fields.front()];
        results.push_back(
            choiceOf(field, series.numbers.empty() ? fieldSelector(model, field) : series.name));
    }
    for (std::size_t i = 0; i < model.fields.size(); ++i)
        if (const std::string selector = fieldSelector(model, model.fields[i]);
            !isStep[i] && !isKnown(results, selector))
            results.push_back(choiceOf(model.fields[i], selector));
    for (const ResultChoice& result : results) {
        if (result.location == FieldLocation::Node)
            nodeResults.push_back(result.selector);
        if (result.location == FieldLocation::Node && result.components == 3)
            vectors.push_back(result.selector);
        if (result.components == 6 || result.components == 9)
            tensors.push_back(result.selector);
    }
    std::map<CellType, std::size_t> counts;
    for (const CellType type : model.types)
        ++counts[type];
    for (const auto& [type, count] : counts)
        cellTypes.push_back(countText(count) + " " + std::string(cellTypeName(type)));
}

ResultChosen chosenResult(const Choices& choices, const std::string& selector) {
    for (std::size_t i = 0; i < choices.results.size(); ++i) {
        const ResultChoice& result = choices.results[i];
        if (selector == result.selector)
            return {static_cast<int>(i), 0};
        for (std::size_t k = 0; k < result.parts.size(); ++k)
            if (selector == result.selector + ":" + result.parts[k])
                return {static_cast<int>(i), static_cast<int>(k)};
    }
    return {};
}

std::string selectorOf(const Choices& choices, const ResultChosen& chosen) {
    if (chosen.result < 0)
        return "";
    const ResultChoice& result = choices.results[static_cast<std::size_t>(chosen.result)];
    return chosen.part == 0 ? result.selector
                            : result.selector + ":" + result.parts[static_cast<std::size_t>(chosen.part)];
}

std::string countText(std::size_t count) {
    std::string text = std::to_string(count);
    for (int at = static_cast<int>(text.size()) - 3; at > 0 && count >= 10000; at -= 3)
        text.insert(static_cast<std::size_t>(at), 1, ' ');
    return text;
}

} // namespace nruview
