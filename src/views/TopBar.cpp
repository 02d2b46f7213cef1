#include "views/TopBar.h"

#include "views/ThemePalette.h"

#include <QAction>
#include <QHBoxLayout>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QToolButton>
#include <QWindow>

namespace scrivlet {

namespace {

constexpr int kIconSize = 16;

void drawGlyph(QPainter &p, TopBar::Glyph glyph, bool on)
{
    const qreal s = kIconSize;
    QPainterPath path;
    switch (glyph) {
    case TopBar::Glyph::previous:
        path.moveTo(10, 3.5);
        path.lineTo(5.5, 8);
        path.lineTo(10, 12.5);
        break;
    case TopBar::Glyph::next:
        path.moveTo(6, 3.5);
        path.lineTo(10.5, 8);
        path.lineTo(6, 12.5);
        break;
    case TopBar::Glyph::newNote:
        path.moveTo(8, 3);
        path.lineTo(8, 13);
        path.moveTo(3, 8);
        path.lineTo(13, 8);
        break;
    case TopBar::Glyph::trash:
        path.moveTo(3, 4.5);
        path.lineTo(13, 4.5);
        path.moveTo(6.5, 4.5);
        path.lineTo(6.5, 2.8);
        path.lineTo(9.5, 2.8);
        path.lineTo(9.5, 4.5);
        path.moveTo(4.3, 4.5);
        path.lineTo(5, 13.2);
        path.lineTo(11, 13.2);
        path.lineTo(11.7, 4.5);
        break;
    case TopBar::Glyph::pin:
        path.moveTo(5.5, 2.5);
        path.lineTo(10.5, 2.5);
        path.moveTo(6.5, 2.5);
        path.lineTo(6.5, 7);
        path.lineTo(4.5, 9.5);
        path.lineTo(11.5, 9.5);
        path.lineTo(9.5, 7);
        path.lineTo(9.5, 2.5);
        path.moveTo(8, 9.5);
        path.lineTo(8, 14);
        if (on) {
            p.setBrush(p.pen().color());
            p.drawPath(path);
            return;
        }
        break;
    case TopBar::Glyph::split:
        path.addRoundedRect(QRectF(2.5, 3, 11, 10), 2, 2);
        path.moveTo(2.5, 8);
        path.lineTo(13.5, 8);
        break;
    case TopBar::Glyph::search:
        path.addEllipse(QPointF(7, 7), 4, 4);
        path.moveTo(10, 10);
        path.lineTo(13.5, 13.5);
        break;
    case TopBar::Glyph::theVoid:
        path.addEllipse(QPointF(8, 8), 5.5, 5.5);
        path.addEllipse(QPointF(8, 8), 2, 2);
        break;
    case TopBar::Glyph::hide:
        path.moveTo(4, 8.5);
        path.lineTo(12, 8.5);
        break;
    }
    Q_UNUSED(s)
    p.drawPath(path);
}

} // namespace

QIcon TopBar::icon(Glyph glyph, const QColor &color, const QColor &active)
{
    QIcon icon;
    for (const qreal ratio : {1.0, 2.0}) {
        for (const bool on : {false, true}) {
            QPixmap pixmap(int(kIconSize * ratio), int(kIconSize * ratio));
            pixmap.setDevicePixelRatio(ratio);
            pixmap.fill(Qt::transparent);
            QPainter p(&pixmap);
            p.setRenderHint(QPainter::Antialiasing);
            p.setPen(QPen(on ? active : color, 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
            p.setBrush(Qt::NoBrush);
            drawGlyph(p, glyph, on);
            p.end();
            icon.addPixmap(pixmap, QIcon::Normal, on ? QIcon::On : QIcon::Off);
        }
    }
    return icon;
}

TopBar::TopBar(QWidget *parent) : QWidget(parent), m_leading(new QHBoxLayout), m_trailing(new QHBoxLayout)
{
    setObjectName(QStringLiteral("topBar"));
    setFixedHeight(32);
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(8, 3, 6, 3);
    layout->setSpacing(0);
    m_leading->setSpacing(1);
    m_trailing->setSpacing(1);
    layout->addLayout(m_leading);
    layout->addStretch(1);
    layout->addLayout(m_trailing);
}

QToolButton *TopBar::addButton(QAction *action, Glyph glyph, bool trailing)
{
    auto *button = new QToolButton(this);
    button->setDefaultAction(action);
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::NoFocus);
    button->setIconSize(QSize(kIconSize, kIconSize));
    button->setFixedSize(26, 26);
    button->setObjectName(action->objectName() + QStringLiteral("Button"));
    (trailing ? m_trailing : m_leading)->addWidget(button);
    m_buttons.emplace_back(button, glyph);
    return button;
}

void TopBar::setTheme(const ThemePalette &palette)
{
    m_background = palette.color(QStringLiteral("backgroundFade"));
    m_rule = palette.color(QStringLiteral("gridClear"));
    const QColor ink = palette.color(QStringLiteral("typeSubtle"));
    const QColor accent = palette.color(QStringLiteral("accent1Main"));
    for (const auto &[button, glyph] : m_buttons)
        button->defaultAction()->setIcon(icon(glyph, ink, accent));
    setStyleSheet(
        QStringLiteral("QToolButton { border: none; border-radius: 6px; background: transparent; }"
                       "QToolButton:hover { background: %1; }"
                       "QToolButton:pressed, QToolButton:checked { background: %2; }")
            .arg(palette.color(QStringLiteral("gridClear")).name(), palette.color(QStringLiteral("gridBold")).name()));
    update();
}

void TopBar::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    p.fillRect(rect(), m_background);
    p.setPen(m_rule);
    p.drawLine(0, height() - 1, width(), height() - 1);
}

void TopBar::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return QWidget::mousePressEvent(event);
    // The window system moves the window where it can; elsewhere the bar follows the pointer.
    QWindow *handle = window()->windowHandle();
    if (handle && handle->startSystemMove()) {
        m_dragOffset.reset();
        return;
    }
    m_dragOffset = event->globalPosition().toPoint() - window()->frameGeometry().topLeft();
}

void TopBar::mouseMoveEvent(QMouseEvent *event)
{
    if (m_dragOffset && (event->buttons() & Qt::LeftButton))
        window()->move(event->globalPosition().toPoint() - *m_dragOffset);
    QWidget::mouseMoveEvent(event);
}

void TopBar::mouseReleaseEvent(QMouseEvent *event)
{
    m_dragOffset.reset();
    QWidget::mouseReleaseEvent(event);
}

} // namespace scrivlet
