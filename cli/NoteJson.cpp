#include "NoteJson.h"

#include "notes/Note.h"

namespace scrivlet::cli {

QString NoteJson::utcDate(const QDateTime &date)
{
    return date.isValid() ? date.toUTC().toString(Qt::ISODateWithMs) : QString();
}

QJsonObject NoteJson::toObject(const Note &note)
{
    QJsonObject object{
        {QStringLiteral("id"), note.id.toString(QUuid::WithoutBraces)},
        {QStringLiteral("content"), note.content},
        {QStringLiteral("dbIndex"), note.dbIndex},
        {QStringLiteral("lastModified"), utcDate(note.lastModified)},
        {QStringLiteral("isSlotted"), note.isSlotted},
        {QStringLiteral("slotIndex"), note.slotIndex ? QJsonValue(*note.slotIndex) : QJsonValue(QJsonValue::Null)},
    };
    if (note.softDeleted)
        object.insert(QStringLiteral("deletedAt"),
                      note.deletedAt ? QJsonValue(utcDate(*note.deletedAt)) : QJsonValue(QJsonValue::Null));
    return object;
}

QJsonArray NoteJson::toArray(const std::vector<Note> &notes)
{
    QJsonArray array;
    for (const Note &note : notes)
        array.append(toObject(note));
    return array;
}

} // namespace scrivlet::cli
