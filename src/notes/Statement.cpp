#include "notes/Statement.h"

#include <sqlite3.h>

#include <utility>

namespace scrivlet {

namespace {

QString errorText(sqlite3 *db)
{
    return QString::fromUtf8(sqlite3_errmsg(db));
}

} // namespace

Statement::Statement(sqlite3 *db, const QString &sql, bool persistent)
{
    const QByteArray utf8 = sql.toUtf8();
    const int rc = sqlite3_prepare_v3(db, utf8.constData(), int(utf8.size()),
                                      persistent ? SQLITE_PREPARE_PERSISTENT : 0, &m_stmt, nullptr);
    if (rc != SQLITE_OK) {
        m_error = errorText(db);
        finalize();
    }
}

Statement::~Statement()
{
    finalize();
}

Statement::Statement(Statement &&other) noexcept
    : m_stmt(std::exchange(other.m_stmt, nullptr)), m_error(std::move(other.m_error))
{
}

Statement &Statement::operator=(Statement &&other) noexcept
{
    if (this != &other) {
        finalize();
        m_stmt = std::exchange(other.m_stmt, nullptr);
        m_error = std::move(other.m_error);
    }
    return *this;
}

void Statement::finalize()
{
    if (m_stmt)
        sqlite3_finalize(m_stmt);
    m_stmt = nullptr;
}

void Statement::checkBind(int rc)
{
    if (rc != SQLITE_OK && m_error.isEmpty())
        m_error = QString::fromUtf8(sqlite3_errstr(rc));
}

Statement &Statement::bindNull(int index)
{
    checkBind(sqlite3_bind_null(m_stmt, index));
    return *this;
}

Statement &Statement::bind(int index, qint64 value)
{
    checkBind(sqlite3_bind_int64(m_stmt, index, value));
    return *this;
}

Statement &Statement::bind(int index, double value)
{
    checkBind(sqlite3_bind_double(m_stmt, index, value));
    return *this;
}

Statement &Statement::bind(int index, const QString &text)
{
    // A null data pointer would bind SQL NULL; an empty note is text, not nil.
    static const char16_t empty[] = u"";
    const void *data = text.isNull() ? static_cast<const void *>(empty) : static_cast<const void *>(text.utf16());
    checkBind(
        sqlite3_bind_text16(m_stmt, index, data, int(text.size() * qsizetype(sizeof(char16_t))), SQLITE_TRANSIENT));
    return *this;
}

Statement &Statement::bind(int index, const QByteArray &blob)
{
    checkBind(sqlite3_bind_blob64(m_stmt, index, blob.isNull() ? "" : blob.constData(), sqlite3_uint64(blob.size()),
                                  SQLITE_TRANSIENT));
    return *this;
}

Statement::Step Statement::step()
{
    if (!m_stmt)
        return Step::Error;
    if (!m_error.isEmpty())
        return Step::Error;
    const int rc = sqlite3_step(m_stmt);
    if (rc == SQLITE_ROW)
        return Step::Row;
    if (rc == SQLITE_DONE)
        return Step::Done;
    m_error = errorText(sqlite3_db_handle(m_stmt));
    return Step::Error;
}

bool Statement::exec()
{
    for (;;) {
        switch (step()) {
        case Step::Row:
            continue;
        case Step::Done:
            return true;
        case Step::Error:
            return false;
        }
    }
}

void Statement::reset()
{
    if (!m_stmt)
        return;
    sqlite3_reset(m_stmt);
    sqlite3_clear_bindings(m_stmt);
    m_error.clear();
}

bool Statement::isNull(int column) const
{
    return sqlite3_column_type(m_stmt, column) == SQLITE_NULL;
}

qint64 Statement::columnInt64(int column) const
{
    return sqlite3_column_int64(m_stmt, column);
}

int Statement::columnInt(int column) const
{
    return sqlite3_column_int(m_stmt, column);
}

double Statement::columnDouble(int column) const
{
    return sqlite3_column_double(m_stmt, column);
}

QString Statement::columnText(int column) const
{
    const auto *data = static_cast<const char16_t *>(sqlite3_column_text16(m_stmt, column));
    if (!data)
        return QString();
    const int bytes = sqlite3_column_bytes16(m_stmt, column);
    return QString::fromUtf16(data, bytes / qsizetype(sizeof(char16_t)));
}

QByteArray Statement::columnBlob(int column) const
{
    const auto *data = static_cast<const char *>(sqlite3_column_blob(m_stmt, column));
    const int bytes = sqlite3_column_bytes(m_stmt, column);
    return data ? QByteArray(data, bytes) : QByteArray("");
}

std::optional<qint64> Statement::optionalInt64(int column) const
{
    if (isNull(column))
        return std::nullopt;
    return columnInt64(column);
}

std::optional<QString> Statement::optionalText(int column) const
{
    if (isNull(column))
        return std::nullopt;
    return columnText(column);
}

std::optional<QByteArray> Statement::optionalBlob(int column) const
{
    if (isNull(column))
        return std::nullopt;
    return columnBlob(column);
}

} // namespace scrivlet
