#pragma once

#include <QString>
#include <QStringView>

#include <vector>

namespace scrivlet {

class ChecklistManager;
class NotificationBus;
class TextStorage;

// Where each row of a checklist sits: the top of its line, measured from the top of
// the text as the editor lays it out, so the boxes in the margin meet their lines.
class ChecklistLayout {
public:
    static constexpr char16_t kMismatchMessage[] =
        u"A critical error occurred with list. My fault. Please DM u/marlowquill";

    // The top of every non-empty line from the one holding `startingPosition` on (all
    // lines below the first when it is 0), given the height of each line of `text`.
    // `spacing` stands between paragraphs.
    static std::vector<double> positionsFromHeights(QStringView text, const std::vector<double> &heights,
                                                    qsizetype startingPosition, double spacing);

    // Gives the rows from the one of `startingPosition` on their positions in `text`, laid
    // out by `storage`. Rows and lines out of step are reported with a message pill, and
    // as many rows as there are positions still get theirs.
    static void insertVerticalPositions(const TextStorage &storage, const QString &text, qsizetype startingPosition,
                                        ChecklistManager &manager, double spacing, const NotificationBus &bus);

    // Whether `newText` lays out taller than `oldText`, as when a row wraps.
    static bool textHeightGrew(const QString &oldText, const QString &newText, const TextStorage &storage);
    static double textHeight(const QString &text, const TextStorage &storage);
};

} // namespace scrivlet
