#pragma once

#include "notes/Note.h"
#include "notes/SearchCatalogue.h"
#include "notes/SearchResult.h"

#include <QDeadlineTimer>
#include <QString>

#include <limits>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

namespace scrivlet {

class CoreDataManager;

// The notes one search found, in stack order (by `dbIndex`), as the search view lists
// them: live notes only, slotted ones included.
//
// Which notes match is known at once for an empty query (every live note) and for a
// text the store's index answers, three characters or more. A shorter text is looked
// for in the notes themselves, oldest first: `fetchMore` reads on from where the last
// call stopped, so the hits found so far are always the first rows of the whole list.
//
// A row's text and dates are read when the row is first asked for: a common word can
// match tens of thousands of notes, of which the view shows a screenful.
//
// The store must outlive the results.
class SearchResults {
public:
    static constexpr qsizetype kUnlimited = std::numeric_limits<qsizetype>::max();

    // Nothing looked for: no rows.
    SearchResults() = default;
    // `foldedText` is the cleaned query in the folded form of `TextFolding`; empty asks
    // for every live note.
    SearchResults(CoreDataManager &store, const QString &foldedText);

    qsizetype size() const { return qsizetype(m_hits.size()); }
    bool isEmpty() const { return m_hits.empty(); }
    bool isComplete() const { return !m_scan; }

    // Reads on through the notes for a short text until `maxNewHits` more are found,
    // `deadline` passes or the stack ends. Returns how many hits it added.
    qsizetype fetchMore(qsizetype maxNewHits, QDeadlineTimer deadline = QDeadlineTimer(QDeadlineTimer::Forever));
    void fetchAll() { fetchMore(kUnlimited); }

    // The row at `index`, read from the store on first use. Nil past the end, and for a
    // note that has left the stack since the search ran (deleted, or sent to The Void).
    std::optional<SearchResult> at(qsizetype index);
    // Reads the rows from `first` on, `count` of them, so the view finds them ready.
    void load(qsizetype first, qsizetype count);

    // Every hit, looked for to the end, as whole notes with their checklists, links and
    // attachments.
    std::vector<Note> notes();

private:
    CoreDataManager *m_store = nullptr;
    QString m_foldedText;
    std::shared_ptr<const SearchCatalogue::Order> m_scan; // the notes still being read
    std::size_t m_scanned = 0;
    std::vector<qint64> m_hits; // the hits' rows in the store
    std::unordered_map<qint64, std::optional<SearchResult>> m_rows;
};

} // namespace scrivlet
