#include "platform/NotificationBus.h"

namespace scrivlet {

struct BusState {
    struct Entry {
        quint64 id;
        QString name;
        std::shared_ptr<NotificationBus::Handler> handler;
    };
    std::vector<Entry> entries;
    quint64 nextId = 1;

    void remove(quint64 id)
    {
        std::erase_if(entries, [id](const Entry &e) { return e.id == id; });
    }
};

NotificationBus::Subscription::Subscription(Subscription &&other) noexcept
    : m_state(std::move(other.m_state)), m_id(std::exchange(other.m_id, 0))
{
}

NotificationBus::Subscription &NotificationBus::Subscription::operator=(Subscription &&other) noexcept
{
    if (this != &other) {
        reset();
        m_state = std::move(other.m_state);
        m_id = std::exchange(other.m_id, 0);
    }
    return *this;
}

NotificationBus::Subscription::~Subscription()
{
    reset();
}

void NotificationBus::Subscription::reset()
{
    if (auto state = m_state.lock())
        state->remove(m_id);
    m_state.reset();
    m_id = 0;
}

NotificationBus::NotificationBus() : m_state(std::make_shared<BusState>()) {}

NotificationBus::~NotificationBus() = default;

NotificationBus::Subscription NotificationBus::subscribe(const QString &name, Handler handler)
{
    const quint64 id = m_state->nextId++;
    m_state->entries.push_back({id, name, std::make_shared<Handler>(std::move(handler))});
    return Subscription(m_state, id);
}

void NotificationBus::post(const QString &name, const QVariantMap &payload) const
{
    // Handlers may subscribe or unsubscribe while we deliver: work on a snapshot, and
    // skip anyone who left before their turn.
    std::vector<std::pair<quint64, std::shared_ptr<Handler>>> targets;
    for (const auto &entry : m_state->entries) {
        if (entry.name == name)
            targets.emplace_back(entry.id, entry.handler);
    }
    for (const auto &[id, handler] : targets) {
        const bool stillSubscribed = std::any_of(m_state->entries.begin(), m_state->entries.end(),
                                                 [id = id](const BusState::Entry &e) { return e.id == id; });
        if (stillSubscribed)
            (*handler)(payload);
    }
}

void NotificationBus::postMessagePill(const QString &message, const QString &type) const
{
    post(QStringLiteral("MessagePillNotification"),
         {{QStringLiteral("message"), message}, {QStringLiteral("type"), type}});
}

} // namespace scrivlet
