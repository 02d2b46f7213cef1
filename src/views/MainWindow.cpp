#include "views/MainWindow.h"

#include "notes/CoreDataManager.h"
#include "notes/NoteCommands.h"
#include "notes/NoteViewModel.h"
#include "platform/SettingsStore.h"
#include "shell/preferences/NotesPreferences.h"
#include "views/MessagePill.h"
#include "views/NoteEditorView.h"
#include "views/NoteTextEdit.h"
#include "views/SearchView.h"
#include "views/SplitView.h"
#include "views/TextViewRegistry.h"
#include "views/TopBar.h"
#include "views/VoidView.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QSizeGrip>
#include <QSplitter>
#include <QStackedWidget>
#include <QTimer>
#include <QVBoxLayout>

#include <cmath>

namespace scrivlet {

namespace {

const QString kOriginX = QStringLiteral("windowOriginX");
const QString kOriginY = QStringLiteral("windowOriginY");
const QString kWidth = QStringLiteral("windowWidth");
const QString kHeight = QStringLiteral("windowHeight");

std::optional<double> number(const SettingsStore &settings, const QString &key)
{
    bool ok = false;
    const double v = settings.value(key).toDouble(&ok);
    return ok && std::isfinite(v) ? std::optional<double>(v) : std::nullopt;
}

// How far a point lies outside a rectangle; 0 inside it.
qint64 distanceSquared(const QPoint &point, const QRect &rect)
{
    const qint64 dx = point.x() < rect.left()    ? rect.left() - point.x()
                      : point.x() > rect.right() ? point.x() - rect.right()
                                                 : 0;
    const qint64 dy = point.y() < rect.top()      ? rect.top() - point.y()
                      : point.y() > rect.bottom() ? point.y() - rect.bottom()
                                                  : 0;
    return dx * dx + dy * dy;
}

} // namespace

MainWindow::MainWindow(const EditorContext &context, SettingsStore &settings, std::shared_ptr<NoteViewModel> note,
                       NoteEditorSession::SaveCallback save)
    : m_context(context), m_settings(settings), m_topBar(new TopBar), m_pages(new QStackedWidget),
      m_split(new SplitView(context)), m_registry(new TextViewRegistry(this))
{
    setWindowTitle(QStringLiteral("Scrivlet"));
    setObjectName(QStringLiteral("mainWindow"));
    // The window draws its own bar: the system's title bar would be most of a small window.
    setWindowFlag(Qt::FramelessWindowHint, true);
    setMinimumSize(220, 160);

    auto *content = new QWidget;
    content->setObjectName(QStringLiteral("windowContent"));
    auto *layout = new QVBoxLayout(content);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_topBar);
    layout->addWidget(m_pages, 1);
    m_pages->addWidget(m_split);
    setCentralWidget(content);

    m_pill = new MessagePill(content);
    // Without a frame there is no border to pull: the corner grip resizes.
    m_grip = new QSizeGrip(content);
    m_grip->setFixedSize(14, 14);

    m_split->setStackNote(std::move(note), std::move(save));
    m_registry->setMainTextView(m_split->stackEditor());
    connect(m_split, &SplitView::editorReplaced, this, [this] {
        m_registry->setMainTextView(m_split->stackEditor());
        m_registry->setSlottedTextView(m_split->slottedEditor());
    });
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget *, QWidget *now) {
        m_registry->followFocus(now, [this](NoteEditorView *view) { return m_split->isFirst(view); });
    });
    connect(m_registry, &TextViewRegistry::activeTextViewChanged, this,
            [this] { m_split->setActiveEditor(m_registry->activeTextView()); });
    m_split->setActiveEditor(m_registry->activeTextView());

    m_subscriptions.push_back(
        m_context.bus.subscribe(QStringLiteral("MessagePillNotification"), [this](const QVariantMap &payload) {
            m_pill->showMessage(payload.value(QStringLiteral("message")).toString(),
                                payload.value(QStringLiteral("type")).toString(), editorView().textEdit().theme());
        }));

    createCommands();
    applyTheme();
    restoreFrame();
    m_split->stackEditor()->setFocus();
}

MainWindow::~MainWindow()
{
    if (m_observer && m_notes)
        m_notes->removeObserver(*m_observer);
}

