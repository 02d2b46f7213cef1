#include "views/MainWindow.h"

#include "platform/SettingsStore.h"
#include "views/NoteEditorView.h"
#include "views/NoteTextEdit.h"

#include <QApplication>
#include <QCloseEvent>
#include <QGuiApplication>
#include <QScreen>

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
    return ok ? std::optional<double>(v) : std::nullopt;
}

} // namespace

MainWindow::MainWindow(const EditorContext &context, SettingsStore &settings, std::shared_ptr<NoteViewModel> note,
                       NoteEditorSession::SaveCallback save)
    : m_context(context), m_settings(settings),
      m_editor(new NoteEditorView(context, std::move(note), std::move(save), this))
{
    setWindowTitle(QStringLiteral("Scrivlet"));
    setObjectName(QStringLiteral("mainWindow"));
    setCentralWidget(m_editor);
    restoreFrame();
    m_editor->setFocus();
}

MainWindow::~MainWindow() = default;

void MainWindow::showNote(std::shared_ptr<NoteViewModel> note, NoteEditorSession::SaveCallback save)
{
    const bool focused = m_editor->isAncestorOf(QApplication::focusWidget());
    m_editor->flushPendingSave();
    // The window owns the old editor and deletes it once the event it came from is done.
    m_editor = new NoteEditorView(m_context, std::move(note), std::move(save), this);
    setCentralWidget(m_editor);
    if (focused)
        m_editor->setFocus();
}

void MainWindow::restoreFrame()
{
    const auto x = number(m_settings, kOriginX);
    const auto y = number(m_settings, kOriginY);
    const auto w = number(m_settings, kWidth);
    const auto h = number(m_settings, kHeight);
    if (x && y && w && h && *w > 0 && *h > 0) {
        const QRect frame{int(*x), int(*y), int(*w), int(*h)};
        // A frame on a screen that is gone would open the window out of reach.
        bool visible = false;
        for (const QScreen *screen : QGuiApplication::screens())
            visible = visible || screen->availableGeometry().intersects(frame);
        if (visible) {
            move(frame.topLeft());
            resize(frame.size());
            return;
        }
    }
    resize(kDefaultWidth, kDefaultHeight);
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
    m_editor->flushPendingSave();
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    flushPendingSave();
    saveFrame();
    QMainWindow::closeEvent(event);
}

} // namespace scrivlet
