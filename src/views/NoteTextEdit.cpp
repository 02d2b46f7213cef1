#include "views/NoteTextEdit.h"

#include "platform/qt/DocumentTextStorage.h"

#include <QKeyEvent>
#include <QMimeData>
#include <QTextDocument>

namespace scrivlet {

NoteTextEdit::NoteTextEdit(QWidget *parent)
    : QTextEdit(parent), m_theme(ThemePalette::builtIn(QStringLiteral("Vancouver")))
{
    setAcceptRichText(false);
    setFrameShape(QFrame::NoFrame);
    setLineWrapMode(QTextEdit::WidgetWidth);
    document()->setDocumentMargin(14);
    m_storage = new DocumentTextStorage(this, [this](const QString &role) { return m_theme.color(role); });
    connect(document(), &QTextDocument::contentsChange, this, [this](int position, int removed, int added) {
        if (removed != 0 || added != 0)
            m_changeStart = std::min(m_changeStart, qsizetype(position));
    });
    connect(document(), &QTextDocument::contentsChanged, this, &NoteTextEdit::documentChanged);
    setTheme(m_theme);
}

NoteTextEdit::~NoteTextEdit() = default;

void NoteTextEdit::setTheme(const ThemePalette &palette)
{
    m_theme = palette;
    QPalette p = this->palette();
    p.setColor(QPalette::Base, m_theme.color(QStringLiteral("background")));
    p.setColor(QPalette::Window, m_theme.color(QStringLiteral("background")));
    p.setColor(QPalette::Text, m_theme.color(QStringLiteral("typeMain")));
    p.setColor(QPalette::Highlight, m_theme.color(QStringLiteral("accent1Tertiary")));
    p.setColor(QPalette::HighlightedText, m_theme.color(QStringLiteral("typeHighlight")));
    setPalette(p);
    viewport()->setPalette(p);
    m_storage->refreshFormats();
}

void NoteTextEdit::loadText(const QString &text)
{
    m_loading = true;
    m_storage->setText(text, m_storage->typingAttributes());
    m_lastText = m_storage->string();
    m_loading = false;
    m_storage->setSelectedRange({m_lastText.size(), 0});
}

void NoteTextEdit::withAction(UserActionType action, const std::function<void()> &body)
{
    const auto previous = m_action;
    m_action = action;
    body();
    m_action = previous;
}

void NoteTextEdit::keyPressEvent(QKeyEvent *event)
{
    const bool deleting = event->key() == Qt::Key_Backspace || event->key() == Qt::Key_Delete;
    if (!event->text().isEmpty())
        m_storage->applyTypingAttributes();
    if (event->matches(QKeySequence::Cut)) {
        withAction(UserActionType::cut, [&] { QTextEdit::keyPressEvent(event); });
        return;
    }
    if (event->matches(QKeySequence::Paste)) {
        withAction(UserActionType::paste, [&] { QTextEdit::keyPressEvent(event); });
        return;
    }
    withAction(deleting ? UserActionType::delete_ : UserActionType::keydown, [&] { QTextEdit::keyPressEvent(event); });
}

void NoteTextEdit::insertFromMimeData(const QMimeData *source)
{
    // Notes are plain text: whatever comes in, only its text is taken.
    if (!source->hasText())
        return;
    const QString text = source->text();
    const auto action = m_action == UserActionType::drag ? UserActionType::drag : UserActionType::paste;
    withAction(action, [&] {
        m_storage->applyTypingAttributes();
        textCursor().insertText(text, currentCharFormat());
    });
}

void NoteTextEdit::dropEvent(QDropEvent *event)
{
    withAction(UserActionType::drag, [&] { QTextEdit::dropEvent(event); });
}

void NoteTextEdit::documentChanged()
{
    const qsizetype changeStart = std::exchange(m_changeStart, std::numeric_limits<qsizetype>::max());
    if (m_loading)
        return;
    const QString now = m_storage->string();
    // Format-only changes, and changes the passes make while they hold the storage,
    // are not edits of the user.
    if (now == m_lastText || m_storage->delegate() == nullptr) {
        m_lastText = now;
        return;
    }
    const QString before = std::exchange(m_lastText, now);

    // The replaced range is what lies between the common start and the common end.
    qsizetype prefix = 0;
    const qsizetype shorter = std::min(before.size(), now.size());
    // The document says where the change began, which settles typing "a" into "aa".
    while (prefix < shorter && prefix < changeStart && before.at(prefix) == now.at(prefix))
        ++prefix;
    qsizetype suffix = 0;
    while (suffix < shorter - prefix &&
           before.at(before.size() - 1 - suffix) == now.at(now.size() - 1 - suffix))
        ++suffix;

    Edit edit;
    edit.before = before;
    edit.replaced = {prefix, before.size() - prefix - suffix};
    edit.inserted = now.mid(prefix, now.size() - prefix - suffix);
    edit.action = m_action;
    if (m_onEdit)
        m_onEdit(edit);
    if (TextStorageDelegate *delegate = m_storage->delegate())
        delegate->textStorageDidChange(*m_storage);
}

} // namespace scrivlet
