#pragma once

namespace scrivlet {

// The main note window as the application's life cycle handles it. The window shows
// the stack's open note and follows it; it is made once and kept until the app ends.
// Every call but `createMainWindow` does nothing while there is no window.
class WindowPresenter {
public:
    virtual ~WindowPresenter() = default;

    // Makes the window, with the frame the user left it with (or the default size).
    virtual void createMainWindow() = 0;
    // Lets the window go before the notes it shows do.
    virtual void destroyMainWindow() = 0;
    virtual bool hasMainWindow() const = 0;
    virtual bool isMainWindowVisible() const = 0;

    // Brings the window to the front with the note's text focused.
    virtual void showMainWindow() = 0;
    // Takes the window off the screen; with `hideApp` the app hides too, so that the
    // application used before gets the focus back.
    virtual void orderOutMainWindow(bool hideApp) = 0;
    virtual void centerMainWindow() = 0;
    // Writes the window's frame under the four window keys of the settings.
    virtual void saveMainWindowFrame() = 0;

    // A pinned window floats above other windows and stays when the app loses focus.
    virtual bool isPinned() const = 0;
    virtual void setPinned(bool pinned) = 0;
};

} // namespace scrivlet
