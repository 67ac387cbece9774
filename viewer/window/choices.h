// What there is to choose from in a model, for the lists of a panel.
#pragma once

#include <string>
#include <vector>

#include "viewer/model/model.h"

namespace nruview {

/// A result with all its steps.
struct ResultChoice {
    std::string selector; ///< as selectScalars takes it
    FieldLocation location = FieldLocation::Node;
    int components = 1;
    std::vector<std::string>
        parts; ///< names of components and invariants, the one that goes without saying first
};

struct Choices {
    explicit Choices(const Model& model);
    std::vector<ResultChoice> results;
    std::vector<std::string> vectors;     ///< selectors of the nodes' vectors, which may deform or be arrows
    std::vector<std::string> nodeResults; ///< selectors of what spheres may show
    std::vector<std::string> tensors;
    std::vector<std::string> steps;     ///< in words
    std::vector<std::string> cellTypes; ///< such as "12 400 hexahedra"
};

/// A selector taken apart.
struct ResultChosen {
    int result = -1; ///< of the choices; -1: none
    int part = 0;    ///< of the result's
};
ResultChosen chosenResult(const Choices& choices, const std::string& selector);
std::string selectorOf(const Choices& choices, const ResultChosen& chosen);

/// With thin spaces between thousands.
std::string countText(std::size_t count);

} // namespace nruview
