#include "views/TextViewRegistry.h"

#include "views/NoteEditorView.h"

namespace scrivlet {

TextViewRegistry::TextViewRegistry(QObject *parent) : QObject(parent) {}

void TextViewRegistry::setMainTextView(NoteEditorView *view)
{
    const bool wasActive = m_activeTextView && m_activeTextView == m_mainTextView;
    m_mainTextView = view;
    // A pane that shows another note keeps being the one the user works in.
    if (wasActive || !m_activeTextView)
        setActive(view, m_activeSectionIsTop);
}

void TextViewRegistry::setSlottedTextView(NoteEditorView *view)
{
    const bool wasActive = m_activeTextView && m_activeTextView == m_slottedTextView;
    m_slottedTextView = view;
    if (wasActive)
        setActive(view, m_activeSectionIsTop);
}

void TextViewRegistry::setActive(NoteEditorView *view, bool isTop)
{
    if (view == m_activeTextView && isTop == m_activeSectionIsTop)
        return;
    m_activeTextView = view;
    m_activeSectionIsTop = isTop;
    emit activeTextViewChanged();
}

void TextViewRegistry::followFocus(QWidget *focused, const std::function<bool(NoteEditorView *)> &isTop)
{
    for (NoteEditorView *view : {m_mainTextView.data(), m_slottedTextView.data()}) {
        if (view && focused && (view == focused || view->isAncestorOf(focused))) {
            setActive(view, isTop(view));
            return;
        }
    }
}

} // namespace scrivlet
