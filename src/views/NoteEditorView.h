#pragma once

#include "editor/EditorPasses.h"
#include "keywords/NoteEditorSession.h"
#include "platform/NotificationBus.h"

#include <QWidget>

#include <memory>
#include <optional>

namespace scrivlet {

class ChecklistView;
class HintTextView;
class LinkInteraction;
class NoteTextEdit;
class NoteViewModel;
class ThemePalette;
class UndoManagement;
struct NoteSnippetForUndoManagement;

// One note on screen: its text view, the hint below the keyword line, and the
// session that runs the note engine on every edit and saves after a pause.
class NoteEditorView final : public QWidget {
    Q_OBJECT
public:
    NoteEditorView(const EditorContext &context, std::shared_ptr<NoteViewModel> note,
                   NoteEditorSession::SaveCallback save, QWidget *parent = nullptr);
    ~NoteEditorView() override;

    NoteTextEdit &textEdit() const { return *m_edit; }
    HintTextView &hintView() const { return *m_hint; }
    NoteEditorSession &session() const { return *m_session; }
    // The checklist and link behaviours that run in this note's pipeline.
    EditorPasses &editorPasses() const { return *m_passes; }
    ChecklistView &checklistView() const { return *m_checklist; }
    const std::shared_ptr<NoteViewModel> &noteViewModel() const { return m_note; }
    // Bumped each time the note's text was replaced from outside, as after a sync.
    int reloadEpoch() const { return m_reloadEpoch; }

    void setTheme(const ThemePalette &palette);
    void flushPendingSave();
    // Undo and redo of the note's steps, as the keys and the text's menu do them.
    void undo();
    void redo();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void reloadFromNote();
    // Makes this editor's note the one the shared undo history works on.
    void makeUndoCurrent();
    NoteSnippetForUndoManagement undoSnapshot() const;
    void recordTextChange();
    void walkHistory(std::optional<NoteSnippetForUndoManagement> (UndoManagement::*walk)());
    void applyUndoStep(const NoteSnippetForUndoManagement &step);

    std::shared_ptr<NoteViewModel> m_note;
    NoteTextEdit *m_edit;
    HintTextView *m_hint;
    std::unique_ptr<NoteEditorSession> m_session;
    std::unique_ptr<EditorPasses> m_passes;
    std::unique_ptr<LinkInteraction> m_links;
    ChecklistView *m_checklist = nullptr;
    std::vector<NotificationBus::Subscription> m_subscriptions;
    int m_reloadEpoch = 0;
    UndoManagement *m_undo;
    // The note has been through its first full pass: its checklist and links are whole.
    bool m_opened = false;
    bool m_applyingUndoStep = false;
};

} // namespace scrivlet
