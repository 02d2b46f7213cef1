#include "views/NoteEditorView.h"

#include "notes/NoteViewModel.h"
#include "notes/NotesReloadedNotification.h"
#include "editor/ChecklistPass.h"
#include "editor/UndoManagement.h"
#include "views/ChecklistView.h"
#include "views/HintTextView.h"
#include "views/LinkInteraction.h"
#include "views/NoteTextEdit.h"
#include "platform/TextDifference.h"
#include "platform/qt/DocumentTextStorage.h"

#include <QEvent>
#include <QTimer>
#include <QVBoxLayout>

namespace scrivlet {

NoteEditorView::NoteEditorView(const EditorContext &context, std::shared_ptr<NoteViewModel> note,
                               NoteEditorSession::SaveCallback save, QWidget *parent)
    : QWidget(parent), m_note(std::move(note)), m_edit(new NoteTextEdit(this)), m_hint(new HintTextView(m_edit)),
      m_undo(context.undoManagement)
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_edit);
    setFocusProxy(m_edit);

    m_session = std::make_unique<NoteEditorSession>(m_edit->storage(), *m_note, context, std::move(save));
    m_passes = std::make_unique<EditorPasses>(*m_session, context);
    m_links = std::make_unique<LinkInteraction>(m_passes->scrivlinks());
    m_edit->setLinkInteraction(m_links.get());
    m_checklist = new ChecklistView(m_edit, *m_session, m_passes->checklists(), context.bus);
    m_edit->setEditHandler([this](const NoteTextEdit::Edit &edit) {
        m_session->recordEdit(edit.before, edit.replaced, edit.inserted, edit.action.value_or(UserActionType::keydown));
    });

    m_subscriptions.push_back(
        context.bus.subscribe(QStringLiteral("updateHintText"), [this](const QVariantMap &payload) {
            if (payload.value(QStringLiteral("editorId")).toString() != m_session->editorId())
                return;
            m_hint->setHint(payload.value(QStringLiteral("shouldShowHelpText")).toBool(),
                            payload.value(QStringLiteral("helpText")).toString());
        }));
    // A note that changed elsewhere takes its new text; any other open note keeps its
    // caret and its undo history.
    m_subscriptions.push_back(
        context.bus.subscribe(QStringLiteral("notesManagerReloadedNotes"), [this](const QVariantMap &payload) {
            if (NotesReloadedNotification::changedUUIDs(payload).contains(m_note->id()))
                reloadFromNote();
        }));

    if (m_undo) {
        m_session->setTextChangeRecorder([this] { recordTextChange(); });
        NoteTextEdit::History history;
        history.undo = [this] { undo(); };
        history.redo = [this] { redo(); };
        history.canUndo = [this] {
            makeUndoCurrent();
            return m_undo->canUndo();
        };
        history.canRedo = [this] {
            makeUndoCurrent();
            return m_undo->canRedo();
        };
        history.endStep = [this] {
            makeUndoCurrent();
            m_undo->flushAndRegisterUndo();
        };
        m_edit->setHistory(std::move(history));
        // A box ticked or a link toggled is a step of its own.
        m_subscriptions.push_back(
            context.bus.subscribe(QStringLiteral("flushAndRegisterUndo"), [this](const QVariantMap &payload) {
                if (payload.value(QStringLiteral("editorId")).toString() != m_session->editorId())
                    return;
                makeUndoCurrent();
                m_undo->flushAndRegisterUndo();
            }));
        // A command that rewrote the note's text has had it restyled by now: what it wrote
        // is a step of its own.
        m_subscriptions.push_back(
            context.bus.subscribe(QStringLiteral("textProgrammaticallyChanged"), [this](const QVariantMap &) {
                if (m_undo->isCurrentEditor(this))
                    m_undo->flushAndRegisterUndo();
            }));
        m_edit->installEventFilter(this);
    }

    // The note is shown at once; the first full pass runs on the next turn of the loop,
    // once the view is in place.
    m_edit->loadText(m_note->note().content);
    QTimer::singleShot(0, this, [this] {
        m_session->open();
        m_edit->storage().setSelectedRange({m_edit->storage().length(), 0});
        m_opened = true;
        // The history starts from the note as opened, whichever pane is typed into first.
        makeUndoCurrent();
    });
}

