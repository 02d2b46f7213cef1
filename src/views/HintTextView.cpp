#include "views/HintTextView.h"

#include "views/NoteTextEdit.h"

#include <QAbstractTextDocumentLayout>
#include <QEvent>
#include <QGraphicsOpacityEffect>
#include <QPropertyAnimation>
#include <QScrollBar>
#include <QTextBlock>

namespace scrivlet {

HintTextView::HintTextView(NoteTextEdit *editor)
    : QLabel(editor->viewport()), m_editor(editor), m_opacity(new QGraphicsOpacityEffect(this)),
      m_fade(new QPropertyAnimation(m_opacity, "opacity", this))
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setWordWrap(true);
    setAlignment(Qt::AlignLeft | Qt::AlignTop);
    setTextFormat(Qt::PlainText);
    m_opacity->setOpacity(0);
    setGraphicsEffect(m_opacity);
    m_fade->setDuration(100);
    m_fade->setEasingCurve(QEasingCurve::InOutQuad);
    editor->viewport()->installEventFilter(this);
    connect(editor->verticalScrollBar(), &QScrollBar::valueChanged, this, &HintTextView::reposition);
    connect(editor->document()->documentLayout(), &QAbstractTextDocumentLayout::documentSizeChanged, this,
            &HintTextView::reposition);
    hide();
}

void HintTextView::setHint(bool show, const QString &text)
{
    // A plain note asks to show an empty hint: there is nothing to fade in.
    show = show && !text.isEmpty();
    if (show)
        setText(text);
    if (show == m_shown)
        return;
    m_shown = show;
    // The hint reads as part of the note, only quieter: the note's font, a subdued colour.
    setStyleSheet(QStringLiteral("color: %1; background: transparent;")
                      .arg(m_editor->theme().color(QStringLiteral("typeSubtle")).name()));
    setFont(m_editor->currentCharFormat().font());
    reposition();
    QLabel::show();
    m_fade->stop();
    m_fade->setStartValue(m_opacity->opacity());
    m_fade->setEndValue(show ? 1.0 : 0.0);
    m_fade->start();
}

void HintTextView::reposition()
{
    // The hint stands where the second line would begin.
    const QTextBlock first = m_editor->document()->firstBlock();
    const QRectF block = m_editor->document()->documentLayout()->blockBoundingRect(first);
    const int margin = int(m_editor->document()->documentMargin());
    const int top = int(block.bottom()) - m_editor->verticalScrollBar()->value();
    const int width = std::max(0, m_editor->viewport()->width() - 2 * margin);
    setGeometry(margin + 4, top, width, std::max(0, m_editor->viewport()->height() - top));
}

bool HintTextView::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_editor->viewport() && event->type() == QEvent::Resize)
        reposition();
    return QLabel::eventFilter(watched, event);
}

} // namespace scrivlet