NoteEditorView &MainWindow::editorView() const
{
    return *m_split->stackEditor();
}

void MainWindow::showNote(std::shared_ptr<NoteViewModel> note, NoteEditorSession::SaveCallback save)
{
    m_split->setStackNote(std::move(note), std::move(save));
}

std::function<void(const Note &)> MainWindow::saveFor(const std::shared_ptr<NoteViewModel> &model, bool slotted) const
{
    CoreDataManager *store = m_store;
    return [store, model, slotted](const Note &edited) {
        // The note's holder is the one in its list: it takes the new date too.
        NoteViewModelList holder{model};
        store->saveFromEditor(edited, slotted ? nullptr : &holder, slotted ? &holder : nullptr);
    };
}

void MainWindow::attachStack(CoreDataManager &store, CoreDataNotesManager &notes)
{
    if (m_notes)
        return;
    m_store = &store;
    m_notes = &notes;
    m_commands = std::make_unique<NoteCommands>(notes, m_settings, m_context.bus);

    m_search = new SearchView(notes, m_context.clock);
    m_void = new VoidView(store, notes, m_context.bus, m_context.clock);
    m_pages->addWidget(m_search);
    m_pages->addWidget(m_void);
    connect(m_search, &SearchView::closed, this, [this] { showPage(Page::notes); });
    connect(m_void, &VoidView::closed, this, [this] { showPage(Page::notes); });
    connect(m_search, &SearchView::resultChosen, this, [this](const QUuid &id) {
        showPage(Page::notes);
        m_notes->jumpToNote(id);
        // A slot found by search opens in the slotted pane, which has to be on screen.
        const auto slot = m_notes->currentSlottedNote();
        if (slot && slot->id() == id) {
            const NotesPreferences preferences(m_settings);
            if (!preferences.isSplitView() && !preferences.isSlottedMain())
                m_commands->toggleSplit();
            applyPaneLayout();
            focusEditor(m_split->slottedEditor());
            return;
        }
        focusEditor(m_split->stackEditor());
    });

    m_observer = notes.addObserver([this](CoreDataNotesManager::Change change) {
        using Change = CoreDataNotesManager::Change;
        if (change == Change::currentIndex || change == Change::noteViewModels)
            followOpenNote(false);
        else if (change == Change::slottedIndex || change == Change::slottedNoteViewModels)
            followOpenNote(true);
    });
    followOpenNote(false);
    followOpenNote(true);
    applyPaneLayout();
    applyTheme();
}

void MainWindow::followOpenNote(bool slotted)
{
    const std::shared_ptr<NoteViewModel> open = slotted ? m_notes->currentSlottedNote() : m_notes->currentNote();
    if (!open)
        return;
    NoteEditorView *shown = slotted ? m_split->slottedEditor() : m_split->stackEditor();
    if (shown && shown->noteViewModel() == open)
        return;
    // A reload brings a new holder of the same note: typing not yet saved is newer.
    if (shown && shown->noteViewModel()->id() == open->id() && shown->session().hasPendingSave())
        open->mutableNote().content = shown->noteViewModel()->note().content;
    NoteEditorView *editor = slotted ? m_split->setSlottedNote(open, saveFor(open, true))
                                     : m_split->setStackNote(open, saveFor(open, false));
    if (editor != m_split->stackEditor())
        editor->setTheme(m_split->stackEditor()->textEdit().theme());
}

void MainWindow::applyPaneLayout()
{
    const NotesPreferences preferences(m_settings);
    m_split->setPaneLayout({preferences.isSplitView(), preferences.isSlottedMain(), preferences.isSplitHorizontal()});
    // A pane that went out of sight can't be the one commands act on.
    NoteEditorView *active = m_registry->activeTextView();
    if (!active || !active->isVisibleTo(m_split))
        m_registry->setActive(m_split->primaryEditor(), true);
    if (QAction *split = command(QStringLiteral("toggleSplit")))
        split->setChecked(preferences.isSplitView());
}

bool MainWindow::slottedActive() const
{
    return m_registry->isSlottedActive();
}

