#pragma once

#include "shell/lifecycle/AppIconPreference.h"

#include <QObject>
#include <QSystemTrayIcon>

#include <functional>
#include <memory>

class QAction;
class QMenu;

namespace scrivlet {

class MainWindowPresenter;
class PopoverWindow;

// Scrivlet's item in the desktop's system tray, for the ways of running that have one
// (`menuOnly`, `both`, `trueMenuApp`). A left click brings the note window up or sends
// it away; in `trueMenuApp` it opens the note panel instead, as there is no window.
// The right-click menu shows or hides, pins, tells whether the global hot key works,
// and quits.
//
// A desktop without a tray can't show the item: the app then presents itself with its
// main window, so that it is never left running with no way to reach it.
class StatusItemManager final : public QObject {
    Q_OBJECT
public:
    // What the tray needs from the rest of the app.
    struct Hooks {
        // The panel of `trueMenuApp`, made on first use (the stack must be loaded first).
        std::function<std::unique_ptr<PopoverWindow>()> makePopover;
        // "Global hot key: ..." as the hot key's keeper says it.
        std::function<QString()> hotKeyStatus;
        std::function<void()> quit;
    };

    StatusItemManager(AppIconPreference wanted, bool trayAvailable, MainWindowPresenter &presenter, Hooks hooks,
                      QObject *parent = nullptr);
    ~StatusItemManager() override;

    // Whether this desktop shows tray items at all.
    static bool isTrayAvailable();
    // The way the app really presents itself: the one the user chose, unless it needs a
    // tray that isn't there; the main window, shown at start, takes the tray's place.
    static AppIconPreference presentedMode(AppIconPreference wanted, bool trayAvailable);
    static bool needsStatusItem(AppIconPreference mode);
    // Only a window with no other way back ends the app when it is closed: with a tray
    // item or the hot key-only mode, closing it only hides it.
    static bool quitsWhenWindowCloses(AppIconPreference presented) { return presented == AppIconPreference::dockOnly; }

    AppIconPreference wantedMode() const { return m_wanted; }
    AppIconPreference mode() const { return m_mode; }
    bool hasStatusItem() const { return m_tray != nullptr; }
    QSystemTrayIcon *trayIcon() const { return m_tray.get(); }
    QMenu *contextMenu() const { return m_menu.get(); }
    PopoverWindow *popover() const { return m_popover.get(); }

    // What a left click on the item does.
    void click();
    // The show/hide command of the menu and of a second start of the app: the window's
    // toggle, or the panel in `trueMenuApp`.
    void toggle();
    // Opens the panel, or brings the window up, without ever sending it away.
    void show();
    // Re-reads the hot key's state into the menu.
    void refreshHotKeyStatus();

private:
    void onActivated(QSystemTrayIcon::ActivationReason reason);
    void buildMenu();
    void updateMenu();
    PopoverWindow &ensurePopover();
    QRect iconGeometry() const;

    AppIconPreference m_wanted;
    AppIconPreference m_mode;
    MainWindowPresenter &m_presenter;
    Hooks m_hooks;
    std::unique_ptr<QMenu> m_menu;
    std::unique_ptr<QSystemTrayIcon> m_tray;
    std::unique_ptr<PopoverWindow> m_popover;
    QAction *m_showHide = nullptr;
    QAction *m_pin = nullptr;
    QAction *m_hotKeyLine = nullptr;
};

} // namespace scrivlet
