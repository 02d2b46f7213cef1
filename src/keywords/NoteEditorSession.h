#pragma once

#include "keywords/EditRecord.h"
#include "keywords/EditorContext.h"
#include "keywords/KeywordID.h"
#include "keywords/MarkdownStyler.h"
#include "keywords/MathNotePass.h"
#include "keywords/TextChangePipeline.h"
#include "keywords/TotalsPass.h"
#include "platform/Debouncer.h"
#include "platform/NotificationBus.h"
#include "platform/TextStorage.h"

#include <functional>
#include <optional>
#include <vector>

namespace scrivlet {

struct Note;
class NoteViewModel;

// One open note in one editor: the desktop editor and the command line both drive a
// note through this. It listens to its text storage, runs the pipeline on each change,
// keeps the note's content up to date and saves it once typing has paused.
class NoteEditorSession final : public TextStorageDelegate {
public:
    using SaveCallback = std::function<void(const Note &note)>;

    static constexpr std::chrono::milliseconds kSaveDelay{1000};

    NoteEditorSession(TextStorage &storage, NoteViewModel &noteViewModel, const EditorContext &context,
                      SaveCallback save, QString editorId = {});
    ~NoteEditorSession() override;
    NoteEditorSession(const NoteEditorSession &) = delete;
    NoteEditorSession &operator=(const NoteEditorSession &) = delete;

    // Shows the note: its text with the default attributes, then a full run.
    void open();
    // Called by the editor just before it changes the text: what is replaced, by what,
    // and how. A backward delete has an empty `replacement`.
    void willChangeText(const TextRange &range, const QString &replacement, UserActionType action);
    // The same record for an editor that learns of a change only after it happened,
    // and so hands over the text as it was before.
    void recordEdit(const QString &before, const TextRange &range, const QString &replacement, UserActionType action);
    // The text-did-change handler.
    void textDidChange();
    // Gives the whole text the default attributes anew, keeping the selection, and runs
    // a full pass: for changes of fonts, theme, keywords or math settings.
    void reStyleAndProcessNote();
    // Saves now if a save is waiting: before quitting or showing another note.
    void flushPendingSave();
    bool hasPendingSave() const { return m_saveDebouncer.isPending(); }

    // The editor noticed the caret move without a change of text.
    void cursorDidMove() { m_edit.cursorMovedRecently = true; }

    TextStorage &storage() const { return m_storage; }
    NoteViewModel &noteViewModel() const { return m_noteViewModel; }
    TextChangePipeline &pipeline() { return m_pipeline; }
    TextPasses &passes() { return m_pipeline.passes(); }
    // The calculation of math notes in this editor, and its variables.
    ProcessMath &processMath() { return m_mathPass.processMath(); }
    const EditRecord &editRecord() const { return m_edit; }
    const QString &editorId() const { return m_pipeline.editorId(); }

    std::optional<KeywordID> activeKeyword() const { return m_activeKeyword; }
    bool isList() const { return m_isList; }
    bool forceProcessing() const { return m_forceProcessing; }
    // The next text change runs the pipeline even if the text equals the note's content.
    void setForceProcessing(bool force) { m_forceProcessing = force; }

    // Told after each change of the text has been through the pipeline: the editor keeps
    // its undo record with it.
    void setTextChangeRecorder(std::function<void()> recorder) { m_textChangeRecorder = std::move(recorder); }

    void textStorageDidChange(TextStorage &storage) override;

private:
    void runPipeline(bool forceFull);
    void storeContentAndScheduleSave();

    TextStorage &m_storage;
    NoteViewModel &m_noteViewModel;
    SaveCallback m_save;
    EditRecord m_edit;
    TextChangePipeline m_pipeline;
    MathNotePass m_mathPass;
    TotalsPass m_totalsPass;
    MarkdownStyler m_markdown;
    std::optional<KeywordID> m_activeKeyword;
    bool m_isList = false;
    bool m_forceProcessing = false;
    Debouncer m_saveDebouncer;
    std::vector<NotificationBus::Subscription> m_subscriptions;
    std::function<void()> m_textChangeRecorder;
};

} // namespace scrivlet
