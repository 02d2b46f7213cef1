#pragma once

#include <QRectF>
#include <QUuid>
#include <QWidget>

#include <memory>
#include <optional>

namespace scrivlet {

class ChecklistItem;
class ChecklistPass;
class NoteEditorSession;
class NoteTextEdit;
class NotificationBus;

// The boxes of a list note, in a margin to the left of its text: one beside each row
// that isn't a header or comment, at the row's measured place, following the scrolling.
// A click flips the row's box and tells the editor, which writes the check word into the
// row or takes it off.
class ChecklistView final : public QWidget {
    Q_OBJECT
public:
    ChecklistView(NoteTextEdit *editor, NoteEditorSession &session, ChecklistPass &pass, const NotificationBus &bus);
    ~ChecklistView() override;

    // Where the box of the row with `index` is drawn, in this view's coordinates;
    // nothing for a hidden row or one out of range.
    std::optional<QRectF> boxRect(int index) const;

    // Shows or hides the margin for the note's kind and redraws the boxes.
    void refresh();

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void leaveEvent(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    double boxSide() const;
    std::optional<QRectF> boxRect(const ChecklistItem &item) const;
    std::shared_ptr<ChecklistItem> itemAt(const QPointF &point) const;
    void scheduleRefresh();

    NoteTextEdit *m_editor;
    NoteEditorSession &m_session;
    ChecklistPass &m_pass;
    const NotificationBus &m_bus;
    QUuid m_hovered;
    int m_viewportWidth = -1;
    bool m_refreshQueued = false;
};

} // namespace scrivlet
