#pragma once

#include "platform/MemorySettingsStore.h"
#include "views/ThemePalette.h"

#include <QUuid>
#include <QWidget>

#include <memory>

class QLabel;
class QListView;
class QPushButton;
class QStackedWidget;
class QStandardItemModel;
class QToolButton;

namespace scrivlet {

class Alerts;
class Clock;
class CoreDataManager;
class CoreDataNotesManager;
class MessageBoxAlerts;
class NoteRowDelegate;
class NotificationBus;
class TrashManager;

// The Void: the notes the user deleted, newest deletion first, from which they can be
// brought back or deleted for good.
//
// Keys: Up and Down pick a note, Enter (or Return) restores it, Delete (or Backspace)
// deletes it for good after asking, Esc goes back to the note.
class VoidView final : public QWidget {
    Q_OBJECT
public:
    VoidView(CoreDataManager &store, CoreDataNotesManager &notes, NotificationBus &bus, Clock &clock,
             QWidget *parent = nullptr);
    ~VoidView() override;

    // Re-reads The Void from the store.
    void reload();

    // Who answers "Delete from The Void?" and "Empty The Void?"; the desktop's message
    // boxes until told otherwise. Not owned.
    void setAlerts(Alerts &alerts);
    void setTheme(const ThemePalette &palette);

    // What the view shows, for whoever drives it without a pointer.
    int rowCount() const;
    QUuid idAt(int row) const;
    QString textAt(int row) const;
    QString timeAt(int row) const;
    QString countText() const;
    bool isShowingEmptyState() const;
    QListView *list() const { return m_list; }
    NoteRowDelegate *delegate() const { return m_delegate; }
    QPushButton *emptyButton() const { return m_emptyButton; }

    // The row's actions, as the pills and keys do them.
    void restore(int row);
    void deleteForGood(int row);
    void emptyTheVoid();

signals:
    void closed();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;

private:
    void makeTrashManager(Alerts &alerts);
    int selectedRow() const;
    void selectRow(int row);

    CoreDataManager &m_store;
    CoreDataNotesManager &m_notes;
    NotificationBus &m_bus;
    Clock &m_clock;
    // The view never runs the retention clean-up, the only part of the trash manager
    // that reads settings, so it keeps a store of its own rather than needing the app's.
    MemorySettingsStore m_unusedSettings;
    std::unique_ptr<MessageBoxAlerts> m_ownAlerts;
    std::unique_ptr<TrashManager> m_trash;
    ThemePalette m_theme;

    QToolButton *m_backButton;
    QLabel *m_title;
    QLabel *m_count;
    QPushButton *m_emptyButton;
    QStackedWidget *m_pages;
    QListView *m_list;
    QStandardItemModel *m_model;
    NoteRowDelegate *m_delegate;
    QLabel *m_emptyTitle;
    QLabel *m_emptyText;
};

} // namespace scrivlet
