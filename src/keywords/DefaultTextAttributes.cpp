#include "keywords/DefaultTextAttributes.h"

#include "shell/preferences/MiscPreferences.h"
#include "shell/preferences/VisualPreferences.h"

#include <array>

namespace scrivlet {

namespace {

int fontStep(const QString &fontSize)
{
    static const std::array<QString, 5> steps = {QStringLiteral("extraSmall"), QStringLiteral("small"),
                                                 QStringLiteral("medium"), QStringLiteral("large"),
                                                 QStringLiteral("extraLarge")};
    for (std::size_t i = 0; i < steps.size(); ++i) {
        if (steps[i] == fontSize)
            return int(i);
    }
    return 2;
}

// The system's colour emoji font on Linux desktops; views fall back to any colour
// emoji font the machine has.
const QString kEmojiFontFamily = QStringLiteral("Noto Color Emoji");

} // namespace

DefaultTextAttributes::DefaultTextAttributes(const VisualPreferences &visual, const MiscPreferences &misc)
    : m_font{misc.fontFamily(), pointSize(visual.fontSize(), visual.doubleFontSize())},
      m_emojiPointSize(emojiPointSize(visual.fontSize(), visual.doubleFontSize())),
      m_lineHeightMultiple(lineHeightMultiple(visual.paperType()))
{
}

double DefaultTextAttributes::pointSize(const QString &fontSize, bool doubleFontSize)
{
    static constexpr std::array<double, 5> sizes = {12, 14, 16, 18, 21};
    const double size = sizes[std::size_t(fontStep(fontSize))];
    return doubleFontSize ? size * 2 : size;
}

double DefaultTextAttributes::emojiPointSize(const QString &fontSize, bool doubleFontSize)
{
    static constexpr std::array<double, 5> sizes = {7, 8.4, 9.8, 11.2, 12.6};
    const double size = sizes[std::size_t(fontStep(fontSize))];
    return doubleFontSize ? size * 2 : size;
}

double DefaultTextAttributes::lineHeightMultiple(const QString &paperType)
{
    return paperType == QLatin1String("blank") ? 1.2 : 1.4;
}

FontSpec DefaultTextAttributes::emojiFont() const
{
    return FontSpec{kEmojiFontFamily, m_emojiPointSize};
}

double DefaultTextAttributes::lineHeight() const
{
    return m_font.pointSize * m_lineHeightMultiple;
}

TextAttributes DefaultTextAttributes::plain() const
{
    TextAttributes attributes;
    attributes.font = m_font;
    attributes.foreground = QStringLiteral("typeMain");
    attributes.paragraph = ParagraphSpec{m_lineHeightMultiple, 0, 0, 0};
    attributes.underlineStyle = 0;
    attributes.strikethroughStyle = 0;
    return attributes;
}

TextAttributes DefaultTextAttributes::list() const
{
    TextAttributes attributes = plain();
    // The checkbox is as wide as a line is tall; wrapped text lines up behind it.
    const double indent = lineHeight() + kChecklistIndentGap;
    attributes.paragraph = ParagraphSpec{m_lineHeightMultiple, 0, indent, indent};
    return attributes;
}

} // namespace scrivlet
