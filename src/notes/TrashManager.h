#pragma once

#include "notes/AutoDeleteOption.h"
#include "notes/Note.h"
#include "shell/preferences/NotesPreferences.h"

#include <QUuid>

#include <vector>

namespace scrivlet {

class Alerts;
class Clock;
class CoreDataManager;
class NotificationBus;
class SettingsStore;

// The Void as the user meets it: what its view shows and says, the questions before
// anything is lost for good, and the clearing of old notes. The stack hears of every
// change through "refetchNotes".
class TrashManager {
    Q_DISABLE_COPY_MOVE(TrashManager)

public:
    TrashManager(CoreDataManager &store, SettingsStore &settings, NotificationBus &bus, Alerts &alerts,
                 const Clock &clock);

    // "1 note", "2 notes".
    static QString noteCount(int count);
    // The view's count: "1 lost soul", "2 lost souls".
    static QString lostSouls(int count);

    std::vector<Note> notes();
    int count();

    // The menu command: asks, empties, and says how many went.
    void emptyFromMenu();
    // The view's button; true when The Void was emptied and the view should reload.
    bool emptyFromView();
    bool restore(const QUuid &id);
    // Asks first; true when the note is gone.
    bool deletePermanently(const QUuid &id);

    // At start, by `trashRetentionPeriod`; "Never" keeps everything. Returns how many went.
    int autoEmpty();
    // The preferences button: removes notes untouched since the option's cut-off, live or
    // in The Void, never slotted ones. Returns how many went.
    int deleteNotesOlderThan(AutoDeleteOption option);

private:
    bool confirmEmpty(int count, const QString &warning);
    void reportEmptied(int count);

    CoreDataManager &m_store;
    NotesPreferences m_preferences;
    NotificationBus &m_bus;
    Alerts &m_alerts;
    const Clock &m_clock;
};

} // namespace scrivlet
