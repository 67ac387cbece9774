// What families take from the host on purpose, and what they leave changed: the contract's other half.
#pragma once

#include "viewer/contract/families.h"
#include "viewer/contract/glstate.h"
#include "viewer/contract/hoststates.h"

namespace nruview {

/// Why a state may show in pictures of a family; null where it may not.
const char* reasonToTake(const Family& family, const HostState& state);

/// Whether families of a kind take states of a group, as the embedding guide's table says.
bool takesGroup(FamilyKind kind, StateGroup group);

/// Why a family may leave a value changed; null where it may not.
const char* reasonToLeave(const Family& family, const GlStateKey& key);

} // namespace nruview
