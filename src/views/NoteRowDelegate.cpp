#include "views/NoteRowDelegate.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QToolTip>

namespace scrivlet {

namespace {

constexpr int kPadX = 16;
constexpr int kPadY = 9;
constexpr int kLineGap = 3;
constexpr int kActionGap = 6;
constexpr int kActionPadX = 10;
constexpr int kActionHeight = 22;

QFont timeFont(const QFont &base)
{
    QFont font = base;
    font.setPointSizeF(base.pointSizeF() * 0.85);
    return font;
}

QColor withAlpha(QColor color, int alpha)
{
    color.setAlpha(alpha);
    return color;
}

struct Segment {
    QString text;
    bool hit;
};

} // namespace

NoteRowDelegate::NoteRowDelegate(QAbstractItemView *view) : QStyledItemDelegate(view), m_view(view) {}

QFont NoteRowDelegate::actionFont(const QFont &base) const
{
    QFont font = timeFont(base);
    font.setWeight(QFont::DemiBold);
    return font;
}

QRect NoteRowDelegate::actionRect(const QRect &row, int action) const
{
    if (action < 0 || action >= m_actions.size())
        return {};
    const QFontMetrics metrics(actionFont(m_view->font()));
    int right = row.right() - kPadX + 1;
    for (int i = int(m_actions.size()) - 1; i >= 0; --i) {
        const int width = metrics.horizontalAdvance(m_actions[i].label) + 2 * kActionPadX;
        const QRect rect(right - width, row.center().y() - kActionHeight / 2, width, kActionHeight);
        if (i == action)
            return rect;
        right = rect.left() - kActionGap;
    }
    return {};
}

int NoteRowDelegate::actionAt(const QRect &row, const QPoint &pos) const
{
    for (int i = 0; i < m_actions.size(); ++i) {
        if (actionRect(row, i).contains(pos))
            return i;
    }
    return -1;
}

QSize NoteRowDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &) const
{
    const QFontMetrics text(option.font);
    const QFontMetrics time(timeFont(option.font));
    return {200, kPadY + text.height() + kLineGap + time.height() + kPadY};
}

void NoteRowDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    const QRect row = option.rect;
    const bool selected = option.state.testFlag(QStyle::State_Selected);
    const bool hovered = option.state.testFlag(QStyle::State_MouseOver);

    const QRectF card = QRectF(row).adjusted(6, 2, -6, -2);
    if (selected || hovered) {
        QPainterPath path;
        path.addRoundedRect(card, 8, 8);
        painter->fillPath(path, selected ? withAlpha(m_theme.color(QStringLiteral("accent1Tertiary")), 200)
                                         : m_theme.color(QStringLiteral("backgroundFade")));
    } else {
        painter->setPen(QPen(m_theme.color(QStringLiteral("typeHyperLight")), 1));
        painter->drawLine(QPointF(row.left() + kPadX, row.bottom() + 0.5),
                          QPointF(row.right() - kPadX, row.bottom() + 0.5));
    }

    // The actions take the right of the row only while they show.
    const bool showActions = !m_actions.isEmpty() && (selected || hovered);
    int textRight = row.right() - kPadX;
    if (showActions) {
        textRight = actionRect(row, 0).left() - kActionGap * 2;
        painter->setFont(actionFont(option.font));
        for (int i = 0; i < m_actions.size(); ++i) {
            const QRectF rect = QRectF(actionRect(row, i)).adjusted(0.5, 0.5, -0.5, -0.5);
            const QColor ink =
                m_theme.color(m_actions[i].destructive ? QStringLiteral("accent3Main") : QStringLiteral("accent1Main"));
            QPainterPath pill;
            pill.addRoundedRect(rect, rect.height() / 2, rect.height() / 2);
            painter->fillPath(pill, m_theme.color(QStringLiteral("background")));
            painter->setPen(QPen(withAlpha(ink, 150), 1));
            painter->drawPath(pill);
            painter->setPen(ink);
            painter->drawText(rect, Qt::AlignCenter, m_actions[i].label);
        }
    }

    const QFontMetrics textMetrics(option.font);
    const int left = row.left() + kPadX;
    const int width = std::max(0, textRight - left);
    const int baseline = row.top() + kPadY + textMetrics.ascent();

    // The line, with the hit in bold on a highlighter mark; whatever doesn't fit is cut
    // with an ellipsis.
    const QString text = index.data(TextRole).toString();
    std::vector<Segment> segments;
    const QVariant hitValue = index.data(HitRole);
    if (hitValue.isValid()) {
        const QPoint hit = hitValue.toPoint();
        const qsizetype start = std::clamp<qsizetype>(hit.x(), 0, text.size());
        const qsizetype end = std::clamp<qsizetype>(hit.x() + hit.y(), start, text.size());
        segments = {{text.left(start), false}, {text.mid(start, end - start), true}, {text.mid(end), false}};
    } else {
        segments = {{text, false}};
    }
    QFont hitFont = option.font;
    hitFont.setWeight(QFont::Bold);
    qreal x = left;
    for (const Segment &segment : segments) {
        if (segment.text.isEmpty())
            continue;
        const QFont &font = segment.hit ? hitFont : option.font;
        const QFontMetricsF metrics(font);
        const qreal room = left + width - x;
        if (room <= 0)
            break;
        QString shown = segment.text;
        bool cut = false;
        if (metrics.horizontalAdvance(shown) > room) {
            shown = metrics.elidedText(shown, Qt::ElideRight, room);
            cut = true;
        }
        const qreal advance = metrics.horizontalAdvance(shown);
        painter->setFont(font);
        if (segment.hit) {
            QPainterPath mark;
            mark.addRoundedRect(QRectF(x - 2, baseline - metrics.ascent() - 1, advance + 4, metrics.height() + 2), 3,
                                3);
            painter->fillPath(mark, m_theme.color(QStringLiteral("accent5Secondary")));
            painter->setPen(m_theme.color(QStringLiteral("typeHighlight")));
        } else {
            painter->setPen(m_theme.color(QStringLiteral("typeMain")));
        }
        painter->drawText(QPointF(x, baseline), shown);
        x += advance;
        if (cut)
            break;
    }

    const QFont small = timeFont(option.font);
    const QFontMetrics timeMetrics(small);
    painter->setFont(small);
    painter->setPen(m_theme.color(QStringLiteral("typeSubtle")));
    const QString time = timeMetrics.elidedText(index.data(TimeRole).toString(), Qt::ElideRight, width);
    painter->drawText(QPoint(left, baseline + textMetrics.descent() + kLineGap + timeMetrics.ascent()), time);
    painter->restore();
}

bool NoteRowDelegate::editorEvent(QEvent *event, QAbstractItemModel *model, const QStyleOptionViewItem &option,
                                  const QModelIndex &index)
{
    if (!m_actions.isEmpty() &&
        (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonRelease ||
         event->type() == QEvent::MouseButtonDblClick)) {
        const auto *mouse = static_cast<QMouseEvent *>(event);
        const int action = actionAt(option.rect, mouse->position().toPoint());
        if (action >= 0 && mouse->button() == Qt::LeftButton) {
            // The press is taken too, so a click on a pill doesn't also pick the row up as
            // a drag or change the selection under the action.
            if (event->type() == QEvent::MouseButtonRelease)
                emit actionTriggered(index, action);
            return true;
        }
    }
    return QStyledItemDelegate::editorEvent(event, model, option, index);
}

bool NoteRowDelegate::helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                                const QModelIndex &index)
{
    if (event->type() == QEvent::ToolTip) {
        const int action = actionAt(option.rect, event->pos());
        if (action >= 0) {
            QToolTip::showText(event->globalPos(), m_actions[action].toolTip, view);
            return true;
        }
    }
    return QStyledItemDelegate::helpEvent(event, view, option, index);
}

} // namespace scrivlet
