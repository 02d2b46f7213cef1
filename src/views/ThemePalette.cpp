#include "views/ThemePalette.h"

#include <QStringList>

#include <utility>

namespace scrivlet {

namespace {

struct ThemeData {
    const char *name;
    bool dark;
    // background, backgroundFade, typeMain, typeSubtle, typeSubtlePlus, typeHighlight,
    // typeLight, typeSuperlight, typeHyperLight, typeReverse, accent1Main,
    // accent1Secondary, accent1Tertiary, accent2Main, accent2Secondary, accent3Main,
    // accent3Secondary, accent4Main, accent4Secondary, accent5Main, accent5Secondary,
    // gridSuperlight, gridClear, gridBold
    const char *colors[24];
};

constexpr const char *kRoles[24] = {
    "background",    "backgroundFade",   "typeMain",         "typeSubtle",       "typeSubtlePlus",
    "typeHighlight", "typeLight",        "typeSuperlight",   "typeHyperLight",   "typeReverse",
    "accent1Main",   "accent1Secondary", "accent1Tertiary",  "accent2Main",      "accent2Secondary",
    "accent3Main",   "accent3Secondary", "accent4Main",      "accent4Secondary", "accent5Main",
    "accent5Secondary", "gridSuperlight", "gridClear",       "gridBold",
};

// Two of the built-in themes, one light and one dark; the others arrive with the
// theme service.
constexpr ThemeData kThemes[] = {
    {"Vancouver", false,
     {"#F7F5F0", "#EFECE4", "#2B2F33", "#8A8F94", "#6C7176", "#1D2125", "#A9ADB1", "#C8CBCE", "#E1E3E5",
      "#FFFFFF", "#2F7D6D", "#5FA596", "#CFE6E0", "#3C6FB4", "#A9C2E6", "#C2573A", "#EDC0B2", "#8B5BB5",
      "#D7C6E8", "#B38A1E", "#EBDDB0", "#ECE8DF", "#E0DBD0", "#CFC8BA"}},
    {"Tokyo Drift", true,
     {"#16161E", "#1F1F2A", "#D5D8E8", "#7A7F98", "#9599B3", "#FFFFFF", "#5C6079", "#43465A", "#2C2E3C",
      "#16161E", "#7DCFFF", "#4C8CB3", "#203445", "#9ECE6A", "#4F6B35", "#FF9E64", "#7A4D33", "#BB9AF7",
      "#5A4A7A", "#E0AF68", "#6E5634", "#22232F", "#2A2B39", "#363849"}},
};

// Roles that the text styling names for its markers, drawn in one of the theme's own
// colours: the markers stay readable but recede behind the text they style.
constexpr std::pair<const char *, const char *> kDerivedRoles[] = {
    {"markerColor", "typeLight"},
    {"inlineCodeMarkerColor", "accent3Secondary"},
    {"codeBlockMarkerColor", "accent2Secondary"},
};

} // namespace

ThemePalette ThemePalette::builtIn(const QString &name)
{
    const ThemeData *chosen = &kThemes[0];
    for (const ThemeData &t : kThemes) {
        if (name == QLatin1String(t.name))
            chosen = &t;
    }
    ThemePalette palette;
    palette.m_name = QString::fromLatin1(chosen->name);
    palette.m_isDark = chosen->dark;
    for (int i = 0; i < 24; ++i)
        palette.m_colors.insert(QString::fromLatin1(kRoles[i]), QColor(QString::fromLatin1(chosen->colors[i])));
    return palette;
}

QStringList ThemePalette::builtInNames()
{
    QStringList names;
    for (const ThemeData &t : kThemes)
        names << QString::fromLatin1(t.name);
    return names;
}

QColor ThemePalette::color(const QString &role) const
{
    const auto found = m_colors.constFind(role);
    if (found != m_colors.constEnd())
        return *found;
    for (const auto &[derived, base] : kDerivedRoles) {
        if (role == QLatin1String(derived))
            return m_colors.value(QString::fromLatin1(base));
    }
    return m_colors.value(QStringLiteral("typeMain"));
}

} // namespace scrivlet
