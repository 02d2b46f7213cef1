#pragma once

#include "keywords/EditRecord.h"
#include "platform/TextRange.h"

#include <QString>

#include <functional>
#include <optional>
#include <vector>

namespace scrivlet {

class NoteViewModel;
class TextStorage;

// What every pass is handed on one run of the pipeline.
struct TextPassInput {
    TextStorage &storage;
    NoteViewModel &noteViewModel;
    const EditRecord &edit;
    // Only the line of the caret needs restyling: a keystroke below the first line.
    bool lineOnly = false;
    // A full re-process: the note was opened, or a preference or theme changed.
    bool forceFull = false;
    // Lines besides the caret's whose marks a pass rewrote in this run (math marks a
    // variable's uses all over the note); the styling laid over it covers them too.
    std::vector<TextRange> *restyledLines = nullptr;
};

// The passes that the pipeline runs for the kinds of notes, each called from one place
// of `TextChangePipeline`. A pass that is not set is skipped; the rest of the run (the
// keyword's state, its colour, its help text, the styling) goes on without it. The
// subsystems that own the passes (totals, calculation, checklists, markdown, code
// highlighting, links) set their members when the editor is made.
struct TextPasses {
    using Pass = std::function<void(const TextPassInput &)>;
    // A checklist step over the whole note, or from a position on when given.
    using ChecklistStep = std::function<void(const TextPassInput &, std::optional<qsizetype> from)>;

    // Totals of SUM, AVG and COUNT notes: each writes its block and colours the keyword.
    Pass sum;
    Pass average;
    Pass count;
    // Results behind "=" in a MATH note.
    Pass processAllMath;

    // Checklists of a LIST note, run in this order.
    ChecklistStep createCheckboxes;
    ChecklistStep assignRanges;
    ChecklistStep drawRows;
    // Whether the edit turned a row's check mark on or off.
    std::function<bool(const QString &oldLine, const QString &newLine)> checkStateChanged;
    // The laid-out height of a line of text in the editor, to notice a row that wraps.
    std::function<double(const QString &line)> measureLineHeight;

    // Styling: markdown and fenced code in every note but a CODE note, which gets its
    // language's highlighting instead.
    Pass applyMarkdown;
    Pass fencedCode;
    Pass codeHighlighting;

    // Links: shortening and colouring while link highlighting is on, else restoring
    // them in full and plain colouring.
    std::function<void(const TextPassInput &, qsizetype caret, std::optional<UserActionType> action)>
        updateScrivlinks;
    Pass unshrinkLinks;
    Pass colorLinks;
    // The app shows every link in full for the moment (a modifier held down).
    std::function<bool()> showsAllLinksInFull;
};

} // namespace scrivlet
