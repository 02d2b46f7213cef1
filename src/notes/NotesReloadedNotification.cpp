#include "notes/NotesReloadedNotification.h"

#include "platform/NotificationBus.h"

#include <QVariantList>

namespace scrivlet {

QVariantMap NotesReloadedNotification::payload(const QSet<QUuid> &changedUUIDs)
{
    QVariantList ids;
    ids.reserve(changedUUIDs.size());
    for (const QUuid &id : changedUUIDs)
        ids.append(QVariant::fromValue(id));
    return {{changedUUIDsKey(), ids}};
}

void NotesReloadedNotification::post(const NotificationBus &bus, const QSet<QUuid> &changedUUIDs)
{
    bus.post(name(), payload(changedUUIDs));
}

QSet<QUuid> NotesReloadedNotification::changedUUIDs(const QVariantMap &payload)
{
    QSet<QUuid> ids;
    const QVariantList list = payload.value(changedUUIDsKey()).toList();
    for (const QVariant &value : list) {
        if (value.metaType() == QMetaType::fromType<QUuid>())
            ids.insert(value.toUuid());
    }
    return ids;
}

} // namespace scrivlet
