#pragma once

#include <QLabel>

class QGraphicsOpacityEffect;
class QPropertyAnimation;

namespace scrivlet {

class NoteTextEdit;

// The help text of a keyword, shown on the line below the note's first line for as
// long as nothing has been written there.
class HintTextView final : public QLabel {
    Q_OBJECT
public:
    explicit HintTextView(NoteTextEdit *editor);

    void setHint(bool show, const QString &text);
    bool isShowingHint() const { return m_shown; }
    void reposition();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    NoteTextEdit *m_editor;
    QGraphicsOpacityEffect *m_opacity;
    QPropertyAnimation *m_fade;
    bool m_shown = false;
};

} // namespace scrivlet
