#pragma once

#include "keywords/NoteEditorSession.h"

#include <QPointer>
#include <QWidget>

#include <memory>

class QColor;
class QSplitter;

namespace scrivlet {

class NoteEditorView;
class NoteViewModel;

// The note area of the window: the stack's pane and the slotted pane. With the split
// off one of them shows (the slots when they are the main pane); with it on both
// show, the main one first, one above the other or side by side.
class SplitView final : public QWidget {
    Q_OBJECT
public:
    struct Layout {
        bool split = false;
        bool slottedMain = false;
        bool horizontal = false;
        bool operator==(const Layout &) const = default;
    };

    SplitView(const EditorContext &context, QWidget *parent = nullptr);
    ~SplitView() override;

    // Puts a note in a pane, saving what the pane showed first. The same holder again is
    // left alone, so the caret and the history stay.
    NoteEditorView *setStackNote(std::shared_ptr<NoteViewModel> note, NoteEditorSession::SaveCallback save);
    NoteEditorView *setSlottedNote(std::shared_ptr<NoteViewModel> note, NoteEditorSession::SaveCallback save);
    NoteEditorView *stackEditor() const { return m_stack; }
    NoteEditorView *slottedEditor() const { return m_slotted; }

    void setPaneLayout(const Layout &layout);
    const Layout &paneLayout() const { return m_layout; }
    QSplitter &splitter() const { return *m_splitter; }
    // Whether `editor` is drawn first (top, or left).
    bool isFirst(const NoteEditorView *editor) const;
    // The pane that shows on its own, or comes first in the split.
    NoteEditorView *primaryEditor() const;

    void flushPendingSaves();

    // With both panes on screen, a thin line in `color` along the edge of the pane that
    // the keys act on, so that one can tell which it is without typing.
    void setActiveEditor(NoteEditorView *editor);
    void setMarkerColor(const QColor &color);

signals:
    // A pane was given a new editor (another note): the old one is gone.
    void editorReplaced(NoteEditorView *editor);

protected:
    void resizeEvent(QResizeEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    NoteEditorView *replace(NoteEditorView *&slot, std::shared_ptr<NoteViewModel> note,
                            NoteEditorSession::SaveCallback save);
    void arrange();
    void placeMarker();

    EditorContext m_context;
    QSplitter *m_splitter;
    NoteEditorView *m_stack = nullptr;
    NoteEditorView *m_slotted = nullptr;
    QPointer<NoteEditorView> m_active;
    QWidget *m_marker;
    Layout m_layout;
};

} // namespace scrivlet
