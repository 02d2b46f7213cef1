#pragma once

#include "notes/ChecklistItem.h"
#include "notes/Scrivlink.h"
#include "platform/Debouncer.h"

#include <QDateTime>
#include <QHash>
#include <QStringList>
#include <QUuid>

#include <functional>
#include <optional>
#include <vector>

namespace scrivlet {

struct Note;

// One undo step: a note's text together with what belongs to it and can't be read back
// from the text alone (which rows are ticked, what each short link stands for, the links
// kept in full), and where the caret was.
struct NoteSnippetForUndoManagement {
    QString content;
    std::vector<ChecklistItem> checklistItems;
    std::vector<Scrivlink> scrivlinks;
    QStringList skippedURLs;
    TextRange selectedRange;

    // Taken from the note as it stands, with the caret where the editor has it.
    static NoteSnippetForUndoManagement of(const Note &note, const TextRange &selectedRange);

    // The caret is no part of a step: moving it alone changes nothing to undo. Rows are
    // compared as the checklist draws them; links by what they show and stand for, since
    // where they stand follows from the text.
    friend bool operator==(const NoteSnippetForUndoManagement &a, const NoteSnippetForUndoManagement &b);
};

struct NoteUndoState {
    QUuid noteId;
    std::vector<NoteSnippetForUndoManagement> undoStates;
    std::vector<NoteSnippetForUndoManagement> redoStates;
    // The state the editor is in now, as last recorded.
    std::optional<NoteSnippetForUndoManagement> latestState;
    QDateTime lastAccessTime;
};

// The undo and redo stacks of every note opened in this run, shared by all editors, so
// that undo still works after walking to another note and back. Typing is folded into
// one step per word: a step ends half a second after a word boundary, or at once when
// the checklist or the links change under the text.
class UndoManagement final {
public:
    using Snapshot = NoteSnippetForUndoManagement;
    using SnapshotSource = std::function<Snapshot()>;

    static constexpr int kMaxSteps = 100;
    static constexpr int kMaxNotes = 20;
    static constexpr std::chrono::milliseconds kWordPause{500};

    explicit UndoManagement(Clock &clock);
    UndoManagement(const UndoManagement &) = delete;
    UndoManagement &operator=(const UndoManagement &) = delete;

    // Makes the note the one that undo works on; `source` tells how it stands now in
    // `editor`. What was typed into the note that was current before is recorded first.
    // A note seen for the first time starts its history from what `source` gives.
    void setCurrentNote(const QUuid &noteId, SnapshotSource source, const void *editor = nullptr);
    std::optional<QUuid> currentNoteId() const { return m_currentNoteId; }
    bool isCurrentEditor(const void *editor) const { return m_source && m_editor == editor; }
    // The editor is going away: if it is the current one, its pending typing is recorded
    // and its source let go. The note's stacks stay for when it comes back.
    void editorClosing(const void *editor);

    void recordState(const Snapshot &snapshot);
    std::optional<Snapshot> latestState() const;
    void setLatestState(const Snapshot &snapshot);
    void clearRedo();
    bool canUndo() const;
    bool canRedo() const;
    // The snapshot to apply, or nothing when there is no step to go to.
    std::optional<Snapshot> undo();
    std::optional<Snapshot> redo();

    // The current note's text or what belongs to it changed.
    void textDidChange();
    // Ends the step being typed now, as before a paste or a ticked box.
    void flushAndRegisterUndo();

    // The notes that have stacks, for the tests of eviction.
    qsizetype noteCount() const { return m_noteUndoStates.size(); }

private:
    using Stack = std::vector<NoteSnippetForUndoManagement>;
    // Goes one step along: the state now onto `to`, the last of `from` applied.
    std::optional<Snapshot> step(Stack NoteUndoState::*from, Stack NoteUndoState::*to);
    NoteUndoState *current();
    const NoteUndoState *current() const;
    void evict();

    Clock &m_clock;
    QHash<QUuid, NoteUndoState> m_noteUndoStates;
    std::optional<QUuid> m_currentNoteId;
    SnapshotSource m_source;
    const void *m_editor = nullptr;
    Debouncer m_wordPause;
};

} // namespace scrivlet