void MainWindow::focusEditor(NoteEditorView *editor, int delayMs)
{
    if (!editor)
        return;
    QPointer<NoteEditorView> target(editor);
    auto focus = [this, target] {
        // The pane may have been given another note meanwhile: take the one there now.
        NoteEditorView *now = target ? target.data() : m_split->stackEditor();
        now->textEdit().setFocus();
        m_registry->setActive(now, m_split->isFirst(now));
    };
    if (delayMs <= 0)
        focus();
    else
        QTimer::singleShot(delayMs, this, focus);
}

void MainWindow::jumpToSlot(int slot)
{
    if (!m_notes)
        return;
    // Going to a slot shows the slots.
    if (!NotesPreferences(m_settings).isSplitView())
        m_commands->toggleSplit();
    m_notes->jumpToSlot(slot - 1);
    applyPaneLayout();
    focusEditor(m_split->slottedEditor());
}

QAction *MainWindow::addCommand(const QString &name, const QString &text, const QList<QKeySequence> &keys,
                                std::function<void()> run)
{
    auto *action = new QAction(text, this);
    action->setObjectName(name);
    action->setShortcuts(keys);
    action->setShortcutContext(Qt::WindowShortcut);
    if (!keys.isEmpty())
        action->setToolTip(text % QStringLiteral("  (") % keys.first().toString(QKeySequence::NativeText) %
                           QLatin1Char(')'));
    connect(action, &QAction::triggered, this, std::move(run));
    addAction(action);
    return action;
}

void MainWindow::createCommands()
{
    using K = QKeySequence;
    // The stack's commands wait for the stack; hiding and quitting work at once.
    auto onStack = [this](void (NoteCommands::*command)(bool)) {
        return [this, command] {
            if (m_commands && page() == Page::notes)
                (m_commands.get()->*command)(slottedActive());
        };
    };
    QAction *previous =
        addCommand(QStringLiteral("previousNote"), tr("Older note"),
                   {K(Qt::ALT | Qt::Key_Left), K(Qt::CTRL | Qt::Key_PageUp)}, onStack(&NoteCommands::previous));
    QAction *next =
        addCommand(QStringLiteral("nextNote"), tr("Newer note"),
                   {K(Qt::ALT | Qt::Key_Right), K(Qt::CTRL | Qt::Key_PageDown)}, onStack(&NoteCommands::next));
    QAction *newNote = addCommand(QStringLiteral("newNote"), tr("New note"), {K(Qt::CTRL | Qt::Key_N)}, [this] {
        if (!m_commands)
            return;
        showPage(Page::notes);
        m_commands->newNote(slottedActive(), false);
        if (!m_commands->isInSlottedPane(slottedActive()))
            focusEditor(m_split->stackEditor(), kNewNoteFocusDelayMs);
    });
    QAction *trash = addCommand(QStringLiteral("deleteNote"), tr("Send to The Void"),
                                {K(Qt::CTRL | Qt::SHIFT | Qt::Key_Backspace)}, onStack(&NoteCommands::deleteOpenNote));
    addCommand(QStringLiteral("promoteNote"), tr("Move note to front"), {K(Qt::CTRL | Qt::SHIFT | Qt::Key_Up)},
               onStack(&NoteCommands::promoteOpenNote));
    addCommand(QStringLiteral("jumpToLatest"), tr("Go to latest note"), {K(Qt::ALT | Qt::Key_End)},
               onStack(&NoteCommands::jumpToFront));
    for (int slot = 1; slot <= 9; ++slot) {
        addCommand(QStringLiteral("jumpToSlot%1").arg(slot), tr("Slot %1").arg(slot),
                   {K(Qt::CTRL | Qt::Key(Qt::Key_0 + slot))}, [this, slot] {
                       showPage(Page::notes);
                       jumpToSlot(slot);
                   });
    }
    QAction *split =
        addCommand(QStringLiteral("toggleSplit"), tr("Split view"), {K(Qt::CTRL | Qt::Key_Backslash)}, [this] {
            if (!m_commands)
                return;
            showPage(Page::notes);
            m_commands->toggleSplit();
            applyPaneLayout();
            const NotesPreferences preferences(m_settings);
            if (!preferences.isSplitView() && !preferences.isSlottedMain())
                focusEditor(m_split->stackEditor());
        });
    split->setCheckable(true);
    addCommand(QStringLiteral("swapPanes"), tr("Swap Ephemeral vs. Slotted"),
               {K(Qt::CTRL | Qt::SHIFT | Qt::Key_Backslash), K(Qt::CTRL | Qt::Key_Bar)}, [this] {
                   if (!m_commands)
                       return;
                   m_commands->swapPanes();
                   applyPaneLayout();
                   focusEditor(m_split->primaryEditor());
               });
    addCommand(QStringLiteral("toggleSplitDirection"), tr("Split side by side / one above the other"),
               {K(Qt::CTRL | Qt::ALT | Qt::Key_Backslash)}, [this] {
                   if (!m_commands)
                       return;
                   showPage(Page::notes);
                   NotesPreferences preferences(m_settings);
                   preferences.setIsSplitHorizontal(!preferences.isSplitHorizontal());
                   // Turning the split is asking to see it.
                   if (!preferences.isSplitView())
                       m_commands->toggleSplit();
                   applyPaneLayout();
               });
    QAction *pin =
        addCommand(QStringLiteral("togglePin"), tr("Pin on top"), {K(Qt::CTRL | Qt::SHIFT | Qt::Key_P)}, [this] {
            if (m_pinHandler)
                m_pinHandler();
        });
    pin->setCheckable(true);
    QAction *search = addCommand(QStringLiteral("search"), tr("Search notes"), {K(Qt::CTRL | Qt::SHIFT | Qt::Key_F)},
                                 [this] { showPage(page() == Page::search ? Page::notes : Page::search); });
    QAction *theVoid = addCommand(QStringLiteral("theVoid"), tr("The Void"), {K(Qt::CTRL | Qt::SHIFT | Qt::Key_T)},
                                  [this] { showPage(page() == Page::theVoid ? Page::notes : Page::theVoid); });
    search->setCheckable(true);
    theVoid->setCheckable(true);
    QAction *hide =
        addCommand(QStringLiteral("hideWindow"), tr("Hide window"), {K(Qt::CTRL | Qt::Key_W)}, [this] { close(); });
    addCommand(QStringLiteral("quit"), tr("Quit Scrivlet"), {K(Qt::CTRL | Qt::Key_Q)},
               [] { QCoreApplication::quit(); });

    m_topBar->addButton(previous, TopBar::Glyph::previous, false);
    m_topBar->addButton(next, TopBar::Glyph::next, false);
    m_topBar->addButton(newNote, TopBar::Glyph::newNote, false);
    m_topBar->addButton(trash, TopBar::Glyph::trash, false);
    m_topBar->addButton(pin, TopBar::Glyph::pin, true);
    m_topBar->addButton(split, TopBar::Glyph::split, true);
    m_topBar->addButton(search, TopBar::Glyph::search, true);
    m_topBar->addButton(theVoid, TopBar::Glyph::theVoid, true);
    m_topBar->addButton(hide, TopBar::Glyph::hide, true);
}

