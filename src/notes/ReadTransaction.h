#pragma once

#include <QtGlobal>

namespace scrivlet {

class Database;

// Many small reads as one: SQLite takes and drops its read lock, and looks whether
// another connection changed the file, around every statement outside a transaction,
// which costs more than reading one note. Inside a transaction already open (the
// writes of the context) it does nothing.
class ReadTransaction {
    Q_DISABLE_COPY_MOVE(ReadTransaction)

public:
    explicit ReadTransaction(Database &db);
    ~ReadTransaction();

private:
    Database &m_db;
    bool m_began = false;
};

} // namespace scrivlet
