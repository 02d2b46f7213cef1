#include "views/ChecklistView.h"

#include "editor/ChecklistPass.h"
#include "editor/ChecklistToggle.h"
#include "keywords/NoteEditorSession.h"
#include "notes/NoteViewModel.h"
#include "views/NoteTextEdit.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>
#include <QTimer>

namespace scrivlet {

namespace {

// Room left of the box, and between the box and the text's own margin.
constexpr double kOuterPadding = 10;
constexpr double kInnerPadding = 2;

} // namespace

ChecklistView::ChecklistView(NoteTextEdit *editor, NoteEditorSession &session, ChecklistPass &pass,
                             const NotificationBus &bus)
    : QWidget(editor), m_editor(editor), m_session(session), m_pass(pass), m_bus(bus)
{
    setMouseTracking(true);
    setAttribute(Qt::WA_NoSystemBackground);
    hide();
    m_pass.setChecklistChanged([this] { scheduleRefresh(); });
    connect(editor->verticalScrollBar(), &QScrollBar::valueChanged, this, qOverload<>(&QWidget::update));
    // The pipeline runs inside the document's change; the rows are looked at once it is over.
    connect(editor->document(), &QTextDocument::contentsChanged, this, &ChecklistView::scheduleRefresh);
    editor->viewport()->installEventFilter(this);
}

ChecklistView::~ChecklistView()
{
    m_pass.setChecklistChanged({});
}

void ChecklistView::scheduleRefresh()
{
    if (m_refreshQueued)
        return;
    m_refreshQueued = true;
    QTimer::singleShot(0, this, [this] {
        m_refreshQueued = false;
        refresh();
    });
}

double ChecklistView::boxSide() const
{
    const QFontMetricsF metrics(m_editor->currentCharFormat().font());
    return std::round(metrics.ascent() * 0.95);
}

void ChecklistView::refresh()
{
    const bool list = m_session.isList();
    const int margin = list ? int(std::ceil(kOuterPadding + boxSide() + kInnerPadding)) : 0;
    m_editor->setLeftMargin(margin);
    const QRect viewport = m_editor->viewport()->geometry();
    setGeometry(0, viewport.y(), margin, viewport.height());
    setVisible(list);
    update();
}

std::optional<QRectF> ChecklistView::boxRect(const ChecklistItem &item) const
{
    if (item.isHidden)
        return std::nullopt;
    QTextDocument *document = m_editor->document();
    const double side = boxSide();
    // The row's top as measured; the box sits on the middle of the row's first line of
    // glyphs, whatever extra line height the paper adds below them.
    const double top = document->documentMargin() + item.verticalPosition - m_editor->verticalScrollBar()->value();
    double glyphs = QFontMetricsF(m_editor->currentCharFormat().font()).height();
    const QTextBlock block = document->findBlock(int(item.responsibilityRange.location));
    if (block.isValid() && block.layout() && block.layout()->lineCount() > 0) {
        const QTextLine line = block.layout()->lineAt(0);
        glyphs = line.ascent() + line.descent();
    }
    return QRectF(kOuterPadding, top + (glyphs - side) / 2, side, side);
}

std::optional<QRectF> ChecklistView::boxRect(int index) const
{
    const auto &checklist = m_session.noteViewModel().note().checklistManager->checklist;
    if (index < 0 || std::size_t(index) >= checklist.size())
        return std::nullopt;
    return boxRect(*checklist[std::size_t(index)]);
}

std::shared_ptr<ChecklistItem> ChecklistView::itemAt(const QPointF &point) const
{
    if (!m_session.isList())
        return nullptr;
    for (const auto &item : m_session.noteViewModel().note().checklistManager->checklist) {
        const auto box = boxRect(*item);
        // A little slack around the box: it is small, and a near miss should still count.
        if (box && box->adjusted(-3, -3, 3, 3).contains(point))
            return item;
    }
    return nullptr;
}

void ChecklistView::paintEvent(QPaintEvent *)
{
    if (!m_session.isList())
        return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const ThemePalette &theme = m_editor->theme();
    painter.fillRect(rect(), theme.color(QStringLiteral("background")));
    for (const auto &item : m_session.noteViewModel().note().checklistManager->checklist) {
        const auto box = boxRect(*item);
        if (!box || box->bottom() < 0 || box->top() > height())
            continue;
        const bool hovered = item->id == m_hovered;
        const QColor colour = theme.color(hovered          ? QStringLiteral("accent2Main")
                                          : item->checked ? QStringLiteral("typeLight")
                                                          : QStringLiteral("typeSubtle"));
        const double pen = std::max(1.2, box->width() / 11);
        painter.setPen(QPen(colour, pen));
        painter.setBrush(Qt::NoBrush);
        const QRectF frame = box->adjusted(pen / 2, pen / 2, -pen / 2, -pen / 2);
        painter.drawRoundedRect(frame, frame.width() / 5, frame.width() / 5);
        if (item->checked) {
            QPainterPath tick;
            tick.moveTo(frame.left() + frame.width() * 0.24, frame.top() + frame.height() * 0.52);
            tick.lineTo(frame.left() + frame.width() * 0.43, frame.top() + frame.height() * 0.72);
            tick.lineTo(frame.left() + frame.width() * 0.78, frame.top() + frame.height() * 0.3);
            painter.setPen(QPen(colour, pen * 1.2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
            painter.drawPath(tick);
        }
    }
}

void ChecklistView::mousePressEvent(QMouseEvent *event)
{
    const auto item = itemAt(event->position());
    if (!item || event->button() != Qt::LeftButton) {
        QWidget::mousePressEvent(event);
        return;
    }
    // The tick is a step of its own, apart from what was typed before it.
    m_bus.post(QStringLiteral("flushAndRegisterUndo"), {{QStringLiteral("editorId"), m_session.editorId()}});
    item->checked = !item->checked;
    m_bus.post(QString::fromUtf16(ChecklistToggle::kNotification),
               {{QStringLiteral("checked"), item->checked},
                {QStringLiteral("item"), QVariant::fromValue(item)},
                {QStringLiteral("editorId"), m_session.editorId()}});
    update();
}

void ChecklistView::mouseMoveEvent(QMouseEvent *event)
{
    const auto item = itemAt(event->position());
    const QUuid hovered = item ? item->id : QUuid();
    if (hovered == m_hovered)
        return;
    m_hovered = hovered;
    if (item)
        setCursor(Qt::PointingHandCursor);
    else
        unsetCursor();
    update();
}

void ChecklistView::leaveEvent(QEvent *)
{
    m_hovered = QUuid();
    unsetCursor();
    update();
}

bool ChecklistView::eventFilter(QObject *watched, QEvent *event)
{
    // A new width wraps the rows anew: their places are measured again.
    if (watched == m_editor->viewport() && event->type() == QEvent::Resize) {
        const int width = m_editor->viewport()->width();
        if (width != m_viewportWidth) {
            m_viewportWidth = width;
            QTimer::singleShot(0, this, [this] { m_pass.layoutChanged(); });
        }
        scheduleRefresh();
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace scrivlet