QAction *MainWindow::command(const QString &name) const
{
    return findChild<QAction *>(name, Qt::FindDirectChildrenOnly);
}

void MainWindow::setPinnedIndicator(bool pinned)
{
    if (QAction *pin = command(QStringLiteral("togglePin"))) {
        pin->setChecked(pinned);
        pin->setText(pinned ? tr("Unpin") : tr("Pin on top"));
    }
}

MainWindow::Page MainWindow::page() const
{
    if (m_search && m_pages->currentWidget() == m_search)
        return Page::search;
    if (m_void && m_pages->currentWidget() == m_void)
        return Page::theVoid;
    return Page::notes;
}

void MainWindow::showPage(Page page)
{
    if (page == this->page())
        return;
    switch (page) {
    case Page::notes:
        m_pages->setCurrentWidget(m_split);
        focusEditor(m_registry->activeTextView() ? m_registry->activeTextView() : m_split->primaryEditor());
        break;
    case Page::search:
        if (!m_search)
            break;
        m_split->flushPendingSaves();
        m_pages->setCurrentWidget(m_search);
        m_search->activate();
        break;
    case Page::theVoid:
        if (!m_void)
            break;
        // The note just left may be the one about to show up in The Void.
        m_split->flushPendingSaves();
        m_pages->setCurrentWidget(m_void);
        m_void->reload();
        m_void->setFocus();
        break;
    }
    // The bar's buttons show which view stands in place of the notes.
    command(QStringLiteral("search"))->setChecked(this->page() == Page::search);
    command(QStringLiteral("theVoid"))->setChecked(this->page() == Page::theVoid);
}

