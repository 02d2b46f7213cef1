#pragma once

#include "platform/TextAttributes.h"

namespace scrivlet {

class MiscPreferences;
class VisualPreferences;

// The look of unstyled note text under the current preferences: what every pass
// starts from, and what a reset returns the text to.
class DefaultTextAttributes {
public:
    static constexpr double kChecklistIndentGap = 6;

    DefaultTextAttributes(const VisualPreferences &visual, const MiscPreferences &misc);

    // Point size of text for a `fontSize` word ("extraSmall" ... "extraLarge").
    static double pointSize(const QString &fontSize, bool doubleFontSize);
    // Point size of emoji for the same step.
    static double emojiPointSize(const QString &fontSize, bool doubleFontSize);
    // Taller lines on ruled or dotted paper keep the text on its lines.
    static double lineHeightMultiple(const QString &paperType);

    const FontSpec &font() const { return m_font; }
    FontSpec emojiFont() const;
    double lineHeight() const;

    TextAttributes plain() const;
    // Checklist rows hang their text behind the checkbox.
    TextAttributes list() const;

private:
    FontSpec m_font;
    double m_emojiPointSize;
    double m_lineHeightMultiple;
};

} // namespace scrivlet
