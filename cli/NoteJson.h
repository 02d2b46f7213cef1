#pragma once

#include <QJsonArray>
#include <QJsonObject>

#include <vector>

class QDateTime;

namespace scrivlet {
struct Note;
}

namespace scrivlet::cli {

// Notes as scripts read them: one object per note with `id`, `content`, `dbIndex`,
// `lastModified` (ISO-8601 in UTC), `isSlotted` and `slotIndex` (null off the slots).
// A note in The Void also carries `deletedAt`.
class NoteJson final {
public:
    static QJsonObject toObject(const Note &note);
    static QJsonArray toArray(const std::vector<Note> &notes);
    // "2001-01-01T00:00:00.000Z": the same instant whatever the machine's time zone.
    static QString utcDate(const QDateTime &date);
};

} // namespace scrivlet::cli
