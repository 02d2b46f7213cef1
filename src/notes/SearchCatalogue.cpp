#include "notes/SearchCatalogue.h"

#include "notes/Database.h"
#include "notes/NotesLogging.h"
#include "notes/ReadTransaction.h"

#include <sqlite3.h>

#include <algorithm>
#include <cstring>

namespace scrivlet {

namespace {

// Past this many written rows (an import, the sparse reindex) one read of the whole
// order is quicker than a read of each row.
constexpr std::size_t kReadWholeOrderAbove = 2000;

// Rows in The Void; every other row is a live note.
const QString kTrashedRows = QStringLiteral("SELECT objectId FROM notes WHERE softDeleted > 0 OR softDeleted < 0");

void putInOrder(SearchCatalogue::Order &order)
{
    // The rows arrive as two sorted runs, the stack and then the slots.
    const auto firstOfSecondRun = std::is_sorted_until(order.begin(), order.end());
    if (std::is_sorted(firstOfSecondRun, order.end()))
        std::inplace_merge(order.begin(), firstOfSecondRun, order.end());
    else
        std::sort(order.begin(), order.end());
}

} // namespace

struct SearchCatalogue::Hooks {
    static void rowChanged(void *self, int, const char *database, const char *table, sqlite3_int64 row)
    {
        if (std::strcmp(table, "notes") != 0 || std::strcmp(database, "main") != 0)
            return;
        auto *catalogue = static_cast<SearchCatalogue *>(self);
        if (catalogue->m_stale)
            return;
        catalogue->m_dirty.push_back(row);
        if (catalogue->m_dirty.size() > kReadWholeOrderAbove) {
            catalogue->m_stale = true;
            catalogue->m_dirty.clear();
        }
    }

    static void rolledBack(void *self)
    {
        // Rows read again inside the transaction may now be back to what they were.
        static_cast<SearchCatalogue *>(self)->m_stale = true;
    }
};

SearchCatalogue::SearchCatalogue(Database &db) : m_db(db) {}

SearchCatalogue::~SearchCatalogue()
{
    uninstall();
}

void SearchCatalogue::install()
{
    if (m_installed || !m_db.handle())
        return;
    sqlite3_update_hook(m_db.handle(), &Hooks::rowChanged, this);
    sqlite3_rollback_hook(m_db.handle(), &Hooks::rolledBack, this);
    m_installed = true;
    m_stale = true;
}

void SearchCatalogue::uninstall()
{
    if (!m_installed || !m_db.handle())
        return;
    sqlite3_update_hook(m_db.handle(), nullptr, nullptr);
    sqlite3_rollback_hook(m_db.handle(), nullptr, nullptr);
    m_installed = false;
}

std::shared_ptr<const SearchCatalogue::Order> SearchCatalogue::order()
{
    install();
    const ReadTransaction transaction(m_db);
    // Writes through this connection reach the hooks; only another connection's
    // writes move the file's data version.
    Statement *version = m_db.cached(QStringLiteral("PRAGMA data_version"));
    if (!version || version->step() != Statement::Step::Row) {
        qCWarning(lcNotes).noquote() << "Error reading the store's version for search:"
                                     << (version ? version->lastError() : m_db.lastError());
        return nullptr;
    }
    const qint64 dataVersion = version->columnInt64(0);
    version->reset();
    if (m_dataVersion != dataVersion)
        m_stale = true;

    const bool current = m_stale || !m_order ? rebuild() : refreshDirtyRows();
    if (!current) {
        m_stale = true;
        return nullptr;
    }
    m_stale = false;
    m_dataVersion = dataVersion;
    return m_order;
}

bool SearchCatalogue::rebuild()
{
    m_dirty.clear();
    Statement *trashed = m_db.cached(kTrashedRows);
    // Both reads are served by indexes alone, without touching the notes' text.
    Statement *rows = m_db.cached(QStringLiteral("SELECT dbIndex, objectId FROM notes"));
    if (!trashed || !rows) {
        qCWarning(lcNotes).noquote() << "Error preparing the search order:" << m_db.lastError();
        return false;
    }
    std::vector<qint64> inTrash;
    Statement::Step step;
    while ((step = trashed->step()) == Statement::Step::Row)
        inTrash.push_back(trashed->columnInt64(0));
    if (step == Statement::Step::Error) {
        qCWarning(lcNotes).noquote() << "Error reading the search order:" << trashed->lastError();
        return false;
    }
    std::sort(inTrash.begin(), inTrash.end());

    auto order = std::make_shared<Order>();
    if (m_order)
        order->reserve(m_order->size() + 64);
    while ((step = rows->step()) == Statement::Step::Row) {
        const qint64 objectId = rows->columnInt64(1);
        if (!std::binary_search(inTrash.begin(), inTrash.end(), objectId))
            order->push_back(Entry{rows->columnInt64(0), objectId});
    }
    if (step == Statement::Step::Error) {
        qCWarning(lcNotes).noquote() << "Error reading the search order:" << rows->lastError();
        return false;
    }
    putInOrder(*order);
    m_order = std::move(order);
    return true;
}

bool SearchCatalogue::refreshDirtyRows()
{
    if (m_dirty.empty())
        return true;
    std::sort(m_dirty.begin(), m_dirty.end());
    m_dirty.erase(std::unique(m_dirty.begin(), m_dirty.end()), m_dirty.end());

    Statement *read = m_db.cached(
        QStringLiteral("SELECT dbIndex, (softDeleted = 0 OR softDeleted IS NULL) FROM notes WHERE objectId = ?1"));
    if (!read) {
        qCWarning(lcNotes).noquote() << "Error preparing the search order:" << m_db.lastError();
        return false;
    }
    Order fresh;
    for (const qint64 objectId : m_dirty) {
        read->bind(1, objectId);
        const Statement::Step step = read->step();
        if (step == Statement::Step::Error) {
            qCWarning(lcNotes).noquote() << "Error reading a note for the search order:" << read->lastError();
            return false;
        }
        // A row that is gone, or in The Void, leaves the order.
        if (step == Statement::Step::Row && read->columnInt64(1) != 0)
            fresh.push_back(Entry{read->columnInt64(0), objectId});
        read->reset();
    }

    // Snapshots handed out stay as they were.
    if (m_order.use_count() > 1)
        m_order = std::make_shared<Order>(*m_order);
    Order &order = *m_order;
    std::erase_if(order, [this](const Entry &entry) {
        return std::binary_search(m_dirty.begin(), m_dirty.end(), entry.objectId);
    });
    std::sort(fresh.begin(), fresh.end());
    const auto middle = order.insert(order.end(), fresh.begin(), fresh.end());
    std::inplace_merge(order.begin(), middle, order.end());
    m_dirty.clear();
    return true;
}

} // namespace scrivlet
