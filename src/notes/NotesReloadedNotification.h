#pragma once

#include <QSet>
#include <QString>
#include <QUuid>
#include <QVariantMap>

namespace scrivlet {

class NotificationBus;

// "notesManagerReloadedNotes": posted after the stack reloaded for outside changes.
// An open note view takes the new text only when its note's id is in `changedUUIDs`,
// so an untouched open note keeps its caret and undo history.
//
// The payload holds `changedUUIDs` as a QVariantList of QUuid values: a plain list
// passes through any code that handles a QVariantMap without custom meta types. The
// list has no repeats; readers treat it as a set.
struct NotesReloadedNotification {
    static QString name() { return QStringLiteral("notesManagerReloadedNotes"); }
    static QString changedUUIDsKey() { return QStringLiteral("changedUUIDs"); }

    static QVariantMap payload(const QSet<QUuid> &changedUUIDs);
    static void post(const NotificationBus &bus, const QSet<QUuid> &changedUUIDs);
    // The ids in a payload; entries that aren't UUIDs are skipped.
    static QSet<QUuid> changedUUIDs(const QVariantMap &payload);
};

} // namespace scrivlet
