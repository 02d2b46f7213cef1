#include "views/MessagePill.h"

#include "views/ThemePalette.h"

#include <QGraphicsOpacityEffect>
#include <QPropertyAnimation>
#include <QTimer>

namespace scrivlet {

namespace {

// The accent that tells each kind apart at a glance; the text stays the theme's own.
QString accentRole(const QString &type)
{
    if (type == QLatin1String("success"))
        return QStringLiteral("accent1Main");
    if (type == QLatin1String("warning"))
        return QStringLiteral("accent5Main");
    if (type == QLatin1String("error"))
        return QStringLiteral("accent3Main");
    if (type == QLatin1String("scrivlink"))
        return QStringLiteral("accent4Main");
    if (type == QLatin1String("info"))
        return QStringLiteral("accent2Main");
    return QStringLiteral("typeSubtlePlus");
}

} // namespace

MessagePill::MessagePill(QWidget *parent)
    : QLabel(parent), m_opacity(new QGraphicsOpacityEffect(this)),
      m_fade(new QPropertyAnimation(m_opacity, "opacity", this)), m_hold(new QTimer(this))
{
    setObjectName(QStringLiteral("messagePill"));
    setAlignment(Qt::AlignCenter);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setGraphicsEffect(m_opacity);
    m_hold->setSingleShot(true);
    m_fade->setDuration(kFadeMs);
    m_fade->setStartValue(1.0);
    m_fade->setEndValue(0.0);
    connect(m_hold, &QTimer::timeout, m_fade, [this] { m_fade->start(); });
    connect(m_fade, &QPropertyAnimation::finished, this, &QWidget::hide);
    hide();
}

void MessagePill::showMessage(const QString &message, const QString &type, const ThemePalette &palette)
{
    m_fade->stop();
    m_hold->stop();
    m_type = type;
    // The kind is the pill's colour; the text is the theme's reverse ink so it reads on any accent.
    const QColor fill = palette.color(accentRole(type));
    const QColor ink =
        palette.isDark() ? palette.color(QStringLiteral("background")) : palette.color(QStringLiteral("typeReverse"));
    setStyleSheet(QStringLiteral("QLabel#messagePill { background: %1; color: %2; border-radius: 12px;"
                                 " padding: 5px 14px; font-size: 12px; font-weight: 600; }")
                      .arg(fill.name(), ink.name()));
    setText(message);
    adjustSize();
    reposition();
    m_opacity->setOpacity(1.0);
    show();
    raise();
    m_hold->start(kHoldMs);
}

void MessagePill::reposition()
{
    if (!parentWidget())
        return;
    const QSize size = sizeHint().boundedTo(parentWidget()->size() - QSize(24, 0));
    resize(size);
    move((parentWidget()->width() - width()) / 2, parentWidget()->height() - height() - 22);
}

} // namespace scrivlet
