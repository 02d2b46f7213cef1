#pragma once

#include "notes/ChecklistItem.h"
#include "platform/TextRange.h"

#include <QMetaType>
#include <QString>

#include <memory>
#include <optional>

namespace scrivlet {

class CheckTriggers;

// Ticking or clearing a box is an edit of the row's text: the check word is written
// behind the row, or taken off it.
class ChecklistToggle {
public:
    // Posted by a checkbox once it flipped its row's `checked`; the payload carries
    // `checked` (the new state), `item` (the row) and `editorId` (whose box it was, so
    // that the other half of a split view leaves it alone).
    static constexpr char16_t kNotification[] = u"ChecklistItemToggled";

    struct Edit {
        TextRange range; // the row's line, without its line feed
        QString replacement;
    };

    // The edit that gives the line starting at `lineLocation` of `text` the state
    // `checked`. Nothing when no line starts there; a clear that finds no check word at
    // the very end of the line gives the line back as it is.
    static std::optional<Edit> edit(const QString &text, qsizetype lineLocation, bool checked,
                                    const CheckTriggers &triggers);
};

} // namespace scrivlet

Q_DECLARE_METATYPE(std::shared_ptr<scrivlet::ChecklistItem>)
