// What is drawn of a field: a component, the magnitude or an invariant as one scalar per node or cell; result
// steps.
#pragma once

#include <optional>

#include "viewer/model/model.h"

namespace nruview {

/// One scalar for each node or cell.
struct Scalars {
    std::string label; ///< for example "S:mises"
    FieldLocation location = FieldLocation::Node;
    std::vector<double> values;
};

/// One result at several steps: the fields of one name that belong to steps of the model or, in files without
/// steps, those with one name and a number at its end ("disp0", "disp1", ...).
struct StepSeries {
    std::string name;                ///< without the number
    std::vector<int> numbers;        ///< as in the names, ascending; empty where the model has steps
    std::vector<int> steps;          ///< ascending: indices into Model::steps, or counted from 0
    std::vector<std::size_t> fields; ///< index into Model::fields for each step
};
std::vector<StepSeries> stepSeries(const Model& model);

/// Without one _ - . or blank at its end: "disp_0001" belongs to the series "disp".
std::string trimSeparator(const std::string& stem);

/// How many steps there are to choose from, by a number from 0; 1 for a model without results in steps.
int stepCount(const Model& model);

/// The step that a field belongs to in words, such as "step 2" or "mode 3, 417.2 Hz"; empty when it belongs
/// to none.
std::string stepText(const Model& model, const Field& field);

/// Throws ViewerError for a step that the model does not have; a model without steps has step 0.
void checkStep(const Model& model, int step);

/// The field of an exact name or, for the name of a series, its step (no step = the last). Of a
/// node field and a cell field of one name the node field, unless @node or @cell after the name says which.
/// Throws ViewerError("field NAME", ...) listing what there is.
const Field& findField(const Model& model, const std::string& name, std::optional<int> step);

/// What findField takes for this very field: its name, with @node or @cell where the name alone could mean
/// another.
std::string fieldSelector(const Model& model, const Field& field);

/// A name as findField takes it, alone or with :component, a number from 0, x y z (vectors), xx yy zz xy yz
/// xz (symmetric tensors of 6 in VTK's order xx yy zz xy yz xz, or the 9 of a full tensor), mag, mises.
/// Without one: the value of a scalar, the magnitude of a vector, von Mises of a tensor.
Scalars selectScalars(const Model& model, const std::string& selector, std::optional<int> step);

/// The field that selectScalars takes its values from.
const Field& selectedField(const Model& model, const std::string& selector, std::optional<int> step);

/// What selectScalars gives for a field without a component.
Scalars defaultScalars(const Field& field);

/// The equivalent stress of von Mises (1913) of xx yy zz xy yz xz.
double vonMises(const std::array<double, 6>& stress);

/// The displacement field of a model: a three-component node field (or series) named like a displacement
/// (disp, displacement, DISPL, U, ... in any case, or a mode shape); null when there is none.
const Field* findDisplacement(const Model& model, std::optional<int> step);

/// Smallest and largest finite value; nothing when there is none.
std::optional<std::array<double, 2>> finiteRange(std::span<const double> values);

} // namespace nruview
