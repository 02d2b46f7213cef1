#include "views/SearchResultsModel.h"

#include "notes/RelativeTimeText.h"
#include "platform/Clock.h"
#include "views/NoteRowDelegate.h"
#include "views/SearchSnippet.h"

#include <QPoint>

namespace scrivlet {

SearchResultsModel::SearchResultsModel(CoreDataNotesManager &notes, Clock &clock, QObject *parent)
    : QAbstractListModel(parent), m_notes(notes), m_clock(clock)
{
    m_observer = m_notes.addObserver([this](CoreDataNotesManager::Change change) {
        if (change == CoreDataNotesManager::Change::searchResults)
            resultsChanged();
    });
}

SearchResultsModel::~SearchResultsModel()
{
    m_notes.removeObserver(m_observer);
}

void SearchResultsModel::search(const QString &query)
{
    m_restarting = true;
    m_notes.updateSearchResults(query);
    // The stack announces the new list as it makes it; should it ever not, the rows
    // still must not stay those of the last query.
    if (m_restarting)
        resultsChanged();
}

void SearchResultsModel::resultsChanged()
{
    const int size = int(m_notes.searchResults().size());
    if (m_restarting || size < m_shown) {
        m_restarting = false;
        beginResetModel();
        m_rows.clear();
        m_shown = size;
        endResetModel();
        emit restarted();
        return;
    }
    if (size > m_shown) {
        beginInsertRows(QModelIndex(), m_shown, size - 1);
        m_shown = size;
        endInsertRows();
    }
    emit grew();
}

int SearchResultsModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_shown;
}

const SearchResultsModel::Row &SearchResultsModel::row(int index) const
{
    if (const auto found = m_rows.constFind(index); found != m_rows.constEnd())
        return *found;
    // Rows come in batches from the store, so a screen being drawn reads it once.
    SearchResults &results = m_notes.searchResults();
    const int first = index - index % kBatch;
    const int last = std::min(first + kBatch, m_shown);
    results.load(first, last - first);
    const QDateTime now = m_clock.now();
    for (int i = first; i < last; ++i) {
        if (m_rows.contains(i))
            continue;
        Row made;
        if (const auto result = results.at(i)) {
            const SearchSnippet snippet = SearchSnippet::make(result->content, result->hit);
            made.id = result->id;
            made.text = snippet.text.isEmpty() ? QStringLiteral("Empty note") : snippet.text;
            if (snippet.hit)
                made.hit = QPoint(int(snippet.hit->location), int(snippet.hit->length));
            made.time = RelativeTimeText::text(result->lastModified, now);
            if (result->isSlotted && result->slotIndex)
                made.time = QStringLiteral("Slot %1 \u00b7 ").arg(*result->slotIndex) % made.time;
        } else {
            // Deleted or sent to The Void since the search ran.
            made.text = QStringLiteral("No longer in the stack");
        }
        m_rows.insert(i, made);
    }
    return *m_rows.constFind(index);
}

QVariant SearchResultsModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_shown)
        return {};
    const Row &shown = row(index.row());
    switch (role) {
    case NoteRowDelegate::TextRole:
        return shown.text;
    case NoteRowDelegate::HitRole:
        return shown.hit ? QVariant(*shown.hit) : QVariant();
    case NoteRowDelegate::TimeRole:
        return shown.time;
    case NoteRowDelegate::IdRole:
        return shown.id.isNull() ? QVariant() : QVariant(shown.id);
    case Qt::ToolTipRole:
        return shown.time;
    default:
        return {};
    }
}

} // namespace scrivlet
