#include "views/NoteEditorView.h"

#include "notes/NoteViewModel.h"
#include "notes/NotesReloadedNotification.h"
#include "editor/ChecklistPass.h"
#include "views/ChecklistView.h"
#include "views/HintTextView.h"
#include "views/LinkInteraction.h"
#include "views/NoteTextEdit.h"
#include "platform/qt/DocumentTextStorage.h"

#include <QTimer>
#include <QVBoxLayout>

namespace scrivlet {

NoteEditorView::NoteEditorView(const EditorContext &context, std::shared_ptr<NoteViewModel> note,
                               NoteEditorSession::SaveCallback save, QWidget *parent)
    : QWidget(parent), m_note(std::move(note)), m_edit(new NoteTextEdit(this)), m_hint(new HintTextView(m_edit))
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
        m_session->recordEdit(edit.before, edit.replaced, edit.inserted,
                              edit.action.value_or(UserActionType::keydown));
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
    m_subscriptions.push_back(context.bus.subscribe(
        QStringLiteral("notesManagerReloadedNotes"), [this](const QVariantMap &payload) {
            if (NotesReloadedNotification::changedUUIDs(payload).contains(m_note->id()))
                reloadFromNote();
        }));

    // The note is shown at once; the first full pass runs on the next turn of the loop,
    // once the view is in place.
    m_edit->loadText(m_note->note().content);
    QTimer::singleShot(0, this, [this] {
        m_session->open();
        m_edit->storage().setSelectedRange({m_edit->storage().length(), 0});
    });
}

NoteEditorView::~NoteEditorView()
{
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
}

} // namespace scrivlet
