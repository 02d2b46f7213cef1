#include "views/PopoverWindow.h"

#include "notes/CoreDataManager.h"
#include "notes/NoteViewModel.h"
#include "shell/preferences/VisualPreferences.h"
#include "views/NoteEditorView.h"
#include "views/NoteTextEdit.h"
#include "views/ThemePalette.h"

#include <QApplication>
#include <QEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QTimer>
#include <QVBoxLayout>

namespace scrivlet {

namespace {

// A click on the tray icon first takes the focus from the open panel, which closes it;
// the click itself arrives just after. Within this time it is the same gesture.
constexpr qint64 kSameClickMs = 300;
// The panel keeps clear of the icon and of the screen's edge by a few pixels.
constexpr int kGap = 4;

QSize popoverSize(const VisualPreferences &visual)
{
    // A size from a damaged settings file must still give a panel one can type in.
    const auto side = [](double v, int fallback) { return v >= 120.0 && v <= 4000.0 ? int(v) : fallback; };
    return {side(visual.popoverWidth(), 350), side(visual.popoverHeight(), 450)};
}

} // namespace

PopoverWindow::PopoverWindow(const EditorContext &context, CoreDataNotesManager &notes, CoreDataManager &store,
                             QWidget *parent)
    : QWidget(parent, Qt::Tool | Qt::FramelessWindowHint), m_context(context), m_notes(notes), m_store(store)
{
    setObjectName(QStringLiteral("popoverWindow"));
    setWindowTitle(QStringLiteral("Scrivlet"));
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(1, 1, 1, 1);
    resize(popoverSize(m_context.visualPreferences));

    if (const std::shared_ptr<NoteViewModel> open = m_notes.currentNote())
        showNote(open);
    m_observer = m_notes.addObserver([this](CoreDataNotesManager::Change change) {
        if (change == CoreDataNotesManager::Change::currentIndex ||
            change == CoreDataNotesManager::Change::noteViewModels)
            followOpenNote();
    });
}

PopoverWindow::~PopoverWindow()
{
    if (m_observer)
        m_notes.removeObserver(*m_observer);
    if (m_editor)
        m_editor->flushPendingSave();
}

QRect PopoverWindow::placement(const QRect &anchor, const QSize &size, const QRect &screenArea)
{
    QRect frame({0, 0}, size);
    if (anchor.isEmpty()) {
        frame.moveTopRight(screenArea.topRight() + QPoint(-kGap, kGap));
    } else {
        const bool iconAtTop = anchor.center().y() < screenArea.center().y();
        frame.moveLeft(anchor.center().x() - size.width() / 2);
        if (iconAtTop)
            frame.moveTop(anchor.bottom() + 1 + kGap);
        else
            frame.moveBottom(anchor.top() - 1 - kGap);
    }
    // Kept on the screen, the left and top edges winning on a screen smaller than the panel.
    frame.moveLeft(std::max(screenArea.left(), std::min(frame.left(), screenArea.right() - frame.width() + 1)));
    frame.moveTop(std::max(screenArea.top(), std::min(frame.top(), screenArea.bottom() - frame.height() + 1)));
    return frame;
}

void PopoverWindow::toggleNextTo(const QRect &anchor)
{
    if (isVisible()) {
        close();
        return;
    }
    if (m_sinceFocusLost.isValid() && m_sinceFocusLost.elapsed() < kSameClickMs) {
        m_sinceFocusLost.invalidate();
        return;
    }
    openNextTo(anchor);
}

void PopoverWindow::openNextTo(const QRect &anchor)
{
    const QScreen *screen = anchor.isEmpty() ? nullptr : QGuiApplication::screenAt(anchor.center());
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    const QSize size = popoverSize(m_context.visualPreferences);
    const QRect area = screen ? screen->availableGeometry() : QRect({0, 0}, size);
    setGeometry(placement(anchor, size, area));
    applyTheme();
    show();
    raise();
    activateWindow();
    if (m_editor) {
        // Typing can start at once, where it was left, once the panel has the focus.
        QTimer::singleShot(0, m_editor, [editor = m_editor] {
            editor->textEdit().setFocus();
            editor->textEdit().ensureCursorVisible();
        });
    }
}

void PopoverWindow::close()
{
    m_sinceFocusLost.invalidate();
    hide();
}

void PopoverWindow::setPinned(bool pinned)
{
    if (m_pinned == pinned)
        return;
    m_pinned = pinned;
    const bool visible = isVisible();
    setWindowFlag(Qt::WindowStaysOnTopHint, pinned);
    // A change of window flags takes the window off the screen.
    if (visible)
        show();
}

void PopoverWindow::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() != QEvent::ActivationChange || isActiveWindow() || !isVisible() || m_pinned)
        return;
    // Left for another window: the panel is transient.
    hide();
    m_sinceFocusLost.start();
}

void PopoverWindow::hideEvent(QHideEvent *event)
{
    // What was typed is kept as the panel goes, not only after the pause.
    if (m_editor)
        m_editor->flushPendingSave();
    QWidget::hideEvent(event);
}

void PopoverWindow::followOpenNote()
{
    const std::shared_ptr<NoteViewModel> open = m_notes.currentNote();
    if (!open || (m_editor && open == m_editor->noteViewModel()))
        return;
    // A reload brings a new holder of the same note: typing still waiting for its save
    // is newer than what the store gave back.
    if (m_editor && open->id() == m_editor->noteViewModel()->id() && m_editor->session().hasPendingSave())
        open->mutableNote().content = m_editor->noteViewModel()->note().content;
    showNote(open);
}

void PopoverWindow::showNote(const std::shared_ptr<NoteViewModel> &note)
{
    const bool focused = m_editor && m_editor->isAncestorOf(QApplication::focusWidget());
    CoreDataManager *store = &m_store;
    auto save = [store, note](const Note &edited) {
        // The holder is the one in the stack's list, so it takes the new date too.
        NoteViewModelList holder{note};
        store->saveFromEditor(edited, &holder, nullptr);
    };
    if (m_editor) {
        m_editor->flushPendingSave();
        m_editor->hide();
        m_editor->deleteLater();
    }
    m_editor = new NoteEditorView(m_context, note, std::move(save), this);
    layout()->addWidget(m_editor);
    setFocusProxy(m_editor);
    applyTheme();
    if (focused)
        m_editor->setFocus();
}

void PopoverWindow::applyTheme()
{
    // A theme that no longer exists draws in the first built-in one.
    const ThemePalette palette = ThemePalette::builtIn(m_context.visualPreferences.selectedTheme());
    QPalette frame = this->palette();
    frame.setColor(QPalette::Window, palette.color(QStringLiteral("typeLight")));
    setPalette(frame);
    setAutoFillBackground(true);
    if (m_editor)
        m_editor->textEdit().setTheme(palette);
}

} // namespace scrivlet
