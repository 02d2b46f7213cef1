#include "views/MainWindowPresenter.h"

#include "notes/CoreDataManager.h"
#include "notes/NoteViewModel.h"
#include "platform/MessagePillTypes.h"
#include "shell/preferences/MiscPreferences.h"
#include "views/MainWindow.h"
#include "views/NoteEditorView.h"
#include "views/NoteTextEdit.h"
#include "views/PopoverWindow.h"

#include <QGuiApplication>
#include <QScreen>
#include <QTimer>

namespace scrivlet {

using Change = CoreDataNotesManager::Change;

MainWindowPresenter::MainWindowPresenter(const EditorContext &context, SettingsStore &settings)
    : m_context(context), m_settings(settings)
{
}

MainWindowPresenter::~MainWindowPresenter()
{
    destroyMainWindow();
}

void MainWindowPresenter::setContent(StackSource notes, CoreDataManager &store)
{
    m_notesSource = std::move(notes);
    m_store = &store;
}

std::function<void(const Note &)> MainWindowPresenter::saveFor(const std::shared_ptr<NoteViewModel> &model) const
{
    CoreDataManager *store = m_store;
    return [store, model](const Note &edited) {
        // The note's holder is the one in the stack's list: it takes the new date too.
        NoteViewModelList holder{model};
        store->saveFromEditor(edited, &holder, nullptr);
    };
}

void MainWindowPresenter::createMainWindow()
{
    if (m_window || !m_notesSource || !m_store)
        return;
    m_notes = &m_notesSource();
    const std::shared_ptr<NoteViewModel> open = m_notes->currentNote();
    if (!open)
        return;
    m_window = std::make_unique<MainWindow>(m_context, m_settings, open, saveFor(open));
    m_window->attachStack(*m_store, *m_notes);
    m_window->setPinHandler([this] { togglePin(); });
    m_observer = m_notes->addObserver([this](Change change) {
        if (change == Change::currentIndex || change == Change::noteViewModels)
            followOpenNote();
    });
    applyPin();
}

void MainWindowPresenter::destroyMainWindow()
{
    if (m_observer && m_notes)
        m_notes->removeObserver(*m_observer);
    m_observer.reset();
    if (m_window)
        m_window->flushPendingSave();
    m_window.reset();
}

void MainWindowPresenter::followOpenNote()
{
    const std::shared_ptr<NoteViewModel> open = m_notes->currentNote();
    if (!open || !m_window)
        return;
    NoteEditorView &editor = m_window->editorView();
    const std::shared_ptr<NoteViewModel> &shown = editor.noteViewModel();
    if (open == shown)
        return;
    // A reload makes a new holder for the open note from the store. Typing that is
    // still waiting for its save is newer than what was read; anything else that
    // differs came from outside and is taken.
    if (open->id() == shown->id() && editor.session().hasPendingSave())
        open->mutableNote().content = shown->note().content;
    m_window->showNote(open, saveFor(open));
}

bool MainWindowPresenter::isMainWindowVisible() const
{
    return m_window && m_window->isVisible() && !m_window->isMinimized();
}

void MainWindowPresenter::showMainWindow()
{
    if (!m_window || (m_window->isActiveWindow() && m_window->isVisible()))
        return;
    if (m_window->isMinimized())
        m_window->showNormal();
    else
        m_window->show();
    m_window->raise();
    m_window->activateWindow();
    // The text takes the focus once the window is up, so typing can start at once.
    QTimer::singleShot(0, m_window.get(), [window = m_window.get()] { window->editorView().textEdit().setFocus(); });
}

void MainWindowPresenter::orderOutMainWindow(bool hideApp)
{
    if (!m_window)
        return;
    // Hiding the last window of the app is what hides the app here: the window manager
    // gives the focus back to the application used before, so `hideApp` needs nothing more.
    Q_UNUSED(hideApp)
    m_window->flushPendingSave();
    m_window->hide();
}

void MainWindowPresenter::centerMainWindow()
{
    if (!m_window)
        return;
    const QScreen *screen = m_window->screen() ? m_window->screen() : QGuiApplication::primaryScreen();
    if (!screen)
        return;
    QRect frame = m_window->frameGeometry();
    frame.moveCenter(screen->availableGeometry().center());
    m_window->move(frame.topLeft());
}

void MainWindowPresenter::saveMainWindowFrame()
{
    if (m_window)
        m_window->saveFrame();
}

void MainWindowPresenter::setPinned(bool pinned)
{
    m_pinned = pinned;
    applyPin();
}

void MainWindowPresenter::setAppIconPreference(AppIconPreference mode)
{
    m_mode = mode;
    applyPin();
}

void MainWindowPresenter::setPopover(PopoverWindow *popover)
{
    m_popover = popover;
    applyPin();
}

void MainWindowPresenter::toggleMainWindow()
{
    if (!m_window || m_mode == AppIconPreference::trueMenuApp)
        return;
    if (m_window->isVisible() && m_window->isActiveWindow() && !m_window->isMinimized())
        orderOutMainWindow(true);
    else
        showMainWindow();
}

void MainWindowPresenter::togglePin()
{
    setPinned(!m_pinned);
    m_context.miscPreferences.setLastPinState(m_pinned);
    m_context.bus.postMessagePill(m_pinned ? QStringLiteral("Pinned to top") : QStringLiteral("Unpinned from top"),
                                  MessagePillTypes::success());
}

void MainWindowPresenter::applyPin()
{
    if (m_mode == AppIconPreference::trueMenuApp) {
        if (m_popover)
            m_popover->setPinned(m_pinned);
        return;
    }
    if (m_window)
        m_window->setPinnedIndicator(m_pinned);
    if (!m_window || m_window->windowFlags().testFlag(Qt::WindowStaysOnTopHint) == m_pinned)
        return;
    const bool visible = m_window->isVisible();
    m_window->setWindowFlag(Qt::WindowStaysOnTopHint, m_pinned);
    // A change of window flags takes the window off the screen.
    if (visible)
        m_window->show();
}

} // namespace scrivlet
