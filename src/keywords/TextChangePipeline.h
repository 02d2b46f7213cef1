#pragma once

#include "keywords/DefaultTextAttributes.h"
#include "keywords/EditorContext.h"
#include "keywords/KeywordID.h"
#include "keywords/TextPasses.h"

#include <QString>
#include <QStringView>

#include <optional>

namespace scrivlet {

class NoteViewModel;
class TextStorage;

// Where every change of a note's text ends: reads the first line, runs the passes of
// the note's keyword, lays the styling over the text and tells the hint view which
// help text belongs to the note. One per editor: it reads that editor's edit record,
// and its help texts carry the editor's id, so the two halves of a split view can
// tell whose hint it is.
class TextChangePipeline {
public:
    TextChangePipeline(const EditorContext &context, const EditRecord &edit, QString editorId);
    TextChangePipeline(const TextChangePipeline &) = delete;
    TextChangePipeline &operator=(const TextChangePipeline &) = delete;

    TextPasses &passes() { return m_passes; }
    const QString &editorId() const { return m_editorId; }

    // `activeKeyword` and `isList` are the editor's state from the last run, updated
    // here. `forceFull` asks a list to rebuild its checklist whatever the edit was.
    void processTextChange(TextStorage *storage, NoteViewModel &noteViewModel,
                           std::optional<KeywordID> &activeKeyword, bool &isList, bool forceFull);

    // Whether the last edit only needs its own line restyled: a keystroke that inserts
    // text below the first line, none that can start or end a block of code or change
    // the line structure, and not in a note whose every line depends on the others.
    static bool isLineOnlyEdit(const EditRecord &edit, QStringView currentLine, std::optional<KeywordID> keyword);

    // Gives the line of the caret (or the whole text) the default attributes; with
    // `newText`, replaces the whole text by it instead.
    void resetTextAttributes(TextStorage &storage, bool lineOnly, const QString &newText) const;
    // Marks the keyword word on the first line and gives it the keyword's colour.
    void colorKeywordLine(KeywordID id, const QString &text, TextStorage &storage) const;
    // Posts "updateHintText": the help shows only while nothing is written below the
    // first line. `hideFirst` hides any help already shown before that.
    void postHelpText(const TextStorage &storage, const QString &text, bool hideFirst) const;

    DefaultTextAttributes defaultAttributes() const;
    static QString helpText(KeywordID id);

private:
    void runListBranch(const TextPassInput &input, std::optional<KeywordID> &activeKeyword, bool &isList,
                       const DefaultTextAttributes &defaults);
    void applyStyling(const TextPassInput &input, std::optional<KeywordID> keyword,
                      std::optional<KeywordID> activeKeyword, const DefaultTextAttributes &defaults);
    void colorTriggerLine(TextStorage &storage, KeywordID id) const;
    void runGuarded(TextStorage &storage, const TextPasses::Pass &pass, const TextPassInput &input) const;

    const EditorContext &m_context;
    const EditRecord &m_edit;
    QString m_editorId;
    TextPasses m_passes;
};

} // namespace scrivlet
