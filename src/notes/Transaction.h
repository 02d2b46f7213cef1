#pragma once

#include <QString>

namespace scrivlet {

class Database;

// A write transaction that rolls back unless committed. A commit that fails while
// SQLite keeps the transaction open leaves it open, so the caller may fix the cause
// and commit again; a commit that SQLite answered with a rollback ends it.
class Transaction {
public:
    explicit Transaction(Database &db);
    ~Transaction();
    Transaction(const Transaction &) = delete;
    Transaction &operator=(const Transaction &) = delete;

    bool isActive() const { return m_active; }
    const QString &lastError() const { return m_error; }
    bool commit();
    void rollback();

private:
    Database &m_db;
    bool m_active = false;
    QString m_error;
};

} // namespace scrivlet
