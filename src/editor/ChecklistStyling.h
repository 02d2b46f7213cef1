#pragma once

#include "platform/TextAttributes.h"

namespace scrivlet {

class CheckTriggers;
class TextStorage;

// The look of ticked rows: the row's words struck through in a light colour, the check
// word behind them lighter still. Rows that are no longer ticked lose that look.
class ChecklistStyling {
public:
    static void applyCheckboxStyling(TextStorage *storage, const CheckTriggers &triggers,
                                     const TextAttributes &defaults);
};

} // namespace scrivlet
