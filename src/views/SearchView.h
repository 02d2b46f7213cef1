#pragma once

#include "views/ThemePalette.h"

#include <QUuid>
#include <QWidget>

class QLabel;
class QLineEdit;
class QListView;
class QToolButton;

namespace scrivlet {

class Clock;
class CoreDataNotesManager;
class NoteRowDelegate;
class SearchResultsModel;

// Finds notes across the whole stack by their text as the user types, each shown with
// the words around the hit and when it last changed. Choosing one only names it: the
// window opens it (`jumpToNote`) and goes back to the editor.
//
// Keys: typing searches, Up and Down pick a result, Enter chooses it, Esc goes back.
class SearchView final : public QWidget {
    Q_OBJECT
public:
    SearchView(CoreDataNotesManager &notes, Clock &clock, QWidget *parent = nullptr);
    ~SearchView() override;

    // Starts over on the empty query, every note of the stack, and puts the focus in
    // the search field.
    void activate();

    void setTheme(const ThemePalette &palette);

    QLineEdit *field() const { return m_field; }
    QListView *list() const { return m_list; }
    SearchResultsModel *model() const { return m_model; }
    // "12 notes", "Searching…", "No notes found".
    QString statusText() const;

signals:
    void closed();
    void resultChosen(const QUuid &id);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void choose(int row);
    void moveSelection(int by);
    void updateStatus();

    CoreDataNotesManager &m_notes;
    Clock &m_clock;
    ThemePalette m_theme;

    QToolButton *m_backButton;
    QLineEdit *m_field;
    QLabel *m_status;
    QListView *m_list;
    SearchResultsModel *m_model;
    NoteRowDelegate *m_delegate;
};

} // namespace scrivlet
