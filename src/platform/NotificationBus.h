#pragma once

#include <QString>
#include <QVariantMap>

#include <functional>
#include <memory>
#include <vector>

namespace scrivlet {

// Process-wide named notifications ("saveCurrentNote", "notesManagerReloadedNotes",
// "MessagePillNotification"...) with a string-keyed payload. Delivery is synchronous,
// in the order of subscription, on the thread that posts.
class NotificationBus {
public:
    using Handler = std::function<void(const QVariantMap &payload)>;

    // Ends its subscription when destroyed, so an observer never outlives its handler.
    class Subscription {
    public:
        Subscription() = default;
        Subscription(Subscription &&other) noexcept;
        Subscription &operator=(Subscription &&other) noexcept;
        Subscription(const Subscription &) = delete;
        Subscription &operator=(const Subscription &) = delete;
        ~Subscription();
        void reset();

    private:
        friend class NotificationBus;
        Subscription(std::weak_ptr<struct BusState> state, quint64 id) : m_state(std::move(state)), m_id(id) {}
        std::weak_ptr<struct BusState> m_state;
        quint64 m_id = 0;
    };

    NotificationBus();
    ~NotificationBus();
    NotificationBus(const NotificationBus &) = delete;
    NotificationBus &operator=(const NotificationBus &) = delete;

    [[nodiscard]] Subscription subscribe(const QString &name, Handler handler);
    void post(const QString &name, const QVariantMap &payload = {}) const;

    // Payload of a message pill, the short transient message any part may show.
    void postMessagePill(const QString &message, const QString &type) const;

private:
    std::shared_ptr<struct BusState> m_state;
};

} // namespace scrivlet
