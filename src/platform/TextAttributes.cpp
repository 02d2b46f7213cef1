#include "platform/TextAttributes.h"

namespace scrivlet {

void TextAttributes::merge(const TextAttributes &other)
{
    if (other.font)
        font = other.font;
    if (other.foreground)
        foreground = other.foreground;
    if (other.background)
        background = other.background;
    if (other.underlineStyle)
        underlineStyle = other.underlineStyle;
    if (other.strikethroughStyle)
        strikethroughStyle = other.strikethroughStyle;
    if (other.underlineColor)
        underlineColor = other.underlineColor;
    if (other.paragraph)
        paragraph = other.paragraph;
    if (other.custom)
        custom = other.custom;
}

void TextAttributes::clear(unsigned fields)
{
    if (fields & Font)
        font.reset();
    if (fields & Foreground)
        foreground.reset();
    if (fields & Background)
        background.reset();
    if (fields & Underline)
        underlineStyle.reset();
    if (fields & Strikethrough)
        strikethroughStyle.reset();
    if (fields & UnderlineColor)
        underlineColor.reset();
    if (fields & Paragraph)
        paragraph.reset();
    if (fields & Custom)
        custom.reset();
}

bool TextAttributes::isEmpty() const
{
    return *this == TextAttributes{};
}

} // namespace scrivlet
