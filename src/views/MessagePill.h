#pragma once

#include <QLabel>

class QGraphicsOpacityEffect;
class QPropertyAnimation;
class QTimer;

namespace scrivlet {

class ThemePalette;

// The short message at the bottom of the window ("New note created", "No older notes"):
// a rounded label coloured by its kind that fades out after a moment. A new message
// takes the place of the one showing.
class MessagePill final : public QLabel {
    Q_OBJECT
public:
    static constexpr int kHoldMs = 1500;
    static constexpr int kFadeMs = 350;

    explicit MessagePill(QWidget *parent);

    // `type` is a message pill kind (success, info, warning, error, scrivlink, blank).
    void showMessage(const QString &message, const QString &type, const ThemePalette &palette);
    const QString &type() const { return m_type; }
    // Keeps the pill centred near the bottom of its parent.
    void reposition();

private:
    QGraphicsOpacityEffect *m_opacity;
    QPropertyAnimation *m_fade;
    QTimer *m_hold;
    QString m_type;
};

} // namespace scrivlet
