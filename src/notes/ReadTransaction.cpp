#include "notes/ReadTransaction.h"

#include "notes/Database.h"
#include "notes/NotesLogging.h"

namespace scrivlet {

ReadTransaction::ReadTransaction(Database &db) : m_db(db)
{
    // Deferred: nothing is locked until the first read, and never for writing.
    if (!m_db.inTransaction())
        m_began = m_db.exec(QStringLiteral("BEGIN"));
}

ReadTransaction::~ReadTransaction()
{
    if (!m_began || !m_db.inTransaction())
        return;
    if (!m_db.exec(QStringLiteral("COMMIT"))) {
        qCWarning(lcNotes).noquote() << "Error ending a read of the store:" << m_db.lastError();
        m_db.exec(QStringLiteral("ROLLBACK"));
    }
}

} // namespace scrivlet