NoteEditorView::~NoteEditorView()
{
    if (m_undo)
        m_undo->editorClosing(this);
    // The text view outlives this object's members by a moment, as a child widget.
    m_edit->setLinkInteraction(nullptr);
    // The boxes read the session and its passes, which go before the editor's children.
    delete m_checklist;
    m_checklist = nullptr;
    flushPendingSave();
}

void NoteEditorView::setTheme(const ThemePalette &palette)
{
    m_edit->setTheme(palette);
    m_session->reStyleAndProcessNote();
}

void NoteEditorView::flushPendingSave()
{
    if (m_session)
        m_session->flushPendingSave();
}

void NoteEditorView::reloadFromNote()
{
    ++m_reloadEpoch;
    const TextRange selection = m_edit->storage().selectedRange();
    m_session->open();
    m_edit->storage().setSelectedRange(selection);
    // The text from elsewhere is where this note's history goes on from; undo still
    // reaches back past it.
    if (m_undo && m_undo->isCurrentEditor(this))
        m_undo->flushAndRegisterUndo();
}

bool NoteEditorView::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_edit && event->type() == QEvent::FocusIn && m_opened)
        makeUndoCurrent();
    return QWidget::eventFilter(watched, event);
}

void NoteEditorView::makeUndoCurrent()
{
    if (!m_undo || !m_opened)
        return;
    if (m_undo->isCurrentEditor(this) && m_undo->currentNoteId() == m_note->id())
        return;
    m_undo->setCurrentNote(
        m_note->id(), [this] { return undoSnapshot(); }, this);
}

NoteSnippetForUndoManagement NoteEditorView::undoSnapshot() const
{
    return NoteSnippetForUndoManagement::of(m_note->note(), m_edit->storage().selectedRange());
}

void NoteEditorView::recordTextChange()
{
    if (m_applyingUndoStep || !m_opened)
        return;
    makeUndoCurrent();
    m_undo->textDidChange();
}

void NoteEditorView::undo()
{
    walkHistory(&UndoManagement::undo);
}

void NoteEditorView::redo()
{
    walkHistory(&UndoManagement::redo);
}

void NoteEditorView::walkHistory(std::optional<NoteSnippetForUndoManagement> (UndoManagement::*walk)())
{
    if (!m_undo || !m_opened)
        return;
    makeUndoCurrent();
    if (const auto step = (m_undo->*walk)())
        applyUndoStep(*step);
}

void NoteEditorView::applyUndoStep(const NoteSnippetForUndoManagement &step)
{
    m_applyingUndoStep = true;
    Note &note = m_note->mutableNote();
    note.checklistManager->checklist.clear();
    for (const ChecklistItem &item : step.checklistItems)
        note.checklistManager->checklist.push_back(std::make_shared<ChecklistItem>(item));
    note.scrivlinkManager->scrivlinks = step.scrivlinks;
    note.scrivlinkManager->skippedURLs = step.skippedURLs;

    // Only the part that differs is put back, so the rest of the note keeps its layout.
    TextStorage &storage = m_edit->storage();
    const QString before = storage.string();
    const QString &after = step.content;
    const TextDifference difference = textDifference(before, after);
    const TextRange replaced = difference.before;
    const QString replacement = after.mid(difference.after.location, difference.after.length);

    // Put back as a paste is: the whole note is looked at again.
    m_session->recordEdit(before, replaced, replacement, UserActionType::paste);
    TextStorageDelegate *delegate = storage.delegate();
    storage.setDelegate(nullptr);
    storage.replaceCharacters(replaced, replacement, storage.typingAttributes());
    storage.setDelegate(delegate);
    storage.setSelectedRange(step.selectedRange);
    m_session->setForceProcessing(true);
    m_session->textDidChange();
    storage.setSelectedRange(step.selectedRange);
    m_edit->ensureCursorVisible();
    // What the passes made of the step is where the history stands now.
    m_undo->setLatestState(undoSnapshot());
    m_applyingUndoStep = false;
}

} // namespace scrivlet
