#pragma once

#include "platform/TextRange.h"

#include <QString>
#include <QUuid>

namespace scrivlet {

// One row of a checklist note. The editor changes rows in place, so they are shared
// objects. Two rows are equal when their check state, drawn position and order
// agree: rewording a row alone doesn't redraw the checklist.
class ChecklistItem {
public:
    QUuid id = QUuid::createUuid();
    QString content;
    bool checked = false;
    double verticalPosition = 0;
    TextRange responsibilityRange;
    int index = 0;
    bool isHidden = false;

    friend bool operator==(const ChecklistItem &a, const ChecklistItem &b)
    {
        return a.checked == b.checked && a.verticalPosition == b.verticalPosition && a.index == b.index;
    }
};

} // namespace scrivlet
