#pragma once

#include <QWidget>

#include <optional>

class QAction;
class QHBoxLayout;
class QToolButton;

namespace scrivlet {

class ThemePalette;

// The slim bar across the top of the frameless window: small flat buttons for the
// window's commands, and the place to grab to move the window.
class TopBar final : public QWidget {
    Q_OBJECT
public:
    enum class Glyph { previous, next, newNote, trash, pin, split, search, theVoid, hide };

    explicit TopBar(QWidget *parent = nullptr);

    // A button for `action` (its tooltip names the shortcut); `trailing` puts it on the right.
    QToolButton *addButton(QAction *action, Glyph glyph, bool trailing);
    void setTheme(const ThemePalette &palette);
    // Draws one of the bar's glyphs in `color`, for a button or anything that shows the same command.
    static QIcon icon(Glyph glyph, const QColor &color, const QColor &active);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    QHBoxLayout *m_leading;
    QHBoxLayout *m_trailing;
    std::vector<std::pair<QToolButton *, Glyph>> m_buttons;
    QColor m_background;
    QColor m_rule;
    // Where the drag started, when the window system doesn't move the window itself.
    std::optional<QPoint> m_dragOffset;
};

} // namespace scrivlet
