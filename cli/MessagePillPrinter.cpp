#include "MessagePillPrinter.h"

#include "platform/MessagePillTypes.h"

namespace scrivlet::cli {

MessagePillPrinter::MessagePillPrinter(NotificationBus &bus, std::FILE *err)
    : m_err(err), m_subscription(bus.subscribe(QStringLiteral("MessagePillNotification"),
                                               [this](const QVariantMap &payload) { show(payload); }))
{
}

void MessagePillPrinter::show(const QVariantMap &payload)
{
    if (m_muted)
        return;
    const QString message = payload.value(QStringLiteral("message")).toString();
    const QString type = payload.value(QStringLiteral("type")).toString();
    const bool refusal = type == MessagePillTypes::warning() || type == MessagePillTypes::error();
    if (refusal)
        m_turnedDown = true;
    const QString line = (refusal ? type % QStringLiteral(": ") : QString()) % message % u'\n';
    std::fputs(line.toUtf8().constData(), m_err);
    std::fflush(m_err);
}

} // namespace scrivlet::cli
