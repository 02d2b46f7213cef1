#pragma once

#include "keywords/UserActionType.h"
#include "platform/TextRange.h"
#include "views/ThemePalette.h"

#include <QTextEdit>

#include <functional>
#include <limits>
#include <optional>

namespace scrivlet {

class DocumentTextStorage;
class LinkInteraction;

// The text view of one note. It tells, for every change the user makes, what the
// text was, which range was replaced by what, and how the change came about (typing,
// deleting, pasting...). Changes made by the text passes themselves stay quiet.
class NoteTextEdit final : public QTextEdit {
    Q_OBJECT
public:
    struct Edit {
        QString before;
        TextRange replaced; // in `before`
        QString inserted;
        std::optional<UserActionType> action;
    };
    using EditHandler = std::function<void(const Edit &edit)>;
    // The note's own undo history. The document keeps none: the passes restyle the text
    // after every keystroke, and a step of the note is more than its text.
    struct History {
        std::function<void()> undo;
        std::function<void()> redo;
        std::function<bool()> canUndo;
        std::function<bool()> canRedo;
        // Ends the step being typed, before a paste, a cut or a drop becomes its own.
        std::function<void()> endStep;
    };

    explicit NoteTextEdit(QWidget *parent = nullptr);
    ~NoteTextEdit() override;

    DocumentTextStorage &storage() const { return *m_storage; }
    void setEditHandler(EditHandler handler) { m_onEdit = std::move(handler); }
    void setHistory(History history) { m_history = std::move(history); }
    void setTheme(const ThemePalette &palette);
    const ThemePalette &theme() const { return m_theme; }
    // Takes the text of a note as the start of its history: nothing is reported.
    void loadText(const QString &text);
    // The note's links: clicks on them, the pointer over them, keys into them, copies.
    void setLinkInteraction(LinkInteraction *links);
    // Room left of the text, for the boxes of a checklist.
    void setLeftMargin(int margin) { setViewportMargins(margin, 0, 0, 0); }

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    QMimeData *createMimeDataFromSelection() const override;
    void insertFromMimeData(const QMimeData *source) override;
    void dropEvent(QDropEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;

private:
    void documentChanged();
    void withAction(UserActionType action, const std::function<void()> &body);
    void endStep();
    // The character under `viewportPoint`, or -1 between lines and past their ends.
    qsizetype characterAt(const QPoint &viewportPoint) const;
    bool isLinkAt(qsizetype position) const;

    ThemePalette m_theme;
    DocumentTextStorage *m_storage;
    EditHandler m_onEdit;
    History m_history;
    LinkInteraction *m_links = nullptr;
    QPoint m_pressPoint;
    QString m_lastText;
    std::optional<UserActionType> m_action;
    bool m_loading = false;
    qsizetype m_changeStart = std::numeric_limits<qsizetype>::max();
};

} // namespace scrivlet
