#pragma once

#include "keywords/UserActionType.h"
#include "platform/TextRange.h"

#include <QString>

#include <optional>

namespace scrivlet {

// What the editor noted just before the last change of the text. The pipeline only
// reads it, to tell a keystroke below the first line (restyle one line) from
// anything that can change the whole note.
struct EditRecord {
    // A backward delete is recorded as this one character instead of an empty insertion.
    static constexpr QChar kBackwardDelete = QChar(0x7f);

    // The range of the old text that the change replaced.
    TextRange lastModifiedRange;
    // The whole text before the change.
    QString preModifiedContent;
    // The text the change inserted.
    QString lastModifiedContent;
    std::optional<UserActionType> lastModificationAction;
    bool cursorMovedRecently = false;
    bool isContentLoaded = false;
};

} // namespace scrivlet
