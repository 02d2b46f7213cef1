#pragma once

#include "platform/NotificationBus.h"

#include <cstdio>

namespace scrivlet::cli {

// Shows the message pills the app would float over the note as lines on standard error:
// warnings and errors led by their type ("warning: No older notes"), the others as they
// are. It remembers whether a warning or an error came, which on the command line
// means the command was turned down.
class MessagePillPrinter final {
    Q_DISABLE_COPY_MOVE(MessagePillPrinter)

public:
    MessagePillPrinter(NotificationBus &bus, std::FILE *err);

    // Moves the command line makes on its own (reopening the note the last run left
    // open) are not the user's, so their pills are dropped.
    void setMuted(bool muted) { m_muted = muted; }
    bool turnedDown() const { return m_turnedDown; }
    void clearTurnedDown() { m_turnedDown = false; }

private:
    void show(const QVariantMap &payload);

    std::FILE *m_err;
    NotificationBus::Subscription m_subscription;
    bool m_muted = false;
    bool m_turnedDown = false;
};

} // namespace scrivlet::cli