void MainWindow::applyTheme()
{
    const ThemePalette &palette = editorView().textEdit().theme();
    m_topBar->setTheme(palette);
    if (m_search)
        m_search->setTheme(palette);
    if (m_void)
        m_void->setTheme(palette);
    QPalette p = palette.isDark() ? QPalette(QColor(0x22, 0x22, 0x22)) : QPalette();
    p.setColor(QPalette::Window, palette.color(QStringLiteral("background")));
    p.setColor(QPalette::WindowText, palette.color(QStringLiteral("typeMain")));
    p.setColor(QPalette::Base, palette.color(QStringLiteral("background")));
    p.setColor(QPalette::Text, palette.color(QStringLiteral("typeMain")));
    setPalette(p);
    // Thin scroll bars in the theme's colours, with no arrows: a note scrolls with the
    // wheel and the keys, and the bar only says where in the note one is.
    const QString handle = palette.color(QStringLiteral("gridBold")).name();
    m_split->setMarkerColor(palette.color(QStringLiteral("accent1Main")));
    m_split->splitter().setStyleSheet(
        QStringLiteral("QSplitter::handle { background: %1; }"
                       "QScrollBar:vertical { width: 8px; background: transparent; margin: 2px 1px; }"
                       "QScrollBar::handle:vertical { background: %1; border-radius: 3px; min-height: 24px; }"
                       "QScrollBar::add-line:vertical, QScrollBar::sub-line:vertical { height: 0; }"
                       "QScrollBar::add-page:vertical, QScrollBar::sub-page:vertical { background: none; }")
            .arg(handle));
}

void MainWindow::resizeEvent(QResizeEvent *event)
{
    QMainWindow::resizeEvent(event);
    m_pill->reposition();
    QWidget *content = centralWidget();
    m_grip->move(content->width() - m_grip->width(), content->height() - m_grip->height());
    m_grip->raise();
}

QRect MainWindow::reachableFrame(const QRect &frame, const QList<QRect> &screens)
{
    if (screens.isEmpty())
        return frame;
    const QRect *nearest = nullptr;
    qint64 best = std::numeric_limits<qint64>::max();
    for (const QRect &screen : screens) {
        if (screen.intersects(frame))
            return frame;
        const qint64 distance = distanceSquared(frame.center(), screen);
        if (distance < best) {
            best = distance;
            nearest = &screen;
        }
    }
    QRect placed(frame.topLeft(), frame.size().boundedTo(nearest->size()));
    placed.moveLeft(std::clamp(placed.left(), nearest->left(), nearest->right() - placed.width() + 1));
    placed.moveTop(std::clamp(placed.top(), nearest->top(), nearest->bottom() - placed.height() + 1));
    return placed;
}

void MainWindow::restoreFrame()
{
    const auto x = number(m_settings, kOriginX);
    const auto y = number(m_settings, kOriginY);
    const auto w = number(m_settings, kWidth);
    const auto h = number(m_settings, kHeight);
    if (!(x && y && w && h && *w > 0 && *h > 0)) {
        resize(kDefaultWidth, kDefaultHeight);
        return;
    }
    QList<QRect> screens;
    for (const QScreen *screen : QGuiApplication::screens())
        screens << screen->availableGeometry();
    const QRect frame = reachableFrame(QRect(int(*x), int(*y), int(*w), int(*h)), screens);
    move(frame.topLeft());
    resize(frame.size());
}

void MainWindow::saveFrame() const
{
    const QRect frame = geometry();
    m_settings.setValue(kOriginX, double(frame.x()));
    m_settings.setValue(kOriginY, double(frame.y()));
    m_settings.setValue(kWidth, double(frame.width()));
    m_settings.setValue(kHeight, double(frame.height()));
    m_settings.sync();
}

void MainWindow::flushPendingSave()
{
    m_split->flushPendingSaves();
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    flushPendingSave();
    saveFrame();
    // The window going away is what a later return measures a fresh note against.
    NotesPreferences(m_settings).setLastWindowCloseTime(double(m_context.clock.now().toMSecsSinceEpoch()) / 1000.0);
    m_settings.sync();
    QMainWindow::closeEvent(event);
}

} // namespace scrivlet
