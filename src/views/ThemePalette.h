#pragma once

#include <QColor>
#include <QHash>
#include <QString>

namespace scrivlet {

// The colours of a theme by role ("typeMain", "accent1Main"...). The core speaks only
// of roles; this is where they become colours on screen.
class ThemePalette {
public:
    static ThemePalette builtIn(const QString &name);
    static QStringList builtInNames();

    const QString &name() const { return m_name; }
    bool isDark() const { return m_isDark; }
    // An unknown role draws in the main text colour rather than in nothing.
    QColor color(const QString &role) const;

private:
    QString m_name;
    bool m_isDark = false;
    QHash<QString, QColor> m_colors;
};

} // namespace scrivlet
