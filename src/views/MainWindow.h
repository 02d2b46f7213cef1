#pragma once

#include "keywords/NoteEditorSession.h"
#include "notes/CoreDataNotesManager.h"
#include "platform/NotificationBus.h"

#include <QMainWindow>

#include <functional>
#include <memory>
#include <optional>

class QAction;
class QSizeGrip;
class QStackedWidget;

namespace scrivlet {

class CoreDataManager;
class MessagePill;
class NoteCommands;
class NoteEditorView;
class NoteViewModel;
class SearchView;
class SettingsStore;
class SplitView;
class TextViewRegistry;
class TopBar;
class VoidView;

// The note window: a frameless scratchpad with its own slim bar, the stack's note and
// the slotted note side by side when the split is on, The Void and search in place of
// the notes, the message pills, and every command of the stack on a shortcut.
class MainWindow final : public QMainWindow {
    Q_OBJECT
public:
    static constexpr int kDefaultWidth = 350;
    static constexpr int kDefaultHeight = 400;
    // Time before a new note takes the focus, so the move has settled first.
    static constexpr int kNewNoteFocusDelayMs = 100;

    enum class Page { notes, search, theVoid };

    MainWindow(const EditorContext &context, SettingsStore &settings, std::shared_ptr<NoteViewModel> note,
               NoteEditorSession::SaveCallback save);
    ~MainWindow() override;

    // The stack's pane.
    NoteEditorView &editorView() const;
    // Puts another note in the stack's pane, or the same note's new holder after the
    // stack reloaded. The note on screen is saved first; the focus stays where it was.
    void showNote(std::shared_ptr<NoteViewModel> note, NoteEditorSession::SaveCallback save);

    // Connects the window to the stack: the commands, the slotted pane, The Void and
    // search. Until then the window shows one note and nothing else.
    void attachStack(CoreDataManager &store, CoreDataNotesManager &notes);
    // What the pin command runs; the window only shows the state it is given.
    void setPinHandler(std::function<void()> handler) { m_pinHandler = std::move(handler); }
    void setPinnedIndicator(bool pinned);

    SplitView &splitView() const { return *m_split; }
    TextViewRegistry &textViewRegistry() const { return *m_registry; }
    MessagePill &messagePill() const { return *m_pill; }
    Page page() const;
    void showPage(Page page);
    // The window's command with that object name ("nextNote", "toggleSplit"...), for menus and tests.
    QAction *command(const QString &name) const;
    // Lays the panes out as the stored split settings say.
    void applyPaneLayout();

    // The frame is kept in four plain numbers; any of them missing means the default
    // size, and a frame on no screen any more comes back onto the nearest one.
    void restoreFrame();
    void saveFrame() const;
    // Where a saved frame goes so that it can be reached: unchanged when it touches a
    // screen, else moved (and shrunk if need be) into the nearest one.
    static QRect reachableFrame(const QRect &frame, const QList<QRect> &screens);
    // Saves the open notes now, as when the window goes away.
    void flushPendingSave();

protected:
    void closeEvent(QCloseEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    QAction *addCommand(const QString &name, const QString &text, const QList<QKeySequence> &keys,
                        std::function<void()> run);
    void createCommands();
    void applyTheme();
    bool slottedActive() const;
    // Keeps a pane on its list's open note as the user, the app or sync moves it.
    void followOpenNote(bool slotted);
    void focusEditor(NoteEditorView *editor, int delayMs = 0);
    void jumpToSlot(int slot);
    std::function<void(const Note &)> saveFor(const std::shared_ptr<NoteViewModel> &model, bool slotted) const;

    EditorContext m_context;
    SettingsStore &m_settings;
    TopBar *m_topBar;
    QStackedWidget *m_pages;
    SplitView *m_split;
    TextViewRegistry *m_registry;
    MessagePill *m_pill;
    QSizeGrip *m_grip;
    SearchView *m_search = nullptr;
    VoidView *m_void = nullptr;
    std::unique_ptr<NoteCommands> m_commands;
    CoreDataManager *m_store = nullptr;
    CoreDataNotesManager *m_notes = nullptr;
    std::optional<CoreDataNotesManager::ObserverId> m_observer;
    std::function<void()> m_pinHandler;
    std::vector<NotificationBus::Subscription> m_subscriptions;
};

} // namespace scrivlet
