// The text of --list: what is in a model.
#pragma once

#include <ostream>

#include "viewer/model/model.h"

namespace nruview {

/// Counts by cell type, outer faces with their area, bounds, fields with their ranges, result steps and the
/// reader's notes.
void listModel(std::ostream& out, const Model& model, const std::string& name);

} // namespace nruview
