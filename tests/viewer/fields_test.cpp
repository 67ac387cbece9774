// Components, invariants and steps of fields, against closed formulas.
#include "viewer/model/fields.h"

#include <cmath>

#include "tests/viewer/files.h"
#include "viewer/model/numbering.h"

using namespace nrutest;

namespace {

constexpr auto kNode = FieldLocation::Node;
constexpr auto kCell = FieldLocation::Cell;

/// Without nodes and cells: fields are looked up and reduced by themselves.
Model modelOf(std::vector<Field> fields) {
    Model model;
    model.fields = std::move(fields);
    return model;
}

TEST(Fields, SelectorsGiveComponentsAndInvariants) {
    const Model model = modelOf({
        {"T", kCell, 1, {77}},
        {"T", kNode, 1, {-2}},
        {"U", kNode, 3, {2, -3, 6}},
        {"flat", kCell, 2, {3, 4}},
        {"S", kCell, 6, {11, 5, -7, 2, -3, 1}},
        {"skew", kNode, 9, {11, 4, 2, 0, 5, -6, 0, 0, -7}},
        {"odd:name", kNode, 1, {8}},
        {"odd@cell", kNode, 1, {9}},
    });
    // By the deviator, sqrt(3/2 s:s), with the mean stress 3; the symmetric part of the skew one is the same.
    const double mises = std::sqrt(1.5 * (8 * 8 + 2 * 2 + 10 * 10 + 2 * (2 * 2 + 3 * 3 + 1 * 1)));
    const std::tuple<const char*, double, const char*> rows[] = {{"T", -2, "T"},
                                                                 {"T@cell", 77, "T"},
                                                                 {"T@node:mag", 2, "T:mag"},
                                                                 {"U", 7, "U:mag"},
                                                                 {"U:2", 6, "U:2"},
                                                                 {"U:Y", -3, "U:y"},
                                                                 {"flat:y", 4, "flat:y"},
                                                                 {"S", mises, "S:mises"},
                                                                 {"S:yz", -3, "S:yz"},
                                                                 {"S:xz", 1, "S:xz"},
                                                                 {"skew", mises, "skew:mises"},
                                                                 {"skew:zz", -7, "skew:zz"},
                                                                 {"skew:yz", -6, "skew:yz"},
                                                                 {"skew:xz", 2, "skew:xz"},
                                                                 {"odd:name:mag", 8, "odd:name:mag"},
                                                                 {"odd@cell", 9, "odd@cell"}};
    for (const auto& [selector, value, label] : rows) {
        const Scalars scalars = selectScalars(model, selector, {});
        ASSERT_EQ(scalars.values.size(), 1u) << selector;
        EXPECT_NEAR(scalars.values[0], value, 1e-12) << selector;
        EXPECT_EQ(scalars.label, label);
    }
    EXPECT_EQ(selectScalars(model, "S", {}).location, kCell);
    for (const Field& field : model.fields)
        EXPECT_EQ(&findField(model, fieldSelector(model, field), {}), &field) << field.name;
}

const Model kSteps = modelOf({{"disp10", kNode, 3, {10, 0, 0}},
                              {"disp2", kNode, 3, {2, 0, 0}},
                              {"disp1", kNode, 3, {1, 0, 0}},
                              {"disp1", kCell, 3, {99, 0, 0}},
                              {"heat_01", kNode, 1, {5}},
                              {"heat_02", kNode, 1, {6}},
                              {"heat_1", kCell, 1, {7}},
                              {"heat_2", kCell, 1, {8}},
                              {"CH4", kNode, 1, {7}}});

TEST(Fields, NumberedNamesMakeSeriesInTheOrderOfTheirNumbers) {
    const std::vector<StepSeries> series = stepSeries(kSteps);
    ASSERT_EQ(series.size(), 3u);
    EXPECT_EQ(series[0].name, "disp");
    EXPECT_THAT(series[0].numbers, ElementsAre(1, 2, 10));
    EXPECT_THAT(series[0].fields, ElementsAre(2, 1, 0));
    const std::tuple<const char*, std::optional<int>, double> rows[] = {
        {"disp:x", 1, 2}, {"disp:x", {}, 10}, {"disp2:x", 0, 2}, {"heat", 0, 5}, {"heat@cell", 0, 7}};
    for (const auto& [selector, step, value] : rows)
        EXPECT_EQ(selectScalars(kSteps, selector, step).values[0], value) << selector;
    EXPECT_EQ(findDisplacement(kSteps, 0), &kSteps.fields[2]);
    EXPECT_EQ(findDisplacement(modelOf({{"T", kNode, 3, {}}, {"u", kNode, 3, {}}}), {})->name, "u");
    EXPECT_EQ(findDisplacement(modelOf({{"disp", kCell, 3, {1, 2, 3}}, {"U", kNode, 1, {1}}}), {}), nullptr);
}

TEST(Fields, FieldsOfTheModelsStepsMakeSeriesThatMayHaveGaps) {
    Model model = modelOf({{"U", kNode, 3, {1, 0, 0}, 0},
                           {"T", kNode, 1, {5}, 2},
                           {"T", kNode, 1, {4}, 0},
                           {"U", kNode, 3, {2, 0, 0}, 1},
                           {"disp1", kNode, 3, {9, 0, 0}}});
    model.steps = {{"time 0.5", 0.5, false}, {"time 1", 1.0, false}, {"mode 3, 417 Hz", 417.0, true}};
    EXPECT_EQ(stepCount(model), 3);
    EXPECT_EQ(selectScalars(model, "T", 0).values[0], 4);
    EXPECT_EQ(selectScalars(model, "T", {}).values[0], 5);
    EXPECT_EQ(findDisplacement(model, 1), &model.fields[3]);
    EXPECT_EQ(stepText(model, model.fields[1]), "mode 3, 417 Hz");
    EXPECT_EQ(stepText(model, model.fields[4]), "");
    EXPECT_THAT([&] { selectScalars(model, "T", 1); },
                ThrowsMessage<ViewerError>("field T: step 1 is not there; the steps are 0 2"));
}

TEST(Numbering, TheFilesNumbersAreWhatUsersGive) {
    Model model;
    model.nodes.resize(5);
    model.nodeNumbers = {70, 10, 30, 20, 40};
    const auto indices = [&](const ElementList& numbers) {
        std::string text;
        for (const ElementRange& range : nodeIndices(model, numbers, "--nodes"))
            text += std::to_string(range.first) + "-" + std::to_string(range.last) + " ";
        return text;
    };
    EXPECT_EQ(indices({{10, 30}, {70, 70}}), "1-1 3-3 2-2 0-0 ");
    EXPECT_EQ(indices({{35, 0xFFFFFFFF}}), "4-4 0-0 ");
    const ElementList between = {{41, 69}};
    EXPECT_THAT(
        [&] { indices(between); },
        ThrowsMessage<ViewerError>("--nodes: there is no node 41 to 69; the model's nodes are 10 to 70"));
    EXPECT_EQ(nodeNumber(model, 3), 20);
}

TEST(Fields, BadSelectorsSayWhatThereIs) {
    const struct {
        const char* selector;
        std::optional<int> step;
        const char* reason;
    } rows[] = {
        {"stress", {}, "field stress: not there; the model has disp (3 steps), heat (2 steps), heat"},
        {"disp:w", {}, "no component 'w'; it has 0 to 2, x y z, mag"},
        {"disp:3", {}, "no component '3'"},
        {"disp:mises", {}, "no component 'mises'"},
        {"CH4@cell", {}, "field CH4@cell: not there"},
        {"disp", 3, "step 3 is not there; the steps are 0 to 2"},
        {"disp", -1, "step -1"},
    };
    for (const auto& row : rows)
        EXPECT_THAT([&] { selectScalars(kSteps, row.selector, row.step); },
                    ThrowsMessage<ViewerError>(HasSubstr(row.reason)));
}

} // namespace
