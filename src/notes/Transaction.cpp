#include "notes/Transaction.h"

#include "notes/Database.h"

namespace scrivlet {

Transaction::Transaction(Database &db) : m_db(db)
{
    // Immediate: the write lock is taken now, so a busy store fails here and not
    // half-way through a batch of writes.
    m_active = m_db.exec(QStringLiteral("BEGIN IMMEDIATE"));
    if (!m_active)
        m_error = m_db.lastError();
}

Transaction::~Transaction()
{
    rollback();
}

bool Transaction::commit()
{
    if (!m_active) {
        m_error = QStringLiteral("no transaction is open");
        return false;
    }
    if (m_db.exec(QStringLiteral("COMMIT"))) {
        m_active = false;
        m_error.clear();
        return true;
    }
    m_error = m_db.lastError();
    m_active = m_db.inTransaction();
    return false;
}

void Transaction::rollback()
{
    if (m_active && m_db.inTransaction())
        m_db.exec(QStringLiteral("ROLLBACK"));
    m_active = false;
}

} // namespace scrivlet
