#pragma once

#include "keywords/EditorContext.h"
#include "notes/CoreDataNotesManager.h"
#include "platform/WindowPresenter.h"
#include "shell/lifecycle/AppIconPreference.h"

#include <functional>
#include <memory>
#include <optional>

namespace scrivlet {

class CoreDataManager;
class MainWindow;
class NoteViewModel;
class PopoverWindow;
class SettingsStore;

// The main window on the desktop: it shows the stack's open note and follows it as the
// user, the app or sync moves to another one. Each edit is saved through the store
// after a pause, as the editor decides.
class MainWindowPresenter final : public WindowPresenter {
    Q_DISABLE_COPY_MOVE(MainWindowPresenter)

public:
    using StackSource = std::function<CoreDataNotesManager &()>;

    MainWindowPresenter(const EditorContext &context, SettingsStore &settings);
    ~MainWindowPresenter() override;

    // What the window shows. The stack is asked for only when the window is made, so
    // building the window is what loads it.
    void setContent(StackSource notes, CoreDataManager &store);
    MainWindow *mainWindow() const { return m_window.get(); }

    void createMainWindow() override;
    void destroyMainWindow() override;
    bool hasMainWindow() const override { return m_window != nullptr; }
    bool isMainWindowVisible() const override;
    void showMainWindow() override;
    void orderOutMainWindow(bool hideApp) override;
    void centerMainWindow() override;
    void saveMainWindowFrame() override;
    bool isPinned() const override { return m_pinned; }
    void setPinned(bool pinned) override;

    // How the app presents itself; in `trueMenuApp` there is no window to toggle and
    // the pin holds the tray's note panel open instead.
    void setAppIconPreference(AppIconPreference mode);
    AppIconPreference appIconPreference() const { return m_mode; }
    // The tray's note panel, while there is one.
    void setPopover(PopoverWindow *popover);
    // The hot key's, the tray's and the "Hide/Show" command's toggle: a window in front
    // goes away (and the app used before gets the focus back); a minimised one comes
    // back; any other comes to the front.
    void toggleMainWindow();
    // The pin command: flips the pin, remembers it for the next start and says so.
    void togglePin();

private:
    void followOpenNote();
    void applyPin();
    std::function<void(const Note &)> saveFor(const std::shared_ptr<NoteViewModel> &model) const;

    EditorContext m_context;
    SettingsStore &m_settings;
    StackSource m_notesSource;
    CoreDataManager *m_store = nullptr;
    CoreDataNotesManager *m_notes = nullptr;
    std::optional<CoreDataNotesManager::ObserverId> m_observer;
    std::unique_ptr<MainWindow> m_window;
    bool m_pinned = false;
    AppIconPreference m_mode = AppIconPreference::both;
    PopoverWindow *m_popover = nullptr;
};

} // namespace scrivlet
