#include "notes/SearchResults.h"

#include "notes/CoreDataManager.h"
#include "notes/SearchQuery.h"

namespace scrivlet {

SearchResults::SearchResults(CoreDataManager &store, const QString &foldedText)
    : m_store(&store), m_foldedText(foldedText)
{
    if (m_foldedText.isEmpty()) {
        if (const auto order = store.searchOrder()) {
            m_hits.reserve(order->size());
            for (const SearchCatalogue::Entry &entry : *order)
                m_hits.push_back(entry.objectId);
        }
    } else if (CoreDataManager::isIndexable(m_foldedText)) {
        m_hits = store.indexedSearch(m_foldedText).value_or(std::vector<qint64>());
    } else {
        m_scan = store.searchOrder();
        if (m_scan && m_scan->empty())
            m_scan.reset();
    }
}

qsizetype SearchResults::fetchMore(qsizetype maxNewHits, QDeadlineTimer deadline)
{
    if (!m_scan)
        return 0;
    const qsizetype before = size();
    const auto reached = m_store->scanForText(m_foldedText, *m_scan, m_scanned, m_hits, maxNewHits, deadline);
    // A store that can't be read ends the search with what it found so far.
    if (!reached || *reached >= m_scan->size())
        m_scan.reset();
    else
        m_scanned = *reached;
    return size() - before;
}

std::optional<SearchResult> SearchResults::at(qsizetype index)
{
    if (index < 0 || index >= size())
        return std::nullopt;
    const qint64 row = m_hits[std::size_t(index)];
    auto found = m_rows.find(row);
    if (found == m_rows.end()) {
        load(index, 1);
        found = m_rows.find(row);
    }
    return found == m_rows.end() ? std::nullopt : found->second;
}

void SearchResults::load(qsizetype first, qsizetype count)
{
    if (!m_store)
        return;
    first = std::max<qsizetype>(first, 0);
    const qsizetype end = count > size() - first ? size() : first + count;
    std::vector<qint64> missing;
    for (qsizetype i = first; i < end; ++i) {
        if (!m_rows.contains(m_hits[std::size_t(i)]))
            missing.push_back(m_hits[std::size_t(i)]);
    }
    if (missing.empty())
        return;
    auto rows = m_store->fetchSearchResults(missing);
    // A failed read leaves the rows unread, to be tried again when next asked for.
    if (rows.size() != missing.size())
        return;
    for (std::size_t i = 0; i < missing.size(); ++i) {
        if (rows[i])
            rows[i]->hit = SearchQuery::locate(rows[i]->content, m_foldedText);
        m_rows.insert_or_assign(missing[i], std::move(rows[i]));
    }
}

std::vector<Note> SearchResults::notes()
{
    if (!m_store)
        return {};
    fetchAll();
    return m_store->fetchNotesAt(m_hits);
}

} // namespace scrivlet
