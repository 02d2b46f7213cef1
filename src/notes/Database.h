#pragma once

#include "notes/Statement.h"

#include <QString>

#include <map>
#include <memory>

struct sqlite3;

namespace scrivlet {

// One SQLite connection, closed when the object goes. Statements that run on every
// keystroke-driven save are kept prepared in a cache owned here, so they die before
// the connection does.
class Database {
public:
    Database() = default;
    ~Database();
    Database(const Database &) = delete;
    Database &operator=(const Database &) = delete;

    // Opens `path` for reading and writing, creating an absent file. Nothing is read or
    // written yet: SQLite looks at the file on the first statement.
    bool open(const QString &path);
    void close();
    bool isOpen() const { return m_db != nullptr; }
    sqlite3 *handle() const { return m_db; }
    const QString &lastError() const { return m_error; }

    // Runs one or more statements without results.
    bool exec(const QString &sql);
    // A one-off statement. Check `isValid()`; the reason is in its `lastError()`.
    Statement prepare(const QString &sql);
    // The same prepared statement on every call for the same text, reset and unbound.
    // Null when the text doesn't prepare; `lastError()` says why.
    Statement *cached(const QString &sql);

    // Reads a single integer, e.g. a pragma; nullopt on failure.
    std::optional<qint64> queryInt(const QString &sql);
    bool inTransaction() const;
    qint64 lastInsertRowId() const;
    int changes() const;

private:
    sqlite3 *m_db = nullptr;
    QString m_error;
    std::map<QString, std::unique_ptr<Statement>> m_cache;
};

} // namespace scrivlet
