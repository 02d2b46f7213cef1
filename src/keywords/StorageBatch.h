#pragma once

#include "platform/TextStorage.h"

#include <functional>

namespace scrivlet {

// Runs `body` as one batch of storage changes, with the storage's delegate taken
// away so that a pass writing text does not re-enter the pipeline. Does nothing when
// there is no storage.
void uxTextStorage(TextStorage *storage, const std::function<void(TextStorage &)> &body);

// Runs `body` and puts the caret back where it was if the body moved it: passes
// rewrite text behind the user's back, and the caret must not jump.
void withSelectionGuard(TextStorage &storage, const std::function<void()> &body);

} // namespace scrivlet
