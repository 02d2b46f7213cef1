#pragma once

#include "notes/CoreDataNotesManager.h"

#include <QAbstractListModel>
#include <QHash>
#include <QPoint>
#include <QUuid>

namespace scrivlet {

class Clock;

// The search view's rows over the stack's `searchResults`: grows as a search still
// under way finds more, starts over with each new query. A row's snippet is made when
// the row is first shown, a batch at a time, so a query that matches a hundred
// thousand notes costs a screenful.
class SearchResultsModel final : public QAbstractListModel {
    Q_OBJECT
public:
    SearchResultsModel(CoreDataNotesManager &notes, Clock &clock, QObject *parent = nullptr);
    ~SearchResultsModel() override;

    // Runs `query` over the store; the rows found so far replace the old ones at once.
    void search(const QString &query);
    bool isComplete() const { return m_notes.searchResults().isComplete(); }

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role) const override;

signals:
    // A new query's rows are in.
    void restarted();
    // A search under way found more, or finished.
    void grew();

private:
    struct Row {
        QUuid id;
        QString text;
        std::optional<QPoint> hit;
        QString time;
    };

    static constexpr int kBatch = 40;

    void resultsChanged();
    const Row &row(int index) const;

    CoreDataNotesManager &m_notes;
    Clock &m_clock;
    CoreDataNotesManager::ObserverId m_observer;
    int m_shown = 0;
    bool m_restarting = false;
    mutable QHash<int, Row> m_rows;
};

} // namespace scrivlet
