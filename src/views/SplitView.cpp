#include "views/SplitView.h"

#include "views/NoteEditorView.h"

#include <QApplication>
#include <QColor>
#include <QEvent>
#include <QPalette>
#include <QSplitter>
#include <QVBoxLayout>

namespace scrivlet {

SplitView::SplitView(const EditorContext &context, QWidget *parent)
    : QWidget(parent), m_context(context), m_splitter(new QSplitter(Qt::Vertical, this))
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_splitter);
    m_splitter->setChildrenCollapsible(false);
    m_splitter->setHandleWidth(1);
    m_splitter->setObjectName(QStringLiteral("paneSplitter"));
    connect(m_splitter, &QSplitter::splitterMoved, this, &SplitView::placeMarker);

    m_marker = new QWidget(this);
    m_marker->setObjectName(QStringLiteral("activePaneMarker"));
    m_marker->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_marker->setAutoFillBackground(true);
    m_marker->hide();
}

SplitView::~SplitView()
{
    flushPendingSaves();
}

NoteEditorView *SplitView::replace(NoteEditorView *&slot, std::shared_ptr<NoteViewModel> note,
                                   NoteEditorSession::SaveCallback save)
{
    if (slot && slot->noteViewModel() == note)
        return slot;
    const int index = slot ? m_splitter->indexOf(slot) : -1;
    const bool focused = slot && slot->isAncestorOf(QApplication::focusWidget());
    auto *editor = new NoteEditorView(m_context, std::move(note), std::move(save));
    if (slot) {
        slot->flushPendingSave();
        slot->hide();
        // Deleted once the event that moved the pane is done: it may come from the old editor.
        slot->setParent(nullptr);
        slot->deleteLater();
    }
    slot = editor;
    // The splitter moves and sizes the panes on its own as well; the marker follows.
    editor->installEventFilter(this);
    m_splitter->insertWidget(index < 0 ? m_splitter->count() : index, editor);
    arrange();
    emit editorReplaced(editor);
    if (focused)
        editor->setFocus();
    return editor;
}

NoteEditorView *SplitView::setStackNote(std::shared_ptr<NoteViewModel> note, NoteEditorSession::SaveCallback save)
{
    return replace(m_stack, std::move(note), std::move(save));
}

NoteEditorView *SplitView::setSlottedNote(std::shared_ptr<NoteViewModel> note, NoteEditorSession::SaveCallback save)
{
    return replace(m_slotted, std::move(note), std::move(save));
}

void SplitView::setPaneLayout(const Layout &layout)
{
    m_layout = layout;
    arrange();
}

void SplitView::arrange()
{
    m_splitter->setOrientation(m_layout.horizontal ? Qt::Horizontal : Qt::Vertical);
    NoteEditorView *first = m_layout.slottedMain ? m_slotted : m_stack;
    NoteEditorView *second = m_layout.slottedMain ? m_stack : m_slotted;
    if (!first)
        std::swap(first, second);
    if (first && m_splitter->indexOf(first) != 0)
        m_splitter->insertWidget(0, first);
    if (first)
        first->setVisible(true);
    if (second)
        second->setVisible(m_layout.split);
    // Both panes start with half the room each time the split opens.
    if (m_layout.split && first && second) {
        const int total = m_layout.horizontal ? m_splitter->width() : m_splitter->height();
        m_splitter->setSizes({std::max(total / 2, 1), std::max(total - total / 2, 1)});
    }
    placeMarker();
}

void SplitView::setActiveEditor(NoteEditorView *editor)
{
    m_active = editor;
    placeMarker();
}

void SplitView::setMarkerColor(const QColor &color)
{
    QPalette palette = m_marker->palette();
    palette.setColor(QPalette::Window, color);
    m_marker->setPalette(palette);
}

void SplitView::placeMarker()
{
    const bool bothShown = m_layout.split && m_stack && m_slotted;
    if (!bothShown || !m_active || (m_active != m_stack && m_active != m_slotted)) {
        m_marker->hide();
        return;
    }
    // Along the top of the pane, or along its left side when the panes stand side by side.
    constexpr int kThickness = 2;
    const QRect pane(m_active->mapTo(this, QPoint(0, 0)), m_active->size());
    m_marker->setGeometry(m_layout.horizontal ? QRect(pane.left(), pane.top(), kThickness, pane.height())
                                              : QRect(pane.left(), pane.top(), pane.width(), kThickness));
    m_marker->show();
    m_marker->raise();
}

void SplitView::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    placeMarker();
}

bool SplitView::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_active && (event->type() == QEvent::Move || event->type() == QEvent::Resize))
        placeMarker();
    return QWidget::eventFilter(watched, event);
}

bool SplitView::isFirst(const NoteEditorView *editor) const
{
    return editor && m_splitter->indexOf(const_cast<NoteEditorView *>(editor)) == 0;
}

NoteEditorView *SplitView::primaryEditor() const
{
    return m_layout.slottedMain && m_slotted ? m_slotted : m_stack;
}

void SplitView::flushPendingSaves()
{
    for (NoteEditorView *editor : {m_stack, m_slotted}) {
        if (editor)
            editor->flushPendingSave();
    }
}

} // namespace scrivlet
