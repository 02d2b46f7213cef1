#include "keywords/NoteEditorSession.h"

#include "notes/NoteViewModel.h"

#include <QUuid>

namespace scrivlet {

NoteEditorSession::NoteEditorSession(TextStorage &storage, NoteViewModel &noteViewModel,
                                     const EditorContext &context, SaveCallback save, QString editorId)
    : m_storage(storage),
      m_noteViewModel(noteViewModel),
      m_save(std::move(save)),
      m_pipeline(context, m_edit,
                 editorId.isEmpty() ? QUuid::createUuid().toString(QUuid::WithoutBraces) : std::move(editorId)),
      m_mathPass(m_pipeline, context),
      m_totalsPass(m_pipeline, context),
      m_markdown(m_pipeline),
      m_saveDebouncer(context.clock, kSaveDelay)
{
    m_storage.setDelegate(this);
    // Whatever changes how notes look or what their keywords mean restyles the open note.
    static const char16_t *const restyleNotifications[] = {
        u"fontPreferencesChanged", u"mathPreferencesChanged", u"keywordPreferencesChanged",
        u"themeChanged",           u"timerStared",            u"textProgrammaticallyChanged",
    };
    for (const char16_t *name : restyleNotifications) {
        m_subscriptions.push_back(
            context.bus.subscribe(QString::fromUtf16(name), [this](const QVariantMap &) { reStyleAndProcessNote(); }));
    }
}

NoteEditorSession::~NoteEditorSession()
{
    if (m_storage.delegate() == this)
        m_storage.setDelegate(nullptr);
}

void NoteEditorSession::open()
{
    TextStorageDelegate *delegate = m_storage.delegate();
    m_storage.setDelegate(nullptr);
    // One batch from the new text to the last mark of the first run: an editor that
    // lays out its text after each batch does so once, not twice.
    m_storage.beginEditing();
    const TextAttributes defaults = m_pipeline.defaultAttributes().plain();
    m_storage.setText(m_noteViewModel.note().content, defaults);
    m_storage.setTypingAttributes(defaults);
    m_edit.isContentLoaded = true;
    runPipeline(true);
    m_storage.endEditing();
    m_storage.setDelegate(delegate);
}

void NoteEditorSession::willChangeText(const TextRange &range, const QString &replacement, UserActionType action)
{
    recordEdit(m_storage.string(), range, replacement, action);
}

void NoteEditorSession::recordEdit(const QString &before, const TextRange &range, const QString &replacement,
                                   UserActionType action)
{
    m_edit.lastModifiedRange = range;
    m_edit.preModifiedContent = before;
    m_edit.lastModifiedContent =
        replacement.isEmpty() && action == UserActionType::delete_ ? QString(EditRecord::kBackwardDelete) : replacement;
    m_edit.lastModificationAction = action;
    m_edit.cursorMovedRecently = false;
}

void NoteEditorSession::textDidChange()
{
    if (m_storage.string() != m_noteViewModel.note().content || m_forceProcessing) {
        // A forced run is asked for once, by whoever put the text there.
        m_forceProcessing = false;
        m_pipeline.processTextChange(&m_storage, m_noteViewModel, m_activeKeyword, m_isList, false);
    }
    storeContentAndScheduleSave();
    if (m_textChangeRecorder)
        m_textChangeRecorder();
}

void NoteEditorSession::reStyleAndProcessNote()
{
    const TextRange selection = m_storage.selectedRange();
    TextStorageDelegate *delegate = m_storage.delegate();
    m_storage.setDelegate(nullptr);
    m_storage.beginEditing();
    m_storage.setText(m_noteViewModel.note().content, m_pipeline.defaultAttributes().plain());
    m_storage.setSelectedRange(selection);
    // A restyle is no keystroke, whatever the last edit was: the whole note is styled anew.
    m_edit.lastModificationAction.reset();
    runPipeline(true);
    m_storage.endEditing();
    m_storage.setDelegate(delegate);
}

void NoteEditorSession::runPipeline(bool forceFull)
{
    m_pipeline.processTextChange(&m_storage, m_noteViewModel, m_activeKeyword, m_isList, forceFull);
    // A full run may write into the text (totals, results): that is a change to keep.
    if (m_storage.string() != m_noteViewModel.note().content)
        storeContentAndScheduleSave();
}

void NoteEditorSession::storeContentAndScheduleSave()
{
    m_noteViewModel.mutableNote().content = m_storage.string();
    m_saveDebouncer.call([this] {
        if (m_save)
            m_save(m_noteViewModel.note());
    });
}

void NoteEditorSession::flushPendingSave()
{
    m_saveDebouncer.flush();
}

void NoteEditorSession::textStorageDidChange(TextStorage &storage)
{
    if (&storage == &m_storage)
        textDidChange();
}

} // namespace scrivlet
