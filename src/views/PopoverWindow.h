#pragma once

#include "keywords/EditorContext.h"
#include "notes/CoreDataNotesManager.h"

#include <QElapsedTimer>
#include <QWidget>

#include <memory>
#include <optional>

namespace scrivlet {

class CoreDataManager;
class NoteEditorView;
class NoteViewModel;

// The note as a small panel that drops from the tray icon, for the menu-bar-only way of
// running Scrivlet: there is no main window then, and this panel is where the open note
// is read and typed. It follows the stack's open note like the main window does.
//
// It goes away as soon as the user clicks elsewhere, unless pinned: a pinned panel stays
// open above other windows until the tray icon is clicked again.
class PopoverWindow final : public QWidget {
    Q_OBJECT
public:
    PopoverWindow(const EditorContext &context, CoreDataNotesManager &notes, CoreDataManager &store,
                  QWidget *parent = nullptr);
    ~PopoverWindow() override;

    // Where the panel goes for a tray icon at `anchor`: under the icon when the icon is
    // in the top half of the screen, above it otherwise, centred on it and kept inside
    // `screenArea`. An empty anchor (the desktop doesn't tell where its tray is) puts it
    // in the top-right corner.
    static QRect placement(const QRect &anchor, const QSize &size, const QRect &screenArea);

    // Opens the panel next to the tray icon, or closes it when it is open. A click on
    // the tray icon that itself took the focus away from the open panel closes it and
    // doesn't open it again at once.
    void toggleNextTo(const QRect &anchor);
    void openNextTo(const QRect &anchor);
    void close();
    bool isOpen() const { return isVisible(); }

    bool isPinned() const { return m_pinned; }
    void setPinned(bool pinned);

    NoteEditorView *editorView() const { return m_editor; }

protected:
    void changeEvent(QEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void followOpenNote();
    void showNote(const std::shared_ptr<NoteViewModel> &note);
    void applyTheme();

    EditorContext m_context;
    CoreDataNotesManager &m_notes;
    CoreDataManager &m_store;
    std::optional<CoreDataNotesManager::ObserverId> m_observer;
    NoteEditorView *m_editor = nullptr;
    QElapsedTimer m_sinceFocusLost;
    bool m_pinned = false;
};

} // namespace scrivlet
