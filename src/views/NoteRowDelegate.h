#pragma once

#include "views/ThemePalette.h"

#include <QStyledItemDelegate>

namespace scrivlet {

// Draws a note as one row of a list (The Void, search results): a line of its text with
// the search hit picked out, the time beneath it, and, on the row under the pointer or
// the selected one, the row's actions as small pills on the right.
class NoteRowDelegate final : public QStyledItemDelegate {
    Q_OBJECT
public:
    enum Role {
        // The line to show, as a `QString`; Qt::DisplayRole.
        TextRole = Qt::DisplayRole,
        // The hit inside that line as a `QPoint(start, length)`; absent when none.
        HitRole = Qt::UserRole + 1,
        // When the note was last changed or deleted, already in words.
        TimeRole,
        // The note's `QUuid`.
        IdRole,
    };

    struct Action {
        QString label;
        QString toolTip;
        // Destructive actions draw in the theme's warning accent.
        bool destructive = false;
    };

    // Draws the rows of `view`, in the view's font.
    explicit NoteRowDelegate(QAbstractItemView *view);

    void setTheme(const ThemePalette &palette) { m_theme = palette; }
    void setActions(QList<Action> actions) { m_actions = std::move(actions); }
    const QList<Action> &actions() const { return m_actions; }

    // Where action `action` sits in a row drawn in `row`; empty when there is no such action.
    QRect actionRect(const QRect &row, int action) const;

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    bool helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                   const QModelIndex &index) override;

signals:
    void actionTriggered(const QModelIndex &index, int action);

protected:
    bool editorEvent(QEvent *event, QAbstractItemModel *model, const QStyleOptionViewItem &option,
                     const QModelIndex &index) override;

private:
    QFont actionFont(const QFont &base) const;
    int actionAt(const QRect &row, const QPoint &pos) const;

    QAbstractItemView *m_view;
    ThemePalette m_theme = ThemePalette::builtIn(QStringLiteral("Vancouver"));
    QList<Action> m_actions;
};

} // namespace scrivlet
