#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

struct sqlite3;
struct sqlite3_stmt;

namespace scrivlet {

// One prepared SQL statement. It is prepared once and reused: `reset` makes it ready
// for new bindings. Parameters are numbered from 1 and columns from 0, as in SQLite.
// Text goes in and out as UTF-16 with its length, so NUL characters and lone
// surrogates in a note survive.
class Statement {
public:
    enum class Step { Row, Done, Error };

    Statement() = default;
    Statement(sqlite3 *db, const QString &sql, bool persistent = false);
    ~Statement();
    Statement(Statement &&other) noexcept;
    Statement &operator=(Statement &&other) noexcept;
    Statement(const Statement &) = delete;
    Statement &operator=(const Statement &) = delete;

    bool isValid() const { return m_stmt != nullptr; }
    // The reason of the last failed prepare, bind or step; empty when none failed.
    const QString &lastError() const { return m_error; }

    Statement &bindNull(int index);
    Statement &bind(int index, qint64 value);
    Statement &bind(int index, int value) { return bind(index, qint64(value)); }
    Statement &bind(int index, bool value) { return bind(index, qint64(value ? 1 : 0)); }
    Statement &bind(int index, double value);
    Statement &bind(int index, const QString &text);
    Statement &bind(int index, const QByteArray &blob);
    template <typename T> Statement &bind(int index, const std::optional<T> &value)
    {
        return value ? bind(index, *value) : bindNull(index);
    }

    Step step();
    // Steps to the end; true when the statement ran without error.
    bool exec();
    // Clears the bindings and rewinds, so the statement can run again.
    void reset();

    bool isNull(int column) const;
    qint64 columnInt64(int column) const;
    int columnInt(int column) const;
    double columnDouble(int column) const;
    // A NULL column reads as a null QString.
    QString columnText(int column) const;
    QByteArray columnBlob(int column) const;
    std::optional<qint64> optionalInt64(int column) const;
    std::optional<QString> optionalText(int column) const;
    std::optional<QByteArray> optionalBlob(int column) const;

private:
    void checkBind(int rc);
    void finalize();

    sqlite3_stmt *m_stmt = nullptr;
    QString m_error;
};

} // namespace scrivlet
