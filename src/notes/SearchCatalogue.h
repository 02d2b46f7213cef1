#pragma once

#include <QtGlobal>

#include <memory>
#include <optional>
#include <vector>

namespace scrivlet {

class Database;

// Every live note of the store, slotted ones included, in the order search lists its
// hits: by `dbIndex`, then by row. It is held in memory so that a keystroke in the
// search bar can put thousands of hits in order without reading a row for each.
//
// It follows every write on its connection as it happens: SQLite names each note row
// that changes, and those rows alone are read again before the next search. A
// transaction rolled back, or a write from another connection to the file, has the
// whole order read again.
//
// One per connection, since it takes the connection's update and rollback hooks. Used
// on the main thread only.
class SearchCatalogue {
    Q_DISABLE_COPY_MOVE(SearchCatalogue)

public:
    struct Entry {
        qint64 dbIndex;
        qint64 objectId;
        friend auto operator<=>(const Entry &, const Entry &) = default;
    };
    using Order = std::vector<Entry>;

    explicit SearchCatalogue(Database &db);
    ~SearchCatalogue();

    // The order as it stands now, brought up to date first; null when the store can't
    // be read. The snapshot a caller holds never changes under it.
    std::shared_ptr<const Order> order();

private:
    struct Hooks;

    bool rebuild();
    bool refreshDirtyRows();
    void install();
    void uninstall();

    Database &m_db;
    std::shared_ptr<Order> m_order; // null until first read
    std::vector<qint64> m_dirty;    // note rows written since the order was last brought up to date
    bool m_stale = true;
    std::optional<qint64> m_dataVersion;
    bool m_installed = false;
};

} // namespace scrivlet
