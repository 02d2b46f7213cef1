#include "notes/Database.h"

#include <sqlite3.h>

namespace scrivlet {

Database::~Database()
{
    close();
}

bool Database::open(const QString &path)
{
    close();
    const QByteArray file = path.toUtf8();
    const int rc = sqlite3_open_v2(file.constData(), &m_db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
    if (rc != SQLITE_OK) {
        m_error = m_db ? QString::fromUtf8(sqlite3_errmsg(m_db)) : QString::fromUtf8(sqlite3_errstr(rc));
        close();
        return false;
    }
    sqlite3_extended_result_codes(m_db, 1);
    m_error.clear();
    return true;
}

void Database::close()
{
    m_cache.clear();
    if (m_db)
        sqlite3_close_v2(m_db);
    m_db = nullptr;
}

bool Database::exec(const QString &sql)
{
    if (!m_db) {
        m_error = QStringLiteral("database is not open");
        return false;
    }
    char *message = nullptr;
    const int rc = sqlite3_exec(m_db, sql.toUtf8().constData(), nullptr, nullptr, &message);
    if (rc != SQLITE_OK) {
        m_error = message ? QString::fromUtf8(message) : QString::fromUtf8(sqlite3_errstr(rc));
        sqlite3_free(message);
        return false;
    }
    return true;
}

Statement Database::prepare(const QString &sql)
{
    Statement statement(m_db, sql);
    if (!statement.isValid())
        m_error = statement.lastError();
    return statement;
}

Statement *Database::cached(const QString &sql)
{
    auto it = m_cache.find(sql);
    if (it == m_cache.end()) {
        auto statement = std::make_unique<Statement>(m_db, sql, true);
        if (!statement->isValid()) {
            m_error = statement->lastError();
            return nullptr;
        }
        it = m_cache.emplace(sql, std::move(statement)).first;
    }
    it->second->reset();
    return it->second.get();
}

std::optional<qint64> Database::queryInt(const QString &sql)
{
    Statement statement = prepare(sql);
    if (statement.step() != Statement::Step::Row) {
        m_error = statement.lastError();
        return std::nullopt;
    }
    return statement.columnInt64(0);
}

bool Database::inTransaction() const
{
    return m_db && sqlite3_get_autocommit(m_db) == 0;
}

qint64 Database::lastInsertRowId() const
{
    return m_db ? sqlite3_last_insert_rowid(m_db) : 0;
}

int Database::changes() const
{
    return m_db ? sqlite3_changes(m_db) : 0;
}

} // namespace scrivlet
