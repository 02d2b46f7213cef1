#pragma once

#include "platform/Result.h"

#include <QDateTime>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

struct sqlite3;

namespace scrivlet {

struct CDNote;

// The earlier app's notes database, opened read-only on a connection of its own: an
// import only ever reads it, and a file that isn't one is refused before anything is
// read from it.
//
// Its dates were written as seconds since 1970 in REAL columns by some versions and
// as ISO-8601 text by others, so each value is read by what it holds: a number is
// seconds since 1970 (milliseconds when it is too large to be seconds), text is an
// ISO-8601 date and time, UTC unless it says otherwise.
class LegacyDatabase {
public:
    ~LegacyDatabase();
    LegacyDatabase(const LegacyDatabase &) = delete;
    LegacyDatabase &operator=(const LegacyDatabase &) = delete;

    // Opens `path` and checks that it is a readable legacy notes database. The error
    // is a sentence for the user, e.g. "the file is not a SQLite database".
    static Result<std::unique_ptr<LegacyDatabase>, QString> open(const QString &path);

    bool hasTable(const QString &name) const;

    // Hands each note, with its checklist, link and attachment rows, to `visit`, in the
    // order of the table; `visit` returns false to stop. Gives the reason of a failed
    // read, or nothing when the walk ended well.
    std::optional<QString> readNotes(const std::function<bool(CDNote &&)> &visit);

    static std::optional<QDateTime> dateFromNumber(double value);
    static std::optional<QDateTime> dateFromText(const QString &text);

private:
    explicit LegacyDatabase(sqlite3 *db) : m_db(db) {}

    sqlite3 *m_db = nullptr;
};

} // namespace scrivlet
