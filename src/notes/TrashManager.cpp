#include "notes/TrashManager.h"

#include "notes/CoreDataManager.h"
#include "notes/NotesLogging.h"
#include "notes/TrashRetentionOption.h"
#include "platform/Alerts.h"
#include "platform/Clock.h"
#include "platform/MessagePillTypes.h"
#include "platform/NotificationBus.h"

namespace scrivlet {

namespace {

const QString kEmptyTitle = QStringLiteral("Empty The Void?");
const QString kEmptyButton = QStringLiteral("Empty The Void");
const QString kCancel = QStringLiteral("Cancel");

} // namespace

TrashManager::TrashManager(CoreDataManager &store, SettingsStore &settings, NotificationBus &bus, Alerts &alerts,
                           const Clock &clock)
    : m_store(store), m_preferences(settings), m_bus(bus), m_alerts(alerts), m_clock(clock)
{
}

QString TrashManager::noteCount(int count)
{
    return QString::number(count) % (count == 1 ? QStringLiteral(" note") : QStringLiteral(" notes"));
}

QString TrashManager::lostSouls(int count)
{
    return QString::number(count) % (count == 1 ? QStringLiteral(" lost soul") : QStringLiteral(" lost souls"));
}

std::vector<Note> TrashManager::notes()
{
    return m_store.fetchTrash();
}

int TrashManager::count()
{
    return m_store.countTrash();
}

bool TrashManager::confirmEmpty(int count, const QString &warning)
{
    const Alerts::Response answer =
        m_alerts.ask({kEmptyTitle, QStringLiteral("This will permanently delete ") % noteCount(count) % warning,
                      {kEmptyButton, kCancel}, std::nullopt});
    return answer.button == 0;
}

void TrashManager::reportEmptied(int count)
{
    m_bus.postMessagePill(QStringLiteral("Emptied ") % noteCount(count) % QStringLiteral(" from The Void"),
                          MessagePillTypes::info());
}

void TrashManager::emptyFromMenu()
{
    const int trashed = count();
    if (trashed == 0) {
        m_bus.postMessagePill(QStringLiteral("The Void is already empty"), MessagePillTypes::info());
        return;
    }
    if (!confirmEmpty(trashed, QStringLiteral(". This action cannot be undone.")))
        return;
    if (m_store.emptyTrash())
        reportEmptied(trashed);
}

bool TrashManager::emptyFromView()
{
    const int trashed = count();
    if (trashed == 0) {
        m_bus.postMessagePill(QStringLiteral("The Void is already empty"), MessagePillTypes::info());
        return false;
    }
    if (!confirmEmpty(trashed, QStringLiteral(". There are no turtles beyond The Void.")))
        return false;
    if (!m_store.emptyTrash())
        return false;
    reportEmptied(trashed);
    return true;
}

bool TrashManager::restore(const QUuid &id)
{
    if (!m_store.restoreNote(id))
        return false;
    m_bus.postMessagePill(QStringLiteral("Note restored"), MessagePillTypes::success());
    m_bus.post(QStringLiteral("refetchNotes"));
    return true;
}

bool TrashManager::deletePermanently(const QUuid &id)
{
    const Alerts::Response answer =
        m_alerts.ask({QStringLiteral("Delete from The Void?"), QStringLiteral("There is no recovery beyond The Void."),
                      {QStringLiteral("Delete"), kCancel}, std::nullopt});
    if (answer.button != 0)
        return false;
    if (!m_store.permanentlyDelete(id))
        return false;
    m_bus.postMessagePill(QStringLiteral("Note permanently deleted"), MessagePillTypes::info());
    return true;
}

int TrashManager::autoEmpty()
{
    // An unreadable setting means the default, thirty days.
    const TrashRetentionOption option =
        TrashRetention::fromRawValue(m_preferences.trashRetentionPeriod()).value_or(TrashRetentionOption::thirtyDays);
    const auto days = TrashRetention::days(option);
    if (!days)
        return 0;
    const int removed = m_store.autoEmptyTrash(*days);
    if (removed > 0)
        qCInfo(lcNotes) << "Removed" << removed << "notes from The Void after" << *days << "days";
    return removed;
}

int TrashManager::deleteNotesOlderThan(AutoDeleteOption option)
{
    const auto cutOff = AutoDelete::cutOff(option, m_clock.now());
    if (!cutOff)
        return 0;
    const int removed = m_store.deleteNotesBefore(*cutOff);
    m_bus.post(QStringLiteral("refetchNotes"));
    return removed;
}

} // namespace scrivlet
