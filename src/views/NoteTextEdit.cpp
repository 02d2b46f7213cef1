#include "views/NoteTextEdit.h"

#include "platform/TextDifference.h"
#include "platform/qt/DocumentTextStorage.h"
#include "views/LinkInteraction.h"

#include <QAbstractTextDocumentLayout>
#include <QKeyEvent>
#include <QMenu>
#include <QMimeData>
#include <QMouseEvent>
#include <QScrollBar>
#include <QTextDocument>

namespace scrivlet {

NoteTextEdit::NoteTextEdit(QWidget *parent)
    : QTextEdit(parent), m_theme(ThemePalette::builtIn(QStringLiteral("Vancouver")))
{
    setAcceptRichText(false);
    setFrameShape(QFrame::NoFrame);
    setLineWrapMode(QTextEdit::WidgetWidth);
    document()->setDocumentMargin(14);
    document()->setUndoRedoEnabled(false);
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

void NoteTextEdit::endStep()
{
    if (m_history.endStep)
        m_history.endStep();
}

void NoteTextEdit::keyPressEvent(QKeyEvent *event)
{
    if (event->matches(QKeySequence::Undo) || event->matches(QKeySequence::Redo)) {
        const auto &step = event->matches(QKeySequence::Undo) ? m_history.undo : m_history.redo;
        if (step)
            step();
        event->accept();
        return;
    }
    // A short link is toggled, never edited by hand.
    if (m_links && m_links->refusesKey(*event)) {
        event->accept();
        return;
    }
    const bool deleting = event->key() == Qt::Key_Backspace || event->key() == Qt::Key_Delete;
    if (!event->text().isEmpty())
        m_storage->applyTypingAttributes();
    if (event->matches(QKeySequence::Cut)) {
        endStep();
        withAction(UserActionType::cut, [&] { QTextEdit::keyPressEvent(event); });
        return;
    }
    if (event->matches(QKeySequence::Paste)) {
        withAction(UserActionType::paste, [&] { QTextEdit::keyPressEvent(event); });
        return;
    }
    withAction(deleting ? UserActionType::delete_ : UserActionType::keydown, [&] { QTextEdit::keyPressEvent(event); });
}

void NoteTextEdit::setLinkInteraction(LinkInteraction *links)
{
    m_links = links;
    // The pointer turns to a hand over a link without a button held.
    if (links)
        viewport()->setMouseTracking(true);
}

qsizetype NoteTextEdit::characterAt(const QPoint &viewportPoint) const
{
    const QPointF inDocument(viewportPoint.x() + horizontalScrollBar()->value(),
                             viewportPoint.y() + verticalScrollBar()->value());
    return document()->documentLayout()->hitTest(inDocument, Qt::ExactHit);
}

bool NoteTextEdit::isLinkAt(qsizetype position) const
{
    if (position < 0 || position >= m_storage->length())
        return false;
    const TextAttributes attributes = m_storage->attributesAt(position);
    return attributes.custom && attributes.custom->tag == u"scrivlink";
}

void NoteTextEdit::mousePressEvent(QMouseEvent *event)
{
    m_pressPoint = event->position().toPoint();
    QTextEdit::mousePressEvent(event);
}

void NoteTextEdit::mouseMoveEvent(QMouseEvent *event)
{
    QTextEdit::mouseMoveEvent(event);
    if (!m_links)
        return;
    const bool overLink = event->buttons() == Qt::NoButton && isLinkAt(characterAt(event->position().toPoint()));
    viewport()->setCursor(overLink ? Qt::PointingHandCursor : Qt::IBeamCursor);
}

void NoteTextEdit::mouseReleaseEvent(QMouseEvent *event)
{
    QTextEdit::mouseReleaseEvent(event);
    // A plain click on a link toggles it; a drag that selects text over it doesn't.
    const QPoint point = event->position().toPoint();
    if (!m_links || event->button() != Qt::LeftButton || textCursor().hasSelection() ||
        (point - m_pressPoint).manhattanLength() > 3)
        return;
    const qsizetype position = characterAt(point);
    if (isLinkAt(position) && m_links->toggleAt(position))
        event->accept();
}

QMimeData *NoteTextEdit::createMimeDataFromSelection() const
{
    if (!m_links)
        return QTextEdit::createMimeDataFromSelection();
    // Short links are a way of showing a note; what leaves it reads in full, and as
    // plain text, like the note itself.
    const QTextCursor cursor = textCursor();
    auto *data = new QMimeData;
    data->setText(m_links->copiedText({cursor.selectionStart(), cursor.selectionEnd() - cursor.selectionStart()}));
    return data;
}

void NoteTextEdit::insertFromMimeData(const QMimeData *source)
{
    // Notes are plain text: whatever comes in, only its text is taken.
    if (!source->hasText())
        return;
    const QString text = source->text();
    endStep();
    const auto action = m_action == UserActionType::drag ? UserActionType::drag : UserActionType::paste;
    withAction(action, [&] {
        m_storage->applyTypingAttributes();
        textCursor().insertText(text, currentCharFormat());
    });
}

void NoteTextEdit::dropEvent(QDropEvent *event)
{
    endStep();
    withAction(UserActionType::drag, [&] { QTextEdit::dropEvent(event); });
}

void NoteTextEdit::contextMenuEvent(QContextMenuEvent *event)
{
    // What the menu does next (a cut, a paste) is a step of its own.
    endStep();
    std::unique_ptr<QMenu> menu(createStandardContextMenu(event->pos()));
    // The menu's undo and redo are the note's, not the document's.
    auto rewire = [&](const char *name, const std::function<void()> &step, const std::function<bool()> &can) {
        QAction *action = menu->findChild<QAction *>(QLatin1String(name));
        if (!action)
            return;
        action->disconnect();
        action->setEnabled(step && can && can());
        connect(action, &QAction::triggered, this, [step] { step(); });
    };
    rewire("edit-undo", m_history.undo, m_history.canUndo);
    rewire("edit-redo", m_history.redo, m_history.canRedo);
    menu->exec(event->globalPos());
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

    // The document says where the change began, which settles typing "a" into "aa".
    const TextDifference difference = textDifference(before, now, changeStart);

    Edit edit;
    edit.before = before;
    edit.replaced = difference.before;
    edit.inserted = now.mid(difference.after.location, difference.after.length);
    edit.action = m_action;
    if (m_onEdit)
        m_onEdit(edit);
    if (TextStorageDelegate *delegate = m_storage->delegate())
        delegate->textStorageDidChange(*m_storage);
}

} // namespace scrivlet
