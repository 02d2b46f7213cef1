#include "platform/MemoryGlobalHotKey.h"

#include <utility>

namespace scrivlet {

void MemoryGlobalHotKey::registerHotKey(const QString &id, const KeyboardShortcut &shortcut)
{
    ++m_registrationCount;
    m_held.remove(id);
    if (m_answersLater) {
        m_pending.insert(id, shortcut);
        return;
    }
    settle(id, shortcut);
}

void MemoryGlobalHotKey::unregisterHotKey(const QString &id)
{
    m_held.remove(id);
    m_pending.remove(id);
}

void MemoryGlobalHotKey::answerPending()
{
    const auto pending = std::exchange(m_pending, {});
    for (auto it = pending.begin(); it != pending.end(); ++it)
        settle(it.key(), it.value());
}

void MemoryGlobalHotKey::settle(const QString &id, const KeyboardShortcut &shortcut)
{
    const QString text = shortcut.toString();
    if (m_taken.contains(text)) {
        reportRegistered(id, QStringLiteral("another application already uses %1").arg(text));
        return;
    }
    for (auto it = m_held.begin(); it != m_held.end(); ++it) {
        if (it.value() == shortcut) {
            reportRegistered(id, QStringLiteral("%1 is already taken by \"%2\"").arg(text, it.key()));
            return;
        }
    }
    m_held.insert(id, shortcut);
    reportRegistered(id, {});
}

bool MemoryGlobalHotKey::press(const KeyboardShortcut &shortcut)
{
    for (auto it = m_held.begin(); it != m_held.end(); ++it) {
        if (it.value() == shortcut) {
            reportPressed(it.key());
            return true;
        }
    }
    return false;
}

std::optional<KeyboardShortcut> MemoryGlobalHotKey::registered(const QString &id) const
{
    const auto it = m_held.constFind(id);
    if (it == m_held.constEnd())
        return std::nullopt;
    return *it;
}

} // namespace scrivlet
