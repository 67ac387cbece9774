// Components, invariants and steps of fields, against closed formulas.
#include "viewer/fields.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "viewer/error.h"

namespace {

using namespace nruview;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr auto kNode = FieldLocation::Node;
constexpr auto kCell = FieldLocation::Cell;

/// One node and one cell.
Model modelOf(std::vector<Field> fields) {
    Model model;
    model.nodes = {{0, 0, 0}};
    model.addCell(CellType::Vertex, std::vector<std::uint32_t>{0});
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
        {"full", kNode, 9, {11, 2, 1, 2, 5, -3, 1, -3, -7}},
        {"skew", kNode, 9, {11, 4, 2, 0, 5, -6, 0, 0, -7}},
        {"uniaxial", kNode, 6, {0, 0, -250, 0, 0, 0}},
        {"shear", kNode, 6, {0, 0, 0, 0, 10, 0}},
        {"pressure", kNode, 6, {-5, -5, -5, 0, 0, 0}},
        {"odd:name", kNode, 1, {8}},
        {"odd@cell", kNode, 1, {9}},
        {"many", kNode, 4, {1, 1, 1, 1}},
    });
    // By the deviator, sqrt(3/2 s:s), with the mean stress 3.
    const double misesS = std::sqrt(1.5 * (8 * 8 + 2 * 2 + 10 * 10 + 2 * (2 * 2 + 3 * 3 + 1 * 1)));
    const struct {
        const char* selector;
        double value;
        const char* label;
    } rows[] = {
        {"T", -2, "T"},
        {"T@cell", 77, "T"},
        {"T@node:mag", 2, "T:mag"},
        {"U", 7, "U:mag"},
        {"U:y", -3, "U:y"},
        {"U:2", 6, "U:2"},
        {"U:Z", 6, "U:z"},
        {"flat:y", 4, "flat:y"},
        {"S", misesS, "S:mises"},
        {"S:yz", -3, "S:yz"},
        {"S:xz", 1, "S:xz"},
        {"full:mises", misesS, "full:mises"},
        {"full:xz", 1, "full:xz"},
        {"full:yz", -3, "full:yz"},
        {"full:zz", -7, "full:zz"},
        {"skew", misesS, "skew:mises"},
        {"uniaxial", 250, "uniaxial:mises"},
        {"shear", 10 * std::sqrt(3.0), "shear:mises"},
        {"pressure", 0, "pressure:mises"},
        {"odd:name", 8, "odd:name"},
        {"odd@cell", 9, "odd@cell"},
        {"many", 2, "many:mag"},
    };
    for (const auto& row : rows) {
        const Scalars scalars = selectScalars(model, row.selector, {});
        ASSERT_EQ(scalars.values.size(), 1u) << row.selector;
        EXPECT_NEAR(scalars.values[0], row.value, 1e-12) << row.selector;
        EXPECT_EQ(scalars.label, row.label);
    }
    EXPECT_EQ(selectScalars(model, "S", {}).location, kCell);
    for (const Field& field : model.fields)
        EXPECT_EQ(&findField(model, fieldSelector(model, field), {}), &field) << field.name;
    EXPECT_EQ(&selectedField(model, "odd:name:mag", {}), &model.fields[10]);
}

Model withSteps() {
    return modelOf({{"disp10", kNode, 3, {10, 0, 0}},
                    {"disp2", kNode, 3, {2, 0, 0}},
                    {"disp1", kNode, 3, {1, 0, 0}},
                    {"disp1", kCell, 3, {99, 0, 0}},
                    {"heat_01", kNode, 1, {5}},
                    {"heat_02", kNode, 1, {6}},
                    {"heat_1", kCell, 1, {7}},
                    {"heat_2", kCell, 1, {8}},
                    {"CH4", kNode, 1, {7}}});
}

TEST(Fields, NumberedNamesMakeSeriesInTheOrderOfTheirNumbers) {
    const Model model = withSteps();
    const std::vector<StepSeries> series = stepSeries(model);
    ASSERT_EQ(series.size(), 3u);
    EXPECT_EQ(series[0].name, "disp");
    EXPECT_THAT(series[0].numbers, ElementsAre(1, 2, 10));
    EXPECT_THAT(series[0].fields, ElementsAre(2, 1, 0));
    const struct {
        const char* selector;
        std::optional<int> step;
        double value;
    } rows[] = {{"disp:x", 1, 2}, {"disp:x", {}, 10}, {"disp2:x", 0, 2}, {"heat", 0, 5}, {"heat@cell", 0, 7}};
    for (const auto& row : rows)
        EXPECT_EQ(selectScalars(model, row.selector, row.step).values[0], row.value) << row.selector;
    EXPECT_EQ(findDisplacement(model, 0), &model.fields[2]);
    EXPECT_EQ(findDisplacement(modelOf({{"T", kNode, 3, {}}, {"u", kNode, 3, {}}}), {})->name, "u");
    EXPECT_EQ(findDisplacement(modelOf({{"disp", kCell, 3, {1, 2, 3}}, {"U", kNode, 1, {1}}}), {}), nullptr);
}

TEST(Fields, BadSelectorsSayWhatThereIs) {
    const struct {
        const char* selector;
        std::optional<int> step;
        const char* reason; ///< a piece of it
    } rows[] = {
        {"stress",
         {},
         "field stress: not there; the model has disp (3 steps), heat (2 steps), heat (2 steps),"},
        {"disp:w", {}, "no component 'w'; it has 0 to 2, x y z, mag"},
        {"disp:3", {}, "no component '3'"},
        {"disp:mises", {}, "no component 'mises'"},
        {"CH4:x", {}, "no component 'x'; it has 0 to 0, mag"},
        {"CH4@cell", {}, "field CH4@cell: not there"},
        {"disp", 3, "step 3 is not there; the steps are 0 to 2"},
        {"disp", -1, "step -1"},
        {"", {}, "not there"},
    };
    const Model model = withSteps();
    for (const auto& row : rows)
        try {
            selectScalars(model, row.selector, row.step);
            ADD_FAILURE() << row.selector;
        } catch (const ViewerError& error) {
            EXPECT_THAT(error.what(), HasSubstr(row.reason));
        }
}

TEST(Fields, RangeIsOfFiniteValues) {
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double infinity = std::numeric_limits<double>::infinity();
    EXPECT_THAT(*finiteRange(std::vector<double>{nan, 3, -infinity, -2, infinity}), ElementsAre(-2, 3));
    EXPECT_FALSE(finiteRange(std::vector<double>{nan, infinity}));
}

} // namespace
