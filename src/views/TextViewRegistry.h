#pragma once

#include <QObject>
#include <QPointer>

#include <functional>

class QWidget;

namespace scrivlet {

class NoteEditorView;

// Which pane is which, and which one the user is working in. The stack's pane and the
// slotted pane each register their editor; the active one follows the keyboard focus,
// so a command acts on the note the user last typed or clicked in.
class TextViewRegistry final : public QObject {
    Q_OBJECT
public:
    explicit TextViewRegistry(QObject *parent = nullptr);

    NoteEditorView *mainTextView() const { return m_mainTextView; }
    NoteEditorView *slottedTextView() const { return m_slottedTextView; }
    NoteEditorView *activeTextView() const { return m_activeTextView; }
    // Whether the active pane is the one drawn first (top, or left in a side-by-side split).
    bool activeSectionIsTop() const { return m_activeSectionIsTop; }
    bool isSlottedActive() const { return m_activeTextView && m_activeTextView == m_slottedTextView; }

    void setMainTextView(NoteEditorView *view);
    void setSlottedTextView(NoteEditorView *view);
    // Makes `view` the active one (it must be registered); `isTop` tells where it is drawn.
    void setActive(NoteEditorView *view, bool isTop);
    // Sets the active pane from where the focus now is; a focus outside both panes
    // (the search field, a button) leaves it as it was.
    void followFocus(QWidget *focused, const std::function<bool(NoteEditorView *)> &isTop);

signals:
    void activeTextViewChanged();

private:
    QPointer<NoteEditorView> m_mainTextView;
    QPointer<NoteEditorView> m_slottedTextView;
    QPointer<NoteEditorView> m_activeTextView;
    bool m_activeSectionIsTop = true;
};

} // namespace scrivlet
