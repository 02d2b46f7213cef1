#pragma once

#include "notes/ChecklistItem.h"

#include <memory>
#include <vector>

namespace scrivlet {

// The live checklist of one note. It is rebuilt from the note's text whenever the
// note is a list, so what it holds never needs saving to be right.
class ChecklistManager {
public:
    std::vector<std::shared_ptr<ChecklistItem>> checklist;
    QString keywordLineText;

    // The row whose range holds `location`, if any.
    std::shared_ptr<ChecklistItem> itemAt(qsizetype location) const
    {
        for (const auto &item : checklist) {
            if (item->responsibilityRange.contains(location))
                return item;
        }
        return nullptr;
    }
};

} // namespace scrivlet
