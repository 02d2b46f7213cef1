#pragma once

#include <QString>
#include <QStringView>

#include <optional>

namespace scrivlet {

class CheckTriggers;
class ChecklistManager;
struct TextRange;

// Turns the text of a list note into its checklist: one row for each line below the
// first that holds anything but line breaks. The text is the only truth; the rows are
// rebuilt from it, from the edited line on when the edit allows.
class ChecklistBuilder {
public:
    // The index of the first row at or after `position` (a UTF-16 offset): a position
    // within, or just after, the n-th row's line gives n - 1. Nothing when the note has
    // no second line or the position lies past every row.
    static std::optional<int> startingChecklistIndex(QStringView text, qsizetype position);

    // Rebuilds the rows of `manager` from the line holding `startingPosition` on, or all
    // of them without a position. A position past every row changes nothing.
    static void createAllCheckboxesFromText(const QString &text, std::optional<qsizetype> startingPosition,
                                            ChecklistManager &manager, const CheckTriggers &triggers);

    // Whether an edit of one line ticked or cleared it (an emptied line counts too).
    static bool checkStateDiffers(QStringView oldLine, QStringView newLine, const CheckTriggers &triggers);

    // Whether typing `insertedText` over `range` put words on a line that was blank.
    static bool blankLineBecameText(QStringView text, const TextRange &range, QStringView insertedText);

    // A line with nothing but line breaks gets no row; a line of blanks does.
    static bool isEmptyLine(QStringView line);
    // Headers and comments take part in the list but show no box.
    static bool isHiddenLine(QStringView line);
};

} // namespace scrivlet
